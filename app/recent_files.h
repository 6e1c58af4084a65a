// The files that were used last.
#pragma once

#include <QObject>
#include <QStringList>

#include "app/app_settings.h"

namespace chanplan {

/// The list as it was read from the settings last: other programs of the same user change it there.
class RecentFileList : public QObject {
  Q_OBJECT

 public:
  explicit RecentFileList(AppSettings& appSettings) : settings(appSettings) {}

  /// Full paths, the newest first, at most five.
  const QStringList& Files() const { return files; }

  /// Reads the stored list, whose files take the places of those that are known.
  void LoadRecentFiles();
  /// Makes `path` the newest of the stored list.
  void AddRecentFile(const QString& path);
  /// Makes `path` the newest, unless it is one of the first four.
  void UpdateRecentFiles(const QString& path);
  /// Whether `path` is one of the first four that are shown.
  bool RecentMenuContains(const QString& path) const;

 signals:
  void Loaded(const QStringList& files);

 private:
  AppSettings& settings;
  QStringList files;
};

}  // namespace chanplan
