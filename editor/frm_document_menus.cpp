// The document window: the context menus of its grids.
#include <QContextMenuEvent>
#include <QMenu>

#include "editor/frm_document.h"
#include "editor/grid_columns.h"
#include "editor/history_commands.h"

namespace chanplan {

void frmDocument::ConnectContextMenus() {
  for (Grid* grid : {GridList, GridDetails, GridBands})
    connect(grid, &Grid::MenuRequested, this,
            [this, grid](const QPoint& at, bool onCell) { ShowContextMenu(*grid, at, onCell); });
  // Over a list that is open it is the menu of its cell.
  for (QComboBox* list : {editor.cmboSelected, editor.cmboModType}) {
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list, &QWidget::customContextMenuRequested, this,
            [this, list](const QPoint& at) { ShowContextMenu(*GridDetails, list->mapToGlobal(at), true); });
  }
}

// The commands are those of keys and menus; here they are greyed where they have nothing to do.
void frmDocument::ShowContextMenu(Grid& grid, const QPoint& at, bool onCell) {
  enum Places { List = 1, Details = 2, Bands = 4, Cells = Details | Bands, All = List | Cells, OnCell = 8 };
  struct Item {
    int ShownIn;
    const char* Name;
    const char* Caption;  // null of a separator
    QKeyCombination Key;
    void (frmDocument::*Run)();
    bool (frmDocument::*IsPossible)() const;
  };
  static constexpr QKeyCombination noKey{};
  static constexpr Item items[] = {
      {Cells | OnCell, "mnuContextEdit", "&Edit", Qt::Key_F2, &frmDocument::EditCurrentCell,
       &frmDocument::HasCurrentValue},
      {Cells, "mnuContextBar2", nullptr, noKey, nullptr, nullptr},
      {All | OnCell, "mnuContextCut", "Cu&t", Qt::CTRL | Qt::Key_X, &frmDocument::CutByFrame, &frmDocument::CanCut},
      {All | OnCell, "mnuContextCopy", "&Copy", Qt::CTRL | Qt::Key_C, &frmDocument::CopyByFrame,
       &frmDocument::HasCurrentValue},
      {All, "mnuContextPaste", "&Paste", Qt::CTRL | Qt::Key_V, &frmDocument::PasteByFrame, &frmDocument::CanPaste},
      {List | OnCell, "mnuContextDelete", "&Delete", Qt::Key_Delete, &frmDocument::DeleteByKey,
       &frmDocument::HasCurrentValue},
      {All, "mnuContextBar3", nullptr, noKey, nullptr, nullptr},
      {List, "mnuContextNewChanplan", "&New Signal Standard", Qt::CTRL | Qt::Key_W, &frmDocument::InsertBlank,
       &frmDocument::CanInsert},
      {Cells, "mnuContextAddSubband", "&Add Sub-band at the End", noKey, &frmDocument::AddLastSubband,
       &frmDocument::CanAddSubband},
      {Cells, "mnuContextRemoveSubband", "Re&move Last Sub-band", noKey, &frmDocument::RemoveLastSubband,
       &frmDocument::HasSubbands},
      {All, "mnuContextBar4", nullptr, noKey, nullptr, nullptr},
      {All, "mnuContextChart", "C&hart", Qt::Key_F8, &frmDocument::ToggleChart, &frmDocument::IsAlwaysPossible},
  };
  CommitEdit();  // what can be done depends on what is stored
  ActiveGrid = &grid;
  const int shown = &grid == GridList ? List : &grid == GridDetails ? Details : Bands;
  auto* menu = new QMenu(this);
  menu->setObjectName("mnuContext" + grid.objectName());
  menu->setAttribute(Qt::WA_DeleteOnClose);
  AddHistoryItems(*menu, this);
  menu->addSeparator()->setObjectName("mnuContextBar1");
  for (const Item& item : items) {
    if ((item.ShownIn & shown) == 0) continue;
    QAction* action = item.Caption == nullptr ? menu->addSeparator() : menu->addAction(item.Caption);
    action->setObjectName(item.Name);
    if (item.Caption == nullptr) continue;
    if (item.Key.toCombined() != 0) action->setShortcut(item.Key);
    action->setShortcutVisibleInContextMenu(true);
    action->setEnabled((onCell || (item.ShownIn & OnCell) == 0) && (this->*item.IsPossible)());
    connect(action, &QAction::triggered, this, item.Run);
  }
  auto& chartItem = *menu->findChild<QAction*>("mnuContextChart");
  chartItem.setCheckable(true);
  chartItem.setChecked(ChartIsShown());
  menu->popup(at);
}

bool frmDocument::HasCurrentValue() const { return shownIndex >= 0 && ActiveGrid->currentRow() >= 0; }

// A choice cannot be empty.
bool frmDocument::CanCut() const {
  const int row = ActiveGrid->currentRow();
  return HasCurrentValue() && !(ActiveGrid == GridDetails && (row == DisplayModeRow || row == ModulationRow));
}

bool frmDocument::CanPaste() const { return ActiveGrid == GridList && shared.StandardClipboardFull; }
bool frmDocument::CanInsert() const { return table.Count < MaxRecords; }
bool frmDocument::CanAddSubband() const { return shownIndex >= 0 && table.Count < MaxRecords - 1; }
bool frmDocument::IsAlwaysPossible() const { return true; }
bool frmDocument::HasSubbands() const { return shownIndex >= 0 && SubbandRows() > 0; }

void frmDocument::EditCurrentCell() { BeginCellEdit(0); }
void frmDocument::CutByFrame() { frame.mnuEditCut_Click(); }
void frmDocument::CopyByFrame() { frame.mnuEditCopy_Click(); }
void frmDocument::PasteByFrame() { frame.mnuEditPaste_Click(); }
void frmDocument::DeleteByKey() { DeleteStandards("delete"); }
void frmDocument::AddLastSubband() { ChangeCount(SubbandRows() + 1, "new sub-band"); }
void frmDocument::RemoveLastSubband() { ChangeCount(SubbandRows() - 1, "removal of a sub-band"); }

}  // namespace chanplan
