#include "app/warnings_pane.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QTextLayout>

#include "editor/item_colours.h"

namespace chanplan {
namespace {

constexpr int TabStops[] = {40, 160};  // dialog units: quarters of an average letter's width

// Draws lines whose fields stand at the tab stops.
class TabbedLines : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyleOptionViewItem line = option;
    initStyleOption(&line, index);
    QTextLayout layout;
    LayOut(layout, line);
    line.text.clear();
    const QStyle* style = line.widget->style();
    style->drawControl(QStyle::CE_ItemViewItem, &line, painter, line.widget);
    const auto group = (line.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
    const bool selected = (line.state & QStyle::State_Selected) != 0;
    painter->setPen(line.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text));
    layout.draw(painter, line.rect.topLeft() + QPointF(Margin(line), 0));
  }

  // All lines are as wide as the widest one, so that there is a way to its end.
  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    QStyleOptionViewItem line = option;
    initStyleOption(&line, index);
    double widest = 0;
    for (int row = 0; row < index.model()->rowCount(); ++row) {
      line.text = index.siblingAtRow(row).data().toString();
      QTextLayout layout;
      LayOut(layout, line);
      widest = qMax(widest, layout.maximumWidth());
    }
    return {qCeil(widest) + 2 * Margin(line), line.fontMetrics.height()};
  }

 private:
  static int Margin(const QStyleOptionViewItem& line) {
    return line.widget->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, &line, line.widget) + 1;
  }

  static void LayOut(QTextLayout& layout, const QStyleOptionViewItem& line) {
    static const QString letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    const double unit = line.fontMetrics.horizontalAdvance(letters) / (4.0 * static_cast<double>(letters.size()));
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    QList<QTextOption::Tab> tabs;
    for (const int stop : TabStops) tabs += QTextOption::Tab(stop * unit, QTextOption::LeftTab);
    option.setTabs(tabs);
    layout.setFont(line.font);
    layout.setTextOption(option);
    layout.setText(line.text);
    layout.beginLayout();
    layout.createLine();
    layout.endLayout();
  }
};

// As the platform turns numbers into text: a blank stands where a minus would.
QString NumberText(qsizetype number) { return " " + QString::number(number); }

}  // namespace

WarningsPane::WarningsPane(QWidget* parent) : QListWidget(parent) {
  setItemDelegate(new TabbedLines(this));
  setUniformItemSizes(true);
  setAccessibleName("Warnings");
  setAccessibleDescription("What is doubtful in the table. Selecting a line selects its standard.");
  connect(this, &QListWidget::itemSelectionChanged, this, &WarningsPane::Click);
}

void WarningsPane::Fill(const QString& WarningText, int SelIndex) {
  if (filling) return;
  const QScopedValueRollback guard(filling, true);
  const int oldIndex = SelectedIndex();
  if (text != WarningText) {  // most edits change no warning, and there may be hundreds
    text = WarningText;
    clear();
    addItems(WarningText.isEmpty() ? QStringList() : WarningText.split("\r\n"));
    for (int row = 0; row < count(); ++row)
      item(row)->setData(Qt::AccessibleTextRole, item(row)->text().replace('\t', ' '));
  }
  emit CountChanged(NumberText(count()) + " warnings.");
  if (oldIndex < count() && SelIndex == -1)
    Select(oldIndex);
  else
    Select(SelIndex < count() ? SelIndex : -1);
}

int WarningsPane::SelectedIndex() const {
  const QModelIndexList selected = selectedIndexes();
  return selected.isEmpty() ? -1 : selected.front().row();
}

void WarningsPane::Select(int index) {
  if (index >= 0)
    setCurrentRow(index);
  else
    clearSelection();
}

void WarningsPane::Click() {
  const int index = SelectedIndex();
  if (filling || index < 0) return;
  const QStringList fields = item(index)->text().split('\t');
  ShowPosition();
  if (fields.size() <= 1) return;
  emit EntryClicked(fields[1], index);
  // Going there may have filled the list anew.
  ShowPosition();
}

void WarningsPane::ShowPosition() {
  if (const int index = SelectedIndex(); index >= 0)
    emit CountChanged(NumberText(index + 1) + " of" + NumberText(count()) + " warnings.");
}

void WarningsPane::paintEvent(QPaintEvent* event) {
  QListWidget::paintEvent(event);
  if (!currentIndex().isValid()) ShowFocusAround(*this);
}

void WarningsPane::initViewItemOption(QStyleOptionViewItem* option) const {
  QListWidget::initViewItemOption(option);
  MuteSelection(*option, *this);
}

// The first key goes to the first line, not past it.
void WarningsPane::keyPressEvent(QKeyEvent* event) {
  const bool down = event->key() == Qt::Key_Down || event->key() == Qt::Key_PageDown;
  if (down && SelectedIndex() < 0 && count() > 0)
    setCurrentRow(0);
  else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
    LeaveLine();
  else if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)
    ShowContextMenu(MenuPlace());
  else
    QListWidget::keyPressEvent(event);
}

// To what it is about; a line that names nothing is not left.
void WarningsPane::LeaveLine() {
  if (const int index = SelectedIndex(); index >= 0 && item(index)->text().contains('\t')) emit LineLeft();
}

QPoint WarningsPane::MenuPlace() const {
  const QRect line = SelectedIndex() < 0 ? QRect() : visualRect(currentIndex()) & viewport()->rect();
  return viewport()->mapToGlobal(line.isEmpty() ? QPoint(0, 0) : line.bottomLeft());
}

void WarningsPane::contextMenuEvent(QContextMenuEvent* event) {
  ShowContextMenu(event->reason() == QContextMenuEvent::Mouse ? event->globalPos() : MenuPlace());
}

void WarningsPane::ShowContextMenu(const QPoint& at) {
  auto* menu = new QMenu(this);
  menu->setObjectName("mnuContextWarnings");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  emit MenuOpens(*menu);
  menu->addSeparator();
  const auto add = [menu](const char* name, const char* caption, const QString& copied) {
    QAction* item = menu->addAction(caption);
    item->setObjectName(name);
    item->setEnabled(!copied.isEmpty());
    connect(item, &QAction::triggered, item, [copied] { QGuiApplication::clipboard()->setText(copied); });
  };
  add("mnuContextCopyWarning", "&Copy This Warning", SelectedIndex() < 0 ? QString() : item(SelectedIndex())->text());
  add("mnuContextCopyWarnings", "Copy &All Warnings", QString(text).replace("\r\n", "\n"));
  menu->popup(at);
}

// A click on the line that is selected already is a click too.
void WarningsPane::mousePressEvent(QMouseEvent* event) {
  const int former = SelectedIndex();
  QListWidget::mousePressEvent(event);
  if (event->button() == Qt::LeftButton && former >= 0 && indexAt(event->position().toPoint()).row() == former) Click();
}

void WarningsPane::mouseReleaseEvent(QMouseEvent* event) {
  QListWidget::mouseReleaseEvent(event);
  const int line = indexAt(event->position().toPoint()).row();
  if (event->button() == Qt::LeftButton && line >= 0 && line == SelectedIndex()) LeaveLine();
}

}  // namespace chanplan
