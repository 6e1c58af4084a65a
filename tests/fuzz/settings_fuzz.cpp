// Reads any bytes as the user's settings file, in a folder of its own, and writes settings into it.
#include <QSettings>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "app/app_settings.h"
#include "app/placement.h"
#include "settings/settings_store.h"
#include "settings/user_settings.h"
#include "tests/core/temp_folder.h"
#include "tests/fuzz/fuzz_target.h"

namespace chanplan::fuzzing {
namespace {

constexpr double Nowhere = -2e6;  // no setting may have it

bool IsUsable(const NumberSetting& setting, double value) {
  return value >= setting.Least && value <= setting.Most && (!setting.Whole || value == std::rint(value));
}

std::array<double, NumberSettings.size()> ReadNumbers(AppSettings& settings) {
  std::array<double, NumberSettings.size()> numbers;
  std::ranges::transform(NumberSettings, numbers.begin(),
                         [&](const NumberSetting* setting) { return settings.Number(*setting, Nowhere); });
  return numbers;
}

void CheckNumbers(AppSettings& settings) {
  const auto numbers = ReadNumbers(settings);
  const QStringList complaints = settings.Complaints();
  for (std::size_t index = 0; index < numbers.size(); ++index)
    Require(numbers[index] == Nowhere || IsUsable(*NumberSettings[index], numbers[index]), "a number can be used");
  Require(complaints.size() <= static_cast<qsizetype>(numbers.size() + 1), "each setting is complained about once");
  Require(!complaints.contains(QString()), "a complaint says something");
  Require(ReadNumbers(settings) == numbers && settings.Complaints() == complaints, "settings stay as they were read");
}

void CheckPlacement(AppSettings& settings) {
  const auto pixels = [&](const NumberSetting& setting) { return qRound(settings.Number(setting, 300) / 15); };
  const QList<QRect> screens = {{0, 0, 1280, 900}, {1280, -200, 1920, 1080}};
  const QRect stored(pixels(MainLeftSetting), pixels(MainTopSetting), pixels(MainWidthSetting),
                     pixels(MainHeightSetting));
  const QRect placement = FittedToScreen(stored, screens);
  Require(std::ranges::any_of(screens, [&](const QRect& screen) { return screen.united(placement) == screen; }) ||
              placement.isEmpty(),
          "the window is on a screen");
  Require(placement.width() <= stored.width() && placement.height() <= stored.height(), "the window does not grow");
}

void CheckDevices() {
  for (int number = 1; number <= 6; ++number) Require(!CommDevice(number).empty(), "every port has a device");
}

// Whether others than the program itself have put values among the recent files.
bool HasForeignRecentFiles() {
  const QSettings store = SettingsStore();
  return std::ranges::any_of(store.allKeys(), [](const QString& key) {
    return key.startsWith("Recent Files/") &&
           (key.size() != 24 || !key.startsWith("Recent Files/RecentFile") || key.back() < '1' || key.back() > '5');
  });
}

void CheckRecentFiles(const QString& path) {
  AppSettings settings;
  const QStringList former = settings.RecentFiles();
  Require(former.size() <= 5, "five recent files at most");
  settings.AddRecentFile(path);
  AppSettings next;
  const QStringList files = next.RecentFiles();
  Require(files.size() <= 5 && files.size() >= std::min<qsizetype>(former.size(), 5), "no more, and none lost");
  Require(HasForeignRecentFiles() || files.first() == path, "the newest file comes first, as it was called");
}

void CheckWriting() {
  AppSettings settings;
  for (const NumberSetting* setting : NumberSettings) settings.SetNumber(*setting, setting->Least);
  settings.SetBaudRate("19,200");
  Require(settings.Write(), "settings can be written");
  AppSettings next;
  for (const NumberSetting* setting : NumberSettings)
    Require(next.Number(*setting, Nowhere) == setting->Least, "a number that was set is read");
  Require(next.BaudRate() == "19,200", "a text that was set is read");
  Require(next.Complaints().isEmpty(), "nothing is wrong with settings that were written");
}

}  // namespace

// The input's first line is a file that was used, the others are the settings file.
void FuzzSettings(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = TakeInput(data, size);
  const std::string_view path = input.substr(0, input.find_first_of(std::string_view("\n\0", 2)));
  // The library decodes such a value by the lengths that stand in it, which takes gigabytes under the sanitizers.
  if (input.find("@Variant(") != std::string_view::npos) return;
  // In memory, where writing waits for no disk.
  if (std::filesystem::is_directory("/dev/shm")) setenv("TMPDIR", "/dev/shm", 0);
  // A folder for each: the library remembers what was in a file of the same name, size and time.
  const testing::TempFolder folder;
  setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);
  const std::string file = SettingsStore().fileName().toStdString();
  Require(file == (folder / "Chanplans.ini").string(), "the user's own settings are left alone");
  testing::WriteFile(file, input.substr(std::min(path.size() + 1, input.size())));
  {
    AppSettings settings;
    CheckNumbers(settings);
    CheckPlacement(settings);
  }
  CheckDevices();
  CheckRecentFiles("/" + QString::fromUtf8(path.data(), static_cast<qsizetype>(path.size())));
  CheckWriting();
  unsetenv("XDG_CONFIG_HOME");
}

}  // namespace chanplan::fuzzing
