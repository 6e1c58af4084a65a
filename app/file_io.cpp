#include "app/file_io.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

#include "editor/busy_pointer.h"
#include "editor/messages.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

// The last parenthesis counts and is not shown: all files are those without a "." too.
constexpr char AllFiles[] = "All Files (*.*)(*)";
constexpr char TableFiles[] = "Signal Standard Files(*.sig)(*.sig)";
constexpr char ReportFiles[] = "Report Files(*.htm)(*.htm)";

QStringList ChosenFiles(QFileDialog& dialog) {
  if (dialog.exec() != QDialog::Accepted) return {};
  QStringList files = dialog.selectedFiles();
  for (QString& file : files) file = QDir::toNativeSeparators(file);
  return files;
}

// A file that is not there is told as every other one that cannot be opened, not by the dialog in words
// of its own.
class OpenDialog : public QFileDialog {
 public:
  using QFileDialog::QFileDialog;

  void accept() override {
    const QStringList files = selectedFiles();
    const bool missing = std::ranges::any_of(files, [](const QString& file) { return !QFileInfo::exists(file); });
    missing ? QDialog::accept() : QFileDialog::accept();  // NOLINT(bugprone-parent-virtual-call): past its words
  }
};

// Where the active document is, else the newest recent file, else the user's documents: the current folder is
// the program's.
QString FirstFolder(const CommandFrame& frame, const RecentFileList& recent) {
  QStringList files = recent.Files();
  if (const DocumentWindow* active = frame.ActiveDocument()) files.prepend(active->windowTitle());
  for (const QString& file : files)
    if (const QFileInfo info(file); info.isAbsolute() && info.dir().exists()) return info.path();
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

// The dialog takes what follows any "." for a type. In "v1.2" it is none, unless there is such a file already.
QString WithType(CommandFrame& frame, const QString& path, const QString& type) {
  const QString suffix = QFileInfo(path).suffix();
  bool isNumber = false;
  suffix.toULongLong(&isNumber);
  if (!isNumber || QFileInfo::exists(path)) return path;
  const QString typed = path + type;
  const bool free = !QFileInfo::exists(typed);
  if (free ||
      Ask(frame, QMessageBox::Warning, frame.ApplicationTitle(), typed + " already exists.\nDo you want to replace it?",
          QMessageBox::Yes | QMessageBox::No, {}, QMessageBox::No) == QMessageBox::Yes)
    return typed;
  return {};
}

bool IsOpenElsewhere(const CommandFrame& frame, const DocumentWindow& opened) {
  return std::ranges::any_of(frame.findChildren<DocumentWindow*>(), [&opened](DocumentWindow* other) {
    if (other == &opened || other->State().Released) return false;
    return other->windowTitle() == opened.windowTitle() ||
           (opened.KnownFile && other->KnownFile && other->KnownFile->SameFile(*opened.KnownFile));
  });
}

void SetUp(QFileDialog& dialog, const CommandFrame& frame, const RecentFileList& recent, QFileDialog::AcceptMode mode,
           const char* filesShown) {
  dialog.setObjectName("CMDialog1");
  dialog.setDirectory(FirstFolder(frame, recent));
  dialog.setAcceptMode(mode);
  dialog.setFileMode(mode == QFileDialog::AcceptOpen ? QFileDialog::ExistingFiles : QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilters({AllFiles, filesShown});
  dialog.selectNameFilter(filesShown);
}

}  // namespace

// Some file managers name the machine in its files' addresses.
QString LocalPathOf(QUrl address) {
  for (const QString& host : {QString("localhost"), QSysInfo::machineHostName()})
    if (address.host().compare(host, Qt::CaseInsensitive) == 0) address.setHost("");
  const QFileInfo file(address.toLocalFile());
  const bool local = address.isLocalFile() && (address.host().isEmpty() || file.exists());  // on a share
  return local ? QDir::toNativeSeparators(file.absoluteFilePath()) : QString();
}

void PromptOpenFileName(CommandFrame& frame, RecentFileList& recent) {
  OpenDialog dialog(&frame);
  SetUp(dialog, frame, recent, QFileDialog::AcceptOpen, TableFiles);
  OpenTableFiles(frame, recent, ChosenFiles(dialog));
}

QString PromptTableFile(CommandFrame& frame, const RecentFileList& recent) {
  OpenDialog dialog(&frame);
  SetUp(dialog, frame, recent, QFileDialog::AcceptOpen, TableFiles);
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setWindowTitle("Compare With");
  return ChosenFiles(dialog).value(0);
}

QString PromptSaveFileName(CommandFrame& frame, const RecentFileList& recent, const QString& proposedName,
                           const QString& fileType) {
  QFileDialog dialog(&frame);
  SetUp(dialog, frame, recent, QFileDialog::AcceptSave, fileType == ".sig" ? TableFiles : ReportFiles);
  const QString type = proposedName.endsWith(".htm") ? ".htm" : fileType;  // reports are asked for as tables are
  // A system's own dialog would give a report the type of the filter, which is that of tables.
  if (type != fileType) dialog.setOption(QFileDialog::DontUseNativeDialog);
  dialog.setDefaultSuffix(type);
  dialog.selectFile(proposedName);
  return WithType(frame, ChosenFiles(dialog).value(0), type);
}

bool CanOpenFile(const QString& path) { return !IsNoFile(path) && QFile(path).open(QIODevice::ReadOnly); }

namespace {

// What is to be remarked on the file.
QStringList Open(CommandFrame& frame, const QString& path) {
  if (!CanOpenFile(path)) {
    ShowMessage(frame, "Can't open file: " + path);
    return {};
  }
  const BusyPointer busy(frame);
  DocumentWindow& document = frame.CreateDocument(false);
  const bool read = document.LoadSigStandards(path);
  document.State().Changed = false;
  if (!read) {
    QStringList reasons;
    for (const std::string& reason : document.ReadNotes) reasons += Sentence(QString::fromStdString(reason));
    document.close();
    return reasons;
  }
  const bool openAlready = IsOpenElsewhere(frame, document);
  frame.ShowDocument(document);
  QStringList remarks;
  if (openAlready) remarks += path + " is open in another window, too.";
  if (const auto count = document.ReadNotes.size(); count > 0)
    remarks += QString(count == 1 ? "%1 remark on the file: %2." : "%1 remarks on the file; the first: %2.")
                   .arg(count)
                   .arg(QString::fromStdString(document.ReadNotes.front()));
  return remarks;
}

void ShowRemarks(CommandFrame& frame, const QStringList& remarks) {
  if (!remarks.isEmpty()) frame.ShowRemark(remarks.join(' '));
}

}  // namespace

void OpenTableFile(CommandFrame& frame, const QString& path) { ShowRemarks(frame, Open(frame, path)); }

void OpenTableFiles(CommandFrame& frame, RecentFileList& recent, const QStringList& paths) {
  QStringList all;
  for (const QString& path : paths) {
    for (const QString& remark : Open(frame, path))
      all += paths.size() > 1 ? QFileInfo(path).fileName() + ": " + remark : remark;
    recent.UpdateRecentFiles(path);
  }
  ShowRemarks(frame, all);
}

}  // namespace chanplan
