#include <QStandardPaths>

#include "settings/settings_store.h"

namespace chanplan {

QSettings SettingsStore() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
  return {folder + "/Chanplans.ini", QSettings::IniFormat};
}

}  // namespace chanplan
