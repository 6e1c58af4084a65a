// The title bars of document windows.
#pragma once

#include <QMdiSubWindow>

namespace chanplan {

/// Lets the title bar of `window` leave out the beginning of a caption that is too long: the end of a
/// path, the file's name, is what tells documents apart. A document with unsaved changes has the
/// platform's sign for it there. The window's title itself stays as it is.
void UseCaptionStyle(QMdiSubWindow& window);

/// Whether a title bar stands at `position` in `window`, whose whole caption is worth a tooltip then.
bool OnTitleBar(const QMdiSubWindow& window, const QPoint& position);

}  // namespace chanplan
