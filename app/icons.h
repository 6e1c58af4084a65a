// The program's own pictures, drawn from paths in the colours of the palette: as sharp as the screen
// and as dark as the desktop.
#pragma once

#include <QIcon>
#include <QString>

namespace chanplan {

/// The picture of a toolbar button, by the button's key, or "Program" for the program's logo. A key
/// without a picture gives an empty icon.
QIcon DrawnIcon(const QString& key);

}  // namespace chanplan
