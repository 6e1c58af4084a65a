// The three grids: what they show, how they follow the selection, and where they stand.
#include <QAccessible>
#include <QHelpEvent>
#include <QResizeEvent>
#include <QScrollBar>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

using Texts = std::vector<QString>;

class DocumentView : public DocumentTest {
 protected:
  static Texts Row(const Grid& grid, int row) {
    Texts texts;
    for (int column = 0; column < grid.columnCount(); ++column) texts.push_back(grid.CellText(row, column));
    return texts;
  }
  static Texts Column(const Grid& grid, int column) {
    Texts texts;
    for (int row = 0; row < grid.rowCount(); ++row) texts.push_back(grid.CellText(row, column));
    return texts;
  }
  static Texts Titles(const Grid& grid) {
    Texts texts;
    for (int column = 0; column < grid.columnCount(); ++column)
      texts.push_back(grid.horizontalHeaderItem(column)->text());
    return texts;
  }
  static std::vector<int> BoldRows(const Grid& grid) {
    std::vector<int> rows;
    for (int row = 0; row < grid.rowCount(); ++row)
      if (grid.item(row, 1)->font().bold()) rows.push_back(row);
    return rows;
  }
};

TEST_F(DocumentView, ListsStandardsButNotTheirSubbands) {
  const Document document = Open(Group("A", 0) + Group("B", 2) + Group("C", 0));
  EXPECT_EQ(Titles(*document.List), (Texts{"#", "Name", ""}));
  ASSERT_EQ(document.List->rowCount(), 3);
  EXPECT_EQ(Row(*document.List, 0), (Texts{"1", "A", "0"}));
  EXPECT_EQ(Row(*document.List, 1), (Texts{"2", "B", "1"}));
  EXPECT_EQ(Row(*document.List, 2), (Texts{"3", "C", "4"}));
  EXPECT_TRUE(document.List->isColumnHidden(2));
}

TEST_F(DocumentView, ShowsTheValuesOfTheFirstStandardAtFirst) {
  const Document document =
      Open({{"131", 0, "PCS 1900", 1850.2, 1930.00005, 512, 810, 0.2, 0.00625, 1}, NamedRow("other")});
  EXPECT_EQ(Column(*document.Details, 0),
            (Texts{"Signal Standard", "Sub-bands", "Active Display Mode", "Modulation Type",
                   "Uplink Start Frequency (MHz)", "Downlink Start Frequency (MHz)", "Start Channel", "Stop Channel",
                   "Occupied Bandwidth (MHz)", "Channel Spacing (MHz)", "Channel Step"}));
  EXPECT_EQ(Column(*document.Details, 1), (Texts{"PCS 1900", "0", "Now active", "CDMA/GSM", "1850.2000", "1930.0001",
                                                 "512", "810", "0.2000", "0.0063", "1"}));
}

struct StateCase {
  const char* State;
  QString DisplayMode;
  QString Modulation;
};

TEST_F(DocumentView, StateIsShownAsTwoChoices) {
  const std::vector<StateCase> cases = {
      {"0", "Standby", "None"},          {"1", "Standby", "CDMA"},          {"2", "Standby", "GSM"},
      {"3", "Standby", "CDMA/GSM"},      {"4", "Standby", "None"},          {"128", "Now active", "None"},
      {"131", "Now active", "CDMA/GSM"}, {"255", "Now active", "CDMA/GSM"}, {"257", "Standby", "CDMA"},
      {"", "Standby", "None"},
  };
  std::vector<SignalStandardRecord> rows;
  for (const StateCase& given : cases) {
    rows.push_back(NamedRow("S" + std::to_string(rows.size())));
    rows.back().State = given.State;
  }
  const Document document = Open(rows);
  for (int row = 0; row < document.List->rowCount(); ++row) {
    document.Click(document.List, row);
    const StateCase& expected = cases[static_cast<std::size_t>(row)];
    EXPECT_EQ(document.Detail(DisplayModeRow), expected.DisplayMode) << expected.State;
    EXPECT_EQ(document.Detail(ModulationRow), expected.Modulation) << expected.State;
  }
}

TEST_F(DocumentView, ShowsFourValuesOfEachSubband) {
  const Document document =
      Open({NamedRow("A", 2), Band(890.2, 935.2, 1, 62), Band(902.60004, 947.6, 63, 124), NamedRow("B")});
  EXPECT_EQ(Titles(*document.Bands),
            (Texts{"Sub-bands", "Uplink Freq. (MHz)", "Downlink Freq. (MHz)", "Start Channel", "Stop Channel"}));
  ASSERT_EQ(document.Bands->rowCount(), 2);
  EXPECT_EQ(Row(*document.Bands, 0), (Texts{"Band A", "890.2000", "935.2000", "1", "62"}));
  EXPECT_EQ(Row(*document.Bands, 1), (Texts{"Band B", "902.6000", "947.6000", "63", "124"}));
}

TEST_F(DocumentView, StandardWithoutSubbandsShowsOnlyTheHeaderOfBands) {
  const Document document = Open(Group("A", 0) + Group("B", 1));
  EXPECT_EQ(document.Bands->rowCount(), 0);
  EXPECT_TRUE(document.Bands->horizontalHeader()->isVisible());
}

TEST_F(DocumentView, BandAfterZIsCalledByTheNextCharacter) {
  const Document document = Open(Group("A", 27));
  EXPECT_EQ(document.Bands->CellText(25, 0), "Band Z");
  EXPECT_EQ(document.Bands->CellText(26, 0), "Band [");
}

TEST_F(DocumentView, TableWithoutStandardsHasNothingToEdit) {
  const Document document = Open({});
  EXPECT_EQ(document.List->rowCount(), 0);
  EXPECT_TRUE(document.List->horizontalHeader()->isVisible());
  EXPECT_EQ(document.Bands->rowCount(), 0);
  EXPECT_EQ(Column(*document.Details, 1), Texts(11));
  for (int row = 0; row < 11; ++row) {
    document.DoubleClick(document.Details, row);
    Type("5");
    Press(Qt::Key_F2);
    for (const QWidget* editor : {static_cast<QWidget*>(document.Box), static_cast<QWidget*>(document.Selected),
                                  static_cast<QWidget*>(document.Modulation)})
      EXPECT_FALSE(editor->isVisible()) << row;
  }
  document.List->setFocus();
  Press(Qt::Key_Delete);
  EXPECT_FALSE(document.State->Changed);
  EXPECT_EQ(TableIn(document).Count, 0);
}

// Every way to move the selection in the list, as a user has them.
struct SelectionWay {
  const char* Name;
  void (*SelectSecond)(const Document&);
};

void PrintTo(const SelectionWay& given, std::ostream* output) { *output << given.Name; }

class SelectionMoves : public DocumentView, public ::testing::WithParamInterface<SelectionWay> {};

TEST_P(SelectionMoves, OtherGridsFollow) {
  const Document document = Open(Group("A", 3) + Group("B", 1) + Group("C", 0));
  document.Click(document.List, 0);
  ASSERT_EQ(document.Bands->rowCount(), 3);
  GetParam().SelectSecond(document);
  EXPECT_EQ(document.Detail(NameRow), "B");
  EXPECT_EQ(document.Detail(SubbandsRow), "1");
  EXPECT_EQ(document.Bands->rowCount(), 1);
  EXPECT_EQ(BoldRows(*document.List), std::vector{1});
  EXPECT_FALSE(document.State->Changed);
}

TEST_P(SelectionMoves, WithALowerBandCurrentThanTheNextStandardHas) {
  const Document document = Open(Group("A", 3) + Group("B", 1) + Group("C", 0));
  document.Click(document.Bands, 2, UplinkColumn);
  document.List->setFocus();
  const SignalStandardTable former = TableIn(document);
  GetParam().SelectSecond(document);
  EXPECT_EQ(Row(*document.Bands, 0), (Texts{"Band A", "801.0000", "901.0000", "1", "1"}));
  EXPECT_EQ(document.Bands->rowCount(), 1);
  Press(Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(document.Bands->rowCount(), 0);
  EXPECT_EQ(TableIn(document), former);
}

INSTANTIATE_TEST_SUITE_P(
    DocumentView, SelectionMoves,
    ::testing::Values(
        SelectionWay{"Mouse", [](const Document& document) { document.Click(document.List, 1); }},
        SelectionWay{"NumberColumn", [](const Document& document) { document.Click(document.List, 1, 0); }},
        SelectionWay{"Keys", [](const Document&) { Press(Qt::Key_Down); }},
        SelectionWay{"Name", [](const Document& document) { document.Window->FindSSEntry("B"); }},
        SelectionWay{"NameOfASubband", [](const Document& document) { document.Window->FindSSEntry("B(A)"); }}),
    [](const auto& given) { return given.param.Name; });

TEST_F(DocumentView, UnknownNameSelectsNothingElse) {
  const Document document = Open(Group("A", 0) + Group("B", 0));
  document.Click(document.List, 1);
  for (const char* name : {"", "b", "B ", "A(A)"}) {
    document.Window->FindSSEntry(name);
    EXPECT_EQ(document.List->currentRow(), 1) << name;
  }
}

TEST_F(DocumentView, FoundStandardIsScrolledIntoSight) {
  const Document document = Open(Standards(199));
  document.Window->FindSSEntry("S180");
  EXPECT_EQ(document.List->currentRow(), 179);
  EXPECT_TRUE(document.List->viewport()->rect().contains(document.List->visualItemRect(document.List->item(179, 1))));
}

TEST_F(DocumentView, NothingIsHighlightedWhileDrawingIsOff) {
  const Document document = Open(Standards(3));
  EXPECT_EQ(BoldRows(*document.List), std::vector{0});
  document.List->setUpdatesEnabled(false);
  document.Click(document.List, 2);
  EXPECT_EQ(BoldRows(*document.List), std::vector{0});
  document.List->setUpdatesEnabled(true);
  document.Click(document.List, 1);
  EXPECT_EQ(BoldRows(*document.List), std::vector{1});
}

TEST_F(DocumentView, RefillingHighlightsOnceItIsDone) {
  const Document document = Open(Standards(4));
  document.Click(document.List, 2);
  std::vector<int> rowsWhenFontsChanged;
  QObject::connect(document.List, &QTableWidget::itemChanged, document.List, [&](QTableWidgetItem* cell) {
    if (cell->font().bold()) rowsWhenFontsChanged.push_back(document.List->rowCount());
  });
  Press(Qt::Key_Delete);
  EXPECT_EQ(BoldRows(*document.List), std::vector{2});
  EXPECT_EQ(document.ListNames(), (Texts{"S1", "S2", "S4"}));
  for (const int rows : rowsWhenFontsChanged) EXPECT_EQ(rows, 3);
}

TEST_F(DocumentView, StatusBarSaysHowToEditABand) {
  const Document document = Open(Group("A", 2));
  document.Click(document.Bands, 0, UplinkColumn);
  EXPECT_EQ(frame.Status(), "Double-click cell to edit parameter value.");
  frame.Statuses.clear();
  Press(Qt::Key_Right);
  EXPECT_EQ(frame.Status(), "Double-click cell to edit parameter value.");
  document.List->setFocus();
  EXPECT_EQ(frame.Status(), "");
}

TEST_F(DocumentView, LeavingTheDetailsClearsTheStatusBar) {
  const Document document = Open(Group("A", 0));
  document.Details->setFocus();
  frame.ShowStatus("something");
  document.List->setFocus();
  EXPECT_EQ(frame.Status(), "");
}

TEST_F(DocumentView, LeavingTheListKeepsTheStatusBar) {
  const Document document = Open(Group("A", 0));
  frame.ShowStatus("something");
  document.Details->setFocus();
  EXPECT_EQ(frame.Status(), "something");
}

TEST_F(DocumentView, OnlyTheGridThatHasTheFocusShowsItsSelectionInFullColour) {
  const Document document = Open(Group("A", 1));
  document.Window->resize(1200, 700);
  document.Click(document.Details, UplinkRow);
  document.Click(document.Bands, 0, UplinkColumn);
  const auto colour = [](Grid* grid, int row) {
    const QRect cell = grid->visualItemRect(grid->item(row, 1));
    const QPoint aboveTheText(cell.center().x(), cell.top() + 2);
    return grid->viewport()->grab().toImage().pixelColor(aboveTheText * grid->devicePixelRatioF());
  };
  const std::vector<std::pair<Grid*, int>> current = {
      {document.List, 0}, {document.Details, UplinkRow}, {document.Bands, 0}};
  const QPalette palette = document.List->palette();
  // Styles shade the colour, less than half of its saturation.
  const int strong = palette.color(QPalette::Highlight).hsvSaturation() / 2;
  for (const auto& [focused, focusedRow] : current) {
    focused->setFocus();
    for (const auto& [grid, row] : current) {
      EXPECT_EQ(colour(grid, row).hsvSaturation() > strong, grid == focused) << grid->objectName().toStdString();
      EXPECT_NE(colour(grid, row), palette.color(QPalette::Base)) << grid->objectName().toStdString();
    }
  }
}

TEST_F(DocumentView, TitlesFollowTheColoursOfTheDesktop) {
  const Document document = Open(Group("A", 1));
  QPalette dark = document.Window->palette();
  dark.setColor(QPalette::Button, Qt::black);
  dark.setColor(QPalette::ButtonText, Qt::white);
  document.Window->setPalette(dark);
  EXPECT_EQ(document.Details->item(UplinkRow, 0)->background().color(), QColor(Qt::black));
  EXPECT_EQ(document.Details->item(UplinkRow, 0)->foreground().color(), QColor(Qt::white));
}

TEST_F(DocumentView, ScreenReaderHearsWhatAValueIs) {
  const Document document = Open({{"2", 1, "GSM 900", 890.2, 935.2, 1, 124, 0.2, 0.2, 1}, Band(891, 936, 2, 3)});
  const auto textOf = [](Grid* grid, int row, int column) {
    QAccessibleInterface* const table = QAccessible::queryAccessibleInterface(grid);
    return table->tableInterface()->cellAt(row, column)->text(QAccessible::Name);
  };
  EXPECT_EQ(textOf(document.Details, UplinkRow, 1), "Uplink Start Frequency (MHz), 890.2000");
  EXPECT_EQ(textOf(document.Details, ModulationRow, 1), "Modulation Type, GSM");
  EXPECT_EQ(textOf(document.Bands, 0, UplinkColumn), "Band A, Uplink Freq. (MHz), 891.0000");
  EXPECT_EQ(textOf(document.List, 0, 1), "Name, GSM 900");
}

TEST_F(DocumentView, ControlsHaveNamesForScreenReaders) {
  const Document document = Open(Group("A", 1));
  const auto nameOf = [](const QWidget* control) { return control->accessibleName(); };
  EXPECT_EQ(nameOf(document.List), "Signal Standards");
  EXPECT_EQ(nameOf(document.Details), "Values of the selected Signal Standard");
  EXPECT_EQ(nameOf(document.Bands), "Sub-bands of the selected Signal Standard");
  EXPECT_EQ(nameOf(document.Selected), "Active Display Mode");
  EXPECT_EQ(nameOf(document.Modulation), "Modulation Type");
  EXPECT_EQ(nameOf(document.UpDown), "Sub-bands");
  document.DoubleClick(document.Details, UplinkRow);
  EXPECT_EQ(nameOf(document.Box), "Uplink Start Frequency (MHz)");
  document.DoubleClick(document.Bands, 0, StopColumn);
  EXPECT_EQ(nameOf(document.Box), "Band A, Stop Channel");
}

TEST_F(DocumentView, FullTableIsShownToItsLastRow) {
  const Document document = [this] {
    answers.Give(QMessageBox::Ok);
    return Open(Standards(199) + Group("last", 0));
  }();
  EXPECT_EQ(document.List->rowCount(), 200);
  document.Click(document.List, 199);
  EXPECT_EQ(document.Detail(NameRow), "last");
}

TEST_F(DocumentView, SubbandsPromisedBeyondTheEndAreNotShown) {
  const Document document = Open({NamedRow("A"), NamedRow("B", 500), Band(1, 2, 3, 4)});
  document.Click(document.List, 1);
  EXPECT_EQ(document.Detail(SubbandsRow), "500");
  EXPECT_EQ(document.Bands->rowCount(), 1);
  document.Click(document.Bands, 0, UplinkColumn);
  document.Click(document.List, 0);
  EXPECT_EQ(TableIn(document).Row(1).Subbands, 500);
}

TEST_F(DocumentView, WholeTableReplacesTheGrids) {
  const Document document = Open(Group("A", 3));
  document.Click(document.Bands, 2, UplinkColumn);
  shared.Passed = Group("X", 1) + Group("Y", 0) + std::vector<SignalStandardRecord>(5);
  document.Window->SetTable();
  EXPECT_EQ(document.ListNames(), (Texts{"X", "Y"}));
  EXPECT_EQ(document.Detail(NameRow), "X");
  EXPECT_EQ(document.Bands->rowCount(), 1);
}

class DocumentLayout : public DocumentTest {
 protected:
  static int Width(const Document& document, const QString& text) {
    return document.Window->fontMetrics().horizontalAdvance(text);
  }
  static int Twips(double twips, int dotsPerInch) { return qRound(twips * dotsPerInch / 1440); }
  static int Across(const Document& document, double twips) { return Twips(twips, document.Window->logicalDpiX()); }
  static int Down(const Document& document, double twips) { return Twips(twips, document.Window->logicalDpiY()); }
};

TEST_F(DocumentLayout, ColumnsAreAsWideAsTheirSamples) {
  const Document document = Open(Group("A", 1));
  document.Window->resize(1300, 700);
  EXPECT_EQ(document.List->columnWidth(0), Width(document, "999") + Width(document, "HH"));
  EXPECT_EQ(document.List->columnWidth(1), Width(document, "HHHHHHHHHHHHHHHHHHHHHHH"));
  EXPECT_EQ(document.Details->columnWidth(0),
            Width(document, "Downlink Start Frequency (MHz)") + Width(document, "HH"));
  EXPECT_EQ(document.Details->columnWidth(1), Width(document, QString(24, 'H')));
  for (const int column : {UplinkColumn, DownlinkColumn})
    EXPECT_EQ(document.Bands->columnWidth(column), Width(document, "88888888888888"));
  for (const int column : {StartColumn, StopColumn})
    EXPECT_EQ(document.Bands->columnWidth(column), Width(document, "8888888888"));
}

TEST_F(DocumentLayout, TitlesAndAllRowsOfTheDetailsAreInSightAtFirst) {
  const Document document = Open(Group("A", 1));
  const QRect sight = document.Details->viewport()->rect();
  EXPECT_GE(sight.width(), document.Details->columnWidth(0));
  EXPECT_GE(sight.height(), document.Details->rowViewportPosition(10) + document.Details->rowHeight(10));
  document.Click(document.Details, UplinkRow);
  EXPECT_EQ(document.Details->columnViewportPosition(0), 0);
}

TEST_F(DocumentLayout, RowsOfAllGridsAreEquallyHigh) {
  const Document document = Open(Group("A", 2) + Group("B", 0));
  const int height = document.Details->rowHeight(NameRow);
  EXPECT_GT(height, document.Window->fontMetrics().height());
  for (int edits = 0; edits < 3; ++edits) {
    for (const Grid* grid : {document.List, document.Details, document.Bands})
      for (int row = 0; row < grid->rowCount(); ++row) EXPECT_EQ(grid->rowHeight(row), height);
    // Rows that come after an edit are as high as those from before.
    document.Overwrite(SubbandsRow, std::to_string(3 + edits));
    Press(Qt::Key_Return);
    document.Window->InsertBlank();
  }
  EXPECT_EQ(document.Bands->rowCount(), 5);
  EXPECT_EQ(document.List->rowCount(), 5);
}

TEST_F(DocumentLayout, HeaderOfBandsHoldsTwoLines) {
  const Document document = Open(Group("A", 1));
  const int height = document.Bands->horizontalHeader()->height();
  EXPECT_EQ(height, qRound(2.25 * document.Bands->rowHeight(0)));
  EXPECT_GE(height, 2 * document.Window->fontMetrics().lineSpacing());
}

TEST_F(DocumentLayout, Alignment) {
  const Document document = Open(Group("A", 1));
  const auto expectCells = [](const Grid& grid, int column, Qt::Alignment expected) {
    for (int row = 0; row < grid.rowCount(); ++row)
      EXPECT_EQ(grid.item(row, column)->textAlignment(), (expected | Qt::AlignVCenter).toInt()) << row;
  };
  expectCells(*document.List, 0, Qt::AlignLeft);
  expectCells(*document.List, 1, Qt::AlignLeft);
  expectCells(*document.Details, 0, Qt::AlignLeft);
  expectCells(*document.Details, 1, Qt::AlignRight);
  for (int column = 1; column < 5; ++column) expectCells(*document.Bands, column, Qt::AlignRight);
  EXPECT_TRUE(document.List->horizontalHeader()->defaultAlignment() & Qt::AlignHCenter);
  EXPECT_TRUE(document.Bands->horizontalHeader()->defaultAlignment() & Qt::AlignHCenter);
}

TEST_F(DocumentLayout, NewWindowIs9500By5600Twips) {
  frmDocument document(frame, states.emplace_back(), shared);
  EXPECT_EQ(document.width(), Twips(9500, document.logicalDpiX()));
  EXPECT_EQ(document.height(), Twips(5600, document.logicalDpiY()));
}

struct SizeCase {
  int Width;
  int Height;
};

TEST_F(DocumentLayout, GridsFillTheWindow) {
  const Document document = Open(Group("A", 1));
  for (const SizeCase size : {SizeCase{900, 600}, {1300, 900}, {700, 450}}) {
    document.Window->resize(size.Width, size.Height);
    const int width = document.Area().width();
    const int height = document.Area().height();
    const int listWidth = document.List->columnWidth(0) + document.List->columnWidth(1) + 8 +
                          document.Window->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    EXPECT_EQ(document.List->geometry(), QRect(2, 2, listWidth, height - 4));
    const int left = 2 + listWidth + 2;
    const int detailsHeight = document.Details->height();
    EXPECT_EQ(document.Details->geometry(), QRect(left, 2, width - left - 2, detailsHeight));
    const int top = 2 + detailsHeight + 2;
    EXPECT_EQ(document.Bands->geometry(), QRect(left, top, width - left - 2, height - top - 2));
  }
}

TEST_F(DocumentLayout, DetailsKeepTheirHeight) {
  const Document document = Open(Group("A", 1));
  const int former = document.Details->height();
  document.Window->resize(1300, 900);
  EXPECT_EQ(document.Details->height(), former);
}

TEST_F(DocumentLayout, WindowIsAtLeast5200By2800Twips) {
  const Document document = Open(Group("A", 1));
  document.Window->resize(50, 700);
  EXPECT_EQ(document.Window->size(), QSize(Across(document, 5200), 700));
  document.Window->resize(900, 50);
  EXPECT_EQ(document.Window->size(), QSize(900, Down(document, 2800)));
  document.Window->resize(50, 50);
  EXPECT_EQ(document.Window->size(), QSize(Across(document, 5200), Down(document, 2800)));
}

TEST_F(DocumentLayout, BandsLowerThan50TwipsKeepTheirHeight) {
  const Document document = Open(Group("A", 1));
  document.Window->resize(900, 600);
  const int chrome = document.Window->height() - document.Area().height();
  const int above = 2 + document.Details->height() + 2 + 2;  // all that is not the bands
  const int lowest = Down(document, 50);
  ASSERT_GT(lowest, 0);
  document.Window->resize(900, chrome + above + lowest);
  EXPECT_EQ(document.Bands->height(), lowest);
  document.Window->resize(900, chrome + above + 60);
  document.Window->resize(900, chrome + above + lowest - 1);
  EXPECT_EQ(document.Bands->height(), 60);
}

TEST_F(DocumentLayout, NothingMovesInAMinimisedWindow) {
  const Document document = Open(Group("A", 1));
  document.Window->resize(900, 600);
  const QRect list = document.List->geometry();
  const QRect details = document.Details->geometry();
  const QRect bands = document.Bands->geometry();
  document.Window->showMinimized();
  QCoreApplication::processEvents();
  document.Area().resize(10, 10);
  QResizeEvent resized(QSize(10, 10), QSize(900, 600));
  QApplication::sendEvent(&document.Area(), &resized);
  EXPECT_EQ(document.List->geometry(), list);
  EXPECT_EQ(document.Details->geometry(), details);
  EXPECT_EQ(document.Bands->geometry(), bands);
}

TEST_F(DocumentView, ExactValuesAreTheToolTipsOfRoundedOnes) {
  const Document document = Open({{"2", 1, "A", 890.20004, 935.2, 1, 2, 0.00005, 0.00625, 1}, Band(1.00001, 2, 3, 4)});
  const auto tip = [](const Grid* grid, int row, int column) { return grid->item(row, column)->toolTip(); };
  EXPECT_EQ(tip(document.Details, UplinkRow, 1), "890.20004");
  EXPECT_EQ(tip(document.Details, DownlinkRow, 1), "");
  EXPECT_EQ(tip(document.Details, BandwidthRow, 1), "5E-05");
  EXPECT_EQ(tip(document.Details, SpacingRow, 1), "0.00625");
  EXPECT_EQ(tip(document.Details, NameRow, 1), "");
  EXPECT_EQ(tip(document.Bands, 0, UplinkColumn), "1.00001");
  EXPECT_EQ(tip(document.Bands, 0, DownlinkColumn), "");
}

TEST_F(DocumentView, ScreenReadersHearWhatTheListsAreAbout) {
  const Document document = Open(Standards(1));
  for (const auto& [list, label] :
       {std::pair{document.Selected, "Active Display Mode"}, std::pair{document.Modulation, "Modulation Type"}}) {
    QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(list);
    QStringList labels;
    for (const auto& [other, relation] : spoken->relations(QAccessible::Label))
      labels += other->text(QAccessible::Name);
    EXPECT_EQ(labels, QStringList(label));
  }
}

TEST_F(DocumentView, IndexBehindTheListIsNotReadOut) {
  const Document document = Open(Standards(3));
  QAccessibleInterface* list = QAccessible::queryAccessibleInterface(document.List);
  for (int row = 0; row < 3; ++row)
    EXPECT_EQ(list->tableInterface()->cellAt(row, 2)->text(QAccessible::Name).trimmed(), "") << row;
}

TEST_F(DocumentLayout, BarOfANarrowDocumentLeavesTheLastValueInSight) {
  const Document document = Open(Group("A", 1));
  for (const int width : {400, 500, 600, 900, 1300}) {
    document.Window->resize(width, 700);
    QCoreApplication::processEvents();
    const QRect last = document.Details->visualItemRect(document.Details->item(StepRow, 1));
    EXPECT_LE(last.bottom(), document.Details->viewport()->rect().bottom()) << width;
  }
}

TEST_F(DocumentLayout, BarOfLowSubbandsLeavesTheFirstRowInSight) {
  const Document document = Open(Group("A", 2));
  for (int height = 300; height < 450; height += 5) {
    document.Window->resize(500, height);
    QCoreApplication::processEvents();
    const int room = document.Bands->height() - 2 * document.Bands->frameWidth();
    if (room < document.Bands->horizontalHeader()->height() + document.Bands->rowHeight(0)) continue;
    const QRect first = document.Bands->visualItemRect(document.Bands->item(0, UplinkColumn));
    EXPECT_LE(first.bottom(), document.Bands->viewport()->rect().bottom()) << height;
  }
}

TEST_F(DocumentLayout, TitleBarKeepsTheEndOfALongCaptionAndTellsAllOfIt) {
  const Document document = OpenEmpty("/a/" + QString(200, 'f') + "/plan.sig");
  const auto titleBar = [&] {
    document.Window->resize(600, 400);
    return document.Window->grab(QRect(0, 0, 600, document.Window->widget()->y())).toImage();
  };
  const QImage former = titleBar();
  document.Window->setWindowTitle("/a/" + QString(200, 'f') + "/plan.sug");
  EXPECT_NE(titleBar(), former) << "the end is seen";
  document.Window->setWindowTitle("/c/" + QString(200, 'f') + "/plan.sig");
  EXPECT_EQ(titleBar(), former) << "the beginning is not";
  QHelpEvent help(QEvent::ToolTip, QPoint(100, 5), document.Window->mapToGlobal(QPoint(100, 5)));
  QApplication::sendEvent(document.Window, &help);
  QTextDocument text;
  text.setHtml(QToolTip::text());
  EXPECT_EQ(text.toPlainText(), document.Window->windowTitle());
  QToolTip::hideText();
}

// Whatever the file's name is, the caption stays it.
TEST_F(DocumentLayout, TitleBarHasTheSignOfUnsavedChangesBehindTheCaption) {
  for (const char* name : {"/a/plan.sig", "/a/plan[*].sig", "/a/[*][*]"}) {
    const Document document = OpenEmpty(name);
    const auto titleBar = [&] {
      document.Window->resize(600, 400);
      return document.Window->grab(QRect(0, 0, 600, document.Window->widget()->y())).toImage();
    };
    const QImage saved = titleBar();
    document.Window->InsertBlank();
    const QImage changed = titleBar();
    EXPECT_NE(changed, saved);
    EXPECT_EQ(document.Window->windowTitle(), name);
    EXPECT_EQ(document.Window->accessibleDescription(), "Has unsaved changes");
    document.State->Changed = false;
    EXPECT_EQ(titleBar(), saved);
    document.Window->setWindowTitle(QString(name) + "*");
    EXPECT_EQ(titleBar(), changed) << "the sign is the platform's asterisk";
    document.Window->setWindowTitle(name);
    EXPECT_EQ(document.Window->accessibleDescription(), "");
  }
}

// Also where the document is larger than what is seen of it.
TEST_F(DocumentView, CurrentCellsAndNewRowsAreInSight) {
  window.resize(500, 250);
  mdi->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);  // as in the frame
  const Document document = Open(Standards(60) + Group("B", 1));
  QCoreApplication::processEvents();
  const auto inSight = [&](const Grid* grid, int row, int column) {
    QRect cell = grid->visualItemRect(grid->item(row, column));
    cell.moveTopLeft(grid->viewport()->mapTo(mdi->viewport(), cell.topLeft()));
    return cell.top() >= 0 && cell.bottom() < mdi->viewport()->height();
  };
  Press(Qt::Key_End);
  EXPECT_TRUE(inSight(document.List, 60, 1));
  Press(Qt::Key_Home);
  EXPECT_TRUE(inSight(document.List, 0, 1));
  document.Window->InsertBlank();
  EXPECT_TRUE(inSight(document.List, 61, 1));
  document.Details->setFocus();
  for (int row = NameRow; row <= StepRow; ++row) {
    Press(row == NameRow ? Qt::Key_Home : Qt::Key_Down);
    EXPECT_TRUE(inSight(document.Details, row, 1)) << row;
  }
}

}  // namespace
}  // namespace chanplan::testing
