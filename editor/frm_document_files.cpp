// The document window: loading, saving, properties, report, printing and closing.
#include <QApplication>
#include <QCloseEvent>
#include <QLocale>
#include <QScopedValueRollback>

#include "core/sig_file.h"
#include "core/table_properties.h"
#include "editor/busy_pointer.h"
#include "editor/default_printer.h"
#include "editor/frm_document.h"
#include "editor/messages.h"
#include "editor/text_edge.h"
#include "report/html_report.h"
#include "report/listing.h"

namespace chanplan {

bool frmDocument::LoadSigStandards(const QString& path) {
  const BusyPointer busy(*this);
  const QScopedValueRollback suppressed(SuppressListEvents, true);
  editor.Close();  // it belongs to the former table
  ReadOutcome outcome = LoadSigFile(PathOf(path));
  table = std::move(outcome.Table);
  UnitTableTag = 0;
  if (!outcome.Ok()) {
    Refill(0);
    ShowWarnings();
    ShowFailure(*this, frame.ApplicationTitle(), QString::fromUtf8(LoadErrorText(path.toStdString(), table.Count)));
    return false;
  }
  if (outcome.Truncated) ShowFailure(*this, "File Error", QString::fromUtf8(FileTruncatedText));
  setWindowTitle(QString::fromUtf8(CaptionOfFile(PathOf(path))));
  ValidateTable();
  Refill(0);
  ShowWarnings();  // the list has the names among which duplicates are looked for
  return true;
}

bool frmDocument::SaveChanplans(const QString& path) {
  if (StoreGridsToTable() == Commit::Nothing) ValidateTable();
  const BusyPointer busy(*this);
  // Some scripts have a separator of their own, for which a table's 8-bit text has no character.
  const char separator = QLocale().decimalPoint() == "," ? ',' : '.';
  if (const std::error_code error = SaveSigFile(PathOf(path), table, separator)) {
    ShowFailure(*this, "Error Saving File", QString::fromLocal8Bit(error.message().c_str()));
    return false;
  }
  setWindowTitle(path);
  GridList->viewport()->update();
  return true;
}

QString frmDocument::TableProperties() const {
  return QString::fromUtf8(chanplan::TableProperties(table, windowTitle().toStdString()));
}

bool frmDocument::SigReport(const QString& ReportName) {
  CommitEdit();
  const std::error_code error = SaveReport(PathOf(ReportName), table, windowTitle().toStdString());
  if (error)
    ShowFailure(*this, "Error Saving Report", ReportName + ": " + QString::fromLocal8Bit(error.message().c_str()));
  return !error;
}

void frmDocument::PrintSigs() {
  CommitEdit();
  try {
    const BusyPointer busy(*this);
    PrintOnDefaultPrinter(windowTitle(),
                          [this](PrintSurface& surface) { PrintListing(surface, table, windowTitle().toStdString()); });
  } catch (const PrintFailure& failure) {
    ShowFailure(*this, "Print", "The listing was not printed: " + QString::fromUtf8(failure.what()) + ".");
  }
}

void frmDocument::ProcPrint() { Ask(*this, QMessageBox::NoIcon, frame.ApplicationTitle(), "Hello!!", QMessageBox::Ok); }

bool frmDocument::AskToSave() {
  const QString caption = windowTitle();
  const auto answer = Ask(*this, QMessageBox::Warning, frame.ApplicationTitle(),
                          "The contents in [" + caption + "] has changed.\nDo you want to save the changes?",
                          QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
  if (answer == QMessageBox::No) return true;
  if (answer != QMessageBox::Yes) return false;
  QString path = caption;
  if (IsUntitled())
    path = frame.PromptSaveFileName("untitled.lst", ".sig");
  else if (IsReadOnly())
    path = frame.PromptSaveFileName("", ".sig");
  return !path.isEmpty() && SaveChanplans(path);
}

void frmDocument::closeEvent(QCloseEvent* event) {
  // A message box is on the screen, which is to be answered first: it belongs to this window.
  if (QApplication::activeModalWidget() != nullptr) return event->ignore();
  CommitEdit();
  if (state.Changed && !AskToSave()) return event->ignore();
  frame.Warnings("", -1);
  state.Released = true;
  DocumentWindow::closeEvent(event);
}

}  // namespace chanplan
