#include "app/compare_menu.h"

#include "app/compare_window.h"
#include "app/file_io.h"
#include "core/sig_file.h"
#include "editor/messages.h"

namespace chanplan {

CompareMenu::CompareMenu(CommandFrame& mainFrame, const RecentFileList& recentFiles,
                         std::function<DocumentWindow*()> compared, QWidget* parent)
    : QMenu("Com&pare With", parent), frame(mainFrame), recent(recentFiles), left(std::move(compared)) {
  setObjectName("mnuCompare");
  connect(this, &QMenu::aboutToShow, this, &CompareMenu::Fill);
}

void CompareMenu::Fill() {
  clear();
  DocumentWindow* document = left();
  if (document == nullptr) return;
  for (DocumentWindow* other : frame.findChildren<DocumentWindow*>()) {
    if (other == document || other->State().Released || other->isHidden()) continue;
    const QString caption = fontMetrics().elidedText(other->windowTitle(), Qt::ElideLeft, frame.width() / 2);
    addAction(QString(caption).replace('&', "&&"), other, [this, other] {
      if (DocumentWindow* compared = left()) Compare(frame, *compared, {other});
    });
  }
  addSeparator();
  QAction* file = addAction("&File...", this, &CompareMenu::CompareWithFile);
  file->setObjectName("mnuCompareFile");
}

void CompareMenu::CompareWithFile() {
  const QPointer<DocumentWindow> document = left();
  const QString path = PromptTableFile(frame, recent);
  if (path.isEmpty() || document == nullptr) return;
  ComparedTable file{nullptr, path};
  if (!CanOpenFile(path)) return ShowMessage(frame, "Can't open file: " + path);
  if (!file.Update())
    return ShowFailure(frame, frame.ApplicationTitle(), QString::fromUtf8(LoadErrorText(path.toStdString(), 0)));
  Compare(frame, *document, std::move(file));
}

void AddCompareMenu(CommandFrame& frame, const RecentFileList& recent, DocumentWindow& document) {
  QMenu* menu = document.systemMenu();
  auto* compare = new CompareMenu(
      frame, recent, [&document] { return &document; }, menu);
  const QList<QAction*> items = menu->actions();
  menu->insertMenu(items.value(items.size() - 2), compare);  // above the line above Close
}

}  // namespace chanplan
