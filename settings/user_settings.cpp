#include "settings/user_settings.h"

#include "settings/settings_store.h"
#include "unit/port_platform.h"

namespace chanplan {

std::string CommDevice(int number) {
  // The store takes an unquoted comma for the end of a value.
  const QString chosen =
      SettingsStore().value("Settings/CommDevice" + QString::number(number)).toStringList().join(',');
  return chosen.isEmpty() ? UsualDevice(number) : chosen.toStdString();
}

}  // namespace chanplan
