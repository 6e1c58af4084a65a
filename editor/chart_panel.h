// The chart beside a document's grids: where its standards lie in the spectrum, and what they share.
#pragma once

#include <QAbstractScrollArea>
#include <QMdiSubWindow>
#include <QTimer>
#include <vector>

#include "core/signal_standard_table.h"
#include "report/chart_layout.h"
#include "report/plan_bands.h"

namespace chanplan {

/// Draws the table with the legend and the axis above, where they stay, and what the current standard
/// shares below. Standards are told by their row in the list of standards.
class ChartPanel : public QAbstractScrollArea {
  Q_OBJECT

 public:
  /// In `area`, hidden. `shownTable` outlives the panel.
  ChartPanel(const SignalStandardTable& shownTable, QWidget* area);

  /// The table has changed. Changes that come together are drawn together, once events run.
  void ShowTable() { refresh.start(); }
  /// Emphasises a standard and brings it into sight; -1 for none.
  void ShowCurrent(int row);

  /// Takes its place in an area of this size: beside the grids where these keep their least width, else
  /// below them. What both `least` and `natural` leave goes to the chart. Returns the size that is left.
  QSize TakePlace(const QSize& area, const QSize& least, const QSize& natural);
  /// Widens the document's window for the panel as far as its area has room; a window that fills the area stays.
  void WidenWindow(QMdiSubWindow& window);
  /// Takes that back, unless the window has been given another width since.
  void NarrowWindow(QMdiSubWindow& window);

 signals:
  /// The user clicked a standard or went to it with a key.
  void StandardChosen(int row);
  void FocusGained();
  /// Tab, or Shift+Tab for backwards, was pressed.
  void Tabbed(bool forwards);

 protected:
  bool focusNextPrevChild(bool next) override;
  bool viewportEvent(QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  void Refresh();
  void Describe();
  void KeepCurrentInSight();
  void DrawLanes(QPainter& painter) const;
  void DrawSharing(QPainter& painter) const;

  // Lengths are those of the chart, in which letters have their usual size: `Scale` pixels each.
  double Scale() const;
  int Pixels(double length) const;
  double Width() const { return viewport()->width() / Scale(); }
  double Height() const { return viewport()->height() / Scale(); }
  double HeadHeight() const;
  int SharingLines() const;
  double SharingHeight() const;
  double LanesHeight() const { return qMax(0.0, Height() - HeadHeight() - SharingHeight()); }
  /// Where the chart's upper edge is above the viewport's, for lanes.
  double Scrolled() const;
  ChartShape Shape() const;
  const Lane* CurrentLane() const;
  /// What the current standard shares, a line for each other one, at most `most` of them.
  QStringList SharedLines(int most) const;
  /// The list row at a place of the viewport; -1 when there is none.
  int RowAt(const QPoint& place) const;
  QString ToolTipAt(const QPoint& place) const;

  const SignalStandardTable& table;
  std::vector<Lane> lanes;
  PlanChart chart;
  int current = -1;
  bool currentMoved = false;  // and is not in sight yet
  int widenedBy = 0;          // pixels
  int widenedTo = 0;
  QTimer refresh;
};

}  // namespace chanplan
