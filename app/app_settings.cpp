#include "app/app_settings.h"

#include <QDir>
#include <QFile>
#include <QUrl>
#include <algorithm>
#include <cmath>

#include "settings/settings_store.h"

namespace chanplan {
namespace {

constexpr int RecentFileCount = 5;

QString InSettings(const char* key) { return QString("Settings/") + key; }
QString RecentFileKey(int number) { return "Recent Files/RecentFile" + QString::number(number); }

}  // namespace

AppSettings::AppSettings() : store(SettingsStore()) {
  store.allKeys();  // sections are looked into once they are needed
  if (store.status() == QSettings::NoError) return;
  QString complaint =
      "Your settings file " + Place() + " is damaged or cannot be read. Defaults are used for what it lacks.";
  for (const QString& section : DamagedSections())
    complaint += "\nLines of section \"" + section + "\" cannot be read; they will be lost when settings are written.";
  complaints[-1] = complaint;
}

// The library says only that something is wrong.
QStringList AppSettings::DamagedSections() const {
  QFile file(store.fileName());
  QStringList damaged;
  QString section;
  if (!file.open(QIODevice::ReadOnly)) return damaged;
  for (const QByteArray& untrimmed : file.readAll().split('\n')) {
    const QByteArray line = untrimmed.trimmed();
    if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) continue;
    if (line.startsWith('[') && line.endsWith(']'))
      section = QUrl::fromPercentEncoding(line.mid(1, line.size() - 2));
    else if (!section.isEmpty() && !line.contains('=') && !damaged.contains(section))
      damaged += section;
  }
  return damaged;
}

QStringList AppSettings::Complaints() const {
  QStringList lines;
  for (const auto& [place, complaint] : complaints) lines += complaint;
  return lines;
}

// A store that was damaged when it was read says so for ever, and nothing else: a new one tells of this write.
bool AppSettings::Write() {
  store.sync();
  QSettings writing = SettingsStore();
  writing.sync();
  return writing.status() != QSettings::AccessError;
}

QString AppSettings::Place() const { return QDir::toNativeSeparators(store.fileName()); }

// The store takes an unquoted comma for the end of a value.
QString AppSettings::Text(const QString& key) const { return store.value(key).toStringList().join(','); }

double AppSettings::Number(const NumberSetting& setting, double defaultValue) {
  const QString key = InSettings(setting.Key);
  if (!store.contains(key)) return defaultValue;
  bool isNumber = false;
  const double value = Text(key).toDouble(&isNumber);
  if (isNumber && value >= setting.Least && value <= setting.Most && (!setting.Whole || value == std::rint(value)))
    return value;
  const auto place = std::ranges::find(NumberSettings, &setting) - NumberSettings.begin();
  complaints[static_cast<int>(place)] =
      QString(
          "In section \"Settings\" of your settings, \"%1\" is \"%2\", which is not a %3 from %4 to %5. "
          "Its default, %6, is used.")
          .arg(setting.Key, Text(key), setting.Whole ? "whole number" : "number")
          .arg(setting.Least, 0, 'f', 0)
          .arg(setting.Most, 0, 'f', 0)
          .arg(defaultValue, 0, 'g', 9);
  return defaultValue;
}

QString AppSettings::BaudRate() const {
  const QString key = InSettings(BaudRateKey);
  return store.contains(key) ? Text(key) : "9600";
}

void AppSettings::SetNumber(const NumberSetting& setting, double value) {
  store.setValue(InSettings(setting.Key), QString::number(value, 'g', 9));
}

void AppSettings::SetBaudRate(const QString& text) { store.setValue(InSettings(BaudRateKey), text); }

QStringList AppSettings::RecentFiles() {
  store.sync();
  QStringList files;
  if (Text(RecentFileKey(1)).isEmpty()) return files;
  for (const QString& key : store.allKeys())
    if (key.startsWith("Recent Files/")) files += Text(key);
  return files.mid(0, RecentFileCount);
}

void AppSettings::AddRecentFile(const QString& path) {
  store.sync();
  for (int number = RecentFileCount - 1; number >= 1; --number)
    if (const QString former = Text(RecentFileKey(number)); !former.isEmpty())
      store.setValue(RecentFileKey(number + 1), former);
  store.setValue(RecentFileKey(1), path);
  Write();
}

}  // namespace chanplan
