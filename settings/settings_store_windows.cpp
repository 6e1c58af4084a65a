#include "settings/settings_store.h"

namespace chanplan {

QSettings SettingsStore() { return {"HKEY_CURRENT_USER\\Software\\Chanplans", QSettings::NativeFormat}; }

}  // namespace chanplan
