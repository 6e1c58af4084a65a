// The about box.
#include <QScreen>

#include "app/frm_about.h"
#include "tests/app/app_fixture.h"

using namespace chanplan;
using namespace chanplan::testing;

TEST(VersionLine, MinorNumberHasTwoDigits) {
  EXPECT_EQ(VersionLine(1, 0), "32-bit Version 1.00");
  EXPECT_EQ(VersionLine(2, 7), "32-bit Version 2.07");
  EXPECT_EQ(VersionLine(10, 12), "32-bit Version 10.12");
}

using AboutBox = AppTest;

TEST_F(AboutBox, SaysWhatTheProgramIs) {
  Start();
  Answer([](QWidget& box) {
    EXPECT_EQ(box.objectName(), "frmAbout");
    EXPECT_EQ(box.windowTitle(), "About ");
    EXPECT_EQ(box.findChild<QLabel*>("Label1")->text(), "Chanplan Editor");
    EXPECT_EQ(box.findChild<QLabel*>("Label2")->text(), "32-bit Version 1.00");
    EXPECT_FALSE(box.findChild<QLabel*>("Label3")->text().isEmpty());
    EXPECT_FALSE(box.findChild<QLabel*>("Label7")->text().isEmpty());
    EXPECT_FALSE(box.findChild<QLabel*>("Image1")->pixmap().isNull());
    QTest::mouseClick(box.findChild<QPushButton*>(), Qt::LeftButton);
    EXPECT_FALSE(box.isVisible());
  });
  Choose("mnuHelpAbout");
}

TEST_F(AboutBox, StandsInTheMiddleOfTheScreen) {
  Start();
  Answer([](QWidget& box) {
    const QSize screen = box.screen()->size();
    EXPECT_EQ(box.pos(), QPoint((screen.width() - box.width()) / 2, (screen.height() - box.height()) / 2));
    box.close();
  });
  Choose("mnuHelpAbout");
}

TEST_F(AboutBox, EscIsTheOneKeyThatClosesIt) {
  Start();
  Answer([](QWidget& box) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_A, Qt::Key_F1, Qt::Key_Backspace}) {
      QTest::keyClick(QApplication::focusWidget(), key);
      EXPECT_TRUE(box.isVisible()) << key;
    }
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(box.isVisible());
  });
  Choose("mnuHelpAbout");
}
