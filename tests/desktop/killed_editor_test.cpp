// The program itself, killed under a user's hands and started again.
#include <gtest/gtest.h>

#include <QProcess>
#include <QTest>
#include <filesystem>

#include "app/recovery.h"
#include "core/sig_file.h"
#include "editor/text_edge.h"
#include "tests/console/program.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"
#include "tests/desktop/desktop.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

class KilledEditor : public ::testing::Test {
 protected:
  void SetUp() override {
    QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    own.insert("XDG_STATE_HOME", QString::fromStdString(folder.Path().string()));
    editor.setProcessEnvironment(own);
  }
  void TearDown() override {
    editor.kill();
    editor.waitForFinished(LongestWait);
  }
  void Start(const QStringList& arguments, const QString& title) {
    editor.start(EDITOR_PROGRAM, arguments);
    ASSERT_TRUE(desktop.GoToWindow(title));
  }
  // What a start would find.
  std::string CopiedName() const {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(folder / "chanplans" / "recovery", none)) {
      if (entry.path().extension() != ".copy") continue;
      const auto copy = ReadCopyText(ReadFile(entry.path()));
      return copy ? copy->Table.Row(0).Name : "a torn copy";
    }
    return {};
  }

  Desktop& desktop = TheDesktop();
  TempFolder folder;
  QProcess editor;
};

TEST_F(KilledEditor, OffersWhatWasStoredAtItsNextStartAndSavesIt) {
  const fs::path file = folder / "plan.sig";
  const QString path = QString::fromStdString(file.string());
  ASSERT_FALSE(SaveSigFile(file, TableOfNames({"A", "B"})));
  Start({path}, "^Handheld Chanplan Editor$");
  desktop.PressElsewhere({"Home", "Tab"});
  desktop.TypeElsewhere("Stored");
  desktop.PressElsewhere({"Return"});
  ASSERT_TRUE(QTest::qWaitFor([&] { return CopiedName() == "Stored"; }, LongestWait)) << CopiedName();
  desktop.TypeElsewhere("not ye");
  editor.kill();
  ASSERT_TRUE(editor.waitForFinished(LongestWait));
  EXPECT_EQ(LoadSigFile(file).Table.Row(0).Name, "A");

  Start({}, "^Chanplans$");           // the question
  desktop.PressElsewhere({"alt+r"});  // Restore
  ASSERT_TRUE(desktop.GoToWindow("^Handheld Chanplan Editor$"));
  desktop.PressElsewhere({"ctrl+s"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return LoadSigFile(file).Table.Row(0).Name == "Stored"; }, LongestWait));
  EXPECT_EQ(LoadSigFile(file).Table.Row(1).Name, "B");
  EXPECT_TRUE(QTest::qWaitFor([&] { return CopiedName().empty(); }, LongestWait)) << CopiedName();
}

TEST_F(KilledEditor, HasStoredWhatWasTypedWhenItWasAskedToEnd) {
  const fs::path file = folder / "plan.sig";
  ASSERT_FALSE(SaveSigFile(file, TableOfNames({"A", "B"})));
  Start({QString::fromStdString(file.string())}, "^Handheld Chanplan Editor$");
  desktop.PressElsewhere({"Home", "Tab"});
  desktop.TypeElsewhere("Typed");
  editor.terminate();
  ASSERT_TRUE(QTest::qWaitFor([&] { return editor.state() == QProcess::NotRunning; }, LongestWait));
  EXPECT_EQ(editor.exitStatus(), QProcess::CrashExit) << "by the signal, as its sender expects";
  EXPECT_EQ(CopiedName(), "Typed");
  EXPECT_EQ(LoadSigFile(file).Table.Row(0).Name, "A");
}

TEST_F(KilledEditor, HasFinishedAnUploadWhenItWasAskedToEnd) {
  const fs::path file = folder / "plan.sig", held = folder / "held.sig";
  ASSERT_FALSE(SaveSigFile(file, TableOfNames(std::vector<std::string>(100, "A"))));
  RunningSimulator unit({"--trace", "--save", held});
  WriteFile(folder / "Chanplans.ini", "[Settings]\nCommPort=1\nCommDevice1=" + unit.Link() + "\n");
  QProcessEnvironment own = editor.processEnvironment();
  own.insert("XDG_CONFIG_HOME", QString::fromStdString(folder.Path().string()));
  editor.setProcessEnvironment(own);
  Start({QString::fromStdString(file.string())}, "^Handheld Chanplan Editor$");
  desktop.PressElsewhere({"alt+t", "u"});
  ASSERT_TRUE(desktop.GoToWindow("^Upload Signal Standards$"));
  desktop.PressElsewhere({"Down", "Return"});  // to overwrite
  ASSERT_TRUE(unit.WaitForOutput("is to receive a table")) << unit.Output();
  editor.terminate();
  ASSERT_TRUE(QTest::qWaitFor([&] { return editor.state() == QProcess::NotRunning; }, LongestWait));
  EXPECT_EQ(LoadSigFile(held).Table.Count, 100) << unit.Output();
}

// A screen that goes away, as when its server is ended or a remote session is cut, takes the editor with it.
TEST_F(KilledEditor, OffersWhatWasStoredAfterItsScreenHasGone) {
  const fs::path file = folder / "plan.sig";
  ASSERT_FALSE(SaveSigFile(file, TableOfNames({"A", "B"})));
  QProcess screen;
  screen.start("Xvfb", {"-displayfd", "1", "-screen", "0", "1280x1024x24", "-r", "-noreset"});
  ASSERT_TRUE(QTest::qWaitFor([&] { return screen.canReadLine(); }, LongestWait));
  QProcessEnvironment there = editor.processEnvironment();
  there.insert("DISPLAY", ":" + QString::fromLatin1(screen.readLine()).trimmed());

  editor.setProcessEnvironment(there);
  editor.start(EDITOR_PROGRAM, {QString::fromStdString(file.string())});
  QProcess hands;
  hands.setProcessEnvironment(there);
  hands.start("xdotool", {"search", "--sync", "--onlyvisible", "--name", "^Handheld Chanplan Editor$", "windowfocus",
                          "--sync", "key", "Home", "key", "Tab", "type", "Stored"});
  ASSERT_TRUE(hands.waitForFinished(LongestWait));
  hands.start("xdotool", {"key", "Return"});
  ASSERT_TRUE(QTest::qWaitFor([&] { return CopiedName() == "Stored"; }, LongestWait)) << CopiedName();
  screen.kill();
  ASSERT_TRUE(screen.waitForFinished(LongestWait));
  ASSERT_TRUE(QTest::qWaitFor([&] { return editor.state() == QProcess::NotRunning; }, LongestWait));
  EXPECT_EQ(LoadSigFile(file).Table.Row(0).Name, "A");

  there.insert("DISPLAY", qEnvironmentVariable("DISPLAY"));
  editor.setProcessEnvironment(there);
  Start({}, "^Chanplans$");           // the question
  desktop.PressElsewhere({"alt+r"});  // Restore
  ASSERT_TRUE(desktop.GoToWindow("^Handheld Chanplan Editor$"));
  desktop.PressElsewhere({"ctrl+s"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return LoadSigFile(file).Table.Row(0).Name == "Stored"; }, LongestWait));
}

}  // namespace
}  // namespace chanplan::testing
