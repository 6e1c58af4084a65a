#include "app/splitter_bar.h"

#include <QMouseEvent>
#include <QPainter>

namespace chanplan {

SplitterBar::SplitterBar(QWidget* parent) : QLabel(parent) {
  setCursor(Qt::SplitVCursor);
  setFocusPolicy(Qt::TabFocus);
  setAccessibleName("Height of the warnings pane");
  setAccessibleDescription("The Up and Down keys change it.");
}

// Taking the press makes the bar get all that the mouse does until it is let go.
void SplitterBar::mousePressEvent(QMouseEvent* event) { event->setAccepted(event->button() == Qt::LeftButton); }

void SplitterBar::mouseMoveEvent(QMouseEvent* event) {
  if ((event->buttons() & Qt::LeftButton) != 0) emit Dragged(event->globalPosition().toPoint());
}

void SplitterBar::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  emit Released();
  if (!rect().contains(event->position().toPoint())) emit Dropped(event->globalPosition().toPoint());
}

void SplitterBar::keyPressEvent(QKeyEvent* event) {
  if (event->key() != Qt::Key_Up && event->key() != Qt::Key_Down) return QLabel::keyPressEvent(event);
  const int step = fontMetrics().lineSpacing();
  emit Nudged(event->key() == Qt::Key_Up ? step : -step);
}

void SplitterBar::paintEvent(QPaintEvent* event) {
  QColor colour = palette().color(hasFocus() ? QPalette::Highlight : QPalette::WindowText);
  if (!hasFocus()) colour.setAlphaF(0.3F);
  QPainter(this).fillRect(event->rect(), colour);
}

}  // namespace chanplan
