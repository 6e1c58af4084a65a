#include "settings/user_settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "settings/settings_store.h"
#include "tests/core/temp_folder.h"

namespace chanplan::testing {
namespace {

TEST(CommDevice, NumbersStandForTheUsualDevicesUnlessASettingNamesAnother) {
  const TempFolder folder;
  setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
  EXPECT_EQ(CommDevice(1), "/dev/ttyS0");
  EXPECT_EQ(CommDevice(4), "/dev/ttyS3");
  EXPECT_EQ(CommDevice(5), "/dev/ttyUSB0");
  EXPECT_EQ(CommDevice(6), "/dev/ttyUSB1");
  EXPECT_EQ(CommDevice(7), "");
  WriteFile(folder / "Chanplans.ini", "[Settings]\nCommDevice2=/dev/ttyACM0\n");
  EXPECT_EQ(CommDevice(2), "/dev/ttyACM0");
  EXPECT_EQ(CommDevice(1), "/dev/ttyS0");
  unsetenv("XDG_CONFIG_HOME");
}

// The store takes an unquoted comma for the end of a value.
TEST(CommDevice, MayHaveACommaInItsName) {
  const TempFolder folder;
  setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
  WriteFile(folder / "Chanplans.ini", "[Settings]\nCommDevice1=/dev/serial/by-id/usb-Cables,Inc.-if00\n");
  EXPECT_EQ(CommDevice(1), "/dev/serial/by-id/usb-Cables,Inc.-if00");
  unsetenv("XDG_CONFIG_HOME");
}

TEST(SettingsStore, IsInTheUsersConfiguration) {
  const TempFolder folder;
  setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
  EXPECT_EQ(SettingsStore().fileName().toStdString(), (folder / "Chanplans.ini").string());
  unsetenv("XDG_CONFIG_HOME");
}

TEST(SettingsStore, NeitherWaitsForAPipeNorReplacesIt) {
  const TempFolder folder;
  setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
  for (const std::string pipe : {"Chanplans.ini", "pipe"}) {
    std::filesystem::remove(folder / "Chanplans.ini");
    ASSERT_EQ(mkfifo((folder / pipe).c_str(), 0600), 0);
    if (pipe == "pipe") std::filesystem::create_symlink(folder / "pipe", folder / "Chanplans.ini");
    QSettings store = SettingsStore();
    EXPECT_FALSE(store.contains("Settings/CommPort"));
    store.setValue("Settings/CommPort", 2);
    store.sync();
    EXPECT_EQ(store.status(), QSettings::AccessError);
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "Chanplans.ini"));
  }
  unsetenv("XDG_CONFIG_HOME");
}

}  // namespace
}  // namespace chanplan::testing
