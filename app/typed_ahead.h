// Keys that were pressed sooner than they could be handled.
#pragma once

#include <QObject>

namespace chanplan {

/// While a menu is open, the screen's server addresses all keys to it. Those that were typed ahead are for the
/// window that has the keyboard once the menu has closed, which gets them as long as this lives.
class TypedAheadKeys : public QObject {
 public:
  TypedAheadKeys();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool late = false;  // the key that is handled was pressed for a menu that had closed
};

}  // namespace chanplan
