// Hands that are faster than the program.
#include "editor/grid_columns.h"
#include "tests/app/app_fixture.h"
#include "tests/core/table_of.h"
#include "tests/desktop/desktop.h"

namespace chanplan::testing {
namespace {

constexpr int StopRow = 7;

class TypedAhead : public AppTest {
 protected:
  Desktop& desktop = TheDesktop();

  Grid& Details() { return *Frame().ActiveDocument()->findChild<Grid*>("GridDetails"); }
  void Open() {
    EXPECT_FALSE(SaveSigFile(folder / "some.sig", TableOf({NamedRow("A", 1), NamedRow("A(A)"), NamedRow("B")})));
    Start({InFolder("some.sig")});
    desktop.Settle(Frame());
    desktop.Click(*Details().viewport(), Details().visualItemRect(Details().item(StopRow, 1)).center());
    EXPECT_EQ(Details().currentRow(), StopRow);
  }
};

TEST_F(TypedAhead, KeysBehindAMenuGoToTheTable) {
  struct Menu {
    QStringList Opened;
    QStringList Closed;
  };
  Open();
  int channel = 1;
  for (const auto& [opened, closed] :
       {Menu{{"alt+w"}, {"h"}}, Menu{{"alt+w"}, {"Down", "Down", "Return"}}, Menu{{"alt+v"}, {"Escape", "Escape"}},
        Menu{{"Menu"}, {"c"}}, Menu{{"shift+F10"}, {"Escape"}}, Menu{{"alt+minus"}, {"Escape"}}}) {
    SCOPED_TRACE((opened + closed).join(' ').toStdString());
    desktop.Press(opened);
    ASSERT_NE(QApplication::activePopupWidget(), nullptr);
    ++channel;
    desktop.PressWhileBusy(closed + QStringList{QString::number(channel), "Return", "ctrl+s"});
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(Frame().ActiveDocument()->Table().Row(0).StopChannel, channel);
    EXPECT_EQ(LoadSigFile(folder / "some.sig").Table.Row(0).StopChannel, channel);
    Details().setCurrentCell(StopRow, 1);
  }
}

TEST_F(TypedAhead, KeysBehindAListGoToTheTable) {
  Open();
  Details().setCurrentCell(ModulationRow, 1);
  desktop.Press({"alt+Down"});
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  desktop.PressWhileBusy({"Return", "Down", "Down", "Down", "Down", "9", "Return"});
  EXPECT_EQ(Frame().ActiveDocument()->Table().Row(0).StopChannel, 9);
}

}  // namespace
}  // namespace chanplan::testing
