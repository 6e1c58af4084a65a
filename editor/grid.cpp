#include "editor/grid.h"

#include <QContextMenuEvent>
#include <QFocusEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QToolTip>

#include "editor/entry_box.h"
#include "editor/item_colours.h"

namespace chanplan {
namespace {

constexpr int LabelRole = Qt::UserRole;
constexpr int DoubtRole = Qt::AccessibleDescriptionRole;  // which screen readers tell, too

// Draws a corner on doubtful cells, away from their text: it can be told apart without seeing colours.
class MarkedCells : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    if (index.data(DoubtRole).toString().isEmpty()) return;
    constexpr QColor doubtful(0xd3, 0x54, 0x00);  // stands out from light and dark cells alike
    const bool selected = (option.state & QStyle::State_Selected) != 0;
    const auto group = (option.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
    const int alignment = index.data(Qt::TextAlignmentRole).toInt();
    const bool onTheLeft = (alignment & Qt::AlignRight) != 0;
    const QPointF corner = onTheLeft ? option.rect.topLeft() : QPointF(option.rect.right() + 1, option.rect.top());
    const double size = option.fontMetrics.height() / 2.0;
    QStyleOptionViewItem drawn = option;
    initStyleOption(&drawn, index);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(selected ? drawn.palette.color(group, QPalette::HighlightedText) : doubtful);
    painter->drawPolygon(QPolygonF({corner, corner + QPointF(onTheLeft ? size : -size, 0), corner + QPointF(0, size)}));
    painter->restore();
  }
};

// Keeps the current cell out of the title columns, whichever way it moves.
class ValueColumnsSelection : public QItemSelectionModel {
 public:
  ValueColumnsSelection(QAbstractItemModel* items, int first, QObject* parent)
      : QItemSelectionModel(items, parent), firstColumn(first) {}

  void setCurrentIndex(const QModelIndex& index, SelectionFlags command) override {
    const bool onTitle = index.isValid() && index.column() < firstColumn;
    QItemSelectionModel::setCurrentIndex(onTitle ? index.siblingAtColumn(firstColumn) : index, command);
  }

 private:
  int firstColumn;
};

}  // namespace

Grid::Grid(const QString& name, int firstValueColumn, QWidget* parent)
    : QTableWidget(parent), firstColumn(firstValueColumn) {
  setObjectName(name);
  setSelectionModel(new ValueColumnsSelection(model(), firstColumn, this));
  setItemDelegate(new MarkedCells(this));
  setEditTriggers(NoEditTriggers);
  setTabKeyNavigation(false);
  setCornerButtonEnabled(false);
  setWordWrap(false);
  setVerticalScrollMode(ScrollPerPixel);
  verticalHeader()->hide();
  verticalHeader()->setMinimumSectionSize(1);
  horizontalHeader()->setHighlightSections(false);
  connect(this, &QTableWidget::cellDoubleClicked, this, &Grid::EditRequested);
}

QTableWidgetItem& Grid::Cell(int row, int column) {
  QTableWidgetItem* cell = item(row, column);
  if (cell == nullptr) {
    cell = new QTableWidgetItem;
    cell->setTextAlignment(alignments.value(column, Qt::AlignLeft) | Qt::AlignVCenter);
    setItem(row, column, cell);
  }
  return *cell;
}

void Grid::SetText(QTableWidgetItem& cell, const QString& text) {
  if (cell.text() != text) cell.setText(text);
  const QString label = cell.data(LabelRole).toString();
  const QString spoken = label.isEmpty() ? text : label + ", " + text;
  if (cell.data(Qt::AccessibleTextRole).toString() != spoken) cell.setData(Qt::AccessibleTextRole, spoken);
}

void Grid::FillCell(int row, int column, const QString& text, const QString& label, const QString& exact) {
  QTableWidgetItem& cell = Cell(row, column);
  if (cell.toolTip() != exact) cell.setToolTip(exact);
  if (cell.data(LabelRole).toString() != label) cell.setData(LabelRole, label);
  SetText(cell, text);
}

void Grid::EditCell(int row, int column, const QString& text) { SetText(Cell(row, column), text); }

QString Grid::CellText(int row, int column) const {
  const QTableWidgetItem* cell = item(row, column);
  return cell == nullptr ? QString() : cell->text();
}

QString Grid::CellLabel(int row, int column) const {
  const QTableWidgetItem* cell = item(row, column);
  return cell == nullptr ? QString() : cell->data(LabelRole).toString();
}

void Grid::SetDoubt(int row, int column, const QString& doubt) {
  QTableWidgetItem* cell = item(row, column);
  if (cell != nullptr && cell->data(DoubtRole).toString() != doubt) cell->setData(DoubtRole, doubt);
}

void Grid::SetCurrent(int row, int column) {
  const auto extent = selectionBehavior() == SelectRows ? QItemSelectionModel::Rows : QItemSelectionModel::NoUpdate;
  selectionModel()->setCurrentIndex(model()->index(row, column), QItemSelectionModel::ClearAndSelect | extent);
}

void Grid::SetColumnAlignment(int column, Qt::Alignment alignment) { alignments.insert(column, alignment); }

void Grid::SetRows(int rows, int height) {
  const int former = rowCount();
  setRowCount(rows);
  for (int row = former; row < rows; ++row) setRowHeight(row, height);
  updateGeometries();  // at once, so that a new row can be scrolled to
}

QString Grid::ToolTipText(const QModelIndex& index) const {
  if (!index.isValid()) return {};
  const QTableWidgetItem& cell = *item(index.row(), index.column());
  QStringList lines(cell.toolTip());
  const int margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1);
  const bool elided = QFontMetrics(cell.font()).horizontalAdvance(cell.text()) + margins > visualRect(index).width();
  if (lines.front().isEmpty() && elided) lines.front() = cell.text();
  lines += cell.data(DoubtRole).toString();
  lines.removeAll(QString());
  return lines.join('\n');
}

bool Grid::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QTableWidget::viewportEvent(event);
  const auto& help = *static_cast<QHelpEvent*>(event);
  const QModelIndex index = indexAt(help.pos());
  const QString text = ToolTipText(index);
  QToolTip::showText(help.globalPos(), text.isEmpty() ? text : Qt::convertFromPlainText(text), viewport(),
                     visualRect(index));
  return true;
}

void Grid::paintEvent(QPaintEvent* event) {
  QTableWidget::paintEvent(event);
  if (!currentIndex().isValid()) ShowFocusAround(*this);
}

// Home and End go to the first and the last row where a row has one value or is one choice.
QModelIndex Grid::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
  const bool oneValue = firstColumn + 1 >= columnCount() || selectionBehavior() == SelectRows;
  if (oneValue && rowCount() > 0 && (action == MoveHome || action == MoveEnd))
    return model()->index(action == MoveHome ? 0 : rowCount() - 1, firstColumn);
  return QTableWidget::moveCursor(action, modifiers);
}

// A title that was clicked, or gone to, is not what became current.
void Grid::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) {
  QTableWidget::setSelection(rect, command);
  if (currentItem() != nullptr && !selectionModel()->isSelected(currentIndex()))
    SetCurrent(currentRow(), currentColumn());
}

// What is current is selected: a click beside the rows, or one with Ctrl, does not change that.
QItemSelectionModel::SelectionFlags Grid::selectionCommand(const QModelIndex& index, const QEvent* event) const {
  if (!index.isValid()) return QItemSelectionModel::NoUpdate;
  const auto command = QTableWidget::selectionCommand(index, event);
  const bool takesAway = (command & (QItemSelectionModel::Toggle | QItemSelectionModel::Deselect)) != 0 ||
                         command == QItemSelectionModel::NoUpdate;
  const bool clicked = event != nullptr && event->type() == QEvent::MouseButtonPress;
  // The context menu is about all that is selected.
  const bool onSelection = selectionModel()->isSelected(index);
  if (clicked && onSelection && static_cast<const QMouseEvent*>(event)->button() == Qt::RightButton)
    return QItemSelectionModel::NoUpdate;
  if (!takesAway || !clicked) return command;
  const auto extent = selectionBehavior() == SelectRows ? QItemSelectionModel::Rows : QItemSelectionModel::NoUpdate;
  return QItemSelectionModel::ClearAndSelect | extent;
}

bool Grid::focusNextPrevChild(bool next) {
  emit Tabbed(next);
  return true;
}

void Grid::focusInEvent(QFocusEvent* event) {
  QTableWidget::focusInEvent(event);
  emit FocusGained();
}

void Grid::focusOutEvent(QFocusEvent* event) {
  QTableWidget::focusOutEvent(event);
  if (FocusMovedOn(*event)) emit FocusLost();
}

void Grid::keyPressEvent(QKeyEvent* event) {
  const bool plain = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
  const QString text = event->text();
  const bool cells = selectionBehavior() != SelectRows;  // rows are looked for by their letters
  if (event->key() == Qt::Key_F2 || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
    emit EditRequested();
  else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)
    emit MenuRequested(MenuPlace(), true);
  else if (cells && plain && !text.isEmpty() && (text.front() == '\b' || text.front().isPrint()))
    emit CellTyped(text.front());
  else
    QTableWidget::keyPressEvent(event);
}

// Below the current cell.
QPoint Grid::MenuPlace() const {
  const QRect cell = visualRect(currentIndex()) & viewport()->rect();
  return viewport()->mapToGlobal(cell.isEmpty() ? QPoint(0, 0) : cell.bottomLeft());
}

void Grid::contextMenuEvent(QContextMenuEvent* event) {
  const bool byMouse = event->reason() == QContextMenuEvent::Mouse;
  emit MenuRequested(byMouse ? event->globalPos() : MenuPlace(), !byMouse || indexAt(event->pos()).isValid());
}

void Grid::initViewItemOption(QStyleOptionViewItem* option) const {
  QTableWidget::initViewItemOption(option);
  MuteSelection(*option, *this);
  ShowGridLines(*option);
}

void Grid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QTableWidget::currentChanged(current, previous);
  emit CurrentCellMoved(current.row());
}

void Grid::keyReleaseEvent(QKeyEvent* event) {
  QTableWidget::keyReleaseEvent(event);
  if (event->key() == Qt::Key_Delete && !event->isAutoRepeat()) emit DeleteReleased();
}

}  // namespace chanplan
