#include "app/app_main.h"

#include <QCoreApplication>
#include <QDir>
#include <algorithm>

#include "app/file_io.h"
#include "app/frm_main.h"
#include "editor/messages.h"

namespace chanplan {

AppMain::AppMain(std::unique_ptr<PortObject> serialPort, LinkTiming timing, DocumentFactory factory)
    : ProgramFolder(QCoreApplication::applicationDirPath()),
      MSComm1(std::move(serialPort)),
      Link(*MSComm1, std::move(timing)),
      createDocument(std::move(factory)) {}

AppMain::~AppMain() = default;

void AppMain::Main(const QStringList& paths) {
  QDir::setCurrent(ProgramFolder);
  QCoreApplication::setApplicationName(ApplicationName);
  Frame = std::make_unique<frmMain>(*this);
  Link.CommPort = static_cast<std::int16_t>(Settings.Number(CommPortSetting, 1));
  Link.BaudRate = Settings.BaudRate().toStdString();
  // Number 1 is there from the start, free for the first document.
  Documents.resize(1);
  DocumentStates = {{.Released = true}};
  NewDocument();
  LoadRecentFiles();
  Frame->show();
  if (!Settings.Complaints.isEmpty())
    ShowMessage(*Frame, Settings.Complaints.join("\n\n"), ApplicationName, QMessageBox::Warning);
  for (const QString& path : paths) OpenTableFile(*Frame, path);
}

bool AppMain::AnyDocumentOpen() const {
  return std::ranges::any_of(DocumentStates, [](const DocumentState& state) { return !state.Released; });
}

int AppMain::GetFreeDocumentSlot(bool newSlotRequested) {
  const bool onlyFirst =
      Documents.size() == 1 && Documents[0] != nullptr && !DocumentStates[0].Released && !Transfers.Holds(Documents[0]);
  if (onlyFirst && !newSlotRequested && Documents[0]->IsUntitled() && !DocumentStates[0].Changed) return 1;
  std::size_t index = 0;
  while (index < DocumentStates.size() && !DocumentStates[index].Released) ++index;
  if (index == DocumentStates.size()) {
    Documents.emplace_back();
    DocumentStates.emplace_back();
  }
  Documents[index] = nullptr;
  DocumentStates[index] = {};
  return static_cast<int>(index) + 1;
}

DocumentWindow& AppMain::CreateDocument(bool newSlotRequested, const QString& name) {
  const int slot = GetFreeDocumentSlot(newSlotRequested);
  const auto index = static_cast<std::size_t>(slot) - 1;
  if (Documents[index] == nullptr) {
    std::unique_ptr<DocumentWindow> document = createDocument(*Frame, DocumentStates[index], Shared);
    Documents[index] = document.get();
    Frame->AddDocument(std::move(document));
  }
  Documents[index]->setWindowTitle(name + QString::number(slot));
  return *Documents[index];
}

void AppMain::NewDocument() { Frame->ShowDocument(CreateDocument(true)); }

void AppMain::LoadRecentFiles() {
  const QStringList files = Settings.RecentFiles();
  if (!files.isEmpty()) Frame->ShowRecentFiles(files);
}

}  // namespace chanplan
