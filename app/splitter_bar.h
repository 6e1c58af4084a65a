// The bar at the upper edge of the warnings pane that sets the pane's height.
#pragma once

#include <QLabel>

namespace chanplan {

/// Dragged with the mouse; the Up and Down keys move it too. It moves nothing itself.
class SplitterBar : public QLabel {
  Q_OBJECT

 public:
  explicit SplitterBar(QWidget* parent);

 signals:
  /// The mouse holds it there.
  void Dragged(const QPoint& globalPosition);
  /// The mouse let go of it there, elsewhere than on itself.
  void Dropped(const QPoint& globalPosition);
  /// The mouse let go of it.
  void Released();
  /// A key asks for so many pixels up (positive) or down.
  void Nudged(int pixelsUp);

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
};

}  // namespace chanplan
