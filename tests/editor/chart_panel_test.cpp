// The chart beside the grids: what it draws, what a click and keys do, and where it stands.
#include "editor/chart_panel.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QHelpEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolTip>
#include <limits>

#include "editor/item_colours.h"
#include "report/chart_colours.h"
#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

SignalStandardRecord Plan(std::string name, double uplink, double downlink, int channels, int subbands = 0) {
  return {"2", subbands, std::move(name), uplink, downlink, 0, channels, 0.2, 0.2, 1};
}

const std::vector<SignalStandardRecord> Three = {Plan("One", 900, 945, 100), Plan("Two", 910, 1800, 200),
                                                 Plan("Three", 2000, 2100, 100)};

QColor ColourOf(std::string_view name) { return QColor(QString::fromLatin1(name.data(), qsizetype(name.size()))); }

class ChartBeside : public DocumentTest {
 protected:
  /// The chart of `document`, shown and drawn.
  static ChartPanel& Show(const Document& document) {
    document.Window->ToggleChart();
    return Drawn(document);
  }
  static ChartPanel& Drawn(const Document& document) {
    QCoreApplication::processEvents();
    ChartPanel* panel = document.Window->findChild<ChartPanel*>("ChartPanel");
    if (panel == nullptr) throw std::runtime_error("there is no chart");
    return *panel;
  }
  static bool IsShown(const Document& document) {
    const auto* panel = document.Window->findChild<ChartPanel*>("ChartPanel");
    return panel != nullptr && panel->isVisible();
  }

  /// The middles of what is drawn in this colour, one for each stripe of it that a column of the picture meets
  /// first, from above. The legend's is left out.
  static std::vector<QPoint> Stripes(ChartPanel& panel, const QColor& colour) {
    const QImage picture = panel.viewport()->grab().toImage();
    std::vector<QPoint> stripes;
    int last = -2;
    for (int y = 0; y < picture.height(); ++y) {
      int first = -1;
      int end = -1;
      for (int x = 0; x < picture.width(); ++x) {
        if (picture.pixelColor(x, y) != colour) continue;
        if (first < 0) first = x;
        if (end < 0 || end == x - 1) end = x;
      }
      if (first < 0) continue;
      if (y > last + 1) stripes.push_back(QPoint((first + end) / 2, y) / picture.devicePixelRatio());
      last = y;
    }
    if (!stripes.empty()) stripes.erase(stripes.begin());
    return stripes;
  }
  static std::vector<QPoint> Uplinks(ChartPanel& panel) { return Stripes(panel, ColourOf(LightColours.Uplink)); }

  /// From the upper to the lower end of the bar at the current standard's edge; nothing when there is none.
  static std::pair<int, int> Emphasised(ChartPanel& panel) {
    const QImage picture = panel.viewport()->grab().toImage();
    std::pair<int, int> ends = {-1, -1};
    const int x = qRound(3 * picture.devicePixelRatio());
    for (int y = qRound(3 * picture.devicePixelRatio()); y < picture.height() - 3; ++y) {
      if (picture.pixelColor(x, y) != panel.palette().color(QPalette::Highlight)) continue;
      if (ends.first < 0) ends.first = qRound(y / picture.devicePixelRatio());
      ends.second = qRound(y / picture.devicePixelRatio());
    }
    return ends;
  }
  /// What is to be seen of a place in `widget`, as far as the area and what scrolls in it let through.
  static QRect SeenOf(const Document& document, const QWidget& widget, const QRect& place) {
    QRect seen(widget.mapTo(&document.Area(), place.topLeft()), place.size());
    for (const QWidget* around = &widget; around != &document.Area(); around = around->parentWidget())
      seen &= QRect(around->parentWidget()->mapTo(&document.Area(), QPoint()), around->parentWidget()->size());
    return seen;
  }
  /// Whether all of it is, and nothing stands before it.
  static bool IsSeen(const Document& document, const QWidget& widget) {
    return IsSeen(document, widget, widget.rect());
  }
  static bool IsSeen(const Document& document, const QWidget& widget, const QRect& place) {
    const QRect seen = SeenOf(document, widget, place);
    return seen.size() == place.size() && document.Area().childAt(seen.center()) == &widget;
  }
  static bool CurrentIsSeen(const Document& document, const Grid& grid) {
    const QRect cell = grid.visualRect(grid.currentIndex());
    const QRect shown = cell & grid.viewport()->rect();  // which may be narrower
    return shown.height() == cell.height() && IsSeen(document, *grid.viewport(), shown);
  }

  static void ClickAt(ChartPanel& panel, const QPoint& place, Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseClick(panel.window()->windowHandle(), button, {}, panel.viewport()->mapTo(panel.window(), place));
    QCoreApplication::processEvents();
  }
  static QString Spoken(ChartPanel& panel, QAccessible::Text text) {
    return QAccessible::queryAccessibleInterface(&panel)->text(text);
  }
  static void Tab(int times, Qt::KeyboardModifiers modifiers = {}) {
    for (int time = 0; time < times; ++time) Press(Qt::Key_Tab, modifiers);
  }
};

TEST_F(ChartBeside, ComesWhenItIsAskedForAndGoesAgain) {
  const Document document = Open(Three);
  EXPECT_EQ(document.Window->findChild<ChartPanel*>(), nullptr) << "whoever does not want it pays nothing for it";
  const auto places = [&] {
    return std::vector{document.Window->geometry(), document.List->geometry(), document.Details->geometry(),
                       document.Bands->geometry()};
  };
  const auto before = places();
  Show(document);
  EXPECT_TRUE(IsShown(document));
  EXPECT_TRUE(frame.Charts);
  document.Window->ToggleChart();
  EXPECT_FALSE(IsShown(document));
  EXPECT_FALSE(frame.Charts);
  EXPECT_EQ(places(), before);
}

TEST_F(ChartBeside, IsThereInDocumentsThatOpenOnceItIsWanted) {
  frame.Charts = true;
  const Document document = Open(Three);
  EXPECT_TRUE(IsShown(document));
  EXPECT_EQ(Uplinks(Drawn(document)).size(), 3u);
  EXPECT_TRUE(frame.Charts);
}

TEST_F(ChartBeside, WidensTheWindowAsFarAsThereIsRoom) {
  const Document document = Open(Three);
  const int width = document.Window->width();
  Show(document);
  EXPECT_GT(document.Window->width(), width + 300);
  document.Window->ToggleChart();
  window.resize(700, 1000);
  QCoreApplication::processEvents();
  Show(document);
  EXPECT_LE(document.Window->geometry().right(), mdi->viewport()->width());
  EXPECT_GE(document.Window->x(), 0);
  document.Window->ToggleChart();
  document.Window->showMaximized();
  Show(document);
  EXPECT_EQ(document.Window->width(), mdi->viewport()->width());
  document.Window->ToggleChart();
  EXPECT_TRUE(document.Window->isMaximized());
}

TEST_F(ChartBeside, LeavesAWidthThatTheUserChose) {
  const Document document = Open(Three);
  Show(document);
  document.Window->resize(1100, 600);
  document.Window->ToggleChart();
  EXPECT_EQ(document.Window->width(), 1100);
}

TEST_F(ChartBeside, StandsClearOfTheGrids) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  for (const QSize& size : {QSize(1, 1), QSize(400, 250), QSize(633, 373), QSize(633, 900), QSize(800, 400),
                            QSize(1000, 300), QSize(1300, 900), QSize(2500, 1800)}) {
    document.Window->resize(size);
    QCoreApplication::processEvents();
    EXPECT_TRUE(document.Area().rect().contains(panel.geometry())) << size.width() << 'x' << size.height();
    EXPECT_GE(panel.height(), document.Area().height() / 2 - 4);
    for (const Grid* grid : {document.List, document.Details, document.Bands})
      EXPECT_FALSE(panel.geometry().intersects(SeenOf(document, *grid, grid->rect())))
          << grid->objectName().toStdString() << " at " << size.width() << 'x' << size.height();
    panel.viewport()->grab();
  }
  EXPECT_GT(panel.width(), 1200) << "the grids need no more of a large window";
}

// So low that all three grids have no room above the chart, or beside it.
TEST_F(ChartBeside, KeysGoNowhereThatIsNotSeen) {
  const Document document = Open(Group("A", 3) + Group("B", 0));
  const ChartPanel& panel = Show(document);
  for (const QSize& size : {QSize(480, 1), QSize(480, 300), QSize(700, 450), QSize(633, 620), QSize(1200, 250)}) {
    SCOPED_TRACE(std::to_string(size.width()) + "x" + std::to_string(size.height()));
    document.Window->resize(size);
    QCoreApplication::processEvents();
    document.List->setFocus();
    for (int stop = 1; stop <= 11 + 3 * 4; ++stop) {
      Tab(1);
      const bool onDetails = stop <= 11;
      const Grid& grid = onDetails ? *document.Details : *document.Bands;
      if (grid.hasFocus()) {
        EXPECT_TRUE(CurrentIsSeen(document, grid)) << grid.objectName().toStdString() << " at stop " << stop;
        Press(Qt::Key_F2);
      }
      const QWidget* editor = QApplication::focusWidget();
      EXPECT_TRUE(editor != &grid && IsSeen(document, *editor)) << "its editor, at stop " << stop;
    }
    Tab(1);
    EXPECT_TRUE(panel.hasFocus());
    Tab(1);
    EXPECT_TRUE(CurrentIsSeen(document, *document.List));
  }
}

TEST_F(ChartBeside, LowDocumentWithoutItShowsTheCurrentValue) {
  const Document document = Open(Group("A", 0));
  document.Window->resize(480, 1);
  QCoreApplication::processEvents();
  document.Details->setFocus();
  document.Details->SetCurrent(StepRow, 1);
  EXPECT_TRUE(CurrentIsSeen(document, *document.Details));
  Press(Qt::Key_F2);
  EXPECT_TRUE(IsSeen(document, *document.Box));
  Press(Qt::Key_Return);
  Tab(1);
  EXPECT_TRUE(CurrentIsSeen(document, *document.List));
}

TEST_F(ChartBeside, ComingOverTheCurrentCellLeavesItInSight) {
  const Document document = Open(Group("A", 3));
  window.resize(640, 500);
  QCoreApplication::processEvents();
  document.DoubleClick(document.Details, StepRow);
  ASSERT_TRUE(document.Box->hasFocus());
  const ChartPanel& panel = Show(document);
  ASSERT_GT(panel.y(), 100) << "it stands below the grids";
  EXPECT_TRUE(IsSeen(document, *document.Box));
  Press(Qt::Key_Return);
  document.Window->resize(480, 300);
  QCoreApplication::processEvents();
  EXPECT_TRUE(CurrentIsSeen(document, *document.Details));
}

TEST_F(ChartBeside, EditComesIntoSightThatTheWheelHasMovedAway) {
  const Document document = Open(Group("A", 3));
  Show(document);
  document.Window->resize(480, 400);
  QCoreApplication::processEvents();
  document.Details->setFocus();
  document.Details->SetCurrent(0, 1);
  QScrollBar& bar = *document.Window->findChild<QScrollArea*>()->verticalScrollBar();
  ASSERT_TRUE(bar.isVisible());
  bar.setValue(bar.maximum());
  EXPECT_FALSE(CurrentIsSeen(document, *document.Details));
  EXPECT_TRUE(CurrentIsSeen(document, *document.List)) << "the list stays";
  Press(Qt::Key_F2);
  EXPECT_TRUE(IsSeen(document, *document.Box));
  bar.setValue(bar.maximum());
  Type("x");
  EXPECT_TRUE(IsSeen(document, *document.Box));
}

TEST_F(ChartBeside, ClickOnABandSelectsItsStandard) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  const std::vector<QPoint> bands = Uplinks(panel);
  ASSERT_EQ(bands.size(), 3u);
  for (const int row : {2, 0, 1}) {
    ClickAt(panel, bands[static_cast<std::size_t>(row)]);
    EXPECT_EQ(document.List->currentRow(), row);
    EXPECT_EQ(document.Detail(0), document.ListName(row));
    EXPECT_TRUE(document.List->item(row, 1)->font().bold());
  }
  ClickAt(panel, bands[0], Qt::RightButton);
  EXPECT_EQ(document.List->currentRow(), 1);
  ClickAt(panel, {bands[0].x(), 5});
  EXPECT_EQ(document.List->currentRow(), 1) << "there is no standard in the legend";
  ClickAt(panel, {bands[0].x(), bands[2].y() + 60});
  EXPECT_EQ(document.List->currentRow(), 1) << "nor below the last one";
}

TEST_F(ChartBeside, ClickStoresTheEditThatIsOpen) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  const std::vector<QPoint> bands = Uplinks(panel);
  document.Overwrite(UplinkRow, "1000");
  ClickAt(panel, bands[1]);
  EXPECT_EQ(document.List->currentRow(), 1);
  EXPECT_EQ(TableIn(document).Row(0).UplinkStartFreq, 1000);
  EXPECT_TRUE(document.State->Changed);
}

TEST_F(ChartBeside, OpenEditStaysOverItsCellWhenTheChartComes) {
  const Document document = Open(Three);
  document.Overwrite(UplinkRow, "1000");
  Show(document);
  EXPECT_TRUE(document.Box->hasFocus());
  const QRect cell = document.Details->visualRect(document.Details->model()->index(UplinkRow, 1));
  EXPECT_TRUE(document.Box->geometry().contains(document.Details->viewport()->mapTo(&document.Area(), cell.center())));
}

TEST_F(ChartBeside, EmphasisesTheCurrentStandard) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  const std::vector<QPoint> bands = Uplinks(panel);
  ASSERT_EQ(bands.size(), 3u);
  for (const int row : {0, 2, 1}) {
    document.Click(document.List, row);
    QCoreApplication::processEvents();
    const auto [top, bottom] = Emphasised(panel);
    for (int other = 0; other < 3; ++other) {
      const int y = bands[static_cast<std::size_t>(other)].y();
      EXPECT_EQ(y > top && y < bottom, other == row) << other << " while " << row << " is current";
    }
  }
}

TEST_F(ChartBeside, FollowsEdits) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  const int before = Uplinks(panel).at(0).x();
  EXPECT_EQ(
      Spoken(panel, QAccessible::Description),
      "One; uplink 900 to 920 MHz; downlink 945 to 965 MHz; shares carriers with Two. Shared with Two: 910 to 920 "
      "MHz, 945 to 950 MHz");
  document.Overwrite(UplinkRow, "950");
  Press(Qt::Key_Return);
  QCoreApplication::processEvents();
  EXPECT_GT(Uplinks(panel).at(0).x(), before);
  EXPECT_EQ(
      Spoken(panel, QAccessible::Description),
      "One; uplink 950 to 970 MHz; downlink 945 to 965 MHz; shares carriers with Two. Shared with Two: 945 to 950 "
      "MHz");
  document.Window->InsertBlank();
  QCoreApplication::processEvents();
  EXPECT_TRUE(Spoken(panel, QAccessible::Name).endsWith("of 4")) << Spoken(panel, QAccessible::Name).toStdString();
  WriteFile(folder / "other.sig", WriteSigTable(TableOf({Plan("Other", 300, 0, 10)})));
  document.Window->LoadSigStandards(PathText("other.sig"));
  QCoreApplication::processEvents();
  EXPECT_EQ(Spoken(panel, QAccessible::Description), "Other; uplink 300 to 302 MHz; shares no frequencies");
}

TEST_F(ChartBeside, DrawsChangesThatComeTogetherOnce) {
  struct Paints : QObject {
    int Count = 0;
    bool eventFilter(QObject*, QEvent* event) override {
      Count += event->type() == QEvent::Paint ? 1 : 0;
      return false;
    }
  } paints;
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  QTest::qWait(0);
  panel.viewport()->installEventFilter(&paints);
  for (int time = 0; time < 50; ++time) document.Window->ShowUnitTable(TableOf({Plan("A", 900 + time, 0, 10)}));
  EXPECT_EQ(paints.Count, 0);
  EXPECT_TRUE(QTest::qWaitFor([&] { return paints.Count > 0; }, LongestWait));
  QTest::qWait(0);
  EXPECT_EQ(paints.Count, 1);
  EXPECT_TRUE(Spoken(panel, QAccessible::Description).contains("949 to 951 MHz"));
}

TEST_F(ChartBeside, IsWorkedWithTheKeyboard) {
  const Document document = Open(Group("A", 0) + Group("B", 0) + Group("C", 0) + Group("D", 0));
  ChartPanel& panel = Show(document);
  ASSERT_TRUE(document.List->hasFocus());
  Tab(12);
  EXPECT_TRUE(panel.hasFocus()) << "behind the list and eleven values";
  const std::vector<std::pair<Qt::Key, int>> keys = {{Qt::Key_Up, 0},   {Qt::Key_Down, 1},     {Qt::Key_Down, 2},
                                                     {Qt::Key_Up, 1},   {Qt::Key_End, 3},      {Qt::Key_Down, 3},
                                                     {Qt::Key_Home, 0}, {Qt::Key_PageDown, 3}, {Qt::Key_PageUp, 0}};
  for (const auto& [key, row] : keys) {
    Press(key);
    EXPECT_EQ(document.List->currentRow(), row) << key;
    EXPECT_TRUE(panel.hasFocus());
  }
  Press(Qt::Key_Down);
  document.Window->CopyCut(false);
  ASSERT_EQ(shared.StandardClipboard.size(), 1u) << "it is the standard that is copied";
  EXPECT_EQ(shared.StandardClipboard[0].Name, "B");
  Tab(1);
  EXPECT_TRUE(document.List->hasFocus());
  Tab(1, Qt::ShiftModifier);
  EXPECT_TRUE(panel.hasFocus());
  Tab(1, Qt::ShiftModifier);
  EXPECT_TRUE(document.Details->hasFocus());
  Tab(1);
  document.Window->ToggleChart();
  EXPECT_TRUE(document.List->hasFocus()) << "the keyboard is not lost with the chart";
  Tab(12);
  EXPECT_TRUE(document.List->hasFocus()) << "nor does it go where nothing is to be seen";
}

TEST_F(ChartBeside, TellsScreenReadersWhatItShows) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  EXPECT_EQ(Spoken(panel, QAccessible::Name), "Chart of the bands, One, 1 of 3");
  document.Click(document.List, 2);
  QCoreApplication::processEvents();
  EXPECT_EQ(Spoken(panel, QAccessible::Name), "Chart of the bands, Three, 3 of 3");
  EXPECT_EQ(Spoken(panel, QAccessible::Description),
            "Three; uplink 2000 to 2020 MHz; downlink 2100 to 2120 MHz; shares no frequencies");
}

TEST_F(ChartBeside, ToolTipsTellWhatIsUnderTheMouse) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  const auto textAt = [&](const QPoint& place) {
    QHelpEvent help(QEvent::ToolTip, place, panel.viewport()->mapToGlobal(place));
    QApplication::sendEvent(panel.viewport(), &help);
    return QToolTip::text();
  };
  const std::vector<QPoint> bands = Uplinks(panel);
  EXPECT_TRUE(textAt(bands[1]).contains("Two: uplink 910 to 950 MHz")) << textAt(bands[1]).toStdString();
  EXPECT_TRUE(textAt({10, bands[2].y()}).contains("Three; uplink 2000 to 2020 MHz; downlink 2100 to 2120 MHz"));
  const std::vector<QPoint> marks = Stripes(panel, ColourOf(LightColours.Shared));
  ASSERT_FALSE(marks.empty());
  EXPECT_TRUE(textAt(marks[0]).contains("One: 910 to 920 MHz shared")) << textAt(marks[0]).toStdString();
  EXPECT_TRUE(textAt({10, panel.viewport()->height() - 5}).contains("Two: 910 to 920 MHz, 945 to 950 MHz"));
}

TEST_F(ChartBeside, ShowsAnEmptyTable) {
  const Document document = OpenEmpty();
  ChartPanel& panel = Show(document);
  EXPECT_TRUE(Uplinks(panel).empty());
  EXPECT_EQ(Spoken(panel, QAccessible::Description), "There are no standards.");
  panel.setFocus();
  for (const Qt::Key key : {Qt::Key_Down, Qt::Key_End, Qt::Key_PageUp}) Press(key);
  ClickAt(panel, panel.viewport()->rect().center());
  EXPECT_EQ(document.List->currentRow(), -1);
  document.Window->InsertBlank();
  QCoreApplication::processEvents();
  EXPECT_EQ(Spoken(panel, QAccessible::Name).right(6), "1 of 1");
  panel.setFocus();
  document.Window->CopyCut(true);
  QCoreApplication::processEvents();
  EXPECT_EQ(Spoken(panel, QAccessible::Description), "There are no standards.");
}

TEST_F(ChartBeside, DrawsDamagedValues) {
  constexpr int largest = std::numeric_limits<int>::max();
  constexpr int smallest = std::numeric_limits<int>::min();
  constexpr double huge = std::numeric_limits<double>::max();
  const Document document = OpenEmpty();
  ChartPanel& panel = Show(document);
  document.Window->ShowUnitTable(TableOf({{"9", 0, "", -10, 8999, smallest, largest, huge, huge, largest},
                                          {"x", 0, "B", 9001, -5, 0, 0, 0, 0, 0},
                                          {"x", largest, std::string(3000, 'W'), huge, -huge, 9, 0, -1, -1, -1},
                                          {"2", 0, "\x01<b>", 450, 460, 0, 40, 0.2, 0.2, 1}}));
  QCoreApplication::processEvents();
  panel.setFocus();
  const QStringList expected = {"; uplink 0 to 9000 MHz; downlink 8999 to 9000 MHz; shares", "B; shares no frequencies",
                                QString(3000, 'W') + "; "};
  for (qsizetype row = 0; row < expected.size(); ++row) {
    EXPECT_TRUE(Spoken(panel, QAccessible::Description).startsWith(expected[row]))
        << Spoken(panel, QAccessible::Description).left(200).toStdString();
    Press(Qt::Key_Down);
    QCoreApplication::processEvents();
  }
  EXPECT_FALSE(panel.viewport()->grab().isNull());
}

TEST_F(ChartBeside, BringsTheCurrentOneOfManyIntoSight) {
  std::vector<SignalStandardRecord> rows;
  for (int row = 0; row < 199; ++row) rows.push_back(Plan("S" + std::to_string(row), 890 + row, 935 + row, 124));
  const Document document = Open(rows);
  ChartPanel& panel = Show(document);
  // Its edges are blended where the scale is no whole number.
  const double whole = 28 * QFontInfo(panel.font()).pixelSize() / ChartFontSize;
  for (const int row : {198, 100, 0, 60, 199 - 1}) {
    document.Click(document.List, row);
    QCoreApplication::processEvents();
    const auto [top, bottom] = Emphasised(panel);
    EXPECT_NEAR(bottom - top, whole, 3) << row << " is in sight, and all of it";
  }
  // The wheel leaves it, and edits do not bring it back.
  panel.verticalScrollBar()->setValue(0);
  document.Overwrite(UplinkRow, "901");
  Press(Qt::Key_Return);
  QCoreApplication::processEvents();
  EXPECT_EQ(panel.verticalScrollBar()->value(), 0);
  ClickAt(panel, Uplinks(panel).at(2));
  EXPECT_EQ(document.List->currentRow(), 2);
  panel.verticalScrollBar()->setValue(panel.verticalScrollBar()->maximum());
  QCoreApplication::processEvents();
  ClickAt(panel, Uplinks(panel).back());
  EXPECT_EQ(document.List->currentRow(), 198);
}

TEST_F(ChartBeside, IsDrawnAgainAndAgainWithManyStandards) {
  const Document document = Open(std::vector(199, Plan("Standard", 890.2, 935.2, 124)));
  ChartPanel& panel = Show(document);
  constexpr int rounds = 50;
  QElapsedTimer timer;
  timer.start();
  for (int round = 0; round < rounds; ++round) {
    panel.ShowTable();
    QTest::qWait(0);
    panel.viewport()->repaint();
  }
  // Printed, as how long it is depends on what else the machine has to do.
  std::printf("laying out and drawing 199 standards: %.2f ms\n",
              static_cast<double>(timer.nsecsElapsed()) / 1e6 / rounds);
  EXPECT_EQ(Uplinks(panel).empty(), false);
}

TEST_F(ChartBeside, TakesTheColoursOfTheDesktop) {
  const Document document = Open(Three);
  ChartPanel& panel = Show(document);
  QPalette dark;
  dark.setColor(QPalette::Base, "#202326");
  dark.setColor(QPalette::Text, "#fcfcfc");
  document.Window->setPalette(dark);
  QCoreApplication::processEvents();
  EXPECT_TRUE(Uplinks(panel).empty());
  EXPECT_EQ(Stripes(panel, ColourOf(DarkColours.Uplink)).size(), 3u);
  EXPECT_EQ(panel.viewport()->grab().toImage().pixelColor(panel.viewport()->width() - 8, 8), QColor("#202326"));
}

}  // namespace
}  // namespace chanplan::testing
