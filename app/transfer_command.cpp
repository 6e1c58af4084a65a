#include "app/transfer_command.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>

#include "app/compare_window.h"
#include "app/frm_upload_optns.h"
#include "app/kept_table.h"
#include "editor/messages.h"
#include "editor/text_edge.h"
#include "unit/unit_connection.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

constexpr char CanceledText[] = "Process canceled by user.";
constexpr char NothingUploadedText[] =
    "The table of the unit could not be read whole, so nothing was uploaded: check the cable and start again.";

constexpr char NotConfirmedText[] =
    "The unit did not confirm the upload, so its table may be incomplete: check that the unit is switched on and that "
    "the cable sits, and upload the table again.";

constexpr char NotArrivedText[] =
    "The table of the unit did not arrive whole within 30 s, so none of it is shown: check that the cable sits and "
    "start again.";

constexpr char NotReadBackText[] = " It was not read back to compare it.";
constexpr char NotComparedText[] = " The table was uploaded, but not read back to compare it.";

// The first of `lines`, one below the other: a message box has no room for many.
QString ListText(const std::vector<std::string>& lines) {
  constexpr qsizetype longestList = 10;
  QStringList texts;
  for (const std::string& line : lines) texts += QString::fromStdString(line);
  if (texts.size() > longestList) texts = texts.mid(0, longestList) << "...";
  return texts.join('\n');
}

QString CompletedText(int records) {
  return QString("Process complete.  Transfered %1 signal standards (including sub-bands).").arg(records);
}

}  // namespace

TransferCommand::TransferCommand(CommandFrame& mainFrame, UnitLink& unitLink, TransferFlags& transferFlags,
                                 SharedTables& shared)
    : PortForTheNext(unitLink.CommPort),
      frame(mainFrame),
      link(unitLink),
      flags(transferFlags),
      sharedTables(shared),
      busy(mainFrame),
      progress(mainFrame.findChild<frmInProgress*>()) {
  flags.AbortRequested = false;
  link.StopRequested = [this] { return flags.AbortRequested; };
  qApp->installEventFilter(this);
}

TransferCommand::~TransferCommand() {
  link.StopRequested = [] { return false; };
  link.CommPort = PortForTheNext;
}

// Where no dialog is shown whose own key it is, Escape ends the wait for a unit that is silent.
bool TransferCommand::eventFilter(QObject* watched, QEvent* event) {
  const bool dialogIsShown = QApplication::activeModalWidget() != nullptr ||
                             QApplication::activePopupWidget() != nullptr ||
                             (progress != nullptr && progress->isVisible());
  if (event->type() != QEvent::KeyPress || dialogIsShown || static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape)
    return QObject::eventFilter(watched, event);
  flags.AbortRequested = true;
  return true;
}

void TransferCommand::Download() {
  const std::optional<TransferOutcome> outcome = ReceiveInNewDocument(false);
  // The status bar counts the records that are shown, as behind every download.
  if (outcome && outcome->Message.empty() && outcome->Result == LinkTimeout && !flags.AbortRequested)
    ShowMessage(frame, NotArrivedText, frame.ApplicationTitle(), QMessageBox::Warning);
}

void TransferCommand::Upload(DocumentWindow& document) {
  moved = &document;
  if (!Connect()) return;
  frmUploadOptns(&frame, flags).exec();
  if (flags.AbortRequested) return;
  // What is not appended to the unit's table goes out as it is now, however long that is read before.
  std::optional<std::string> message;
  const auto isReady = [&] { return (message = Encode(*moved)) && ConfirmLosses(moved->Table()); };
  const bool ready = flags.UploadAppend ? Append() && isReady() : isReady() && (!flags.UploadKeepCopy || ReadAndKeep());
  if (ready) Send(*moved, *message);
}

// The user may have wished to stop while the unit was waited for.
bool TransferCommand::Connect() {
  const QString port = QString("COM %1").arg(link.CommPort);
  frame.ShowStatus("Looking for a unit on " + port + " ... (Esc cancels)");
  const ConnectOutcome outcome = ConnectToUnit(link);
  if (flags.AbortRequested) {
    frame.ShowStatus(CanceledText);
    return false;
  }
  frame.ShowStatus(outcome.Accepted() ? QString() : port + ": " + TextOf(outcome.Reason));
  if (!outcome.Accepted())
    ShowMessage(frame, QString::fromStdString(outcome.Message), frame.ApplicationTitle(), QMessageBox::Critical);
  return outcome.Accepted();
}

// Nothing when the unit was not reached, so that no document was made.
std::optional<TransferOutcome> TransferCommand::ReceiveInNewDocument(bool newSlotRequested) {
  if (!Connect()) return {};
  moved = &frame.CreateDocument(newSlotRequested, "Untitled(Query) ");
  frame.ShowDocument(*moved);
  return Receive(*moved);
}

// Leaves the merged table in `moved`.
bool TransferCommand::Append() {
  added = moved;
  const std::optional<TransferOutcome> outcome = ReceiveInNewDocument(true);
  if (!outcome) return false;
  // An abort may have been asked for after the status bar had its text.
  if (flags.AbortRequested) {
    frame.ShowStatus(CanceledText);
    return false;
  }
  // What is added to a part of the unit's table, or to nothing, would cost the unit the rest.
  if (outcome->Result != LinkTrue) {
    if (outcome->UnitAnswered) ShowMessage(frame, NothingUploadedText, frame.ApplicationTitle(), QMessageBox::Warning);
    return false;
  }
  if (flags.UploadKeepCopy && !Keep()) return false;
  return MergeTables(*moved, *added);
}

// Where the unit's table comes into no document.
TransferOutcome TransferCommand::Fetch() {
  held = {};
  const TransferOutcome outcome = RunDownload(link, held, Begin(), [this] { return flags.AbortRequested; });
  progress->Finish();
  AwaitConfirmation(outcome, QString());
  return outcome;
}

// False when nothing is to be uploaded.
bool TransferCommand::ReadAndKeep() {
  const TransferOutcome outcome = Fetch();
  if (flags.AbortRequested) {
    frame.ShowStatus(CanceledText);
    return false;
  }
  if (!outcome.Done()) {
    const QString reason = QString::fromStdString(outcome.Message);
    Say(reason.isEmpty() ? QString(NothingUploadedText) : reason + "\n\n" + NothingUploadedText, QMessageBox::Warning);
    return false;
  }
  return Keep();
}

// Puts what was read into a file. False when nothing is to be uploaded.
bool TransferCommand::Keep() {
  const KeptTable file = held.Table.Count == 0 ? KeptTable() : KeepTable(held.Table, QDateTime::currentDateTime());
  if (held.Table.Count == 0) {
    kept = "The unit's table was empty: there was nothing to keep.";
  } else if (file.Failure.isEmpty()) {
    kept = "The unit's table from before is in " + file.Path + ".";
  } else {
    const QString text = "The unit's table cannot be kept in " + file.Path + ".\n" + Sentence(file.Failure) +
                         "\n\nUpload the table all the same?";
    if (!Confirm(text)) return false;
    kept = "The unit's table from before was not kept.";
  }
  frame.ShowStatus(kept);
  return true;
}

// Asks about a loss: Enter uploads nothing. False, with the outcome in the status bar, when nothing is to be uploaded.
bool TransferCommand::Confirm(const QString& text) {
  const auto answer = Ask(frame, QMessageBox::Warning, frame.ApplicationTitle(), text,
                          QMessageBox::Ok | QMessageBox::Cancel, {}, QMessageBox::Cancel);
  if (answer != QMessageBox::Ok) frame.ShowStatus(WithKept(CanceledText, " "));
  return answer == QMessageBox::Ok;
}

bool TransferCommand::ConfirmLeftOut(const MergeOutcome& merged) {
  QString text;
  if (merged.Dropped > 0)
    text +=
        QString(merged.Dropped == 1 ? "%1 record finds no room in the unit. " : "%1 records find no room in the unit. ")
            .arg(merged.Dropped);
  if (merged.Nameless > 0)
    text += QString(merged.Nameless == 1 ? "%1 record has no name and is left out. "
                                         : "%1 records have no name and are left out. ")
                .arg(merged.Nameless);
  if (text.isEmpty()) return true;
  text += merged.Dropped > 0 ? QString("Upload the first %1 all the same?").arg(MaxRecords)
                             : QString("Upload the others all the same?");
  return Confirm(text);
}

// What would be left out is asked about before the merge says what it did.
bool TransferCommand::MergeTables(DocumentWindow& base, DocumentWindow& source) {
  for (DocumentWindow* document : {&base, &source}) document->CommitEdit();
  const MergeOutcome merged = MergeWholeGroups(base.Table(), source.Table(), flags.UploadReplaceMatching);
  if (!ConfirmLeftOut(merged)) return false;
  if (merged.Truncated) ShowMessage(frame, TextOf(MergeTruncatedText), "Table Merge", QMessageBox::Information);
  GetTable(merged.Table, sharedTables.Passed);
  base.SetTable();
  if (merged.Table.Count > 0) base.State().Changed = true;  // it is in no file
  return true;
}

// Nothing, after telling the user, when a value does not fit.
std::optional<std::string> TransferCommand::Encode(DocumentWindow& document) {
  document.CommitEdit();
  try {
    return EncodeTable(document.Table(), UploadTag(document.UnitTableTag));
  } catch (const WireMisfit& misfit) {
    Say(QString::fromUtf8(misfit.what()), QMessageBox::Information);
    return {};
  }
}

bool TransferCommand::ConfirmLosses(const SignalStandardTable& table) {
  const std::vector<std::string> losses = WireLosses(table);
  if (losses.empty()) return true;
  const QString text = "The unit cannot hold these values as they stand in the table:\n\n" + ListText(losses) +
                       "\n\nUpload the table all the same?";
  return Confirm(text);
}

bool TransferCommand::Proc_Query(DocumentWindow& document, bool Download) {
  if (Download) return Receive(document).UnitAnswered;
  const std::optional<std::string> message = Encode(document);
  return !message || Send(document, *message).UnitAnswered;
}

// The table is on the screen before the end of the exchange is waited for.
TransferOutcome TransferCommand::Receive(DocumentWindow& document) {
  document.CommitEdit();
  held = {document.Table(), document.UnitTableTag};
  const TransferOutcome outcome = RunDownload(link, held, Begin(), [this] { return flags.AbortRequested; });
  document.UnitTableTag = held.UnitTableTag;
  const QString end = EndText(outcome, held.Table.Count);
  ShowEnd(end);
  const bool received = outcome.Moved() && (outcome.Result == LinkTrue || outcome.Result == LinkFalse);
  if (received) document.ShowUnitTable(held.Table);
  AwaitConfirmation(outcome, end);
  Tell(outcome);
  return outcome;
}

TransferOutcome TransferCommand::Send(DocumentWindow& document, std::string_view message) {
  const int records = static_cast<int>((message.size() - WireHeaderSize) / WireRecordSize);
  const TransferOutcome outcome = RunUpload(link, message, Begin(), [this] { return flags.AbortRequested; });
  if (outcome.Moved()) document.UnitTableTag = UploadTag(document.UnitTableTag);
  const QString end = EndText(outcome, records);
  ShowEnd(end);
  const LinkResult sync = AwaitConfirmation(outcome, end);
  Tell(outcome);
  if (outcome.Done() && sync != LinkAck)
    ShowMessage(frame, WithKept(QString(NotConfirmedText) + (flags.UploadReadBack ? NotReadBackText : ""), "\n\n"),
                frame.ApplicationTitle(), QMessageBox::Warning);
  else if (outcome.Done() && flags.UploadReadBack)
    ReadBack(message, records);
  else if (outcome.Message.empty() && !kept.isEmpty())
    Say(end, QMessageBox::Information);
  return outcome;
}

// Compares with what went over the wire: what that is not like was said before.
void TransferCommand::ReadBack(std::string_view message, int records) {
  const TransferOutcome outcome = flags.AbortRequested ? TransferOutcome() : Fetch();
  if (flags.AbortRequested) return Say(QString(CanceledText) + NotComparedText, QMessageBox::Information);
  if (!outcome.Done()) {
    const std::string reason = outcome.Message.empty() ? "not all of it came in time" : outcome.Message;
    return Say("The unit confirmed the upload, but its table could not be read back to compare it: " +
                   QString::fromStdString(reason),
               QMessageBox::Warning);
  }
  const SignalStandardTable sent = SentTable(message);
  const std::vector<std::string> differences = RowDifferences(sent, held.Table);
  if (differences.empty())
    return Say(CompletedText(records) + " The unit's table was read back: it is what was sent.",
               QMessageBox::Information);
  Say("The unit's table is not the one that was sent:\n\n" + ListText(differences) + "\n\nUpload the table again.",
      QMessageBox::Warning);
  ShowDifferences(sent);
}

// The unit's table comes into a document, as after a download; the one to upload again stays the active one. Values
// that are not a sub-band's own are its standard's there: what differs in those alone, the message has said.
void TransferCommand::ShowDifferences(const SignalStandardTable& sent) {
  DocumentWindow& document = frame.CreateDocument(false, "Untitled(Query) ");
  document.UnitTableTag = held.UnitTableTag;
  document.ShowUnitTable(held.Table);
  frame.ShowDocument(document);
  const ComparedTable right{nullptr, {}, sent, {}, "the sent table"};
  if (!FindDifferences(ComparedTable{&document}.Rows(), right.Rows()).empty()) Compare(frame, document, right);
  if (moved != nullptr) frame.ShowDocument(*moved);
}

TransferProgress& TransferCommand::Begin() {
  flags.AbortRequested = false;
  if (progress == nullptr) progress = new frmInProgress(&frame, flags.AbortRequested);
  progress->Set_on_top(true);
  progress->ShowOverFrame();
  return *progress;
}

QString TransferCommand::EndText(const TransferOutcome& outcome, int records) const {
  return !outcome.Message.empty() ? QString::fromStdString(outcome.Message)
         : flags.AbortRequested   ? QString(CanceledText)
                                  : CompletedText(records);
}

void TransferCommand::ShowEnd(const QString& text) {
  frame.ShowStatus(WithKept(text, " "));
  progress->Finish();
}

// The dialog is hidden by then, so that the status bar says what is waited for when it takes long.
LinkResult TransferCommand::AwaitConfirmation(const TransferOutcome& outcome, const QString& end) {
  QTimer silence;
  bool waited = false;
  QObject::connect(&silence, &QTimer::timeout, this, [&] {
    waited = true;
    frame.ShowStatus((flags.AbortRequested ? "Canceling ... " : "Waiting for the unit ... (Esc cancels) ") + end);
  });
  silence.start(Silence);
  const LinkResult sync = FinishTransfer(link, outcome);
  if (waited) frame.ShowStatus(WithKept(end, " "));
  return sync;
}

void TransferCommand::Tell(const TransferOutcome& outcome) {
  if (!outcome.Message.empty())
    ShowMessage(frame, WithKept(QString::fromStdString(outcome.Message), "\n\n"), frame.ApplicationTitle(),
                QMessageBox::Information);
}

// The status bar may have no room for all of it.
void TransferCommand::Say(const QString& text, QMessageBox::Icon icon) {
  frame.ShowStatus(WithKept(text, " "));
  ShowMessage(frame, WithKept(text, "\n\n"), frame.ApplicationTitle(), icon);
}

// With every outcome: the former table may be needed now.
QString TransferCommand::WithKept(const QString& text, const char* between) const {
  if (kept.isEmpty()) return text;
  const bool ends = text.isEmpty() || text.endsWith('.') || text.endsWith('!');
  return (ends ? text : text + '.') + (text.isEmpty() ? "" : between) + kept;
}

void TransferCommand::Abort() {
  flags.AbortRequested = true;
  if (progress != nullptr) progress->Abort();
}

}  // namespace chanplan
