// The document window: loading, saving, properties, report, printing and closing.
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QScopedValueRollback>
#include <algorithm>

#include "core/sig_file.h"
#include "core/table_difference.h"
#include "core/table_properties.h"
#include "editor/busy_pointer.h"
#include "editor/default_printer.h"
#include "editor/frm_document.h"
#include "editor/messages.h"
#include "editor/text_edge.h"
#include "report/html_report.h"
#include "report/listing.h"

namespace chanplan {
namespace {

// "plan (2).sig" beside "plan.sig", or the next number that is free.
QString FreeNameBeside(const QString& path) {
  const QFileInfo info(path);
  const QString type = info.suffix().isEmpty() ? "" : "." + info.suffix();
  for (int number = 2;; ++number)
    if (const QString name = QString("%1/%2 (%3)%4").arg(info.path(), info.completeBaseName()).arg(number).arg(type);
        !QFileInfo::exists(name))
      return QDir::toNativeSeparators(name);
}

// What a reload changed, in lines that a message box has room for.
QString DifferenceText(const SignalStandardTable& former, const SignalStandardTable& reloaded) {
  constexpr std::size_t shown = 20;
  const std::vector<std::string> differences = TableDifferences(former, reloaded);
  if (differences.empty()) return "The table was reloaded. It is the one that was here.";
  QStringList lines = {"The table was reloaded. From what was here (-) to what is in the file (+):", ""};
  for (std::size_t line = 0; line < std::min(shown, differences.size()); ++line)
    lines += QString::fromStdString(differences[line]);
  if (differences.size() > shown) lines += QString("and %1 differences more").arg(differences.size() - shown);
  return lines.join('\n');
}

}  // namespace

bool frmDocument::LoadSigStandards(const QString& path) {
  const bool read = ReadTable(path);
  history = TableHistory(table);
  return read;
}

bool frmDocument::ReadTable(const QString& path) {
  const BusyPointer busy(*this);
  const QScopedValueRollback suppressed(SuppressListEvents, true);
  editor.Close();  // it belongs to the former table
  // Before it is read: what is written meanwhile must count as a change.
  KnownFile = ReadFileStamp(PathOf(path));
  ReadOutcome outcome = LoadSigFile(PathOf(path));
  table = std::move(outcome.Table);
  ReadNotes = std::move(outcome.Notes);
  UnitTableTag = 0;
  if (!outcome.Ok()) {
    ReadNotes = {outcome.Reason};
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

bool frmDocument::SaveChanplans(const QString& path) { return Save(path) != SaveResult::Failed; }

frmDocument::SaveResult frmDocument::Save(const QString& path) {
  if (StoreGridsToTable() == Commit::Nothing) {
    ValidateTable();
    RecordStep("names of sub-bands", shownIndex);  // those that came from a unit
  }
  if (IsNoFile(path)) {
    ShowFailure(*this, "Error Saving File", path + " is no file.");
    return SaveResult::Failed;
  }
  if (!ChangedMeanwhile(path)) return Write(path);
  const auto answer =
      Ask(*this, QMessageBox::Warning, frame.ApplicationTitle(),
          path + "\nhas been changed by another program or in another window since it was read here.\n" +
              "Reload it and lose the changes made here, overwrite it, or keep both under two names?",
          QMessageBox::Reset | QMessageBox::Save | QMessageBox::SaveAll | QMessageBox::Cancel,
          {{QMessageBox::Reset, "&Reload"}, {QMessageBox::Save, "&Overwrite"}, {QMessageBox::SaveAll, "&Keep Both..."}},
          QMessageBox::SaveAll);  // of the answers, the one that loses nothing
  if (answer == QMessageBox::Reset) return Reload(path);
  if (answer == QMessageBox::Save) return Write(path);
  if (answer != QMessageBox::SaveAll) return SaveResult::Failed;
  const QString other = frame.PromptSaveFileName(FreeNameBeside(path), ".sig");
  return other.isEmpty() ? SaveResult::Failed : Write(other);
}

bool frmDocument::ChangedMeanwhile(const QString& path) const {
  if (path != windowTitle() || !KnownFile) return false;
  const auto now = ReadFileStamp(PathOf(path));
  return now && now != KnownFile;
}

frmDocument::SaveResult frmDocument::Reload(const QString& path) {
  const SignalStandardTable former = table;
  const int rowBefore = shownIndex;
  if (!ReadTable(path)) {
    table = former;
    Refill(0);
    ShowWarnings();
    return SaveResult::Failed;
  }
  RecordStep("reload", rowBefore);
  history.MarkSaved();
  state.Changed = false;
  ShowMessage(*this, DifferenceText(former, table), frame.ApplicationTitle(), QMessageBox::Information);
  return SaveResult::Reloaded;
}

frmDocument::SaveResult frmDocument::Write(const QString& path) {
  const BusyPointer busy(*this);
  // Some scripts have a separator of their own, for which a table's 8-bit text has no character.
  const char separator = QLocale().decimalPoint() == "," ? ',' : '.';
  if (const std::error_code error = SaveSigFile(PathOf(path), table, separator)) {
    ShowFailure(*this, "Error Saving File", QString::fromStdString(error.message()));
    return SaveResult::Failed;
  }
  KnownFile = ReadFileStamp(PathOf(path));
  history.MarkSaved();
  setWindowTitle(path);
  GridList->viewport()->update();
  return SaveResult::Saved;
}

QString frmDocument::TableProperties() const {
  return QString::fromUtf8(chanplan::TableProperties(table, windowTitle().toStdString()));
}

bool frmDocument::SigReport(const QString& ReportName) {
  CommitEdit();
  const auto replaced = ReadFileStamp(PathOf(ReportName));
  if (replaced &&
      ((KnownFile && replaced->SameFile(*KnownFile)) || AreSameFile(PathOf(ReportName), PathOf(windowTitle())))) {
    ShowFailure(*this, "Error Saving Report",
                ReportName + " is the table itself, which the report would take the place of.");
    return false;
  }
  if (IsNoFile(ReportName)) {
    ShowFailure(*this, "Error Saving Report", ReportName + " is no file.");
    return false;
  }
  const std::error_code error = SaveReport(PathOf(ReportName), table, windowTitle().toStdString());
  if (error) ShowFailure(*this, "Error Saving Report", ReportName + ": " + QString::fromStdString(error.message()));
  return !error;
}

void frmDocument::PrintSigs() {
  CommitEdit();
  try {
    const BusyPointer busy(*this);
    PrintOnDefaultPrinter(windowTitle(),
                          [this](PrintSurface& surface) { PrintListing(surface, table, windowTitle().toStdString()); });
    frame.ShowRemark("The listing was sent to " + DefaultPrinterName() + ".");
  } catch (const PrintFailure& failure) {
    ShowFailure(*this, "Print", Sentence("the listing was not printed: " + QString::fromUtf8(failure.what())));
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
  // What was reloaded is to be looked at before it goes.
  return !path.isEmpty() && Save(path) == SaveResult::Saved;
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
