// The document window: one table, shown and edited in three linked grids.
#pragma once

#include <QScrollArea>
#include <QSpinBox>
#include <memory>

#include "core/cell_edits.h"
#include "core/signal_standard_table.h"
#include "core/table_history.h"
#include "core/validation.h"
#include "editor/cell_editor.h"
#include "editor/chart_panel.h"
#include "editor/document_window.h"
#include "editor/frame_operations.h"
#include "editor/grid.h"
#include "editor/shared_tables.h"
#include "report/plan_search.h"

namespace chanplan {

class FindBar;

/// The table, not the grids, is the authoritative copy: the grids are filled from it after every
/// change, and cells that the user edited are written back when they are left.
///
///   GridList     the standards; a hidden column holds each one's table index
///   GridDetails  the values of the standard that is current in GridList
///   GridBands    its sub-bands
///
/// Every change of the table is a step of `history`: `RecordStep`.
///
/// `editor` holds the one edit that may be open. It is stored when it is left: `StoreGridsToTable`.
class frmDocument : public DocumentWindow {
  Q_OBJECT

 public:
  frmDocument(FrameOperations& frameUsed, DocumentState& documentState, SharedTables& sharedTables,
              QWidget* parent = nullptr);
  ~frmDocument() override;

  /// What start-up makes documents with.
  static std::unique_ptr<DocumentWindow> Make(FrameOperations& frameUsed, DocumentState& documentState,
                                              SharedTables& sharedTables) {
    return std::make_unique<frmDocument>(frameUsed, documentState, sharedTables);
  }

  DocumentState& State() const override { return state; }
  QString WarningsText() const override { return warningsText; }

  bool LoadSigStandards(const QString& path) override;
  bool SaveChanplans(const QString& path) override;
  void CommitEdit() override;
  QString TableProperties() const override;
  bool SigReport(const QString& ReportName) override;
  void PrintSigs() override;
  void ProcPrint() override;
  void CopyCut(bool Cut) override;
  void Paste() override;
  void InsertBlank() override;
  void Undo() override;
  void Redo() override;
  QString UndoName() const override;
  QString RedoName() const override;
  void FindSSEntry(const QString& name) override;
  void ShowWarning(int line, const QString& name) override;
  void ToggleChart() override;
  void ShowField(int index, Field field) override;
  void Find() override;
  const SignalStandardTable& Table() const override { return table; }
  void ShowUnitTable(const SignalStandardTable& received) override;
  void MarkUnsaved() override;
  void GetTable() const override;
  void SetTable() override;

 protected:
  bool event(QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Set-up and layout
  void BuildGrids();
  void ColourTitles();
  void ShowChangedSign();
  void BuildUpDown();
  void ConnectGrids();
  void ConnectEditor();
  void ShowChart(bool shown);
  bool ChartIsShown() const { return chart != nullptr && !chart->isHidden(); }
  QSize NaturalSize(int listWidth) const;
  QSize RoomBesideChart(const QSize& both, int listWidth);
  void LayOut();
  void PlaceList();

  // The view
  void FillStandardList(int currentRow);
  void ShowSelectedStandard();
  void ShowStandard();
  void ShowDetails(const SignalStandardRecord& standard);
  void ShowBands(int index, int count);
  void HighlightListRow();
  void KeepInSight(const Grid& grid, const QModelIndex& cell);
  void ScrollGridsTo(const Grid& grid, const QModelIndex& cell);
  void KeepInSight(const QWidget& shownIn, QRect place);
  void Refill(int currentRow);
  void RefillAfterEdit(int currentRow, const QString& step);
  void ListRowChanged();
  int SelectedIndex() const;
  /// Where the list has the standard of the row at table index `index`; -1 when it has none.
  int ListRowOf(int index) const;
  /// Rows that the shown standard has for sub-bands; a damaged count promises another number.
  int SubbandRows() const;

  // Cell editing
  void BeginCellEdit(qint16 keyCode);
  void BeginListEdit(int row);
  void PositionEditBox(std::optional<QChar> typed);
  void MoveByTab(const QWidget& from, bool forwards);
  enum class Commit { Nothing, Stored, Refused };
  Commit StoreGridsToTable();
  /// Nothing where it is stored, else what the status bar is to say of it, if a message has not.
  std::optional<QString> StoreCell(const CellEdit& edit);
  bool StoreCount(int count);
  void ShowStateCode(int code);
  void ValidateTable();
  void ShowWarnings();
  void MarkDoubtfulCells();

  // Clipboard, insertion and deletion
  void CopyStandards();
  void DeleteStandards(const char* deed);
  void UpDown_Change(int value);
  void ChangeCount(int count, const QString& step);

  // Context menus: what they do, and whether it is possible
  void ConnectContextMenus();
  void ShowContextMenu(Grid& grid, const QPoint& at, bool onCell);
  bool HasCurrentValue() const;
  bool CanCut() const;
  bool CanPaste() const;
  bool CanInsert() const;
  bool CanAddSubband() const;
  bool HasSubbands() const;
  bool IsAlwaysPossible() const;
  void EditCurrentCell();
  void CutByFrame();
  void CopyByFrame();
  void PasteByFrame();
  void DeleteByKey();
  void AddLastSubband();
  void RemoveLastSubband();

  // Taking changes back
  /// A cell that shows a value of the table.
  struct Place {
    Grid* ShownIn;
    int Row;
    int Column;
  };
  bool BoxIsOpen() const { return editor.IsOpen() && editor.Open()->Control == editor.txtEntry; }
  void RecordStep(const QString& step, int rowBefore);
  void ShowMoment(const TableMoment& moment, const QString& deed);
  std::optional<Place> PlaceOf(int index, Field field) const;
  void GoTo(const Place& place);

  bool ReadTable(const QString& path);
  // Looking for names, frequencies and channels
  struct Found {
    frmDocument* In;
    PlanPlace Place;
  };
  FindBar& OpenFindBar();
  void CloseFindBar();
  bool FindBarIsShown() const;
  void PlaceFindBar();
  std::vector<Found> FindAll() const;
  void FindNext(bool forwards);
  void HandOverFind(frmDocument& other);
  void ShowFoundPlace(const PlanPlace& place);
  void ShowFound();

  enum class SaveResult { Failed, Saved, Reloaded };
  SaveResult Save(const QString& path);
  SaveResult Write(const QString& path);
  /// Whether somebody else has written to the file that this document takes for its own.
  bool ChangedMeanwhile(const QString& path) const;
  SaveResult Reload(const QString& path);
  bool AskToSave();
  void MarkChanged() { state.Changed = true; }

  FrameOperations& frame;
  DocumentState& state;
  SharedTables& shared;
  SignalStandardTable table;
  TableHistory history;
  std::vector<Warning> warnings;  ///< of the last validation
  QString warningsText;

  QWidget* area;
  QScrollArea* gridsView;  ///< the part of the area that the chart leaves, onto `grids`
  QWidget* grids;
  Grid* GridList;
  Grid* GridDetails;
  Grid* GridBands;
  QSpinBox* UpDown;  ///< shows the count of sub-bands to whoever looks for it; hidden, as the count is typed
  CellEditor editor;
  ChartPanel* chart = nullptr;     ///< made once it is asked for
  FindBar* findBar = nullptr;      ///< made when it is first asked for
  std::optional<PlanPlace> found;  ///< the place that was found last

  Grid* ActiveGrid;
  int shownIndex = -1;  ///< table index of the standard in GridDetails and GridBands, -1 = none
  bool SuppressListEvents = false;
};

}  // namespace chanplan
