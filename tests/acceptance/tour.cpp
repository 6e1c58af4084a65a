// A tour of the editor: chanplan-tour FOLDER drives the real application through its menus, keys and
// dialogs, prints a line for each step and leaves a picture of each in FOLDER. It fails at the first
// step that does not come out as it must.
#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <stdexcept>

#include "app/app_main.h"
#include "app/frm_in_progress.h"
#include "app/frm_main.h"
#include "app/frm_upload_optns.h"
#include "core/sig_file.h"
#include "core/table_difference.h"
#include "core/validation.h"
#include "editor/frm_document.h"
#include "settings/user_settings.h"
#include "tests/app/browser.h"
#include "unit/qt_serial_port.h"

namespace chanplan {
namespace {

class Tour {
 public:
  Tour(AppMain& application, const QString& pictureFolder)
      : app(application), frame(*application.Frame), folder(pictureFolder) {}

  void Run() {
    OpenTheFactoryTable();
    EditAFrequency();
    EditAName();
    EditASubbandCount();
    JumpToTheWarning();
    CopyAStandardToAnotherDocument();
    SaveIt();
    ReopenAndCompare();
    WriteAReport();
    UploadItToTheUnit();
    AppendAnotherTable();
    DownloadAndCompare();
    CloseEverything();
  }

 private:
  // Steps

  void OpenTheFactoryTable() {
    Menu("mnuFile", "menuFileDefault");
    Must(Document().windowTitle() == "Factory Default (Read-Only)", "the factory table is open");
    Done("Open the factory table");
  }

  void EditAFrequency() {
    DoubleClick(Details(), 4);
    TypeInBox("9500.5");
    Must(Details().CellText(4, 1) == "9500.5000", "the frequency is shown in its picture");
    Must(Warnings().item(0)->text() == "Warning:\tE-GSM 900\tStart frequency appears out of range.",
         "the warning is listed");
    Done("Edit a frequency and see the warning");
  }

  void EditAName() {
    Click(Details(), 0);
    TypeOver("Tour");
    Must(List().CellText(0, 1) == "Tour", "the list shows the new name");
    Done("Edit a name by typing over it");
  }

  void EditASubbandCount() {
    Click(Details(), 1);
    TypeInBox("4");
    Must(Grid_("GridBands").rowCount() == 4, "two sub-bands have been added");
    Done("Edit a sub-band count");
  }

  void JumpToTheWarning() {
    Click(List(), 4);
    Must(Details().CellText(0, 1) == "GSM 850", "another standard is selected");
    QTest::mouseClick(Warnings().viewport(), Qt::LeftButton, {},
                      Warnings().visualItemRect(Warnings().item(0)).center());
    Must(List().currentRow() == 0, "the standard of the warning is selected");
    Must(Panel2() == " 1 of 2 warnings.", "the status bar says which warning it is");
    Done("Jump to the warning");
  }

  void CopyAStandardToAnotherDocument() {
    Click(List(), 0);
    Menu("mnuEdit", "mnuEditCopy");
    Menu("mnuFile", "mnuFileNew");
    List().setFocus();
    Menu("mnuEdit", "mnuEditPaste");
    Must(List().rowCount() == 1 && List().CellText(0, 1) == "Tour", "the standard is in the new document");
    Menu("mnuWindow", "mnuWindowTileHorizontal");
    Done("Copy a standard to another document");
  }

  void SaveIt() {
    Click(Details(), 4);
    TypeOver("890.2");
    InDialog<QFileDialog>([this](QFileDialog& dialog) { EnterFileName(dialog, SavedFile()); },
                          [this] { Menu("mnuFile", "mnuFileSave"); });
    Must(Document().windowTitle() == SavedFile(), "the caption is the file's path");
    Must(QFile::exists(SavedFile()), "the file is there");
    Done("Save it");
  }

  void ReopenAndCompare() {
    const SignalStandardTable saved = LoadSigFile(SavedFile().toStdString()).Table;
    Menu("mnuFile", "mnuFileClose");
    InDialog<QFileDialog>([this](QFileDialog& dialog) { EnterFileName(dialog, SavedFile()); },
                          [this] { Menu("mnuFile", "mnuFileOpen"); });
    Must(Document().windowTitle() == SavedFile(), "the file is open again");
    Must(Details().CellText(4, 1) == "890.2000", "the edited frequency is there");
    const QString copy = folder + "/copy.sig";
    Document().SaveChanplans(copy);
    Must(TableDifferences(saved, LoadSigFile(copy.toStdString()).Table).empty(), "both tables are alike");
    Done("Reopen it and compare");
  }

  void WriteAReport() {
    Browser browser;
    QDesktopServices::setUrlHandler("file", &browser, "Open");
    const QString report = folder + "/tour.htm";
    InDialog<QFileDialog>([&](QFileDialog& dialog) { EnterFileName(dialog, report); },
                          [this] { Menu("mnuFile", "mnuFileReport"); });
    QDesktopServices::unsetUrlHandler("file");
    Must(browser.Opened == QList<QUrl>{QUrl::fromLocalFile(report)}, "the report is opened in the viewer");
    Must(QFile(report).size() > 500, "the report is there");
    Done("Write a report");
  }

  void UploadItToTheUnit() {
    Upload("optnReplace", false, "upload-options");
    Must(Panel1() == "Process complete.  Transfered 5 signal standards (including sub-bands).", "all rows were sent");
    Done("Upload it to the unit");
  }

  void AppendAnotherTable() {
    frame.ShowDocument(*app.Registry.Document(1));
    Must(Document().windowTitle() == "Factory Default (Read-Only)", "the factory table is active");
    Upload("optnAppend", true, "safe-upload");
    Must(Panel1().contains("it is what was sent. The unit's table from before is in " + folder + "/documents/Unit "),
         "the unit's table was kept and read back");
    const QStringList kept = QDir(folder + "/documents").entryList({"Unit *.sig"});
    Must(kept.size() == 1, "there is one copy");
    Must(LoadSigFile((folder + "/documents/" + kept[0]).toStdString()).Table.Count == 5, "it is what the unit had");
    Must(Document().windowTitle().startsWith("Untitled(Query) "), "the merged table has a document of its own");
    Must(List().CellText(0, 1) == "Tour" && List().rowCount() > 20, "it holds both tables");
    Done("Append another table to the unit's");
  }

  void DownloadAndCompare() {
    SignalStandardTable merged = Document().Table();
    Menu("mnuTools", "mnuToolsQuery");
    SignalStandardTable downloaded = Document().Table();
    // The unit's names of sub-bands stay until something is edited.
    AlignSubbands(merged);
    AlignSubbands(downloaded);
    Must(merged.Count > 40 && TableDifferences(merged, downloaded).empty(), "the unit has the merged table");
    Done("Download the unit's table and compare");
    for (const auto& document : app.Registry.Documents)
      if (document != nullptr && document->windowTitle().startsWith("Untitled(Query) "))
        document->State().Changed = false;  // seen; the question comes up once, below
  }

  void CloseEverything() {
    InDialog<QMessageBox>(
        [this](QMessageBox& box) {
          Must(box.text().startsWith("The contents in [Factory Default (Read-Only)] has changed."), "it is asked");
          Picture("question");
          QTest::mouseClick(static_cast<QWidget*>(box.button(QMessageBox::No)), Qt::LeftButton);
        },
        [this] { Menu("mnuFile", "mnuFileExit"); });
    Must(!frame.isVisible(), "the frame is closed");
    std::puts("Close everything: done");
  }

  void Upload(const char* option, bool safely, const QString& picture) {
    bool progressSeen = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
      const auto* progress = frame.findChild<frmInProgress*>("frmInProgress");
      if (progressSeen || progress == nullptr || !progress->isVisible()) return;
      progressSeen = true;
      QTimer::singleShot(150, &frame, [this] { TakePicture("progress"); });
    });
    watch.start(20);
    const auto upload = [&] {
      InDialog<frmUploadOptns>(
          [&](frmUploadOptns& options) {
            options.findChild<QRadioButton*>(option)->setChecked(true);
            for (const char* box : {"chkKeepCopy", "chkReadBack"})
              options.findChild<QCheckBox*>(box)->setChecked(safely);
            Picture(picture);
            QTest::mouseClick(options.findChild<QPushButton*>("bttnUpload"), Qt::LeftButton);
          },
          [this] { Menu("mnuTools", "mnuToolsUpload"); });
    };
    if (safely)
      InDialog<QMessageBox>(
          [this](QMessageBox& box) {
            Picture("outcome");
            QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
          },
          upload);
    else
      upload();
    Must(progressSeen, "the progress is shown");
  }

  // What the user sees and does

  DocumentWindow& Document() { return *frame.ActiveDocument(); }
  Grid& Grid_(const char* name) { return *Document().findChild<Grid*>(name); }
  Grid& List() { return Grid_("GridList"); }
  Grid& Details() { return Grid_("GridDetails"); }
  QLineEdit& Box() { return *Document().findChild<QLineEdit*>("txtEntry"); }
  QListWidget& Warnings() { return *frame.findChild<QListWidget*>("lstWarnings"); }
  QString Panel1() { return frame.findChild<QLabel*>("sbStatusBarPanel1")->text(); }
  QString Panel2() { return frame.findChild<QLabel*>("sbStatusBarPanel2")->text(); }
  QString SavedFile() const { return folder + "/tour.sig"; }

  void Click(Grid& grid, int row) {
    if (!frame.isActiveWindow()) {  // a menu or a dialog was, and no window manager gives it back
      frame.activateWindow();
      Must(QTest::qWaitForWindowActive(&frame), "the frame is active again");
    }
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualItemRect(grid.item(row, 1)).center());
  }

  void DoubleClick(Grid& grid, int row) {
    Click(grid, row);
    QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, grid.visualItemRect(grid.item(row, 1)).center());
  }

  // The first key opens the box, which takes the others.
  void TypeOver(const QString& text) {
    QTest::keyClicks(&Details(), text.left(1));
    QTest::keyClicks(&Box(), text.mid(1));
    QTest::keyClick(&Box(), Qt::Key_Return);
  }

  void TypeInBox(const QString& text) {
    Must(Box().isVisible(), "the edit box is open");
    QTest::keyClick(&Box(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(&Box(), text);
    QTest::keyClick(&Box(), Qt::Key_Return);
  }

  void Menu(const QString& menuName, const QString& itemName) {
    QMenu* menu = frame.findChild<QMenu*>(menuName);
    if (menu == nullptr) menu = frame.findChild<QAction*>(menuName)->menu();
    QTest::mouseClick(frame.menuBar(), Qt::LeftButton, {},
                      frame.menuBar()->actionGeometry(menu->menuAction()).center());
    QAction* item = frame.findChild<QAction*>(itemName);
    Must(item->isEnabled() && item->isVisible(), itemName + " can be chosen");
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(item).center());
    QCoreApplication::processEvents();
  }

  // Runs `action`, which opens a dialog, and `answer` in that dialog.
  template <typename Dialog>
  void InDialog(const std::function<void(Dialog&)>& answer, const std::function<void()>& action) {
    bool answered = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
      auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
      if (dialog == nullptr || answered) return;
      answered = true;
      answer(*dialog);
    });
    watch.start(50);
    action();
    Must(answered, "a dialog came up");
  }

  void EnterFileName(QFileDialog& dialog, const QString& path) {
    auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
    name->selectAll();
    // Pasted: typed, each folder on the way may stay selected, and be entered in place of saving.
    QGuiApplication::clipboard()->setText(path);
    QTest::keyClick(name, Qt::Key_V, Qt::ControlModifier);
    Picture(dialog.acceptMode() == QFileDialog::AcceptSave ? "save-dialog" : "open-dialog");
    // Not Enter, which a list of completions that comes late would take.
    const auto* buttons = dialog.findChild<QDialogButtonBox*>("buttonBox");
    const bool saves = dialog.acceptMode() == QFileDialog::AcceptSave;
    QTest::mouseClick(buttons->button(saves ? QDialogButtonBox::Save : QDialogButtonBox::Open), Qt::LeftButton);
  }

  void Must(bool holds, const QString& what) {
    if (!holds) throw std::runtime_error(("not true: " + what).toStdString());
  }

  void Done(const QString& step) {
    Picture(step.section(' ', 0, 2).toLower().remove('\'').replace(' ', '-'));
    std::puts((step + ": done").toUtf8().constData());
  }

  void Picture(const QString& name) {
    QTest::qWait(100);  // for what the step has painted
    TakePicture(name);
  }

  void TakePicture(const QString& name) {
    const QString file = QString("%1/%2-%3.png").arg(folder).arg(++pictures, 2, 10, QChar('0')).arg(name);
    const bool virtualScreen = QGuiApplication::platformName() == "xcb";
    const QPixmap picture = virtualScreen ? frame.screen()->grabWindow(0) : frame.grab();
    Must(picture.save(file), "the picture " + file + " is written");
  }

  AppMain& app;
  frmMain& frame;
  QString folder;
  int pictures = 0;
};

}  // namespace
}  // namespace chanplan

int main(int argc, char* argv[]) {
  using namespace chanplan;
  QApplication application(argc, argv);
  if (argc != 2) {
    std::fputs("usage: chanplan-tour FOLDER\n", stderr);
    return 2;
  }
  const QString folder = QDir(argv[1]).absolutePath();
  QDir().mkpath(folder);
  for (const char* file : {"/tour.sig", "/copy.sig", "/tour.htm"}) QFile::remove(folder + file);
  // A profile of its own, in which the simulated unit is COM 1.
  const QString unitLink = folder + "/unit";
  for (const char* variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME"}) qputenv(variable, (folder + "/profile").toUtf8());
  QDir(folder + "/documents").removeRecursively();
  QDir().mkpath(folder + "/documents");
  QDir().mkpath(folder + "/profile");
  QFile folders(folder + "/profile/user-dirs.dirs");
  if (folders.open(QIODevice::WriteOnly)) folders.write(("XDG_DOCUMENTS_DIR=\"" + folder + "/documents\"\n").toUtf8());
  folders.close();
  QSettings(QString::fromStdString(SettingsFile()), QSettings::IniFormat).setValue("Settings/CommDevice1", unitLink);
  QProcess unit;
  unit.start(QCoreApplication::applicationDirPath() + "/handheld-simulator", {"--link", unitLink, "--baud", "9600"});
  if (!unit.waitForReadyRead()) {
    std::fputs("chanplan-tour: the simulated unit does not start\n", stderr);
    return 1;
  }
  AppMain app(std::make_unique<QtSerialPort>(CommDevice), SystemTiming(), frmDocument::Make);
  app.Main();
  app.Frame->activateWindow();
  if (!QTest::qWaitForWindowActive(app.Frame.get())) std::fputs("the frame was not activated\n", stderr);
  int exitCode = 0;
  try {
    Tour(app, folder).Run();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "chanplan-tour: %s\n", failure.what());
    exitCode = 1;
  }
  unit.terminate();
  unit.waitForFinished();
  return exitCode;
}
