// Buttons that are pressed by the key that is underlined in their text.
#pragma once

#include <QObject>

namespace chanplan {

/// Clicks a button the moment its key is pressed, in every window of the program. The library shows it pressed
/// for 100 ms first, in which the next key overtakes it: Enter would upload without the copy just asked for.
class AccessKeys : public QObject {
 public:
  AccessKeys();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace chanplan
