// The document window: editing cells and writing them back into the table.
#include <QFocusEvent>
#include <QLocale>
#include <QMdiArea>
#include <QScopedValueRollback>

#include "core/lenient_number.h"
#include "core/validation.h"
#include "editor/frm_document.h"
#include "editor/grid_columns.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

constexpr QStringView DisplayModeLetters = u"SN";  // of the two entries, in their order

// The whole text as a number, unlike the lenient reading of the details.
std::optional<double> WholeTextAsNumber(const QString& text) {
  bool isNumber = false;
  const double value = QLocale::c().toDouble(text.trimmed(), &isNumber);
  return isNumber ? std::optional(value) : std::nullopt;
}

// Stores `value`; false when a whole number is out of range.
bool StoreNumber(SignalStandardRecord& record, const NumberField& field, double value) {
  if (field.Decimal != nullptr) {
    record.*field.Decimal = value;
    return true;
  }
  const auto integer = RoundToInteger(value);
  if (integer) record.*field.Integer = *integer;
  return integer.has_value();
}

}  // namespace

void frmDocument::ConnectEditors() {
  connect(txtEntry, &QLineEdit::textEdited, this, [this](const QString& text) {
    MarkChanged();
    MirrorEntry(text);
  });
  connect(txtEntry, &EntryBox::Backspaced, this, [this] { MarkChanged(); });
  connect(txtEntry, &EntryBox::Accepted, this, [this] { ActiveGrid->setFocus(); });
  connect(txtEntry, &EntryBox::Cancelled, this, &frmDocument::CancelEntry);
  connect(txtEntry, &EntryBox::FocusLost, this, &frmDocument::CloseEntry);
  connect(txtEntry, &EntryBox::Stepped, this, [this](int direction) {
    if (ActiveGrid != GridDetails || GridDetails->currentRow() != SubbandsRow) return;
    // A damaged count, as long as nobody has typed over it, gives way to what there is.
    const int former = txtEntry->text() == OriginalCellText
                           ? SubbandRows()
                           : static_cast<int>(LeadingNumber(BytesOf(txtEntry->text())));
    if (SetSubbandCount(former)) SetSubbandCount(qMax(0, former + direction));
    ShowStandard();
    OriginalCellText = GridDetails->CellText(SubbandsRow, 1);
    txtEntry->SetContent(OriginalCellText);
  });
  connect(UpDown, &QSpinBox::valueChanged, this, &frmDocument::UpDown_Change);
  for (QComboBox* choice : {cmboSelected, cmboModType}) {
    choice->installEventFilter(this);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape}) {
      QAction* leave = new QAction(choice);
      leave->setShortcut(key);
      leave->setShortcutContext(Qt::WidgetShortcut);
      choice->addAction(leave);
      connect(leave, &QAction::triggered, this, [this, choice, key] {
        if (key == Qt::Key_Escape) choice->setCurrentText(OriginalCellText);
        GridDetails->setFocus();
      });
    }
  }
}

void frmDocument::BeginCellEdit(qint16 keyCode) {
  if (SelectedIndex() < 0 || ActiveGrid == GridList || ActiveGrid->currentRow() < 0) return;
  SetEntryRules();
  const QChar typed(static_cast<ushort>(keyCode));
  const bool backspace = typed == '\b';
  if (keyCode != 0 && !backspace && !txtEntry->Filter().Accepts(typed, "")) return;
  const bool onDetails = ActiveGrid == GridDetails;
  if (onDetails && ActiveGrid->currentRow() == DisplayModeRow) return ShowChoice(*cmboSelected);
  if (onDetails && ActiveGrid->currentRow() == ModulationRow) return ShowChoice(*cmboModType);
  PositionEditBox(false);
  if (keyCode == 0) return;
  MarkChanged();
  txtEntry->SetContent(backspace ? QString() : QString(typed));
  MirrorEntry(txtEntry->text());
}

void frmDocument::SetEntryRules() {
  EntryFilter& filter = txtEntry->Filter();
  if (ActiveGrid == GridDetails) {
    const DetailRow& row = DetailRows[static_cast<std::size_t>(GridDetails->currentRow())];
    filter.EntryMode = row.Mode;
    filter.EntryMaxLength = row.MaxLength;
  } else {
    const BandColumn& column = BandColumns[static_cast<std::size_t>(GridBands->currentColumn())];
    filter.EntryMode = column.Mode;
    filter.EntryMaxLength = column.MaxLength;
  }
}

void frmDocument::ShowChoice(QComboBox& choice) {
  const QString text = GridDetails->CellText(GridDetails->currentRow(), 1);
  OriginalCellText = text;
  if (&choice == cmboSelected)
    choice.setCurrentIndex(text.isEmpty() ? -1 : static_cast<int>(DisplayModeLetters.indexOf(text.front())));
  else
    choice.setCurrentIndex(choice.findText(text));
  QRect cell = GridDetails->visualItemRect(GridDetails->currentItem());
  cell.moveTopLeft(GridDetails->viewport()->mapTo(area, cell.topLeft()));
  choice.setGeometry(cell);
  choice.raise();
  choice.show();
  choice.setFocus();
}

void frmDocument::CloseChoice(QComboBox& choice) {
  if (!choice.isVisible()) return;
  choice.hide();
  if (choice.currentIndex() >= 0)
    GridDetails->EditCell(&choice == cmboSelected ? DisplayModeRow : ModulationRow, 1, choice.currentText());
  StoreGridsToTable();
}

void frmDocument::PositionEditBox(bool withUpDown) {
  ActiveGrid->scrollToItem(ActiveGrid->currentItem());
  OriginalCellText = ActiveGrid->CellText(ActiveGrid->currentRow(), ActiveGrid->currentColumn());
  txtEntry->SetContent(OriginalCellText);
  txtEntry->setAlignment(Qt::AlignVCenter |
                         Qt::Alignment(ActiveGrid->currentItem()->textAlignment() & Qt::AlignHorizontal_Mask));
  txtEntry->setAccessibleName(ActiveGrid->CellLabel(ActiveGrid->currentRow(), ActiveGrid->currentColumn()));
  txtEntry->setReadOnly(withUpDown);
  UpDown->setVisible(withUpDown);
  txtEntry->show();
  PlaceEditBox();
  txtEntry->raise();
  txtEntry->selectAll();
  txtEntry->setFocus();
}

void frmDocument::PlaceEditBox() {
  if (!txtEntry->isVisible() || ActiveGrid->currentItem() == nullptr) return;
  QRect cell = ActiveGrid->visualItemRect(ActiveGrid->currentItem());
  cell.moveTopLeft(ActiveGrid->viewport()->mapTo(area, cell.topLeft()));
  if (UpDown->isVisible()) {
    cell.setWidth(cell.width() - UpDown->width());
    UpDown->setGeometry(cell.right() + 1, cell.top(), UpDown->width(), cell.height());
    UpDown->raise();
  }
  txtEntry->setGeometry(cell);
}

void frmDocument::MirrorEntry(const QString& text) {
  ActiveGrid->EditCell(ActiveGrid->currentRow(), ActiveGrid->currentColumn(), text);
  if (ActiveGrid == GridDetails && GridDetails->currentRow() == NameRow)
    GridList->EditCell(GridList->currentRow(), 1, text);
}

void frmDocument::CloseEntry() {
  if (!txtEntry->isVisible()) return;
  txtEntry->hide();
  UpDown->hide();
  StoreGridsToTable();
}

void frmDocument::CancelEntry() {
  txtEntry->SetContent(OriginalCellText);
  MirrorEntry(OriginalCellText);
  ActiveGrid->setFocus();
}

void frmDocument::CommitEdit() {
  // An editor that hides with the focus would pass it on to whatever comes next.
  for (const QWidget* editor : std::initializer_list<QWidget*>{txtEntry, cmboSelected, cmboModType})
    if (editor->hasFocus()) ActiveGrid->setFocus();
  for (QComboBox* choice : {cmboSelected, cmboModType})
    if (choice->isVisible()) CloseChoice(*choice);
  if (txtEntry->isVisible()) CloseEntry();
  StoreGridsToTable();
}

int frmDocument::GetStateCode() const {
  return qMax(cmboModType->currentIndex(), 0) +
         static_cast<int>(ActiveDisplayBit) * qMax(cmboSelected->currentIndex(), 0);
}

void frmDocument::ShowStateCode(int code) {
  cmboModType->setCurrentIndex(code & 3);
  cmboSelected->setCurrentIndex((code & ActiveDisplayBit) != 0 ? 1 : 0);
  GridDetails->FillCell(DisplayModeRow, 1, cmboSelected->currentText(), DetailRows[DisplayModeRow].Title);
  GridDetails->FillCell(ModulationRow, 1, cmboModType->currentText(), DetailRows[ModulationRow].Title);
}

void frmDocument::StoreGridsToTable() {
  if (SuppressListEvents || storing || shownIndex < 0) return;
  const QScopedValueRollback busy(storing, true);
  const QString count = GridDetails->CellText(SubbandsRow, 1);
  const bool countEdited = GridDetails->CellEdited(SubbandsRow, 1);
  const bool nameEdited = GridDetails->CellEdited(NameRow, 1);
  StoreDetails(table.Row(shownIndex));
  reported = !StoreBands(shownIndex);
  if (countEdited) SetSubbandCount(static_cast<int>(LeadingNumber(BytesOf(count))));
  if (countEdited || nameEdited) FillStandardList();
  // What was typed is shown as the table now has it, and is not looked at as an edit again.
  ShowStandard();
  ValidateTable();
}

void frmDocument::StoreDetails(SignalStandardRecord& standard) {
  if (GridDetails->CellEdited(NameRow, 1)) standard.Name = BytesOf(GridDetails->CellText(NameRow, 1));
  if (GridDetails->CellEdited(DisplayModeRow, 1) || GridDetails->CellEdited(ModulationRow, 1)) {
    const std::int64_t otherBits = StateValue(standard) & ~(ActiveDisplayBit | 3);
    standard.State = std::to_string(otherBits | GetStateCode());
  }
  for (int row = FirstNumberRow; row < GridDetails->rowCount(); ++row)
    if (GridDetails->CellEdited(row, 1))
      StoreNumber(standard, DetailRows[static_cast<std::size_t>(row)].Field,
                  LeadingNumber(BytesOf(GridDetails->CellText(row, 1))));
}

bool frmDocument::StoreBands(int index) {
  bool allStored = true;
  for (int row = 0; row < GridBands->rowCount(); ++row)
    for (int column = 1; column < GridBands->columnCount(); ++column) {
      if (!GridBands->CellEdited(row, column)) continue;
      const QString text = GridBands->CellText(row, column);
      const auto value = WholeTextAsNumber(text);
      const NumberField& field = BandColumns[static_cast<std::size_t>(column)].Field;
      if (value && StoreNumber(table.Row(index + 1 + row), field, *value)) continue;
      allStored = false;
      frame.ShowStatus(GridBands->CellLabel(row, column) + ": \"" + text +
                       (value ? "\" is out of range" : "\" is not a number") + "; the old value was kept.");
    }
  return allStored;
}

void frmDocument::ValidateTable() {
  std::vector<std::string> names;
  for (int row = 0; row < GridList->rowCount(); ++row) names.push_back(BytesOf(GridList->CellText(row, 1)));
  AlignSubbands(table);
  warningsText = QString::fromStdString(chanplan::WarningsText(FindWarnings(table, names)));
  // The frame shows the active document's warnings, and fetches these when this becomes it.
  if (mdiArea() == nullptr || mdiArea()->currentSubWindow() == this) frame.Warnings(warningsText, -1);
}

}  // namespace chanplan
