// The user's few lasting choices, kept as text in the user's own settings.
#pragma once

#include <QSettings>
#include <QString>
#include <QStringList>
#include <array>
#include <map>

namespace chanplan {

/// The settings belong to this name; message boxes are titled with it.
inline constexpr char ApplicationName[] = "Chanplans";

/// A number in section "Settings", and what can be made use of. The window state and the port are
/// whole numbers, the placement is in twips.
struct NumberSetting {
  const char* Key;
  double Least;
  double Most;
  bool Whole;
};

inline constexpr NumberSetting CommPortSetting = {"CommPort", 1, 6, true};
inline constexpr NumberSetting MainLeftSetting = {"MainLeft", -1e6, 1e6, false};
inline constexpr NumberSetting MainTopSetting = {"MainTop", -1e6, 1e6, false};
inline constexpr NumberSetting MainWidthSetting = {"MainWidth", 0, 1e6, false};
inline constexpr NumberSetting MainHeightSetting = {"MainHeight", 0, 1e6, false};
inline constexpr NumberSetting MainStateSetting = {"MainState", 0, 2, true};
/// Whether documents open with their chart.
inline constexpr NumberSetting ShowChartSetting = {"ShowChart", 0, 1, true};
/// The upload options' boxes.
inline constexpr NumberSetting UploadKeepCopySetting = {"UploadKeepCopy", 0, 1, true};
inline constexpr NumberSetting UploadReadBackSetting = {"UploadReadBack", 0, 1, true};
/// In the order in which they are kept and complained about.
inline constexpr std::array<const NumberSetting*, 9> NumberSettings = {
    &CommPortSetting,  &MainLeftSetting,  &MainTopSetting,        &MainWidthSetting,     &MainHeightSetting,
    &MainStateSetting, &ShowChartSetting, &UploadKeepCopySetting, &UploadReadBackSetting};
inline constexpr char BaudRateKey[] = "BaudRate";

class AppSettings {
 public:
  AppSettings();

  /// The stored number, or `defaultValue` when there is none. One that cannot be made use of gives
  /// the default too, and a complaint.
  double Number(const NumberSetting& setting, double defaultValue);
  QString BaudRate() const;

  void SetNumber(const NumberSetting& setting, double value);
  void SetBaudRate(const QString& text);
  /// Writes to the disk now what was set; false when that fails.
  bool Write();
  /// Where the settings are kept.
  QString Place() const;

  /// The values of section "Recent Files" in the store's order: the newest file first. Nothing
  /// when there is no newest file. What other programs have stored meanwhile counts, here and below.
  QStringList RecentFiles();
  /// Makes `path` the newest of the five recent files, wherever else it may stand among them.
  void AddRecentFile(const QString& path);

  /// What is wrong with the settings read so far, a sentence or two each.
  QStringList Complaints() const;

 private:
  /// The sections with lines that are no settings, which the next write loses.
  QStringList DamagedSections() const;
  QString Text(const QString& key) const;

  QSettings store;
  std::map<int, QString> complaints;  // by the setting's place; those about the whole store come first
};

}  // namespace chanplan
