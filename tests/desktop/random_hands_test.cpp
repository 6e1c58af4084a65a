// Hands that do anything, at random: after each step the table is compared with a model of its own.
#include <QAbstractItemView>
#include <QClipboard>
#include <QComboBox>
#include <algorithm>
#include <random>

#include "editor/grid_columns.h"
#include "tests/app/app_fixture.h"
#include "tests/core/random_table.h"
#include "tests/core/table_of.h"
#include "tests/desktop/desktop.h"
#include "tests/desktop/plan_model.h"

namespace chanplan::testing {
namespace {

// A few hundred by default; CHANPLAN_RANDOM_STEPS and CHANPLAN_RANDOM_SEED ask for others.
int Setting(const char* name, int otherwise) {
  bool given = false;
  const int value = qEnvironmentVariableIntValue(name, &given);
  return given ? value : otherwise;
}

class RandomHands : public AppTest {
 protected:
  RandomHands() : model(FirstTable()), past(model.Standards) {}

  static SignalStandardTable FirstTable() {
    return TableOf({{"2", 2, "GSM 900", 890.20004, 935.2, 1, 124, 0.2, 0.00625, 1},
                    {"0", 0, "GSM 900(A)", 876.5, 921.50001, 955, 973, 0.2, 0.00625, 1},
                    {"0", 0, "GSM 900(B)", 880.2, 925.2, 975, 1023, 0.2, 0.00625, 1},
                    {"1", 0, "cdma2000", 824.04, 869.04, 1, 799, 1.25, 0.03, 41},
                    {"0", 1, "UMTS", 1922.4, 2112.4, 9612, 9888, 3.84, 5, 1},
                    {"0", 0, "UMTS(A)", 1850, 1930, 1, 2, 3.84, 5, 1},
                    {"3", 0, "A name of twenty-four ch", 1, 2, 3, 4, 5, 6, 7}});
  }

  int Pick(int count) { return static_cast<int>(Between(random, 0, count - 1)); }
  bool Chance(int percent) { return Pick(100) < percent; }

  Grid& GridOf(const char* name) { return *Frame().ActiveDocument()->findChild<Grid*>(name); }
  EntryBox& Box() { return *Frame().ActiveDocument()->findChild<EntryBox*>(); }
  void ClickCell(Grid& grid, int row, int column, bool twice = false) {
    grid.scrollToItem(grid.item(row, column));
    const QPoint place = grid.visualItemRect(grid.item(row, column)).center() - QPoint(6, 0);
    if (twice)
      desktop.DoubleClick(*grid.viewport(), place);
    else
      desktop.Click(*grid.viewport(), place);
  }
  void SelectOnly(int row) { first = last = current = row; }
  void SelectSome() {
    if (model.Standards.empty()) return desktop.Press({"ctrl+w"}), Appended();
    SelectOnly(Pick(static_cast<int>(model.Standards.size())));
    ClickCell(GridOf("GridList"), first, 1);
  }
  void ClickFirst() {
    if (model.Standards.empty()) return;
    ClickCell(GridOf("GridList"), first, 1);
    SelectOnly(first);
  }
  void Appended() {
    before = current;
    if (!model.Append()) return;
    first = last = current;
  }

  // One key or more in the box; the model's box has the same.
  void UseBox(PlanBox& box) {
    const QString letters = "0123456789.,x- N";
    for (int keys = Pick(7); keys > 0; --keys) {
      const int what = Pick(20);
      if (what == 0) {
        while (Box().isUndoAvailable()) desktop.Press({"ctrl+z"});
        desktop.Press({"End"});
        box.UndoAll();
      } else if (what == 1) {
        const QString pasted =
            QStringList({"824,04", " 824.04\n", "12", "GSM", "a text of far more than it takes"})[Pick(5)];
        QGuiApplication::clipboard()->setText(pasted);
        desktop.Press({"ctrl+v"});
        box.Paste(pasted.toStdString());
      } else if (what <= 3) {
        desktop.Press({"BackSpace"});
        box.Backspace();
      } else if (what == 4) {
        desktop.Press({"shift+ctrl+End"});  // keys that are held
        desktop.Press({"End"});
        box.Deselect();
      } else if (what == 5 && Chance(20)) {
        desktop.GoToTheOtherProgram();
        desktop.ComeBack(Frame());
      } else {
        const QChar character = letters[Pick(static_cast<int>(letters.size()))];
        desktop.Type(character);
        box.Type(character.toLatin1());
      }
    }
  }
  // True when what was typed is to be stored.
  bool LeaveBox() {
    const QString key = QStringList({"Return", "Tab", "Up", "Down", "Escape", "shift+Tab", "F6"})[Pick(7)];
    desktop.Press({key});
    if (key == "F6") desktop.Press({"F6"});
    return key != "Escape";
  }

  void EditDetail() {
    const int row = std::array{0, 4, 5, 6, 7, 8, 9, 10}[static_cast<std::size_t>(Pick(8))];
    const CellKind kind = row == 0                                       ? CellKind::Text
                          : row == 4 || row == 5 || row == 8 || row == 9 ? CellKind::Decimal
                                                                         : CellKind::Whole;
    PlanBox box(kind, model.Shown(first, row));
    ClickCell(GridOf("GridDetails"), row, 1, true);
    ASSERT_TRUE(Box().hasFocus());
    ASSERT_EQ(Box().text().toStdString(), box.Text());
    UseBox(box);
    ASSERT_EQ(Box().text().toStdString(), box.Text());
    if (LeaveBox() && box.Edited()) model.Store(first, row, box.Text());
  }
  void EditBand() {
    const int bands = static_cast<int>(model.Standards[static_cast<std::size_t>(first)].Bands.size());
    if (bands == 0) return;
    const int band = Pick(bands);
    const int column = 1 + Pick(4);
    PlanBox box(column < 3 ? CellKind::Decimal : CellKind::Whole, model.ShownBand(first, band, column));
    ClickCell(GridOf("GridBands"), band, column, true);
    ASSERT_TRUE(Box().hasFocus());
    UseBox(box);
    ASSERT_EQ(Box().text().toStdString(), box.Text());
    if (LeaveBox() && box.Edited()) model.StoreBand(first, band, column, box.Text());
  }
  void EditCount() {
    const int count = Chance(10) ? Pick(180) : Pick(5);
    ClickCell(GridOf("GridDetails"), 1, 1);
    desktop.Press({"ctrl+a"});
    const bool fits = model.SetCount(first, count);
    if (!fits) answers.Give(QMessageBox::Ok);
    desktop.Type(QString::number(count));
    desktop.Press({QStringList({"Return", "Tab", "Down", "Up"})[Pick(4)]});
  }
  // A click on a list that is open already would let it drop down.
  void Choose() {
    ClickFirst();
    ClickCell(GridOf("GridDetails"), 3, 1);
    const int choice = Pick(4);
    QStringList keys = {"alt+Down", "Home"};
    for (int down = 0; down < choice; ++down) keys += "Down";
    const bool chosen = Chance(80);
    desktop.Press(keys + (chosen ? QStringList("Return") : QStringList("Escape")));
    desktop.Press({QStringList({"Return", "Tab", "Down", "Up"})[Pick(4)]});
    if (chosen) model.Standards[static_cast<std::size_t>(first)].Modulation = choice;
  }
  void TurnTheWheel() {
    const int row = 2 + Pick(2);
    ClickFirst();
    ClickCell(GridOf("GridDetails"), row, 1);
    Grid& grid = GridOf("GridDetails");
    desktop.Click(*grid.viewport(), grid.visualItemRect(grid.item(row, 1)).center(), 4 + Pick(2));
    desktop.Press({"Down"});
  }
  void Walk() {
    static const QStringList keys = {"Down", "Up", "Home", "End", "Tab", "shift+Tab", "Next", "Prior"};
    ClickCell(GridOf("GridDetails"), Pick(11), 1);
    for (int steps = Pick(8); steps > 0; --steps) desktop.Press({keys[Pick(static_cast<int>(keys.size()))]});
    ClickFirst();
  }
  // Rows with Shift, from where the list is.
  void Extend() {
    ClickFirst();
    const int anchor = first;
    current = first;
    for (int steps = 1 + Pick(3); steps > 0; --steps) {
      const int way = Pick(4);
      desktop.Press({QStringList({"shift+Down", "shift+Up", "shift+Home", "shift+End"})[way]});
      const int bottom = static_cast<int>(model.Standards.size()) - 1;
      current = way == 0 ? std::min(current + 1, bottom) : way == 1 ? std::max(current - 1, 0) : way == 2 ? 0 : bottom;
    }
    first = std::min(anchor, current);
    last = std::max(anchor, current);
  }
  // Keys stay down over more than one command.
  void UseTheClipboard() {
    if (Chance(60))
      Extend();
    else
      ClickFirst();
    desktop.Hold("ctrl");
    for (int commands = 1 + Pick(3); commands > 0 && !HasFailure(); --commands) {
      switch (Pick(4)) {
        case 0:
          desktop.Press({"c"});
          if (!model.Standards.empty()) model.Copy(first, last);
          break;
        case 1:
          desktop.Press({"x"});
          if (model.Standards.empty()) break;
          model.Copy(first, last);
          Delete();
          break;
        case 2: {
          int pasted = 0;
          for (const PlanStandard& standard : model.Copied) pasted += 1 + static_cast<int>(standard.Bands.size());
          if (pasted + model.Records() >= 200) break;  // which is asked about, in tests of its own
          desktop.Press({"v"});
          if (!model.Copied.empty())
            model.Standards.insert(model.Standards.begin() + first, model.Copied.begin(), model.Copied.end());
          before = current;
          if (!model.Copied.empty()) SelectOnly(first);
          break;
        }
        default:
          if (model.Records() >= 200) break;
          desktop.Press({"w"});
          Appended();
      }
      ExpectTheModelsTable();
    }
    desktop.LetGo("ctrl");
  }
  void Delete() {
    before = current;
    model.Delete(first, last);
    SelectOnly(std::clamp(first, 0, std::max(0, static_cast<int>(model.Standards.size()) - 1)));
  }
  void PressDelete() {
    if (Chance(40))
      Extend();
    else
      ClickFirst();
    desktop.Press({"Delete"});
    Delete();
  }

  // From a place where no box is open, which would have the keys.
  void GoBackAndForth() {
    if (Chance(30)) {
      desktop.Press({"ctrl+s"});
      past.Save();
    }
    if (Box().isVisible() || Chance(70)) ClickFirst();
    for (int steps = Chance(10) ? 250 : 1 + Pick(8); steps > 0 && past.Back() > 0; --steps) GoBack();
    ExpectTheModelsTable();
    const QString key = Chance(50) ? "ctrl+shift+z" : "ctrl+y";
    for (int steps = Chance(10) ? 250 : Pick(8); steps > 0 && past.Forth() > 0; --steps) GoForth(key);
    if (past.Back() == 0 && Chance(50)) desktop.Press({"ctrl+z"});  // there is nothing to take back
    if (past.Forth() == 0 && Chance(50)) desktop.Press({key});
  }
  void GoBack() {
    desktop.Press({"ctrl+z"});
    Show(past.GoBack());
  }
  void GoForth(const QString& key) {
    desktop.Press({key});
    Show(past.GoForth());
  }
  void Show(int row) {
    model.Standards = past.Present();
    SelectOnly(std::clamp(row, 0, std::max(0, static_cast<int>(model.Standards.size()) - 1)));
    EXPECT_EQ(Frame().ActiveDocument()->State().Changed, !past.IsSaved());
  }

  void ExpectTheModelsTable() {
    past.Note(model.Standards, before, current);
    SignalStandardTable table = Frame().ActiveDocument()->Table();
    SignalStandardTable expected = model.Table();
    for (SignalStandardTable* side : {&table, &expected}) {
      const std::vector<int> standards = StandardIndices(*side);
      for (int row = 0; row < side->Count; ++row)
        if (!std::ranges::binary_search(standards, row)) side->Row(row).State.clear();  // nobody's business there
    }
    ASSERT_EQ(table, expected);
    const Grid& list = GridOf("GridList");
    ASSERT_EQ(list.rowCount(), static_cast<int>(model.Standards.size()));
    std::vector<int> selected;
    for (const QModelIndex& index : list.selectionModel()->selectedRows()) selected.push_back(index.row());
    std::ranges::sort(selected);
    std::vector<int> rows;
    for (int row = first; row <= last && !model.Standards.empty(); ++row) rows.push_back(row);
    ASSERT_EQ(selected, rows) << "current: " << list.currentRow() << ", focus: "
                              << (QApplication::focusWidget() ? QApplication::focusWidget()->objectName().toStdString()
                                                              : "none");
  }

  void Step() {
    if (model.Standards.empty()) return SelectSome();
    if (first != last) ClickFirst();  // whose values are those that are shown
    before = current;
    switch (Pick(14)) {
      case 0:
      case 1:
        return EditDetail();
      case 2:
      case 3:
        return EditBand();
      case 4:
        return EditCount();
      case 5:
        return Choose();
      case 6:
        return TurnTheWheel();
      case 7:
        return Walk();
      case 8:
        return UseTheClipboard();
      case 9:
      case 10:
        return GoBackAndForth();
      case 11:
        if (Chance(50)) return PressDelete();
        [[fallthrough]];
      default:
        return SelectSome();
    }
  }

  std::mt19937 random{static_cast<unsigned>(Setting("CHANPLAN_RANDOM_SEED", 1))};
  Desktop& desktop = TheDesktop();
  PlanModel model;
  PlanPast past;
  int first = 0;  // of the selected standards
  int last = 0;
  int current = 0;  // the end of the selection that moves
  int before = 0;   // which one that was when the table was changed last
};

TEST_F(RandomHands, LoseAndBendNothing) {
  EXPECT_FALSE(SaveSigFile(folder / "plan.sig", FirstTable()));
  for (const char* edge : {"Settings/MainLeft", "Settings/MainTop"}) SetStored(edge, "1500");
  SetStored("Settings/MainWidth", "18000");
  SetStored("Settings/MainHeight", "13500");
  Start({InFolder("plan.sig")});
  desktop.Settle(Frame());
  const int steps = Setting("CHANPLAN_RANDOM_STEPS", 250);
  for (int step = 0; step < steps && !HasFailure(); ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    Step();
    ExpectTheModelsTable();
    if (HasFailure()) ADD_FAILURE() << "after: " << desktop.LastDeeds().toStdString();
  }
  if (HasFailure()) return;
  // All of it back, and once more.
  ClickFirst();
  while (past.Forth() > 0) GoForth("ctrl+y");
  ExpectTheModelsTable();
  const bool reachesTheFile = past.Back() < 200;
  while (past.Back() > 0) GoBack();
  ExpectTheModelsTable();
  if (reachesTheFile) {
    EXPECT_EQ(Frame().ActiveDocument()->Table(), FirstTable());
  }
  while (past.Forth() > 0) GoForth("ctrl+shift+z");
  ExpectTheModelsTable();
}

}  // namespace
}  // namespace chanplan::testing
