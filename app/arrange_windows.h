// Where the child windows of a multiple-document frame stand.
#pragma once

#include <QList>
#include <QMdiArea>
#include <QRect>

namespace chanplan {

/// The standard codes of multiple-document frames. Horizontal tiles are as wide as the area and
/// stand one above the other, vertical tiles are as high as the area and stand side by side.
enum class Arrangement { Cascade = 0, TileHorizontal = 1, TileVertical = 2, ArrangeIcons = 3 };

/// Minimised windows keep their place, but for `ArrangeIcons`, which moves nothing else.
void ArrangeWindows(QMdiArea& area, Arrangement arrangement);

/// `count` places of three quarters of `area`, each `step` further down and to the right; after the
/// last one that fits it starts again in the corner.
QList<QRect> Steps(const QRect& area, int count, int step);

/// `count` tiles that fill `area` without a gap.
QList<QRect> Tiles(const QRect& area, int count, Arrangement arrangement);

}  // namespace chanplan
