#include <QFileInfo>
#include <QStandardPaths>

#include "settings/settings_store.h"

namespace chanplan {

QSettings SettingsStore() {
  const QString name = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/Chanplans.ini";
  const QFileInfo found(name);
  // A pipe would hold the program up, and a device be replaced by a file: as a folder, neither can be opened.
  const bool neitherFileNorFolder = found.exists() && !found.isFile() && !found.isDir();
  return {neitherFileNorFolder ? name + '/' : name, QSettings::IniFormat};
}

}  // namespace chanplan
