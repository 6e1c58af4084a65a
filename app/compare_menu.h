// What a document can be compared with.
#pragma once

#include <QMenu>
#include <functional>

#include "app/command_frame.h"
#include "app/recent_files.h"

namespace chanplan {

/// "Compare With": the other documents that are open, and a file.
class CompareMenu : public QMenu {
 public:
  /// `compared` gives the document that is compared, when the menu drops down.
  CompareMenu(CommandFrame& mainFrame, const RecentFileList& recentFiles, std::function<DocumentWindow*()> compared,
              QWidget* parent);

 private:
  void Fill();
  void CompareWithFile();

  CommandFrame& frame;
  const RecentFileList& recent;
  std::function<DocumentWindow*()> left;
};

/// Adds the menu to the one of the document's title bar, before the item that closes.
void AddCompareMenu(CommandFrame& frame, const RecentFileList& recent, DocumentWindow& document);

}  // namespace chanplan
