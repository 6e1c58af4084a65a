#include "editor/cell_editor.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLabel>

#include "editor/grid_columns.h"
#include "editor/text_edge.h"

namespace chanplan {

CellEditor::CellEditor(QWidget& shownIn)
    : txtEntry(new EntryBox(&shownIn)),
      cmboSelected(new QComboBox(&shownIn)),
      cmboModType(new QComboBox(&shownIn)),
      area(shownIn) {
  txtEntry->setObjectName("txtEntry");
  txtEntry->resize(0, txtEntry->fontMetrics().height() + 6);
  cmboSelected->setObjectName("cmboSelected");
  cmboSelected->addItems({"Standby", "Now active"});
  cmboSelected->setAccessibleName(DetailRows[DisplayModeRow].Title);
  cmboModType->setObjectName("cmboModType");
  for (const std::string_view text : ModulationTexts) cmboModType->addItem(TextOf(text));
  cmboModType->setAccessibleName(DetailRows[ModulationRow].Title);
  // Screen readers take the name of a list from its label, and its value for the name where it has none.
  for (QComboBox* list : {cmboSelected, cmboModType}) {
    auto* label = new QLabel(list->accessibleName(), &shownIn);
    label->setBuddy(list);
    label->hide();
  }
  for (QWidget* control : std::initializer_list<QWidget*>{txtEntry, cmboSelected, cmboModType}) {
    control->hide();
    control->installEventFilter(this);
  }
  connect(txtEntry, &EntryBox::Edited, this, [this] {
    edit->Edited = true;
    Mirror(txtEntry->text());
    emit TextEdited();
  });
}

// An edit that the cell has already goes on: it was cut before the box was opened.
CellEdit& CellEditor::EditCurrentCell(Grid& grid) {
  const int row = grid.currentRow();
  const int column = grid.currentColumn();
  if (!edit || !edit->IsCell(&grid, row, column)) edit = {&grid, row, column, grid.CellText(row, column)};
  return *edit;
}

void CellEditor::OpenBox(Grid& grid, std::optional<QChar> typed) {
  grid.scrollToItem(grid.currentItem());
  const CellEdit& cell = EditCurrentCell(grid);
  txtEntry->SetContent(grid.CellText(cell.Row, cell.Column));
  txtEntry->setAlignment(Qt::AlignVCenter |
                         Qt::Alignment(grid.currentItem()->textAlignment() & Qt::AlignHorizontal_Mask));
  txtEntry->setAccessibleName(grid.CellLabel(cell.Row, cell.Column));
  Show(*txtEntry);
  txtEntry->selectAll();
  if (typed) txtEntry->Replace(*typed == '\b' ? QString() : QString(*typed));
}

void CellEditor::OpenList(Grid& grid, QComboBox& list, int chosen) {
  EditCurrentCell(grid);
  list.setCurrentIndex(chosen);
  Show(list);
}

void CellEditor::Show(QWidget& control) {
  edit->Control = &control;
  control.show();
  Place();
  control.raise();
  control.setFocus();
}

void CellEditor::Place() {
  if (!IsOpen()) return;
  const Grid& grid = *edit->EditedGrid;
  QRect cell = grid.visualRect(grid.model()->index(edit->Row, edit->Column));
  cell.moveTopLeft(grid.viewport()->mapTo(&area, cell.topLeft()));
  edit->Control->setGeometry(cell);
}

void CellEditor::Cut(Grid& grid) {
  EditCurrentCell(grid);
  if (edit->Control == txtEntry) return txtEntry->Replace("");
  if (IsOpen()) return;
  edit->Edited = true;
  Mirror("");
}

void CellEditor::Mirror(const QString& text) {
  edit->EditedGrid->EditCell(edit->Row, edit->Column, text);
  emit Mirrored(*edit, text);
}

std::optional<CellEdit> CellEditor::Close() {
  // Nothing is open any more when the focus moves, which would close the edit once again.
  std::optional<CellEdit> closed = std::exchange(edit, std::nullopt);
  if (!closed) return closed;
  if (QWidget* control = closed->Control) {
    // A control that hides with the focus would pass it on to whatever comes next.
    if (control->hasFocus()) closed->EditedGrid->setFocus();
    control->hide();
    if (const auto* list = qobject_cast<QComboBox*>(control)) {
      closed->Edited = list->currentIndex() >= 0 && list->currentText() != closed->Original;
      if (closed->Edited) closed->EditedGrid->EditCell(closed->Row, closed->Column, list->currentText());
    }
  }
  return closed->Edited ? closed : std::nullopt;
}

void CellEditor::Cancel() {
  if (auto* list = qobject_cast<QComboBox*>(edit->Control)) {
    list->setCurrentIndex(-1);
  } else {
    txtEntry->SetContent(edit->Original);
    Mirror(edit->Original);
    edit->Edited = false;
  }
  emit Left();
}

bool CellEditor::LeavesBy(const QKeyEvent& key) const {
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      return true;
    case Qt::Key_Home:
    case Qt::Key_End:
      return edit->Control != txtEntry;  // where they move the cursor
    default:
      return false;
  }
}

// The grid knows where a key goes from here. Enter stays.
void CellEditor::LeaveByKey(QKeyEvent& key) {
  Grid& grid = *edit->EditedGrid;
  emit Left();
  if (key.key() != Qt::Key_Return && key.key() != Qt::Key_Enter) QApplication::sendEvent(&grid, &key);
}

bool CellEditor::eventFilter(QObject* watched, QEvent* event) {
  if (!IsOpen() || watched != edit->Control) return QObject::eventFilter(watched, event);
  auto* list = qobject_cast<QComboBox*>(watched);
  switch (event->type()) {
    case QEvent::FocusOut: {
      // A list that drops down takes the focus without saying that it does.
      const bool droppedDown = list != nullptr && list->view()->isVisible();
      if (FocusMovedOn(*static_cast<QFocusEvent*>(event)) && !droppedDown) emit Left();
      return false;
    }
    case QEvent::Wheel:
      return list != nullptr;  // a closed list is not turned by chance
    case QEvent::KeyPress: {
      auto& key = *static_cast<QKeyEvent*>(event);
      const bool vertical = key.key() == Qt::Key_Up || key.key() == Qt::Key_Down;
      if (list != nullptr && vertical && (key.modifiers() & Qt::AltModifier) != 0)
        list->showPopup();
      else if (key.key() == Qt::Key_Escape)
        Cancel();
      else if (LeavesBy(key))
        LeaveByKey(key);
      else
        return false;
      return true;
    }
    default:
      return false;
  }
}

}  // namespace chanplan
