#include "app/file_io.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStandardPaths>

#include "app/app_main.h"
#include "app/frm_main.h"
#include "editor/messages.h"

namespace chanplan {
namespace {

// The last parenthesis counts and is not shown: all files are those without a "." too.
constexpr char AllFiles[] = "All Files (*.*)(*)";
constexpr char TableFiles[] = "Signal Standard Files(*.sig)(*.sig)";
constexpr char ReportFiles[] = "Report Files(*.htm)(*.htm)";
constexpr int RecentFilesCompared = 4;  // opening the fifth moves it to the top

class WaitCursor {
 public:
  WaitCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~WaitCursor() { QGuiApplication::restoreOverrideCursor(); }
};

QString ChosenFile(QFileDialog& dialog) {
  return dialog.exec() == QDialog::Accepted ? QDir::toNativeSeparators(dialog.selectedFiles().value(0)) : QString();
}

// Where the newest recent file is, else the user's documents: the current folder is the program's.
QString FirstFolder(const frmMain& frame) {
  const QStringList recent = frame.RecentFiles();
  if (!recent.isEmpty()) return QFileInfo(recent.front()).path();
  const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  return QFileInfo(documents).isDir() ? documents : QDir::homePath();
}

void SetUp(QFileDialog& dialog, const frmMain& frame, QFileDialog::AcceptMode mode, const char* filesShown) {
  dialog.setObjectName("CMDialog1");
  dialog.setDirectory(FirstFolder(frame));
  dialog.setAcceptMode(mode);
  dialog.setFileMode(QFileDialog::AnyFile);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  dialog.setNameFilters({AllFiles, filesShown});
  dialog.selectNameFilter(filesShown);
}

}  // namespace

void PromptOpenFileName(frmMain& frame) {
  QFileDialog dialog(&frame);
  SetUp(dialog, frame, QFileDialog::AcceptOpen, TableFiles);
  const QString path = ChosenFile(dialog);
  if (path.isEmpty()) return;
  OpenTableFile(frame, path);
  UpdateRecentFiles(frame, path);
}

QString PromptSaveFileName(frmMain& frame, const QString& proposedName, const QString& fileType) {
  QFileDialog dialog(&frame);
  SetUp(dialog, frame, QFileDialog::AcceptSave, fileType == ".sig" ? TableFiles : ReportFiles);
  dialog.setDefaultSuffix(proposedName.endsWith(".htm") ? ".htm" : fileType);  // reports are asked for as tables are
  dialog.selectFile(proposedName);
  return ChosenFile(dialog);
}

void OpenTableFile(frmMain& frame, const QString& path) {
  if (!QFile(path).open(QIODevice::ReadOnly)) return ShowMessage(frame, "Can't open file: " + path);
  const WaitCursor wait;
  DocumentWindow& document = frame.App().CreateDocument(false);
  const bool read = document.LoadSigStandards(path);
  document.State().Changed = false;
  if (read)
    frame.ShowDocument(document);
  else
    document.close();
}

void UpdateRecentFiles(frmMain& frame, const QString& path) {
  if (!RecentMenuContains(frame, path)) frame.App().AddRecentFile(path);
  frame.App().LoadRecentFiles();
}

bool RecentMenuContains(const frmMain& frame, const QString& path) {
  return frame.RecentFiles().mid(0, RecentFilesCompared).contains(path);
}

}  // namespace chanplan
