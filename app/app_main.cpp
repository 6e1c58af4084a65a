#include "app/app_main.h"

#include <QDir>
#include <QGuiApplication>
#include <algorithm>
#include <span>

#include "app/file_io.h"
#include "editor/messages.h"

namespace chanplan {

void AppMain::Main(const QStringList& paths) {
  QDir::setCurrent(ProgramFolder);
  QCoreApplication::setApplicationName(ApplicationName);
  KeepCopies();
  Frame = std::make_unique<frmMain>(*this);
  Link.CommPort = static_cast<std::int16_t>(Settings.Number(CommPortSetting, 1));
  Link.BaudRate = Settings.BaudRate().toStdString();
  Transfers.UploadKeepCopy = Settings.Number(UploadKeepCopySetting, 0) != 0;
  Transfers.UploadReadBack = Settings.Number(UploadReadBackSetting, 0) != 0;
  Frame->NewDocument();
  Recent.LoadRecentFiles();
  Frame->show();
  if (const QStringList complaints = Settings.Complaints(); !complaints.isEmpty())
    ShowMessage(*Frame, complaints.join("\n\n"), ApplicationName, QMessageBox::Warning);
  OfferLeftTables();
  OpenTableFiles(*Frame, Recent, paths);
}

void AppMain::KeepCopies() {
  MakeDocument = [this, make = std::move(MakeDocument)](FrameOperations& frame, DocumentState& state,
                                                        SharedTables& shared) {
    std::unique_ptr<DocumentWindow> document = make(frame, state, shared);
    Recovery.Watch(*document);
    return document;
  };
  QObject::connect(&Recovery, &RecoveryCopies::Failed, &Recovery, [this](const QString& reason) {
    Frame->ShowStatus("Changes are not safe from a crash before they are saved: " + reason);
  });
  // The session ends, and may not wait for answers.
  QObject::connect(
      qApp, &QGuiApplication::commitDataRequest, &Recovery, [this] { KeepWhatWasTyped(); }, Qt::DirectConnection);
}

void AppMain::KeepWhatWasTyped() {
  for (const QPointer<DocumentWindow>& document : Registry.Documents)
    if (document != nullptr && !document->State().Released) document->CommitEdit();
  Recovery.Update();
}

bool AppMain::PrepareToEnd() {
  KeepWhatWasTyped();
  if (Frame->Transferring()) Frame->close();  // which only aborts it
  return !Link.CommControl.IsOpen();
}

void AppMain::OfferLeftTables() {
  LeftTables left = Recovery.TakeLeftTables();
  if (left.Waiting > 0) {
    const QString tables = left.Waiting == 1 ? QString("1 table that was not saved waits")
                                             : QString("%1 tables that were not saved wait").arg(left.Waiting);
    ShowMessage(*Frame,
                tables + " to be restored and cannot be taken now: " + left.Reason +
                    ".\nThe next start offers this again, once there are room and permission.",
                ApplicationName, QMessageBox::Warning);
  }
  if (left.Tables.empty()) return;
  const std::size_t count = left.Tables.size();
  QString text = count == 1 ? QString("Restore 1 table that was not saved?")
                            : QString("Restore %1 tables that were not saved?").arg(count);
  text += '\n';
  constexpr std::size_t most = 10;  // a message box has no room for many more
  for (const UnsavedTable& unsaved : std::span(left.Tables).first(std::min(most, count)))
    text += '\n' + unsaved.Caption;
  if (count > most) text += QString("\nand %1 more").arg(count - most);
  const auto answer = Ask(*Frame, QMessageBox::Question, ApplicationName, text,
                          QMessageBox::Yes | QMessageBox::Discard | QMessageBox::Cancel,
                          {{QMessageBox::Yes, "&Restore"}, {QMessageBox::Cancel, "&Later"}});
  if (answer == QMessageBox::Discard) left.Remove();
  if (answer != QMessageBox::Yes) return;
  for (const UnsavedTable& unsaved : left.Tables) Restore(unsaved);
  // Never is there no copy at all.
  if (Recovery.Update()) left.Remove();
}

void AppMain::Restore(const UnsavedTable& unsaved) {
  DocumentWindow& document = Frame->CreateDocument(false);
  document.ShowUnitTable(unsaved.Table);
  document.setWindowTitle(unsaved.Caption);
  document.UnitTableTag = unsaved.UnitTableTag;
  document.KnownFile = unsaved.KnownFile;
  document.MarkUnsaved();
  Frame->ShowDocument(document);
}

}  // namespace chanplan
