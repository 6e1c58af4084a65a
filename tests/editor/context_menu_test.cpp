// The context menus of the grids: what they offer, and that it is done.
#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

using Names = std::vector<std::string>;

class ContextMenu : public DocumentTest {
 protected:
  ~ContextMenu() override {
    while (QWidget* menu = QApplication::activePopupWidget()) menu->close();
  }

  Document OpenPlan() {
    return Open({{"2", 2, "GSM", 890, 935, 1, 124, 0.2, 0.2, 1},
                 {"0", 0, "GSM(A)", 890, 935, 1, 60, 0.2, 0.2, 1},
                 {"0", 0, "GSM(B)", 900, 945, 61, 124, 0.2, 0.2, 1},
                 {"1", 0, "CDMA", 824, 869, 1, 799, 1.25, 0.03, 1}});
  }

  /// The menu that has come up.
  static QMenu& Shown() {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu == nullptr) throw std::runtime_error("no menu has come up");
    return *menu;
  }
  /// As the right button does: a press, and then the menu is asked for.
  static QMenu& RightClick(Grid* grid, int row, int column = 1) {
    const QPoint at = Document::CellCentre(*grid, row, column);
    QTest::mousePress(grid->window()->windowHandle(), Qt::RightButton, {}, at);
    QMenu& menu = AskedFor(*grid, QContextMenuEvent::Mouse, grid->viewport()->mapFrom(grid->window(), at));
    QTest::mouseRelease(grid->window()->windowHandle(), Qt::RightButton, {}, at);
    return menu;
  }
  static QMenu& AskedFor(Grid& grid, QContextMenuEvent::Reason reason, const QPoint& at) {
    if (QApplication::activePopupWidget() == nullptr) {
      QContextMenuEvent event(reason, at, grid.viewport()->mapToGlobal(at));
      QApplication::sendEvent(grid.viewport(), &event);
    }
    return Shown();
  }
  static QStringList Items(const QMenu& menu, bool enabledOnly) {
    QStringList items;
    for (const QAction* item : menu.actions())
      if (!item->isSeparator() && (item->isEnabled() || !enabledOnly)) {
        const QString key = item->shortcut().toString();
        items += item->text().remove('&') + (key.isEmpty() ? "" : " " + key);
      }
    return items;
  }
  static void Choose(QMenu& menu, const char* name) {
    auto* item = menu.findChild<QAction*>(name);
    ASSERT_NE(item, nullptr) << name;
    ClickItem(menu, *item);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
  }
};

TEST_F(ContextMenu, OfTheListOffersWhatBecomesOfStandards) {
  const Document document = OpenPlan();
  QMenu& menu = RightClick(document.List, 1);
  EXPECT_EQ(menu.objectName(), "mnuContextGridList");
  EXPECT_EQ(Items(menu, false), QStringList({"Undo Ctrl+Z", "Redo Ctrl+Shift+Z", "Cut Ctrl+X", "Copy Ctrl+C",
                                             "Paste Ctrl+V", "Delete Del", "New Signal Standard Ctrl+W", "Chart F8"}));
  EXPECT_EQ(Items(menu, true),
            QStringList({"Cut Ctrl+X", "Copy Ctrl+C", "Delete Del", "New Signal Standard Ctrl+W", "Chart F8"}));
  EXPECT_EQ(document.List->currentRow(), 1) << "it is about the row that was clicked";
}

TEST_F(ContextMenu, OfValuesAndSubbandsOffersWhatBecomesOfThem) {
  const Document document = OpenPlan();
  const QStringList all = {"Undo Ctrl+Z",
                           "Redo Ctrl+Shift+Z",
                           "Edit F2",
                           "Cut Ctrl+X",
                           "Copy Ctrl+C",
                           "Paste Ctrl+V",
                           "Add Sub-band at the End",
                           "Remove Last Sub-band",
                           "Chart F8"};
  const QStringList possible = {
      "Edit F2", "Cut Ctrl+X", "Copy Ctrl+C", "Add Sub-band at the End", "Remove Last Sub-band", "Chart F8"};
  for (Grid* grid : {document.Details, document.Bands}) {
    QMenu& menu = RightClick(grid, grid == document.Details ? UplinkRow : 1);
    EXPECT_EQ(menu.objectName(), "mnuContext" + grid->objectName());
    EXPECT_EQ(Items(menu, false), all);
    EXPECT_EQ(Items(menu, true), possible);
    menu.close();
  }
  document.Click(document.List, 1);
  QMenu& menu = RightClick(document.Details, ModulationRow);
  EXPECT_EQ(Items(menu, true), QStringList({"Edit F2", "Copy Ctrl+C", "Add Sub-band at the End", "Chart F8"}))
      << "a choice cannot be cut, and there is no sub-band to remove";
  EXPECT_FALSE(document.Modulation->isVisible());
}

TEST_F(ContextMenu, BesideTheCellsOffersNothingOfACell) {
  const Document document = OpenPlan();
  document.Window->resize(1300, 800);
  const auto beside = [](Grid& grid) {
    const QPoint at = grid.viewport()->rect().bottomRight() - QPoint(3, 3);
    EXPECT_FALSE(grid.indexAt(at).isValid());
    QTest::mouseClick(grid.viewport(), Qt::RightButton, {}, at);
    return Items(AskedFor(grid, QContextMenuEvent::Mouse, at), true);
  };
  for (Grid* grid : {document.Details, document.Bands}) {
    document.Click(grid, grid == document.Details ? int(UplinkRow) : 1);
    EXPECT_EQ(beside(*grid), QStringList({"Add Sub-band at the End", "Remove Last Sub-band", "Chart F8"}));
    EXPECT_NE(grid->currentItem(), nullptr) << "it could be cut otherwise";
    Shown().close();
  }
  EXPECT_EQ(beside(*document.List), QStringList({"New Signal Standard Ctrl+W", "Chart F8"}));
  Shown().close();
  document.Click(document.List, 0);
  Choose(RightClick(document.List, 0), "mnuContextCopy");
  EXPECT_TRUE(beside(*document.List).contains("Paste Ctrl+V")) << "before the selected one";
}

TEST_F(ContextMenu, ShowsTheChart) {
  const Document document = OpenPlan();
  const auto isChecked = [](QMenu& menu) { return menu.findChild<QAction*>("mnuContextChart")->isChecked(); };
  QMenu& unshown = RightClick(document.List, 1);
  EXPECT_FALSE(isChecked(unshown));
  Choose(unshown, "mnuContextChart");
  ASSERT_NE(document.Window->findChild<QWidget*>("ChartPanel"), nullptr);
  EXPECT_TRUE(document.Window->findChild<QWidget*>("ChartPanel")->isVisible());
  QMenu& shown = RightClick(document.List, 1);
  EXPECT_TRUE(isChecked(shown));
  Choose(shown, "mnuContextChart");
  EXPECT_FALSE(document.Window->findChild<QWidget*>("ChartPanel")->isVisible());
}

TEST_F(ContextMenu, OfAnEmptyTableOffersANewStandard) {
  const Document document = OpenEmpty();
  QMenu& menu = AskedFor(*document.List, QContextMenuEvent::Keyboard, {});
  EXPECT_EQ(Items(menu, true), QStringList({"New Signal Standard Ctrl+W", "Chart F8"}));
  Choose(menu, "mnuContextNewChanplan");
  EXPECT_EQ(NamesIn(document), Names({"[New Standard]"}));
  for (Grid* grid : {document.Details, document.Bands}) {
    document.Window->Undo();
    EXPECT_EQ(Items(AskedFor(*grid, QContextMenuEvent::Keyboard, {}), true),
              QStringList({"Redo new standard Ctrl+Shift+Z", "Chart F8"}));
    Shown().close();
  }
}

TEST_F(ContextMenu, OfAFullTableOffersNothingMore) {
  answers.Give(QMessageBox::Ok);
  const Document document = Open(Group("A", 198) + Group("B", 0));
  EXPECT_FALSE(Items(RightClick(document.List, 0), true).contains("New Signal Standard Ctrl+W"));
  Shown().close();
  EXPECT_FALSE(Items(RightClick(document.Details, UplinkRow), true).contains("Add Sub-band at the End"));
  Choose(Shown(), "mnuContextRemoveSubband");
  EXPECT_EQ(TableIn(document).Count, 199);
  EXPECT_FALSE(Items(RightClick(document.Details, UplinkRow), true).contains("Add Sub-band at the End"));
  Shown().close();
  EXPECT_TRUE(Items(RightClick(document.List, 0), true).contains("New Signal Standard Ctrl+W"));
}

TEST_F(ContextMenu, IsAboutAllThatIsSelected) {
  const Document document = Open(Standards(5));
  document.Click(document.List, 1);
  document.Click(document.List, 3, 1, Qt::ShiftModifier);
  Choose(RightClick(document.List, 2), "mnuContextDelete");
  EXPECT_EQ(NamesIn(document), Names({"S1", "S5"}));
  QMenu& menu = RightClick(document.List, 0);
  EXPECT_EQ(Items(menu, true).front(), "Undo delete of 3 standards Ctrl+Z");
  Choose(menu, "mnuContextUndo");
  EXPECT_EQ(NamesIn(document), Names({"S1", "S2", "S3", "S4", "S5"}));
  Choose(RightClick(document.List, 0), "mnuContextRedo");
  EXPECT_EQ(NamesIn(document), Names({"S1", "S5"}));
}

TEST_F(ContextMenu, CutsCopiesAndPastesStandards) {
  const Document document = Open(Standards(3));
  Choose(RightClick(document.List, 0), "mnuContextCut");
  EXPECT_EQ(NamesIn(document), Names({"S2", "S3"}));
  Choose(RightClick(document.List, 1), "mnuContextPaste");
  EXPECT_EQ(NamesIn(document), Names({"S2", "S1", "S3"}));
  Choose(RightClick(document.List, 2), "mnuContextCopy");
  Choose(RightClick(document.List, 0), "mnuContextPaste");
  EXPECT_EQ(NamesIn(document), Names({"S3", "S2", "S1", "S3"}));
}

TEST_F(ContextMenu, EditsCutsAndCopiesAValue) {
  const Document document = OpenPlan();
  Choose(RightClick(document.Details, StopRow), "mnuContextCopy");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "124");
  Choose(RightClick(document.Bands, 1, StartColumn), "mnuContextCut");
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "61");
  EXPECT_EQ(document.Bands->CellText(1, StartColumn), "");
  Choose(RightClick(document.Details, StopRow), "mnuContextEdit");
  EXPECT_TRUE(document.Box->hasFocus());
  EXPECT_EQ(document.Box->text(), "124");
}

TEST_F(ContextMenu, AddsAndRemovesSubbandsAtTheEnd) {
  const Document document = OpenPlan();
  Choose(RightClick(document.Bands, 0), "mnuContextAddSubband");
  EXPECT_EQ(NamesIn(document), Names({"GSM", "GSM(A)", "GSM(B)", "GSM(C)", "CDMA"}));
  EXPECT_EQ(document.Window->UndoName(), "new sub-band");
  for (int time = 0; time < 2; ++time) Choose(RightClick(document.Details, UplinkRow), "mnuContextRemoveSubband");
  EXPECT_EQ(NamesIn(document), Names({"GSM", "GSM(A)", "CDMA"}));
  EXPECT_EQ(document.Window->UndoName(), "removal of a sub-band");
  EXPECT_TRUE(document.State->Changed);
}

TEST_F(ContextMenu, ComesUpByKeysBelowTheCurrentCell) {
  const Document document = OpenPlan();
  QPoint place;  // which the screen's edges may move the menu away from
  QPoint below;
  for (Grid* grid : {document.List, document.Details, document.Bands}) {
    QObject::connect(grid, &Grid::MenuRequested, grid, [&, grid](const QPoint& at) {
      place = at;
      below = grid->viewport()->mapToGlobal(grid->visualItemRect(grid->currentItem()).bottomLeft());
    });
    grid->setFocus();
    grid->SetCurrent(grid == document.Details ? int(UplinkRow) : 0, 1);
    for (const bool menuKey : {false, true}) {
      place = {};
      if (menuKey)
        AskedFor(*grid, QContextMenuEvent::Keyboard, {});
      else
        Press(Qt::Key_F10, Qt::ShiftModifier);
      EXPECT_EQ(Shown().objectName(), "mnuContext" + grid->objectName());
      EXPECT_TRUE(place == below) << place.x() << ',' << place.y() << " and " << below.x() << ',' << below.y();
      Shown().close();
      EXPECT_TRUE(grid->hasFocus());
    }
  }
}

TEST_F(ContextMenu, OverAnOpenListIsThatOfItsCell) {
  const Document document = OpenPlan();
  document.Click(document.Details, ModulationRow);
  Type("n");
  QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(1, 1), document.Modulation->mapToGlobal(QPoint(1, 1)));
  QApplication::sendEvent(document.Modulation, &event);
  EXPECT_EQ(Items(Shown(), true).front(), "Undo edit of Modulation Type Ctrl+Z") << "the choice is stored";
  Choose(Shown(), "mnuContextUndo");
  EXPECT_EQ(TableIn(document).Row(0).State, "2");
}

}  // namespace
}  // namespace chanplan::testing
