#include "app/arrange_windows.h"

#include <QCoreApplication>
#include <QMdiSubWindow>
#include <QStyle>

namespace chanplan {
namespace {

constexpr double CascadeShare = 0.75;  // of the area, for each window

int TitleBarHeight(const QWidget& widget) { return widget.style()->pixelMetric(QStyle::PM_TitleBarHeight); }

// Along the lower edge from the left, then in the row above.
void ArrangeIcons(const QRect& area, const QList<QMdiSubWindow*>& icons) {
  QPoint next = area.bottomLeft();
  for (QMdiSubWindow* icon : icons) {
    if (next.x() > area.left() && next.x() + icon->width() > area.right() + 1)
      next = {area.left(), next.y() - icon->height()};
    icon->move(next.x(), next.y() + 1 - icon->height());
    next.rx() += icon->width();
  }
}

// What the row of icons along the lower edge leaves free.
QRect AboveIcons(QRect area, const QList<QMdiSubWindow*>& icons) {
  for (const QMdiSubWindow* icon : icons)
    if (icon->geometry().bottom() >= area.bottom()) area.setBottom(icon->y() - 1);
  return area;
}

}  // namespace

QList<QRect> Steps(const QRect& area, int count, int step) {
  const QSize size = area.size() * CascadeShare;
  const int room = qMin(area.width() - size.width(), area.height() - size.height());
  const int stepsToTheEdge = qMax(room, 0) / step + 1;
  QList<QRect> places;
  for (int place = 0; place < count; ++place) {
    const int offset = place % stepsToTheEdge * step;
    places += QRect(area.topLeft() + QPoint(offset, offset), size);
  }
  return places;
}

QList<QRect> Tiles(const QRect& area, int count, Arrangement arrangement) {
  QList<QRect> tiles;
  for (int tile = 0; tile < count; ++tile) {
    const auto edge = [&](int length, int number) { return length * number / count; };
    const QPoint first(edge(area.width(), tile), edge(area.height(), tile));
    const QPoint next(edge(area.width(), tile + 1), edge(area.height(), tile + 1));
    tiles += arrangement == Arrangement::TileHorizontal
                 ? QRect(area.left(), area.top() + first.y(), area.width(), next.y() - first.y())
                 : QRect(area.left() + first.x(), area.top(), next.x() - first.x(), area.height());
  }
  return tiles;
}

void ArrangeWindows(QMdiArea& area, Arrangement arrangement) {
  QList<QMdiSubWindow*> icons;
  QList<QMdiSubWindow*> windows;
  // In a cascade the front window stays in front; tiles keep their place when another becomes active.
  for (QMdiSubWindow* window :
       area.subWindowList(arrangement == Arrangement::Cascade ? QMdiArea::StackingOrder : QMdiArea::CreationOrder))
    if (window->isVisible()) (window->isMinimized() ? icons : windows) += window;
  if (arrangement == Arrangement::ArrangeIcons) return ArrangeIcons(area.viewport()->rect(), icons);
  for (QMdiSubWindow* window : windows)
    if (window->isMaximized()) window->showNormal();
  // Scroll bars that come or go with the first round, by an event, leave another area for the second.
  for (int round = 0; round < 2; ++round) {
    const QRect free = AboveIcons(area.viewport()->rect(), icons);
    const int count = static_cast<int>(windows.size());
    const QList<QRect> places = arrangement == Arrangement::Cascade ? Steps(free, count, TitleBarHeight(area))
                                                                    : Tiles(free, count, arrangement);
    for (qsizetype index = 0; index < windows.size(); ++index) windows[index]->setGeometry(places[index]);
    QCoreApplication::sendPostedEvents(&area);
  }
}

}  // namespace chanplan
