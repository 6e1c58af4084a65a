#include "app/recent_files.h"

namespace chanplan {
namespace {

constexpr int RecentFilesCompared = 4;  // opening the fifth moves it to the top

}  // namespace

void RecentFileList::LoadRecentFiles() {
  const QStringList stored = settings.RecentFiles();
  files = stored + files.mid(stored.size());
  emit Loaded(files);
}

void RecentFileList::AddRecentFile(const QString& path) { settings.AddRecentFile(path); }

void RecentFileList::UpdateRecentFiles(const QString& path) {
  if (!RecentMenuContains(path)) AddRecentFile(path);
  LoadRecentFiles();
}

bool RecentFileList::RecentMenuContains(const QString& path) const {
  return files.mid(0, RecentFilesCompared).contains(path);
}

}  // namespace chanplan
