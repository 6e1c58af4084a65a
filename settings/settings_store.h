// Where the user's settings are.
#pragma once

#include <QSettings>

namespace chanplan {

/// The user's settings: `Chanplans.ini` in the user's configuration; on Windows a key of the registry.
QSettings SettingsStore();

}  // namespace chanplan
