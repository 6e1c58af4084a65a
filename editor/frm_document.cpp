// The document window: set-up, layout, and filling the grids from the table.
#include "editor/frm_document.h"

#include <QFocusEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>
#include <algorithm>
#include <limits>

#include "core/lenient_number.h"
#include "core/number_picture.h"
#include "editor/caption_style.h"
#include "editor/find_bar.h"
#include "editor/grid_columns.h"
#include "editor/history_commands.h"
#include "editor/text_edge.h"
#include "editor/twips.h"

namespace chanplan {
namespace {

constexpr int InitialWidth = 9500;  // twips, as all sizes up to the margins
constexpr int InitialHeight = 5600;
constexpr int LowestWidth = 5200;
constexpr int LowestHeight = 2800;
constexpr int LowestBandsHeight = 50;
constexpr int Margin = 2;  // pixels
constexpr double BandsHeaderLines = 2.25;
constexpr int LeastValueLetters = 8;  // widths of the value column
constexpr int MostValueLetters = 24;

int TextWidth(const QWidget& widget, const QString& text) { return widget.fontMetrics().horizontalAdvance(text); }

struct ShownValue {
  QString Text;
  QString Exact;  // where the text is rounded
};

ShownValue ValueOf(const SignalStandardRecord& record, Field field) {
  const RecordField& shown = FieldOf(field);
  return VisitField(record, shown,
                    ByType{[](const std::string& text) {
                             return ShownValue{TextOf(text), {}};
                           },
                           [&](double number) {
                             const std::string text = FormatNumber(number, shown.GridPicture);
                             const std::string exact = ShortestDecimal(number);
                             const bool rounded = ShortestDecimal(LeadingNumber(text)) != exact;
                             return ShownValue{TextOf(text), rounded ? TextOf(exact) : QString()};
                           }});
}

}  // namespace

frmDocument::frmDocument(FrameOperations& frameUsed, DocumentState& documentState, SharedTables& sharedTables,
                         QWidget* parent)
    : DocumentWindow(parent),
      frame(frameUsed),
      state(documentState),
      shared(sharedTables),
      area(new QWidget),
      gridsView(new QScrollArea(area)),
      grids(new QWidget),
      GridList(new Grid("GridList", 1, grids)),
      GridDetails(new Grid("GridDetails", 1, grids)),
      GridBands(new Grid("GridBands", 1, grids)),
      UpDown(new QSpinBox(grids)),
      editor(*grids),
      ActiveGrid(GridList) {
  setObjectName("frmDocument");
  UseCaptionStyle(*this);
  setAttribute(Qt::WA_DeleteOnClose);
  setWidget(area);
  gridsView->setWidget(grids);
  gridsView->setFrameShape(QFrame::NoFrame);
  gridsView->setFocusPolicy(Qt::NoFocus);
  gridsView->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  connect(gridsView->verticalScrollBar(), &QScrollBar::valueChanged, this, &frmDocument::PlaceList);
  BuildUpDown();
  BuildGrids();
  ConnectGrids();
  ConnectEditor();
  ConnectContextMenus();
  AddHistoryKeys(*this, [this] { return this; });
  area->installEventFilter(this);
  setMinimumSize(TwipsToPixelsX(LowestWidth, *this), TwipsToPixelsY(LowestHeight, *this));
  resize(TwipsToPixelsX(InitialWidth, *this), TwipsToPixelsY(InitialHeight, *this));
  ShowSelectedStandard();
  state.Changed.Show = [this](bool) { ShowChangedSign(); };
  if (frame.ShowsCharts()) ShowChart(true);
}

// The controls still send events while they go; nothing may be stored then.
frmDocument::~frmDocument() {
  state.Changed.Show = nullptr;
  editor.disconnect(this);
  for (Grid* grid : {GridList, GridDetails, GridBands}) grid->disconnect(this);
  if (chart != nullptr) chart->disconnect(this);
  delete area;
}

void frmDocument::BuildGrids() {
  const int margin = TextWidth(*this, "HH");
  const int rowHeight = editor.txtEntry->height();

  GridList->setAccessibleName("Signal Standards");
  GridList->setSelectionBehavior(QAbstractItemView::SelectRows);
  GridList->setSelectionMode(QAbstractItemView::ContiguousSelection);
  GridList->setColumnCount(3);
  GridList->setHorizontalHeaderLabels({"#", "Name", ""});
  GridList->setColumnWidth(0, TextWidth(*this, "999") + margin);
  GridList->setColumnWidth(1, TextWidth(*this, QString(23, 'H')));
  GridList->hideColumn(2);

  GridDetails->setAccessibleName("Values of the selected Signal Standard");
  GridDetails->setSelectionMode(QAbstractItemView::SingleSelection);
  GridDetails->setColumnCount(2);
  GridDetails->horizontalHeader()->hide();
  GridDetails->setColumnWidth(0, TextWidth(*this, "Downlink Start Frequency (MHz)") + margin);
  GridDetails->SetColumnAlignment(1, Qt::AlignRight);
  GridDetails->SetRows(static_cast<int>(DetailRows.size()), rowHeight);
  for (int row = 0; row < GridDetails->rowCount(); ++row) {
    GridDetails->FillCell(row, 0, DetailRows[static_cast<std::size_t>(row)].Title);
    GridDetails->item(row, 0)->setFlags(Qt::ItemIsEnabled);
  }
  ColourTitles();
  GridDetails->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

  GridBands->setAccessibleName("Sub-bands of the selected Signal Standard");
  GridBands->setSelectionMode(QAbstractItemView::SingleSelection);
  GridBands->setColumnCount(static_cast<int>(BandColumns.size()));
  for (int column = 0; column < GridBands->columnCount(); ++column) {
    const BandColumn& shape = BandColumns[static_cast<std::size_t>(column)];
    GridBands->setHorizontalHeaderItem(column, new QTableWidgetItem(shape.Title));
    if (shape.WidthInDigits == 0) continue;
    GridBands->setColumnWidth(column, TextWidth(*this, QString(shape.WidthInDigits, '8')));
    GridBands->SetColumnAlignment(column, Qt::AlignRight);
  }
  GridBands->setColumnWidth(0, TextWidth(*this, BandColumns[0].Title) + margin);
  GridBands->horizontalHeader()->setDefaultAlignment(Qt::AlignCenter | static_cast<Qt::Alignment>(Qt::TextWordWrap));
  GridBands->horizontalHeader()->setFixedHeight(qRound(BandsHeaderLines * rowHeight));
}

void frmDocument::ColourTitles() {
  for (int row = 0; row < GridDetails->rowCount(); ++row) {
    GridDetails->item(row, 0)->setBackground(palette().button());
    GridDetails->item(row, 0)->setForeground(palette().buttonText());
  }
}

bool frmDocument::event(QEvent* event) {
  // Before that there is no telling what room its area has.
  if (event->type() == QEvent::Show && ChartIsShown()) chart->WidenWindow(*this);
  if (event->type() != QEvent::ToolTip) return DocumentWindow::event(event);
  const auto& help = *static_cast<QHelpEvent*>(event);
  const QString text = OnTitleBar(*this, help.pos()) ? Qt::convertFromPlainText(windowTitle()) : QString();
  QToolTip::showText(help.globalPos(), text, this);
  return true;
}

void frmDocument::changeEvent(QEvent* event) {
  DocumentWindow::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) ColourTitles();
  if (event->type() == QEvent::WindowStateChange && hasFocus() && !isMinimized()) ActiveGrid->setFocus();
}

// The library's own sign, that of modified windows, wants a place for it in the caption, which is a
// file's name: any text may stand there.
void frmDocument::ShowChangedSign() {
  setAccessibleDescription(state.Changed ? "Has unsaved changes" : "");
  update();  // of the title bar
  emit ChangedSignChanged();
}

void frmDocument::BuildUpDown() {
  UpDown->setObjectName("UpDown");
  UpDown->setRange(0, std::numeric_limits<int>::max());
  UpDown->setAccessibleName(DetailRows[SubbandsRow].Title);
  UpDown->hide();
  connect(UpDown, &QSpinBox::valueChanged, this, &frmDocument::UpDown_Change);
}

void frmDocument::ConnectGrids() {
  for (Grid* grid : {GridList, GridDetails, GridBands}) {
    connect(grid, &Grid::FocusGained, this, [this, grid] {
      // In a window that was not the active one, an editor is left without losing the focus.
      if (editor.IsOpen()) CommitEdit();
      if (isMinimized()) return;  // the library passes the focus on from each grid that it hides
      ActiveGrid = grid;
      KeepInSight(*grid, grid->currentIndex());
    });
    connect(grid, &Grid::CurrentCellMoved, this, [this, grid] {
      if (!SuppressListEvents) KeepInSight(*grid, grid->currentIndex());
    });
    connect(grid, &Grid::Tabbed, this, [this, grid](bool forwards) { MoveByTab(*grid, forwards); });
    connect(grid->verticalScrollBar(), &QScrollBar::valueChanged, &editor, &CellEditor::Place);
    connect(grid->horizontalScrollBar(), &QScrollBar::valueChanged, &editor, &CellEditor::Place);
  }
  connect(editor.txtEntry, &EntryBox::Edited, this, [this] { ScrollGridsTo(*ActiveGrid, ActiveGrid->currentIndex()); });
  connect(GridList, &Grid::CurrentCellMoved, this, &frmDocument::ListRowChanged);
  connect(GridList, &Grid::DeleteReleased, this, [this] {
    CommitEdit();
    DeleteByKey();
  });
  connect(GridDetails, &Grid::CurrentCellMoved, this, [this](int row) {
    if (SuppressListEvents) return;
    CommitEdit();
    if (row >= SubbandsRow && row <= ModulationRow) BeginCellEdit(0);
  });
  // The cursor may be there already, from before the editor was closed.
  connect(GridDetails, &QTableWidget::cellClicked, this, [this](int row) {
    if (row >= SubbandsRow && row <= ModulationRow && !editor.IsOpen()) BeginCellEdit(0);
  });
  connect(GridBands, &Grid::CurrentCellMoved, this, [this](int row) {
    if (SuppressListEvents) return;
    const bool refused = StoreGridsToTable() == Commit::Refused;
    if (row >= 0 && !refused) frame.ShowStatus("Double-click cell to edit parameter value.");
  });
  for (Grid* grid : {GridDetails, GridBands}) {
    connect(grid, &Grid::FocusLost, this, [this] { frame.ShowStatus(""); });
    connect(grid, &Grid::EditRequested, this, [this] { BeginCellEdit(0); });
  }
  connect(GridDetails, &Grid::CellTyped, this, [this](QChar character) {
    const int row = GridDetails->currentRow();
    if (!editor.IsOpen() && (row == NameRow || row >= FirstNumberRow))
      BeginCellEdit(static_cast<qint16>(character.unicode()));
  });
}

// The window itself has nothing to do for keys, unless it is all that is seen of the document.
void frmDocument::focusInEvent(QFocusEvent* event) {
  DocumentWindow::focusInEvent(event);
  if (!isMinimized()) ActiveGrid->setFocus();
}

// As where the room for documents is scrolled.
void frmDocument::moveEvent(QMoveEvent* event) {
  DocumentWindow::moveEvent(event);
  PlaceFindBar();
}

bool frmDocument::eventFilter(QObject* watched, QEvent* event) {
  if (watched == area && event->type() == QEvent::Resize) LayOut();
  if (watched != parentWidget()) return DocumentWindow::eventFilter(watched, event);
  if (event->type() == QEvent::Resize) PlaceFindBar();
  return false;
}

void frmDocument::ToggleChart() {
  ShowChart(!ChartIsShown());
  frame.RememberCharts(ChartIsShown());
}

void frmDocument::ShowChart(bool shown) {
  if (chart == nullptr) {
    chart = new ChartPanel(table, area);
    connect(this, &DocumentWindow::TableChanged, chart, &ChartPanel::ShowTable);
    connect(chart, &ChartPanel::Tabbed, this, [this](bool forwards) { MoveByTab(*chart, forwards); });
    connect(chart, &ChartPanel::FocusGained, this, [this] {
      CommitEdit();
      ActiveGrid = GridList;  // whose standards it shows
    });
    connect(chart, &ChartPanel::StandardChosen, this, [this](int row) {
      CommitEdit();
      GridList->SetCurrent(qMin(row, GridList->rowCount() - 1), 1);
      GridList->scrollToItem(GridList->currentItem());
    });
    chart->ShowCurrent(GridList->currentRow());
  }
  if (!shown && chart->hasFocus()) GridList->setFocus();
  chart->setVisible(shown);
  if (shown)
    chart->WidenWindow(*this);
  else
    chart->NarrowWindow(*this);
  LayOut();
}

// What the grids need to show what they have, with some rows of sub-bands.
QSize frmDocument::NaturalSize(int listWidth) const {
  const int values =
      GridDetails->columnWidth(0) + 2 * GridDetails->frameWidth() + TextWidth(*this, QString(MostValueLetters, 'H'));
  const int bands = GridBands->horizontalHeader()->length() + 2 * GridBands->frameWidth();
  const int rows = static_cast<int>(DetailRows.size()) * GridDetails->rowHeight(0);
  return {listWidth + qMax(values, bands) + 3 * Margin,
          rows + GridBands->horizontalHeader()->height() + 4 * GridDetails->rowHeight(0)};
}

QSize frmDocument::RoomBesideChart(const QSize& both, int listWidth) {
  if (!ChartIsShown()) return both;
  const int titles = GridDetails->columnWidth(0) + 2 * GridDetails->frameWidth();
  const QSize least(listWidth + titles + TextWidth(*this, QString(LeastValueLetters, 'H')) + 3 * Margin, 0);
  return chart->TakePlace(both, least, NaturalSize(listWidth));
}

void frmDocument::LayOut() {
  if (isMinimized()) return;
  const int scrollBar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, GridList);
  const int listWidth = GridList->columnWidth(0) + GridList->columnWidth(1) + 8 + scrollBar;
  PlaceFindBar();
  const int barHeight = FindBarIsShown() ? findBar->height() : 0;
  const QSize seen = RoomBesideChart({area->width(), area->height() - barHeight}, listWidth);
  // The chart may leave less room than the grids need, which are scrolled then.
  const int needed = ChartIsShown() ? NaturalSize(listWidth).height() : 0;
  const bool roomScrolls = needed > seen.height();
  const QSize room(seen.width() - (roomScrolls ? scrollBar : 0), qMax(seen.height(), needed));
  gridsView->setVerticalScrollBarPolicy(roomScrolls ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
  gridsView->setGeometry(QRect(QPoint(), seen));
  GridList->resize(listWidth, seen.height() - 2 * Margin);
  PlaceList();

  const int left = Margin + listWidth + Margin;
  const int width = room.width() - left - Margin;
  // A value column as wide as its sample would, in a small window, scroll the titles out of sight.
  const int forValues = width - 2 * GridDetails->frameWidth() - GridDetails->columnWidth(0);
  GridDetails->setColumnWidth(1, qBound(TextWidth(*this, QString(LeastValueLetters, 'H')), forValues,
                                        TextWidth(*this, QString(MostValueLetters, 'H'))));
  // The bar that a narrow document needs stands below the rows, not on the last one.
  const int rows = GridDetails->rowCount() * GridDetails->rowHeight(0) + 2 * GridDetails->frameWidth();
  const bool scrolls = GridDetails->horizontalHeader()->length() > width - 2 * GridDetails->frameWidth();
  const int detailsHeight = rows + (scrolls ? scrollBar : 0);
  GridDetails->setGeometry(left, Margin, width, detailsHeight);
  GridDetails->horizontalScrollBar()->setValue(GridDetails->horizontalScrollBar()->maximum());  // values before titles

  const int top = Margin + GridDetails->height() + Margin;
  const int height = room.height() - top - Margin;
  const bool highEnough = height >= TwipsToPixelsY(LowestBandsHeight, *this);
  GridBands->setGeometry(left, top, width, highEnough ? height : GridBands->height());
  grids->resize(room.width(), qMax(room.height(), GridBands->geometry().bottom() + 1 + Margin));
  // Where there is no room for both, the first row counts more than the bar that would cover it.
  const int oneRow = GridBands->horizontalHeader()->height() + GridDetails->rowHeight(0) + 2 * GridBands->frameWidth();
  GridBands->setHorizontalScrollBarPolicy(GridBands->height() < oneRow + scrollBar ? Qt::ScrollBarAlwaysOff
                                                                                   : Qt::ScrollBarAsNeeded);
  editor.Place();
  ScrollGridsTo(*ActiveGrid, ActiveGrid->currentIndex());
}

// It has rows enough to scroll by itself, and stays beside what is scrolled.
void frmDocument::PlaceList() { GridList->move(Margin, Margin + gridsView->verticalScrollBar()->value()); }

int frmDocument::SelectedIndex() const {
  const int row = GridList->currentRow();
  return row < 0 ? -1 : GridList->CellText(row, 2).toInt();
}

int frmDocument::ListRowOf(int index) const {
  const std::vector<int> standards = StandardIndices(table);
  if (index < 0 || index >= table.Count) return -1;
  return static_cast<int>(std::ranges::upper_bound(standards, index) - standards.begin()) - 1;
}

int frmDocument::SubbandRows() const { return GroupEnd(table, shownIndex) - shownIndex - 1; }

void frmDocument::FillStandardList(int currentRow) {
  const QScopedValueRollback suppressed(SuppressListEvents, true);
  GridList->setUpdatesEnabled(false);
  const std::vector<int> standards = StandardIndices(table);
  GridList->SetRows(static_cast<int>(standards.size()), GridDetails->rowHeight(0));
  for (int row = 0; row < GridList->rowCount(); ++row) {
    const int index = standards[static_cast<std::size_t>(row)];
    GridList->FillCell(row, 0, QString::number(row + 1));
    GridList->FillCell(row, 1, TextOf(table.Row(index).Name), "Name");
    GridList->FillCell(row, 2, QString::number(index));
    GridList->item(row, 2)->setData(Qt::AccessibleTextRole, " ");  // it is nobody's business but the program's
  }
  if (GridList->rowCount() > 0) GridList->SetCurrent(qBound(0, currentRow, GridList->rowCount() - 1), 1);
  GridList->setUpdatesEnabled(true);
  HighlightListRow();
}

void frmDocument::ShowSelectedStandard() {
  shownIndex = SelectedIndex();
  GridBands->setUpdatesEnabled(false);
  if (shownIndex < 0) {
    for (int row = 0; row < GridDetails->rowCount(); ++row)
      GridDetails->FillCell(row, 1, "", DetailRows[static_cast<std::size_t>(row)].Title);
    ShowBands(0, 0);
  } else {
    ShowStandard();
  }
  GridBands->setUpdatesEnabled(true);
  if (chart != nullptr) chart->ShowCurrent(GridList->currentRow());
}

void frmDocument::ShowStandard() {
  ShowDetails(table.Row(shownIndex));
  ShowBands(shownIndex, SubbandRows());
}

void frmDocument::ShowDetails(const SignalStandardRecord& standard) {
  for (int row = 0; row < GridDetails->rowCount(); ++row) {
    const DetailRow& shape = DetailRows[static_cast<std::size_t>(row)];
    if (shape.Shown == Field::State) continue;
    const ShownValue value = ValueOf(standard, shape.Shown);
    GridDetails->FillCell(row, 1, value.Text, shape.Title, value.Exact);
  }
  UpDown->setValue(standard.Subbands);
  ShowStateCode(static_cast<int>(StateValue(standard) & 0xFF));
}

void frmDocument::ShowBands(int index, int count) {
  // Rows that go may take the current cell with them, and nobody has left it then.
  const QScopedValueRollback suppressed(SuppressListEvents, true);
  GridBands->SetRows(count, GridDetails->rowHeight(0));
  for (int row = 0; row < count; ++row) {
    const QString band = "Band " + TextOf(std::string(1, SubbandLetter(row + 1)));
    GridBands->FillCell(row, 0, band);
    for (int column = 1; column < GridBands->columnCount(); ++column) {
      const BandColumn& shape = BandColumns[static_cast<std::size_t>(column)];
      const ShownValue value = ValueOf(table.Row(index + 1 + row), shape.Shown);
      GridBands->FillCell(row, column, value.Text, band + ", " + shape.Title, value.Exact);
    }
  }
}

void frmDocument::HighlightListRow() {
  if (!GridList->updatesEnabled()) return;
  GridList->setUpdatesEnabled(false);
  for (int row = 0; row < GridList->rowCount(); ++row) {
    QTableWidgetItem* cell = GridList->item(row, 1);
    QFont font = cell->font();
    if (font.bold() == (row == GridList->currentRow())) continue;
    font.setBold(row == GridList->currentRow());
    cell->setFont(font);
  }
  GridList->setUpdatesEnabled(true);
}

// Of a document that is larger than the area a part may be out of sight, which the area moves.
void frmDocument::KeepInSight(const Grid& grid, const QModelIndex& cell) {
  ScrollGridsTo(grid, cell);
  if (cell.isValid()) KeepInSight(*grid.viewport(), grid.visualRect(cell) & grid.viewport()->rect());
}

// Where the grids have less room than they need.
void frmDocument::ScrollGridsTo(const Grid& grid, const QModelIndex& cell) {
  if (!cell.isValid()) return;
  const QRect place = grid.visualRect(cell) & grid.viewport()->rect();
  const QPoint middle = grid.viewport()->mapTo(grids, place.center());
  gridsView->ensureVisible(middle.x(), middle.y(), 0, place.height());
}

void frmDocument::KeepInSight(const QWidget& shownIn, QRect place) {
  if (mdiArea() == nullptr || !isVisible()) return;
  const QWidget& seen = *mdiArea()->viewport();
  place.moveTopLeft(shownIn.mapTo(&seen, place.topLeft()));
  const bool mayBeCovered = FindBarIsShown() && &shownIn != findBar;
  const int end = mayBeCovered ? qMin(seen.height(), findBar->mapTo(&seen, QPoint()).y()) : seen.height();
  const auto move = [](QScrollBar& bar, int before, int behind) {
    if (behind > 0)
      bar.setValue(bar.value() + behind);
    else if (before < 0)
      bar.setValue(bar.value() + before);
  };
  move(*mdiArea()->verticalScrollBar(), place.top(), place.bottom() + 1 - end);
  move(*mdiArea()->horizontalScrollBar(), place.left(), place.right() + 1 - seen.width());
}

void frmDocument::Refill(int currentRow) {
  FillStandardList(currentRow);
  ShowSelectedStandard();
}

void frmDocument::RefillAfterEdit(int currentRow, const QString& step) {
  const int rowBefore = shownIndex;
  Refill(currentRow);
  ValidateTable();
  MarkChanged();
  RecordStep(step, rowBefore);
}

void frmDocument::ListRowChanged() {
  if (SuppressListEvents) return;
  StoreGridsToTable();
  ShowSelectedStandard();
  MarkDoubtfulCells();
  HighlightListRow();
}

// The unit's own names of sub-bands stay until something is edited.
void frmDocument::ShowUnitTable(const SignalStandardTable& received) {
  editor.Close();  // it belongs to the former table
  const int rowBefore = shownIndex;
  table = received;
  Refill(0);
  // What was entered while it was on its way can be had back.
  if (history.CanUndo())
    RecordStep("download", rowBefore);
  else
    history = TableHistory(table);
  ShowWarnings();
  if (table.Count > 0) MarkUnsaved();
}

void frmDocument::MarkUnsaved() {
  history.ForgetSaved();
  MarkChanged();
}

void frmDocument::GetTable() const { chanplan::GetTable(table, shared.Passed); }

void frmDocument::SetTable() {
  const int rowBefore = shownIndex;
  chanplan::SetTable(shared.Passed, table);
  Refill(GridList->currentRow());
  ShowWarnings();
  RecordStep("merge", rowBefore);
}

}  // namespace chanplan
