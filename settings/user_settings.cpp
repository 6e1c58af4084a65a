#include "settings/user_settings.h"

#include <QSettings>
#include <QStandardPaths>

#include "unit/port_platform.h"

namespace chanplan {

std::string SettingsFile() {
  return (QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/Chanplans.ini").toStdString();
}

std::string CommDevice(int number) {
  const QSettings settings(QString::fromStdString(SettingsFile()), QSettings::IniFormat);
  // The store takes an unquoted comma for the end of a value.
  const QString chosen = settings.value("Settings/CommDevice" + QString::number(number)).toStringList().join(',');
  return chosen.isEmpty() ? UsualDevice(number) : chosen.toStdString();
}

}  // namespace chanplan
