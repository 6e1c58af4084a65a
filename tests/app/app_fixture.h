// The application as a user has it before them: a frame on a screen, with mouse and keys.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <deque>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "app/app_main.h"
#include "app/frm_main.h"
#include "editor/frm_document.h"
#include "settings/settings_store.h"
#include "tests/app/stand_in_document.h"
#include "tests/core/temp_folder.h"
#include "tests/editor/user.h"
#include "tests/unit/hand_driven_link.h"

namespace chanplan::testing {

/// A machine that has not all of the ports 1 to 6.
class MachinePort : public FakePort {
 public:
  MachinePort(const HandDrivenClock& portClock, const std::set<int>& absentPorts, const std::set<int>& busyPorts)
      : FakePort(portClock), absent(absentPorts), busy(busyPorts) {}
  void SetPortNumber(int number) override {
    FakePort::SetPortNumber(number);
    if (busy.contains(number)) throw PortError("port " + std::to_string(number) + " is busy");
    if (absent.contains(number)) throw PortError("there is no port " + std::to_string(number), true);
  }

 private:
  const std::set<int>& absent;
  const std::set<int>& busy;
};

class AppTest : public ::testing::Test {
 protected:
  AppTest() {
    for (const char* variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME"})
      qputenv(variable, folder.Path().string().c_str());
  }
  ~AppTest() override {
    EXPECT_TRUE(answers.AllGiven()) << "a dialog that was waited for did not come";
    answers.Stop();
    app.reset();
  }

  // The application.
  void Start(const QStringList& paths = {}) {
    Make();
    app->Main(paths);
    Activate();
  }
  /// With documents that write down what they are asked to do.
  void StartWithStandIns() {
    Make([](FrameOperations& frame, DocumentState& state, SharedTables&) {
      return std::make_unique<StandInDocument>(frame, state);
    });
    app->Main();
    Activate();
  }
  /// Closes the frame as the user does, and forgets the application.
  void Exit() {
    Choose("mnuFileExit");
    EXPECT_TRUE(Frame().isHidden());
    app.reset();
  }
  void Activate() {
    if (Frame().isMinimized()) return;
    Frame().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Frame(), LongestWait));
  }
  frmMain& Frame() { return *app->Frame; }
  QSettings Store() { return SettingsStore(); }
  std::string SettingsFile() { return Store().fileName().toStdString(); }
  void SetStored(const QString& key, const QString& value) {
    QSettings store = Store();
    store.setValue(key, value);
    store.sync();
  }
  QString Stored(const QString& key) { return Store().value(key).toString(); }

  /// What the application's link works with.
  virtual std::unique_ptr<PortObject> MakePort() {
    return std::make_unique<MachinePort>(clock, absentPorts, busyPorts);
  }
  virtual LinkTiming MakeTiming() { return clock.Timing(); }

  // What is on the frame, by its name.
  template <typename Control>
  Control& Get(const QString& name) {
    Control* control = Frame().findChild<Control*>(name);
    if (control == nullptr) throw std::runtime_error("there is no " + name.toStdString());
    return *control;
  }
  QAction& Item(const QString& name) { return Get<QAction>(name); }
  QString StatusPanel2() { return Get<QLabel>("sbStatusBarPanel2").text(); }
  QStringList VisibleItems(const QMenu& menu) {
    QStringList captions;
    for (const QAction* action : menu.actions())
      if (action->isVisible() && !action->isSeparator()) captions += action->text();
    return captions;
  }
  /// The recent files as the File menu shows them.
  QStringList RecentMenu() {
    QStringList files;
    for (int number = 1; number <= 5; ++number)
      if (const QAction& item = Item("mnuRecentFile" + QString::number(number)); item.isVisible())
        files += item.text().replace("&&", "&");
    return files;
  }
  QStringList Captions() {
    QStringList captions;
    for (const auto& document : app->Registry.Documents)
      if (document != nullptr && !document->State().Released) captions += document->windowTitle();
    return captions;
  }
  StandInDocument& StandIn() { return dynamic_cast<StandInDocument&>(*Frame().ActiveDocument()); }

  // What the user does.
  QMenu& DropDown(const QString& name) {
    QMenu& menu = Get<QMenu>(name);
    QTest::mouseClick(Frame().menuBar(), Qt::LeftButton, {},
                      Frame().menuBar()->actionGeometry(menu.menuAction()).center());
    EXPECT_TRUE(menu.isVisible());
    return menu;
  }
  void PullUp() {
    while (QWidget* menu = QApplication::activePopupWidget()) menu->close();
  }
  /// Clicks an item in its menu, which drops down for it. A greyed item does nothing.
  void Choose(const QString& name) {
    for (QObject* owner : Item(name).associatedObjects()) {
      QMenu* menu = qobject_cast<QMenu*>(owner);
      if (menu == nullptr) continue;
      QMenu* top = menu;
      while (QMenu* parent = qobject_cast<QMenu*>(top->parentWidget())) top = parent;
      DropDown(top->objectName());
      if (menu != top) {
        top->setActiveAction(menu->menuAction());
        QTest::keyClick(top, Qt::Key_Right);
      }
      ClickItem(*menu, Item(name));
      PullUp();
      QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
      return;
    }
    FAIL() << name.toStdString() << " is in no menu";
  }
  void Press(const QString& buttonKey) {
    QWidget* button = Get<QToolBar>("ToolBar").widgetForAction(&Item("ToolBar" + buttonKey));
    QTest::mouseClick(button, Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  /// To the focus itself, as a key that is sent to a window runs no shortcut.
  void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus != nullptr ? focus : &Frame(), key, modifiers);
  }

  // Dialogs: each one that comes up takes the next of these answers. One without an answer fails the test.
  void Answer(std::function<void(QWidget&)> answer) { answers.GiveToDialog(std::move(answer)); }
  /// From now on dialogs are left to the test.
  void AnswerNothing() { answers.Stop(); }
  void AnswerMessage(QMessageBox::StandardButton button = QMessageBox::Ok) {
    AnswerMessage([button](QMessageBox& box) { QTest::mouseClick(box.button(button), Qt::LeftButton); });
  }
  void AnswerMessageWithEnter() {
    AnswerMessage([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); });
  }
  void AnswerMessage(std::function<void(QMessageBox&)> answer) {
    answers.Give([this, answer = std::move(answer)](QMessageBox& box) {
      messages.push_back({box.windowTitle(), box.text(), box.icon()});
      answer(box);
    });
  }
  /// Types `name` into the file dialog and presses Enter.
  void AnswerFileDialog(const QString& name) {
    Answer([name](QWidget& window) {
      QLineEdit* edit = window.findChild<QLineEdit*>("fileNameEdit");
      edit->selectAll();
      QTest::keyClicks(edit, name);
      QTest::keyClick(edit, Qt::Key_Return);
    });
  }
  void CancelFileDialog() {
    Answer([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  }

  QString InFolder(const char* name) { return QString::fromStdString((folder / name).string()); }
  /// Writes a table of standards with these names that gives no warnings.
  QString Table(const char* name, const QStringList& standards = {"DCS"}) {
    std::string text = "header\r\n";
    for (const QString& standard : standards)
      text += "2\t1\t" + standard.toStdString() + "\t1710.2\t1805.2\t512\t885\t0.2\t0.2\t1\r\n" +
              "0\t0\t\t1710.2\t1805.2\t512\t885\t0.2\t0.2\t1\r\n";
    WriteFile(folder / name, text);
    return InFolder(name);
  }

  TempFolder folder;
  std::set<int> absentPorts;
  std::set<int> busyPorts;
  HandDrivenClock clock;
  std::unique_ptr<AppMain> app;
  std::deque<Message> messages;
  Answers answers;

 private:
  void Make(DocumentFactory factory = frmDocument::Make) {
    app = std::make_unique<AppMain>(MakePort(), MakeTiming(), std::move(factory));
    app->ProgramFolder = QString::fromStdString(folder.Path().string());
  }
};

}  // namespace chanplan::testing
