// Files that are dropped on the frame.
#pragma once

#include <QObject>

#include "app/command_frame.h"
#include "app/recent_files.h"

class QDropEvent;

namespace chanplan {

/// Opens table files that are dropped anywhere on the frame, as the Open dialog would. Other files are
/// refused, which the status bar tells. Nothing is done for what is no file of this machine.
class FileDrops : public QObject {
 public:
  FileDrops(CommandFrame& mainFrame, RecentFileList& recentFiles);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Drop(QDropEvent& event);

  CommandFrame& frame;
  RecentFileList& recent;
};

}  // namespace chanplan
