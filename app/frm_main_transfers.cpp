// The main frame: moving tables between documents and the unit.
#include <utility>

#include "app/frm_in_progress.h"
#include "app/frm_main.h"
#include "app/frm_upload_optns.h"
#include "core/table_merge.h"
#include "editor/messages.h"
#include "editor/text_edge.h"
#include "unit/transfer.h"
#include "unit/unit_connection.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

constexpr char CanceledText[] = "Process canceled by user.";
constexpr char NothingUploadedText[] =
    "The table of the unit could not be read whole, so nothing was uploaded: check the cable and start again.";

bool FitsTheWire(const SignalStandardTable& table) {
  try {
    EncodeTable(table, 0);
  } catch (const WireMisfit&) {
    return false;
  }
  return true;
}

QString CompletedText(int records) {
  return QString("Process complete.  Transfered %1 signal standards (including sub-bands).").arg(records);
}

}  // namespace

// One transfer at a time; the pointer shows that the frame is at work.
class frmMain::TransferCommand {
 public:
  explicit TransferCommand(frmMain& mainFrame) : frame(mainFrame), transfers(mainFrame.app.Transfers) {
    transfers.Running = true;
    transfers.AbortRequested = false;
    frame.setCursor(Qt::WaitCursor);
  }
  ~TransferCommand() {
    transfers.Running = false;
    if (const auto port = std::exchange(transfers.PortForTheNext, {})) frame.app.Link.CommPort = *port;
    transfers.Document = transfers.Source = nullptr;
    frame.unsetCursor();
  }

 private:
  frmMain& frame;
  TransferState& transfers;
};

void frmMain::mnuToolsQuery_Click() {
  if (app.Transfers.Running) return;
  const TransferCommand command(*this);
  Download(false);
}

void frmMain::mnuToolsUpload_Click() {
  TransferState& transfers = app.Transfers;
  if (transfers.Running || ActiveDocument() == nullptr) return;
  const TransferCommand command(*this);
  transfers.Document = ActiveDocument();
  if (!Connect()) return;
  frmUploadOptns(this, transfers).exec();
  if (transfers.AbortRequested) return;
  if (transfers.UploadAppend) {
    transfers.Source = transfers.Document;
    if (!Download(true)) return;
    MergeTables(*transfers.Document, *transfers.Source);
  }
  if (!ConfirmLosses(*transfers.Document)) return;
  Proc_Query(*transfers.Document);
}

// The user may have wished to stop while the unit was waited for.
bool frmMain::Connect() {
  const ConnectOutcome outcome = ConnectToUnit(app.Link);
  if (app.Transfers.AbortRequested)
    ShowStatus(CanceledText);
  else if (!outcome.Accepted())
    ShowMessage(*this, QString::fromStdString(outcome.Message), ApplicationTitle(), QMessageBox::Critical);
  return outcome.Accepted() && !app.Transfers.AbortRequested;
}

bool frmMain::Download(bool toAppend) {
  if (!Connect()) return false;
  DocumentWindow& document = app.CreateDocument(toAppend, "Untitled(Query) ");
  app.Transfers.Document = &document;
  ShowDocument(document);
  const bool answered = Proc_Query(document, true);
  // What is added to a part of the unit's table, or to nothing, would cost the unit the rest.
  const bool whole = app.Transfers.Result == LinkTrue;
  if (toAppend && answered && !whole && !app.Transfers.AbortRequested)
    ShowMessage(*this, NothingUploadedText, ApplicationTitle(), QMessageBox::Warning);
  // An abort may have been asked for after the status bar had its text.
  if (toAppend && app.Transfers.AbortRequested) ShowStatus(CanceledText);
  return whole && !app.Transfers.AbortRequested;
}

// A table that does not fit is not asked about: it will be refused.
bool frmMain::ConfirmLosses(DocumentWindow& document) {
  constexpr std::size_t longestList = 10;
  document.CommitEdit();
  const SignalStandardTable& table = document.Table();
  std::vector<std::string> losses = WireLosses(table);
  if (losses.empty() || !FitsTheWire(table)) return true;
  if (losses.size() > longestList) {
    losses.resize(longestList);
    losses.push_back("...");
  }
  QString text = "The unit cannot hold these values as they stand in the table:\n";
  for (const std::string& loss : losses) text += "\n" + QString::fromStdString(loss);
  return Ask(*this, QMessageBox::Warning, ApplicationTitle(), text + "\n\nUpload the table all the same?",
             QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
}

void frmMain::AbortTransfer() {
  app.Transfers.AbortRequested = true;
  if (progress != nullptr) progress->Abort();
}

void frmMain::MergeTables(DocumentWindow& base, DocumentWindow& source) {
  for (DocumentWindow* document : {&base, &source}) document->CommitEdit();
  const MergeOutcome merged = chanplan::MergeTables(base.Table(), source.Table(), app.Transfers.UploadReplaceMatching);
  if (merged.Truncated) ShowMessage(*this, TextOf(MergeTruncatedText), "Table Merge", QMessageBox::Information);
  GetTable(merged.Table, app.Shared.Passed);
  base.SetTable();
  if (merged.Table.Count > 0) base.State().Changed = true;  // it is in no file
}

bool frmMain::Proc_Query(DocumentWindow& document, bool Download) {
  bool& AbortRequested = app.Transfers.AbortRequested;
  AbortRequested = false;
  if (progress == nullptr) progress = new frmInProgress(this, AbortRequested);
  progress->Set_on_top(true);
  progress->ShowOverFrame();

  document.CommitEdit();
  UnitTable moved{document.Table(), document.UnitTableTag};
  const TransferOutcome outcome =
      RunTransfer(app.Link, Download ? TransferDirection::Download : TransferDirection::Upload, moved, *progress,
                  [&] { return AbortRequested; });
  app.Transfers.Result = outcome.Result;
  document.UnitTableTag = moved.UnitTableTag;
  const QString message = QString::fromStdString(outcome.Message);
  ShowStatus(!message.isEmpty() ? message : AbortRequested ? CanceledText : CompletedText(moved.Table.Count));
  progress->Finish();
  FinishTransfer(app.Link, outcome);
  const bool received = Download && outcome.UnitAnswered && !outcome.Aborted && outcome.Result != LinkTimeout;
  if (received) document.ShowUnitTable(moved.Table);
  if (!message.isEmpty()) ShowMessage(*this, message, ApplicationTitle(), QMessageBox::Information);
  return outcome.UnitAnswered || outcome.Misfit;
}

}  // namespace chanplan
