// The program itself, by the keyboard alone: nothing is reached into.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QProcess>
#include <QTest>

#include "core/sig_file.h"
#include "editor/text_edge.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"
#include "tests/desktop/desktop.h"

namespace chanplan::testing {
namespace {

class KeyboardAlone : public ::testing::Test {
 protected:
  void Start(const QString& path) {
    editor.start(EDITOR_PROGRAM, {path});
    ASSERT_TRUE(desktop.GoToWindow("^Handheld Chanplan Editor"));
  }
  // Only a file that is whole is ever at this path.
  bool SavedAs(const QString& path, const SignalStandardTable& expected) {
    return QTest::qWaitFor([&] { return LoadSigFile(PathOf(path)).Table == expected; }, LongestWait);
  }
  void Leave() {
    desktop.PressElsewhere({"alt+f", "x"});
    EXPECT_TRUE(QTest::qWaitFor([this] { return editor.state() == QProcess::NotRunning; }, LongestWait));
  }

  Desktop& desktop = TheDesktop();
  TempFolder folder;
  QProcess editor;
};

TEST_F(KeyboardAlone, FiveStandardsWithSubbandsAreEnteredOneIsCorrectedAndAllAreSaved) {
  SignalStandardTable expected;
  const QString path = QString::fromStdString((folder / "plan.sig").string());
  ASSERT_FALSE(SaveSigFile(PathOf(path), expected));
  Start(path);
  for (int number = 1; number <= 5; ++number) {
    const QString name = "Net " + QString::number(number);
    const QString channel = QString::number(number);
    desktop.PressElsewhere({"ctrl+w"});
    // The list has the focus; the new standard is its last one.
    desktop.PressElsewhere({"End", "Tab"});
    desktop.TypeElsewhere(name);
    desktop.PressElsewhere({"Tab"});
    desktop.TypeElsewhere("1");  // sub-band
    desktop.PressElsewhere({"Tab", "Tab", "g", "Tab"});
    for (const QString& value : {QString("890.2"), QString("935.2"), channel, QString("124"), QString("0.2"),
                                 QString("0.00625"), QString("1")}) {
      desktop.TypeElsewhere(value);
      desktop.PressElsewhere({"Tab"});
    }
    for (const QString& value : {QString("876.5"), QString("921.5"), channel, QString("40")}) {
      desktop.PressElsewhere({"F2"});
      desktop.TypeElsewhere(value);
      desktop.PressElsewhere({"Return", "Tab"});
    }
    SignalStandardRecord band = {"", 0, name.toStdString() + "(A)", 876.5, 921.5, number, 40, 0.2, 0.00625, 1};
    expected.Append({"2", 1, name.toStdString(), 890.2, 935.2, number, 124, 0.2, 0.00625, 1});
    expected.Append(band);
  }
  // The third one is corrected: its name begins so.
  desktop.TypeElsewhere("Net 3");
  desktop.PressElsewhere({"Tab", "Tab", "Tab", "Tab", "Tab", "Tab"});
  desktop.TypeElsewhere("936.4");
  desktop.PressElsewhere({"Return", "ctrl+s"});
  expected.Row(4).DownlinkStartFreq = 936.4;
  // A file's State is read as a number: a sub-band's empty one as 0.
  for (int row = 1; row < expected.Count; row += 2) expected.Row(row).State = "0";
  EXPECT_TRUE(SavedAs(path, expected)) << "saved: " << ::testing::PrintToString(LoadSigFile(PathOf(path)).Table);
  Leave();
}

TEST_F(KeyboardAlone, KeysThatOnlyWalkLeaveTheFileAsItWas) {
  SignalStandardTable table = TableOf({{"131", 2, "A", 890.20004, 935.2, 1, 124, 0.00005, 0.00625, 1},
                                       {"0", 0, "A(A)", 1.00001, 2, 3, 4, 0.00005, 0.00625, 1},
                                       {"0", 0, "A(B)", 5, 6, 7, 8, 0.00005, 0.00625, 1},
                                       NamedRow("B")});
  const QString path = QString::fromStdString((folder / "walked.sig").string());
  ASSERT_FALSE(SaveSigFile(PathOf(path), table));
  const std::string former = ReadFile(folder / "walked.sig");
  Start(path);
  for (const char* key : {"Tab", "Down", "Up", "shift+Tab", "Next", "Prior", "Home", "End", "F6", "F6"}) {
    QStringList keys;
    for (int time = 0; time < 16; ++time) keys += key;
    desktop.PressElsewhere(keys);
  }
  // With nothing changed the program ends without a question.
  Leave();
  EXPECT_EQ(ReadFile(folder / "walked.sig"), former);
}

// Were another document the active one, Save would ask for its name, and the keys behind would go astray.
TEST_F(KeyboardAlone, DocumentThatABoxIsAboutStaysTheActiveOneAlsoMinimised) {
  const QString path = QString::fromStdString((folder / "kept.sig").string());
  ASSERT_FALSE(SaveSigFile(PathOf(path), TableOf({NamedRow("A")})));
  const auto hasRows = [&](int rows) {
    return QTest::qWaitFor([&] { return LoadSigFile(PathOf(path)).Table.Count == rows; }, LongestWait);
  };
  const auto answerBehindOtherKeys = [&](const QString& key) {
    desktop.PressElsewhere({"ctrl+F4"});
    ASSERT_TRUE(desktop.GoToWindow("^Chanplans$"));
    desktop.PressElsewhere({"ctrl+Tab", "ctrl+F6", "ctrl+shift+Tab", key});
    ASSERT_TRUE(desktop.GoToWindow("^Handheld Chanplan Editor"));
  };
  Start(path);
  desktop.PressElsewhere({"ctrl+n", "ctrl+Tab", "ctrl+w"});
  answerBehindOtherKeys("Escape");
  desktop.PressElsewhere({"F6", "Tab", "ctrl+s"});
  EXPECT_TRUE(hasRows(2));
  desktop.PressElsewhere({"ctrl+w", "alt+minus", "n"});
  answerBehindOtherKeys("Escape");
  answerBehindOtherKeys("y");
  EXPECT_TRUE(hasRows(3));
  Leave();
}

TEST_F(KeyboardAlone, WarningIsCopiedFromTheMenuOfItsOwnKey) {
  const QString path = QString::fromStdString((folder / "doubtful.sig").string());
  ASSERT_FALSE(SaveSigFile(PathOf(path), TableOf({{"1", 1, "DCS", 9850, 1805.2, 512, 885, 0.2, 0.2, 1}})));
  Start(path);
  desktop.PressElsewhere({"F6", "Down", "Menu", "c"});
  const QString warning = "Warning:\tDCS\tStart frequency appears out of range.";
  EXPECT_TRUE(QTest::qWaitFor([&] { return QGuiApplication::clipboard()->text() == warning; }, LongestWait))
      << QGuiApplication::clipboard()->text().toStdString();
  Leave();
}

}  // namespace
}  // namespace chanplan::testing
