// Cells with a warning about their value: how they are marked, and the way to them.
#include <QAccessible>
#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

#include "tests/editor/document_fixture.h"

namespace chanplan::testing {
namespace {

class DoubtfulCells : public DocumentTest {
 protected:
  static QString Doubt(Grid* grid, int row, int column) {
    return QAccessible::queryAccessibleInterface(grid)
        ->tableInterface()
        ->cellAt(row, column)
        ->text(QAccessible::Description);
  }
  /// The cells that have one, by grid, row and column.
  static std::vector<std::string> Marked(const Document& document) {
    std::vector<std::string> marked;
    for (Grid* grid : {document.List, document.Details, document.Bands})
      for (int row = 0; row < grid->rowCount(); ++row)
        for (int column = 0; column < grid->columnCount(); ++column)
          if (!grid->isColumnHidden(column) && !Doubt(grid, row, column).isEmpty())
            marked.push_back(grid->objectName().toStdString() + " " + std::to_string(row) + "," +
                             std::to_string(column));
    return marked;
  }
  // Doubtful: the first one's step, its first band's uplink, its second band's channels; both names.
  Document OpenDoubtful() {
    return Open({{"2", 2, "GSM", 890, 935, 1, 124, 0.2, 0.2, 0},
                 {"0", 0, "GSM(A)", 9850, 935, 1, 60, 0.2, 0.2, 0},
                 {"0", 0, "GSM(B)", 900, 945, 61, -4, 0.2, 0.2, 0},
                 {"2", 1, "GSM", 890, 9935, 1, 124, 0.2, 0.2, 1},
                 {"0", 0, "GSM(A)", 890, 935, 1, 60, 0.2, 0.2, 1}});
  }
};

TEST_F(DoubtfulCells, AreThoseThatWarningsMean) {
  const Document document = OpenDoubtful();
  EXPECT_EQ(Marked(document), (std::vector<std::string>{"GridList 0,1", "GridDetails 0,1", "GridDetails 10,1",
                                                        "GridBands 0,1", "GridBands 1,4"}));
  EXPECT_EQ(Doubt(document.Bands, 1, StopColumn),
            "Stop channel is less than start channel.\nStop channel is less than zero.");
  document.Click(document.List, 1);
  EXPECT_EQ(Marked(document), (std::vector<std::string>{"GridList 0,1", "GridDetails 5,1"}));
}

TEST_F(DoubtfulCells, FollowEveryEdit) {
  const Document document = Open(Group("A", 1) + Group("B", 1));
  ASSERT_EQ(Marked(document), std::vector<std::string>());
  document.Overwrite(NameRow, "B");
  Press(Qt::Key_Return);
  EXPECT_EQ(Marked(document), (std::vector<std::string>{"GridList 0,1", "GridDetails 0,1"}));
  PressShortcut(Qt::Key_Z);
  EXPECT_EQ(Marked(document), std::vector<std::string>());
}

TEST_F(DoubtfulCells, TellWhyInTheirToolTip) {
  const Document document = Open({{"2", 0, "GSM", 9890.00001, 935, 1, 124, 0.2, 0.2, 1}});
  const QPoint at = document.Details->visualItemRect(document.Details->item(UplinkRow, 1)).center();
  QHelpEvent help(QEvent::ToolTip, at, document.Details->viewport()->mapToGlobal(at));
  QApplication::sendEvent(document.Details->viewport(), &help);
  QTextDocument text;
  text.setHtml(QToolTip::text());
  EXPECT_EQ(text.toPlainText(), "9890.00001\nStart frequency appears out of range.");
  QToolTip::hideText();
}

TEST_F(DoubtfulCells, HaveACornerThatStandsOut) {
  const Document document = OpenDoubtful();
  const auto cornerOf = [](const Grid* grid, int row, int column, bool left) {
    const QRect cell = grid->visualItemRect(grid->item(row, column));
    const QImage image = grid->viewport()->grab().toImage();
    const QPoint corner = left ? cell.topLeft() + QPoint(2, 2) : cell.topRight() + QPoint(-2, 2);
    return image.pixelColor(corner * image.devicePixelRatio());
  };
  const QColor plain = document.Details->palette().color(QPalette::Base);
  EXPECT_NE(cornerOf(document.Details, StepRow, 1, true), plain);
  EXPECT_EQ(cornerOf(document.Details, StopRow, 1, true), plain);
  EXPECT_NE(cornerOf(document.Bands, 0, UplinkColumn, true), plain);
  EXPECT_EQ(cornerOf(document.Bands, 0, DownlinkColumn, true), plain);
  document.Click(document.List, 1);
  EXPECT_NE(cornerOf(document.List, 0, 1, false), plain);
  EXPECT_EQ(cornerOf(document.List, 0, 1, true), plain) << "the text stands there";
}

TEST_F(DoubtfulCells, AreWhereTheCursorGoesFromTheirWarning) {
  const Document document = OpenDoubtful();
  const struct {
    const char* Name;
    const char* Message;
    int ListRow;
    Grid* ShownIn;
    int Row;
    int Column;
  } cases[] = {
      {"GSM", "Step size may be out of range.", 0, document.Details, StepRow, 1},
      {"GSM(A)", "Start frequency appears out of range.", 0, document.Bands, 0, UplinkColumn},
      {"GSM(A)", "Step size may be out of range.", 0, document.Details, StepRow, 1},
      {"GSM(B)", "Stop channel is less than zero.", 0, document.Bands, 1, StopColumn},
      {"GSM", "Stop frequency appears out of range.", 1, document.Details, DownlinkRow, 1},
      {"GSM", "Duplicate Signal Standard name.", 0, document.Details, NameRow, 1},
  };
  const QStringList lines = document.Window->WarningsText().split("\r\n");
  for (const auto& test : cases) {
    SCOPED_TRACE(std::string(test.Name) + ": " + test.Message);
    const auto line = static_cast<int>(lines.indexOf(QString("Warning:\t%1\t%2").arg(test.Name, test.Message)));
    ASSERT_GE(line, 0);
    document.Window->FindSSEntry(test.Name);
    document.Window->ShowWarning(line, test.Name);
    EXPECT_EQ(document.List->currentRow(), test.ListRow);
    document.Window->setFocus();
    EXPECT_TRUE(test.ShownIn->hasFocus());
    EXPECT_EQ(test.ShownIn->currentRow(), test.Row);
    EXPECT_EQ(test.ShownIn->currentColumn(), test.Column);
    EXPECT_FALSE(document.Box->isVisible());
  }
}

TEST_F(DoubtfulCells, AreNotLookedForOnceTheLineIsAboutSomethingElse) {
  const Document document = OpenDoubtful();
  document.Click(document.Details, UplinkRow);
  document.Window->ShowWarning(0, "another");
  document.Window->ShowWarning(1000, "GSM");
  EXPECT_EQ(document.Details->currentRow(), UplinkRow);
  EXPECT_EQ(document.List->currentRow(), 0);
}

}  // namespace
}  // namespace chanplan::testing
