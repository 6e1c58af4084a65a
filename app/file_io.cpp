#include "app/file_io.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

#include "editor/busy_pointer.h"
#include "editor/messages.h"

namespace chanplan {
namespace {

// The last parenthesis counts and is not shown: all files are those without a "." too.
constexpr char AllFiles[] = "All Files (*.*)(*)";
constexpr char TableFiles[] = "Signal Standard Files(*.sig)(*.sig)";
constexpr char ReportFiles[] = "Report Files(*.htm)(*.htm)";

QString ChosenFile(QFileDialog& dialog) {
  return dialog.exec() == QDialog::Accepted ? QDir::toNativeSeparators(dialog.selectedFiles().value(0)) : QString();
}

// Where the newest recent file is, else the user's documents: the current folder is the program's.
QString FirstFolder(const RecentFileList& recent) {
  if (!recent.Files().isEmpty()) return QFileInfo(recent.Files().front()).path();
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

bool IsOpenElsewhere(const CommandFrame& frame, const DocumentWindow& opened) {
  return std::ranges::any_of(frame.findChildren<DocumentWindow*>(), [&opened](DocumentWindow* other) {
    if (other == &opened || other->State().Released) return false;
    return other->windowTitle() == opened.windowTitle() ||
           (opened.KnownFile && other->KnownFile && other->KnownFile->SameFile(*opened.KnownFile));
  });
}

void SetUp(QFileDialog& dialog, const RecentFileList& recent, QFileDialog::AcceptMode mode, const char* filesShown) {
  dialog.setObjectName("CMDialog1");
  dialog.setDirectory(FirstFolder(recent));
  dialog.setAcceptMode(mode);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilters({AllFiles, filesShown});
  dialog.selectNameFilter(filesShown);
}

}  // namespace

void PromptOpenFileName(CommandFrame& frame, RecentFileList& recent) {
  QFileDialog dialog(&frame);
  SetUp(dialog, recent, QFileDialog::AcceptOpen, TableFiles);
  const QString path = ChosenFile(dialog);
  if (path.isEmpty()) return;
  OpenTableFile(frame, path);
  recent.UpdateRecentFiles(path);
}

QString PromptSaveFileName(QWidget& owner, const RecentFileList& recent, const QString& proposedName,
                           const QString& fileType) {
  QFileDialog dialog(&owner);
  SetUp(dialog, recent, QFileDialog::AcceptSave, fileType == ".sig" ? TableFiles : ReportFiles);
  dialog.setDefaultSuffix(proposedName.endsWith(".htm") ? ".htm" : fileType);  // reports are asked for as tables are
  dialog.selectFile(proposedName);
  return ChosenFile(dialog);
}

void OpenTableFile(CommandFrame& frame, const QString& path) {
  // Opening what is no file, as a pipe, could wait for ever.
  const bool isFile = !QFileInfo::exists(path) || QFileInfo(path).isFile();
  if (!isFile || !QFile(path).open(QIODevice::ReadOnly)) return ShowMessage(frame, "Can't open file: " + path);
  const BusyPointer busy(frame);
  DocumentWindow& document = frame.CreateDocument(false);
  const bool read = document.LoadSigStandards(path);
  document.State().Changed = false;
  if (!read) {
    document.close();
    return;
  }
  const bool openAlready = IsOpenElsewhere(frame, document);
  frame.ShowDocument(document);
  if (openAlready) frame.ShowStatus(path + " is open in another window, too.");
}

}  // namespace chanplan
