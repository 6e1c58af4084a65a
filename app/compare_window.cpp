#include "app/compare_window.h"

#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

#include "core/sig_file.h"
#include "core/validation.h"
#include "editor/item_colours.h"
#include "editor/text_edge.h"

namespace chanplan {
namespace {

enum Column { StandardColumn, DifferenceColumn, LeftColumn, RightColumn, ColumnCount };

using Texts = std::array<QString, ColumnCount>;

QString ValueText(const SignalStandardRecord& record, Field field) {
  const QString text = TextOf(FieldTexts(record)[static_cast<std::size_t>(field)]);
  if (field != Field::State) return text;
  const QString mode = ActiveDisplayMode(record) ? "Now active" : "Standby";
  return text + " (" + TextOf(ModulationText(record)) + ", " + mode + ")";
}

// The standard or sub-band that a difference is about, under its name on the left where it has one there.
QString PlaceText(const TableDifference& difference, const SignalStandardTable& left,
                  const SignalStandardTable& right) {
  const bool onLeft = difference.Left >= 0;
  const int row = onLeft ? difference.Left : difference.Right;
  const QString name = TextOf((onLeft ? left : right).Row(row - difference.Subband).Name);
  return difference.Subband == 0 ? name : name + ", Band " + TextOf(std::string(1, SubbandLetter(difference.Subband)));
}

Texts TextsOf(const TableDifference& difference, const SignalStandardTable& left, const SignalStandardTable& right) {
  if (difference.Kind == DifferenceKind::Order) return {"", "Order of the standards", "", "another"};
  const QString place = PlaceText(difference, left, right);
  const QString whole = difference.Subband == 0 ? "Signal Standard" : "Sub-band";
  if (difference.Kind == DifferenceKind::OnlyLeft) return {place, whole, "there", "missing"};
  if (difference.Kind == DifferenceKind::OnlyRight) return {place, whole, "missing", "there"};
  const bool renamed = difference.Kind == DifferenceKind::Renamed;
  return {place, renamed ? "Renamed" : TextOf(FieldOf(difference.What).Name),
          ValueText(left.Row(difference.Left), difference.What),
          ValueText(right.Row(difference.Right), difference.What)};
}

// It is empty where the tables are alike.
class DifferenceList : public QTableWidget {
 public:
  using QTableWidget::QTableWidget;

 protected:
  void paintEvent(QPaintEvent* event) override {
    QTableWidget::paintEvent(event);
    if (!currentIndex().isValid()) ShowFocusAround(*this);
  }
};

}  // namespace

QString ComparedTable::Name() const {
  if (!Title.isEmpty()) return Title;
  const QString caption = Document != nullptr ? Document->windowTitle() : File;
  const QString name = QFileInfo(caption).isAbsolute() ? QFileInfo(caption).fileName() : caption;
  return Document != nullptr ? name : name + " on the disk";
}

SignalStandardTable ComparedTable::Rows() const {
  SignalStandardTable rows = Document != nullptr ? Document->Table() : Table;
  AlignSubbands(rows);
  return rows;
}

bool ComparedTable::Update() {
  if (Document != nullptr || File.isEmpty()) return true;
  const auto now = ReadFileStamp(PathOf(File));
  if (now && now == Read) return true;
  if (IsNoFile(File)) return false;
  ReadOutcome outcome = LoadSigFile(PathOf(File));
  if (!outcome.Ok()) return false;
  Table = std::move(outcome.Table);
  Read = now;
  return true;
}

CompareWindow::CompareWindow(CommandFrame& mainFrame, DocumentWindow& leftDocument, ComparedTable rightTable)
    : QDialog(&mainFrame),
      frame(mainFrame),
      left{&leftDocument},
      right(std::move(rightTable)),
      lblCompare(new QLabel(this)),
      lstDifferences(new DifferenceList(0, ColumnCount, this)),
      lblCompareCount(new QLabel(this)) {
  setObjectName("frmCompare");
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle("Compare Tables");
  lblCompare->setObjectName("lblCompare");
  lblCompareCount->setObjectName("lblCompareCount");
  for (QLabel* label : {lblCompare, lblCompareCount}) label->setTextFormat(Qt::PlainText);
  lblCompare->setWordWrap(true);
  lstDifferences->setObjectName("lstDifferences");
  lstDifferences->setAccessibleName("Differences");
  lstDifferences->setEditTriggers(QAbstractItemView::NoEditTriggers);
  lstDifferences->setSelectionMode(QAbstractItemView::SingleSelection);
  lstDifferences->setTabKeyNavigation(false);
  lstDifferences->verticalHeader()->hide();
  lstDifferences->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  lstDifferences->horizontalHeader()->setHighlightSections(false);
  auto* rows = new QVBoxLayout(this);
  rows->addWidget(lblCompare);
  rows->addWidget(lstDifferences, 1);
  auto* last = new QHBoxLayout;
  auto* close = new QPushButton("&Close");
  close->setObjectName("bttnCompareClose");
  last->addWidget(lblCompareCount, 1);
  last->addWidget(close);
  rows->addLayout(last);

  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  connect(lstDifferences, &QTableWidget::cellClicked, this, &CompareWindow::GoTo);
  refresh.setSingleShot(true);
  connect(&refresh, &QTimer::timeout, this, &CompareWindow::Refresh);
  Follow(leftDocument);
  if (right.Document != nullptr) Follow(*right.Document);
  Refresh();
  resize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 24);
  constexpr std::array<int, ColumnCount> letters = {28, 26, 25, 25};
  for (int column = 0; column < ColumnCount; ++column)
    lstDifferences->setColumnWidth(column,
                                   letters[static_cast<std::size_t>(column)] * fontMetrics().averageCharWidth());
  lstDifferences->horizontalHeader()->setStretchLastSection(true);
}

void CompareWindow::Follow(DocumentWindow& document) {
  connect(&document, &DocumentWindow::TableChanged, &refresh, qOverload<>(&QTimer::start));
  connect(&document, &QWidget::windowTitleChanged, &refresh, qOverload<>(&QTimer::start));
  connect(&document, &QObject::destroyed, this, &QWidget::close);
}

// A file may have been written while another window was looked at.
void CompareWindow::changeEvent(QEvent* event) {
  QDialog::changeEvent(event);
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) refresh.start();
}

void CompareWindow::ShowNames() {
  const QString rightName = right.Document != nullptr ? right.Document->windowTitle()
                            : right.File.isEmpty()    ? right.Title
                                                      : right.File + " (on the disk)";
  lblCompare->setText(left.Document->windowTitle() + "\n" + rightName);
  lstDifferences->setHorizontalHeaderLabels({"Signal Standard", "Difference", left.Name(), right.Name()});
}

void CompareWindow::Refresh() {
  if (left.Document == nullptr) return;
  const bool read = right.Update();
  const TableDifference former = differences.empty()
                                     ? TableDifference{DifferenceKind::Order}
                                     : differences[static_cast<std::size_t>(qMax(lstDifferences->currentRow(), 0))];
  const int formerRow = lstDifferences->currentRow();
  const int column = qMax(lstDifferences->currentColumn(), 0);
  const SignalStandardTable leftRows = left.Rows();
  const SignalStandardTable rightRows = right.Rows();
  differences = FindDifferences(leftRows, rightRows);
  ShowNames();
  lstDifferences->setRowCount(static_cast<int>(differences.size()));
  for (int row = 0; row < lstDifferences->rowCount(); ++row) ShowRow(row, leftRows, rightRows);
  if (formerRow >= 0 && !differences.empty()) {
    const auto same = std::ranges::find(differences, former);
    const int row = same != differences.end() ? static_cast<int>(same - differences.begin()) : formerRow;
    lstDifferences->setCurrentCell(qMin(row, lstDifferences->rowCount() - 1), column);
  }
  const auto count = differences.size();
  QString text = count == 0   ? QString("The tables are alike.")
                 : count == 1 ? QString("1 difference. A click goes to it.")
                              : QString("%1 differences. A click goes to one.").arg(count);
  if (!read) text += " The file cannot be read any more: it is compared as it was.";
  lblCompareCount->setText(text);
}

void CompareWindow::ShowRow(int row, const SignalStandardTable& leftRows, const SignalStandardTable& rightRows) {
  const Texts texts = TextsOf(differences[static_cast<std::size_t>(row)], leftRows, rightRows);
  const QStringList titles = {"", "", left.Name(), right.Name()};
  for (int column = 0; column < ColumnCount; ++column) {
    const QString& text = texts[static_cast<std::size_t>(column)];
    if (lstDifferences->item(row, column) == nullptr) lstDifferences->setItem(row, column, new QTableWidgetItem);
    QTableWidgetItem& cell = *lstDifferences->item(row, column);
    cell.setText(text);
    cell.setData(Qt::AccessibleTextRole, column < LeftColumn ? text : titles[column] + ", " + text);
  }
}

void CompareWindow::GoTo(int row, int column) {
  if (row < 0 || row >= static_cast<int>(differences.size())) return;
  const TableDifference difference = differences[static_cast<std::size_t>(row)];
  const bool rightOpen = right.Document != nullptr && difference.Right >= 0;
  const bool toRight = rightOpen && (column == RightColumn || difference.Left < 0);
  if (!toRight && difference.Left < 0) {
    if (difference.Right >= 0)
      frame.ShowRemark(PlaceText(difference, left.Rows(), right.Rows()) + " is only in " +
                       (right.File.isEmpty() ? right.Title : "the file") + ".");
    return;
  }
  DocumentWindow& document = toRight ? *right.Document : *left.Document;
  frame.ShowDocument(document);
  frame.activateWindow();
  document.setFocus();
  document.ShowField(toRight ? difference.Right : difference.Left, difference.What);
  document.setFocus();
}

void CompareWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
    GoTo(lstDifferences->currentRow(), lstDifferences->currentColumn());
  else
    QDialog::keyPressEvent(event);
}

void Compare(CommandFrame& frame, DocumentWindow& left, ComparedTable right) {
  delete frame.findChild<CompareWindow*>();
  auto* window = new CompareWindow(frame, left, std::move(right));
  window->show();
  window->activateWindow();
}

}  // namespace chanplan
