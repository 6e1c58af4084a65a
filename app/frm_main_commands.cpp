// The main frame: what its menu items do. The toolbar runs the same.
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>
#include <memory>

#include "app/file_io.h"
#include "app/frm_about.h"
#include "app/frm_main.h"
#include "core/sig_file.h"
#include "editor/default_printer.h"
#include "editor/messages.h"
#include "editor/text_edge.h"
#include "report/html_report.h"

namespace chanplan {

void frmMain::mnuFileNew_Click() { NewDocument(); }

void frmMain::mnuFileOpen_Click() { PromptOpenFileName(*this, app.Recent); }

void frmMain::mnuFileClose_Click() {
  if (DocumentWindow* document = ActiveDocument()) document->close();
}

void frmMain::mnuFileSave_Click() {
  DocumentWindow* document = ActiveDocument();
  if (document == nullptr) return;
  const QString caption = document->windowTitle();
  if (document->IsReadOnly() || document->IsUntitled()) return mnuFileSaveAs_Click();
  document->State().Changed = !document->SaveChanplans(caption);
  app.Recovery.Update();
  if (document->windowTitle() != caption) app.Recent.UpdateRecentFiles(document->windowTitle());
}

void frmMain::mnuFileSaveAs_Click() {
  const QPointer<DocumentWindow> document = ActiveDocument();
  if (document == nullptr) return;
  const QString caption = document->windowTitle();
  const QString proposed = document->IsUntitled() ? "Untitled.lst" : document->IsReadOnly() ? "" : caption;
  const QString path = PromptSaveFileName(proposed, ".sig");
  if (path.isEmpty() || document == nullptr) return;
  document->State().Changed = !document->SaveChanplans(path);
  app.Recovery.Update();
  app.Recent.UpdateRecentFiles(path);
}

void frmMain::mnuFileReport_Click() {
  const QPointer<DocumentWindow> document = ActiveDocument();
  if (document == nullptr) return;
  const std::string proposed = ProposedReportName(document->windowTitle().toStdString());
  const QString path = PromptSaveFileName(QString::fromStdString(proposed), ".sig");
  if (path.isEmpty() || document == nullptr) return;
  if (document->SigReport(path)) QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

void frmMain::mnuFilePrint_Click() {
  const QPointer<DocumentWindow> document = ActiveDocument();
  if (document == nullptr) return;
  const QString printer = DefaultPrinterName();
  if (printer.isEmpty())
    return ShowMessage(*this, Sentence(QString::fromStdString(WhyNoDefaultPrinter())), "Print", QMessageBox::Warning);
  const auto answer =
      Ask(*this, QMessageBox::NoIcon, "Print", "Print Signal Standard list to default printer?\r\n[" + printer + "]",
          QMessageBox::Ok | QMessageBox::Cancel);
  if (answer == QMessageBox::Ok && document != nullptr) document->PrintSigs();
}

void frmMain::menuFileDefault_Click() {
  const QString path = app.OwnFile(TextOf(FactoryFileName));
  if (QFileInfo(path).isFile()) OpenTableFile(*this, path);
}

void frmMain::mnuFileProperties_Click() {
  DocumentWindow* document = ActiveDocument();
  if (document == nullptr) return;
  document->CommitEdit();
  ShowMessage(*this, document->TableProperties(), "Table Properties");
}

void frmMain::mnuRecentFile_Click(int index) {
  OpenTableFile(*this, app.Recent.Files().value(index - 1));
  app.Recent.LoadRecentFiles();
}

void frmMain::mnuFileExit_Click() { close(); }

void frmMain::mnuEditCut_Click() {
  if (DocumentWindow* document = ActiveDocument()) document->CopyCut(true);
}

void frmMain::mnuEditCopy_Click() {
  if (DocumentWindow* document = ActiveDocument()) document->CopyCut(false);
}

void frmMain::mnuEditPaste_Click() {
  if (DocumentWindow* document = ActiveDocument()) document->Paste();
}

void frmMain::menuEditNewChanplan_Click() {
  if (DocumentWindow* document = ActiveDocument()) document->InsertBlank();
}

void frmMain::mnuOptionToolbar_Click() { ToolBar->setVisible(ToolBar->isHidden()); }

void frmMain::mnuOptionStatusBar_Click() { sbStatusBar->setVisible(sbStatusBar->isHidden()); }

void frmMain::mnuViewWarnings_Click() { WarningHolder->setVisible(WarningHolder->isHidden()); }

void frmMain::menuOptionsCom_Click(int index) { ChosenPort() = static_cast<std::int16_t>(index); }

void frmMain::menuOptionsBaud_Click(int index) {
  const QString caption = Action("menuOptionsBaud" + QString::number(index))->text();
  app.Link.BaudRate = caption.section(' ', 0, 0).toStdString();
}

void frmMain::mnuToolsUpload_Click() {
  DocumentWindow* document = ActiveDocument();
  if (transfer || document == nullptr) return;
  transfer.emplace(*this, app.Link, app.Transfers, app.Shared);
  transfer->Upload(*document);
  app.Settings.SetNumber(UploadKeepCopySetting, app.Transfers.UploadKeepCopy ? 1 : 0);
  app.Settings.SetNumber(UploadReadBackSetting, app.Transfers.UploadReadBack ? 1 : 0);
  transfer.reset();
}

void frmMain::mnuToolsQuery_Click() {
  if (transfer) return;
  transfer.emplace(*this, app.Link, app.Transfers, app.Shared);
  transfer->Download();
  transfer.reset();
}

void frmMain::mnuWindowNewWindow_Click() { ShowMessage(*this, "New Window Code goes here!", ApplicationTitle()); }

void frmMain::mnuWindowCascade_Click() { ArrangeWindows(*documents, Arrangement::Cascade); }

void frmMain::mnuWindowTileHorizontal_Click() { ArrangeWindows(*documents, Arrangement::TileHorizontal); }

void frmMain::mnuWindowTileVertical_Click() { ArrangeWindows(*documents, Arrangement::TileVertical); }

void frmMain::mnuWindowArrangeIcons_Click() { ArrangeWindows(*documents, Arrangement::ArrangeIcons); }

void frmMain::mnuHelpContents_Click() {
  if (HelpViewer* viewer = ShowHelp()) viewer->ShowContents();
}

void frmMain::mnuHelpSearch_Click() {
  if (HelpViewer* viewer = ShowHelp()) viewer->ShowSearch();
}

void frmMain::mnuHelpAbout_Click() { frmAbout(this).exec(); }

HelpViewer* frmMain::ShowHelp() {
  if (HelpFile.isEmpty()) {
    ShowMessage(*this, "Unable to display Help Contents. There is no Help associated with this project.",
                ApplicationTitle(), QMessageBox::Information);
    return nullptr;
  }
  if (help == nullptr) {
    QString failure;
    auto file = std::make_unique<HelpResource>(app.OwnFile(HelpFile), failure);
    if (!failure.isEmpty()) {
      ShowMessage(*this, failure, ApplicationTitle());
      return nullptr;
    }
    help = new HelpViewer(this, std::move(file));
  }
  help->show();
  help->raise();
  help->activateWindow();
  return help;
}

}  // namespace chanplan
