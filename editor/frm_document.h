// The document window: one table, shown and edited in three linked grids.
#pragma once

#include <QSpinBox>
#include <memory>

#include "core/cell_edits.h"
#include "core/signal_standard_table.h"
#include "editor/cell_editor.h"
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

  DocumentState& State() override { return state; }
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
  void FindSSEntry(const QString& name) override;
  void ShowField(int row, Field field) override;
  void Find() override;
  const SignalStandardTable& Table() const override { return table; }
  void ShowUnitTable(const SignalStandardTable& received) override;
  void GetTable() const override;
  void SetTable() override;

 protected:
  bool event(QEvent* event) override;
  void changeEvent(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Set-up and layout
  void BuildGrids();
  void ColourTitles();
  void BuildUpDown();
  void ConnectGrids();
  void ConnectEditor();
  void LayOut();

  // The view
  void FillStandardList(int currentRow);
  void ShowSelectedStandard();
  void ShowStandard();
  void ShowDetails(const SignalStandardRecord& standard);
  void ShowBands(int index, int count);
  void HighlightListRow();
  void KeepInSight(const Grid& grid, const QModelIndex& cell);
  void Refill(int currentRow);
  void RefillAfterEdit(int currentRow);
  void ListRowChanged();
  int SelectedIndex() const;
  /// Rows that the shown standard has for sub-bands; a damaged count promises another number.
  int SubbandRows() const;

  // Cell editing
  void BeginCellEdit(qint16 keyCode);
  void BeginListEdit(int row);
  void PositionEditBox(std::optional<QChar> typed);
  void MoveByTab(const Grid& from, bool forwards);
  enum class Commit { Nothing, Stored, Refused };
  Commit StoreGridsToTable();
  bool StoreCell(const CellEdit& edit);
  bool StoreCount(int count);
  void ReportRefusal(const CellEdit& edit, const QString& text, CellOutcome outcome);
  void ShowStateCode(int code);
  void ValidateTable();
  void ShowWarnings();

  // Clipboard, insertion and deletion
  void CopyStandards();
  void DeleteStandards();
  void UpDown_Change(int value);

  // Looking for names, frequencies and channels
  struct Found {
    frmDocument* In;
    PlanPlace Place;
  };
  FindBar& OpenFindBar();
  void CloseFindBar();
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
  QString warningsText;

  QWidget* area;
  Grid* GridList;
  Grid* GridDetails;
  Grid* GridBands;
  QSpinBox* UpDown;  ///< shows the count of sub-bands to whoever looks for it; hidden, as the count is typed
  CellEditor editor;
  FindBar* findBar = nullptr;      ///< made when it is first asked for
  std::optional<PlanPlace> found;  ///< the place that was found last

  Grid* ActiveGrid;
  int shownIndex = -1;  ///< table index of the standard in GridDetails and GridBands, -1 = none
  bool SuppressListEvents = false;
};

}  // namespace chanplan
