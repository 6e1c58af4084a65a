// Files dropped on the frame, as another program's pointer brings them.
#include <QDragEnterEvent>
#include <QMimeData>

#include "editor/grid_columns.h"
#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

namespace {

class FileDropsTest : public AppTest {
 protected:
  // Drags `data` to the middle of `target` and drops it there. What the source is told of it.
  Qt::DropAction Drop(std::unique_ptr<QMimeData> data, QWidget& target,
                      Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction) {
    QWindow& window = *target.window()->windowHandle();  // where the platform brings it
    const QPoint place = target.mapTo(target.window(), target.rect().center());
    QDragEnterEvent enter(place, offered, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(&window, &enter);
    QDragMoveEvent move(place, offered, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(&window, &move);
    if (!move.isAccepted()) {
      QDragLeaveEvent leave;
      QApplication::sendEvent(&window, &leave);
      return Qt::IgnoreAction;
    }
    QDropEvent drop(place, offered, data.get(), Qt::NoButton, {});
    QApplication::sendEvent(&window, &drop);
    QCoreApplication::processEvents();
    return drop.isAccepted() ? drop.dropAction() : Qt::IgnoreAction;
  }
  static std::unique_ptr<QMimeData> Urls(const QList<QUrl>& addresses) {
    auto data = std::make_unique<QMimeData>();
    data->setUrls(addresses);
    data->setText(addresses.value(0).toString());  // as file managers do
    return data;
  }
  static std::unique_ptr<QMimeData> Paths(const QStringList& paths) {
    QList<QUrl> addresses;
    for (const QString& path : paths) addresses += QUrl::fromLocalFile(path);
    return Urls(addresses);
  }
  QString Status() { return Get<QLabel>("sbStatusBarPanel1").text(); }
};

}  // namespace

TEST_F(FileDropsTest, OpenTablesWhereverTheyAreDropped) {
  Start();
  QStringList opened;
  for (const char* place :
       {"sbStatusBar", "ToolBar", "documents", "lstWarnings", "GridList", "GridDetails", "GridBands"}) {
    const QString path = Table((std::string(place) + ".sig").c_str());
    opened += path;
    EXPECT_EQ(Drop(Paths({path}), Get<QWidget>(place)), Qt::CopyAction) << place;
    EXPECT_EQ(Captions(), opened) << place;
  }
  EXPECT_EQ(RecentMenu().value(0), opened.back());
}

TEST_F(FileDropsTest, OpenTablesThatAreDroppedOnAnOpenEditBox) {
  Start({Table("a.sig")});
  Grid& details = Get<Grid>("GridDetails");
  details.setFocus();
  QTest::keyClick(&details, Qt::Key_F2);
  ASSERT_TRUE(Get<QLineEdit>("txtEntry").isVisible());
  EXPECT_EQ(Drop(Paths({Table("b.sig")}), Get<QLineEdit>("txtEntry")), Qt::CopyAction);
  EXPECT_EQ(Captions(), QStringList({InFolder("a.sig"), InFolder("b.sig")}));
  EXPECT_EQ(details.CellText(NameRow, 1), "DCS");
}

TEST_F(FileDropsTest, LeaveTextsToTheBoxes) {
  Start({Table("a.sig")});
  Grid& details = Get<Grid>("GridDetails");
  details.setFocus();
  QTest::keyClick(&details, Qt::Key_F2);
  auto text = std::make_unique<QMimeData>();
  text->setText("GSM");
  EXPECT_NE(Drop(std::move(text), Get<QLineEdit>("txtEntry")), Qt::IgnoreAction);
  EXPECT_TRUE(Get<QLineEdit>("txtEntry").text().contains("GSM"));
  EXPECT_EQ(Captions().size(), 1);
}

TEST_F(FileDropsTest, OpenSeveralTablesAtOnceAndSayWhichAreNone) {
  Start();
  const QString a = Table("a.sig");
  const QString b = Table("B.SIG");
  WriteFile(folder / "note.txt", "");
  EXPECT_EQ(Drop(Paths({a, InFolder("note.txt"), b}), Frame()), Qt::CopyAction);
  EXPECT_EQ(Captions(), QStringList({a, b}));
  EXPECT_EQ(RecentMenu(), QStringList({b, a}));
  EXPECT_EQ(Status(), "note.txt was not opened: it is no Signal Standard file (*.sig).");
}

TEST_F(FileDropsTest, RefuseOtherFilesAndSayWhy) {
  Start();
  for (const char* name : {"a.txt", "b.sig.bak", "sig"}) WriteFile(folder / name, "header\r\n");
  EXPECT_EQ(Drop(Paths({InFolder("a.txt"), InFolder("b.sig.bak"), InFolder("sig")}), Frame()), Qt::IgnoreAction);
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  EXPECT_EQ(Status(), "a.txt and 2 more were not opened: they are no Signal Standard files (*.sig).");
  EXPECT_EQ(RecentMenu(), QStringList());
}

TEST_F(FileDropsTest, TellTablesThatCannotBeOpenedAsTheDialogDoes) {
  Start();
  AnswerMessage();
  Drop(Paths({InFolder("gone.sig")}), Frame());
  EXPECT_TRUE(QTest::qWaitFor([this] { return !messages.empty(); }, LongestWait));
  EXPECT_EQ(messages.back(), (Message{"", "Can't open file: " + InFolder("gone.sig"), QMessageBox::NoIcon}));
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
}

TEST_F(FileDropsTest, IgnoreAddressesOfOtherMachines) {
  Start();
  const QString path = Table("a.sig");
  const QList<QUrl> elsewhere = {QUrl("https://example.org" + path), QUrl("file://elsewhere.invalid" + path)};
  EXPECT_EQ(Drop(Urls(elsewhere), Frame()), Qt::IgnoreAction);
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  EXPECT_EQ(Status(), "");
  Drop(Urls({QUrl("file://localhost" + path)}), Frame());
  EXPECT_EQ(Captions(), QStringList({path}));
}

// A source that takes a drop for a move would delete its file.
TEST_F(FileDropsTest, AreNeverTakenForMoves) {
  Start();
  EXPECT_EQ(Drop(Paths({Table("a.sig")}), Frame(), Qt::MoveAction), Qt::IgnoreAction);
  EXPECT_EQ(Captions(), QStringList({"Untitled 1"}));
  EXPECT_EQ(Drop(Paths({Table("a.sig")}), Frame(), Qt::MoveAction | Qt::LinkAction), Qt::LinkAction);
  EXPECT_EQ(Captions(), QStringList({InFolder("a.sig")}));
}
