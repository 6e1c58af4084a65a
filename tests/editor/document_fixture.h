// Documents on the screen, and a stand-in for the frame.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QPointer>
#include <QSpinBox>
#include <QTest>
#include <array>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "core/sig_file.h"
#include "editor/frm_document.h"
#include "editor/grid_columns.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"
#include "tests/editor/user.h"

namespace chanplan::testing {

enum : int { UplinkRow = 4, DownlinkRow, StartRow, StopRow, BandwidthRow, SpacingRow, StepRow };
enum : int { UplinkColumn = 1, DownlinkColumn, StartColumn, StopColumn };

/// A sub-band of which only what the grid shows matters.
inline SignalStandardRecord Band(double uplink, double downlink, int start, int stop) {
  return {"0", 0, "", uplink, downlink, start, stop, 0, 0, 0};
}

inline std::vector<SignalStandardRecord> Standards(int count) {
  std::vector<SignalStandardRecord> rows;
  for (int number = 1; number <= count; ++number) rows.push_back(NamedRow("S" + std::to_string(number)));
  return rows;
}

/// A standard called `name` with `subbands` sub-bands, as rows.
inline std::vector<SignalStandardRecord> Group(const std::string& name, int subbands) {
  std::vector<SignalStandardRecord> rows = {NamedRow(name, subbands)};
  for (int number = 1; number <= subbands; ++number) rows.push_back(Band(800 + number, 900 + number, number, number));
  return rows;
}

inline std::vector<SignalStandardRecord> operator+(std::vector<SignalStandardRecord> rows,
                                                   const std::vector<SignalStandardRecord>& more) {
  rows.insert(rows.end(), more.begin(), more.end());
  return rows;
}

struct SavePrompt {
  QString ProposedName;
  QString FileType;
  bool operator==(const SavePrompt&) const = default;
};

/// What documents ask of the frame, written down.
class FrameStandIn : public FrameOperations {
 public:
  std::vector<QString> Warned;
  std::vector<QString> Statuses;
  std::vector<SavePrompt> Prompts;
  const QMdiArea* Area = nullptr;  ///< where documents are
  bool Charts = false;             ///< whether documents open with their chart
  QString SaveAnswer;              ///< what the user chooses in the save dialog; empty = Cancel

  QString Status() const { return Statuses.empty() ? QString() : Statuses.back(); }

  void mnuEditCopy_Click() override { DocumentWindow::ActiveIn(*Area)->CopyCut(false); }
  void mnuEditCut_Click() override { DocumentWindow::ActiveIn(*Area)->CopyCut(true); }
  void mnuEditPaste_Click() override { DocumentWindow::ActiveIn(*Area)->Paste(); }
  void Warnings(const QString& WarningText, qint16) override { Warned.push_back(WarningText); }
  void ShowStatus(const QString& text) override { Statuses.push_back(text); }
  void ShowRemark(const QString& text) override { ShowStatus(text); }
  bool ShowsCharts() override { return Charts; }
  void RememberCharts(bool shown) override { Charts = shown; }
  QString PromptSaveFileName(const QString& proposedName, const QString& fileType) override {
    Prompts.push_back({proposedName, fileType});
    return SaveAnswer;
  }
  QString ApplicationTitle() const override { return "The Application"; }
};

/// A document's window and what is in it.
struct Document {
  explicit Document(frmDocument* document, DocumentState& documentState)
      : Window(document),
        State(&documentState),
        List(document->findChild<Grid*>("GridList")),
        Details(document->findChild<Grid*>("GridDetails")),
        Bands(document->findChild<Grid*>("GridBands")),
        Box(document->findChild<EntryBox*>("txtEntry")),
        Selected(document->findChild<QComboBox*>("cmboSelected")),
        Modulation(document->findChild<QComboBox*>("cmboModType")),
        UpDown(document->findChild<QSpinBox*>("UpDown")) {}

  QPointer<frmDocument> Window;
  DocumentState* State;
  Grid* List;
  Grid* Details;
  Grid* Bands;
  EntryBox* Box;
  QComboBox* Selected;
  QComboBox* Modulation;
  QSpinBox* UpDown;

  QString Detail(int row) const { return Details->CellText(row, 1); }
  QString ListName(int row) const { return List->CellText(row, 1); }
  std::vector<QString> ListNames() const {
    std::vector<QString> names;
    for (int row = 0; row < List->rowCount(); ++row) names.push_back(ListName(row));
    return names;
  }
  QWidget& Area() const { return *Window->widget(); }

  static QPoint CellCentre(Grid& grid, int row, int column) {
    grid.scrollTo(grid.model()->index(row, column));
    const QRect cell = grid.visualRect(grid.model()->index(row, column)) & grid.viewport()->rect();
    return grid.viewport()->mapTo(grid.window(), cell.center());
  }
  void Click(Grid* grid, int row, int column = 1, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QTest::mouseClick(grid->window()->windowHandle(), Qt::LeftButton, modifiers, CellCentre(*grid, row, column));
  }
  void DoubleClick(Grid* grid, int row, int column = 1) const {
    QTest::mouseDClick(grid->window()->windowHandle(), Qt::LeftButton, {}, CellCentre(*grid, row, column));
  }
  /// Puts `text` in the place of what a cell holds; the box stays open.
  void Overwrite(Grid* grid, int row, int column, std::string_view text) const {
    DoubleClick(grid, row, column);
    ASSERT_TRUE(Box->hasFocus());
    Box->selectAll();
    Type(text);
  }
  /// The same for a value of the standard.
  void Overwrite(int row, std::string_view text) const { Overwrite(Details, row, 1, text); }
};

/// A window with an area for documents, as the frame has one.
class DocumentTest : public ::testing::Test {
 protected:
  DocumentTest() : mdi(new QMdiArea) {
    // As the frame does: an edit ends where another document becomes the active one.
    QObject::connect(mdi, &QMdiArea::subWindowActivated, mdi, [this](QMdiSubWindow* activated) {
      for (QMdiSubWindow* other : mdi->subWindowList())
        if (activated != nullptr && other != activated) qobject_cast<DocumentWindow*>(other)->CommitEdit();
    });
    frame.Area = mdi;
    window.setCentralWidget(mdi);
    window.resize(1400, 1000);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window, LongestWait));
  }

  void TearDown() override { EXPECT_TRUE(answers.AllGiven()) << "a question was not asked"; }

  Document OpenEmpty(const QString& caption = "Untitled 1") {
    states.emplace_back();
    auto* const document = new frmDocument(frame, states.back(), shared);
    document->setWindowTitle(caption);
    mdi->addSubWindow(document);
    document->show();
    QCoreApplication::processEvents();
    Document opened(document, states.back());
    opened.List->setFocus();
    return opened;
  }

  /// A document of a file with these rows.
  Document Open(const std::vector<SignalStandardRecord>& rows, const std::string& fileName = "table.sig") {
    return OpenFile(WriteSigTable(TableOf(rows)), fileName);
  }
  Document OpenFile(std::string_view bytes, const std::string& fileName = "table.sig") {
    WriteFile(folder / fileName, bytes);
    Document opened = OpenEmpty();
    EXPECT_TRUE(opened.Window->LoadSigStandards(PathText(fileName)));
    EXPECT_FALSE(opened.State->Changed);
    return opened;
  }

  QString PathText(const std::string& fileName) const { return QString::fromStdString((folder / fileName).string()); }

  /// The document's table, up to the last row that is not empty. Stores an edit that is open.
  SignalStandardTable TableIn(const Document& document) {
    document.Window->CommitEdit();
    document.Window->GetTable();
    std::vector<SignalStandardRecord> rows = shared.Passed;
    while (!rows.empty() && rows.back() == SignalStandardRecord()) rows.pop_back();
    return TableOf(rows);
  }
  std::vector<std::string> NamesIn(const Document& document) { return RowNames(TableIn(document)); }

  /// The table as it is written to a file.
  SignalStandardTable SavedTable(const Document& document) {
    EXPECT_TRUE(document.Window->SaveChanplans(PathText("saved.sig")));
    return LoadSigFile(folder / "saved.sig").Table;
  }

  // The window goes first: its documents still speak to the frame.
  TempFolder folder;
  FrameStandIn frame;
  SharedTables shared;
  std::deque<DocumentState> states;
  Answers answers;
  QMainWindow window;
  QMdiArea* mdi;
};

}  // namespace chanplan::testing
