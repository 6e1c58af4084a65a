#include "app/arrange_windows.h"

#include <QMdiSubWindow>

namespace chanplan {
namespace {

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
  if (arrangement == Arrangement::Cascade) return area.cascadeSubWindows();
  QList<QMdiSubWindow*> icons;
  QList<QMdiSubWindow*> windows;
  for (QMdiSubWindow* window : area.subWindowList())
    if (window->isVisible()) (window->isMinimized() ? icons : windows) += window;
  if (arrangement == Arrangement::ArrangeIcons) return ArrangeIcons(area.viewport()->rect(), icons);
  for (QMdiSubWindow* window : windows)
    if (window->isMaximized()) window->showNormal();
  // Scroll bars that come or go with the first round leave another area for the second.
  for (int round = 0; round < 2; ++round) {
    const QRect free = AboveIcons(area.viewport()->rect(), icons);
    const QList<QRect> tiles = Tiles(free, static_cast<int>(windows.size()), arrangement);
    for (qsizetype index = 0; index < windows.size(); ++index) windows[index]->setGeometry(tiles[index]);
  }
}

}  // namespace chanplan
