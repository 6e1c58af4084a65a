// What the frame may ask of a document: the document's side of the seam between the two.
#pragma once

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QString>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/file_system.h"
#include "core/record_fields.h"
#include "core/sig_file.h"
#include "core/signal_standard_table.h"

namespace chanplan {

/// A truth that is shown somewhere: whoever shows it is told of every change.
class ShownFlag {
 public:
  ShownFlag(bool first = false) : value(first) {}
  ShownFlag& operator=(bool now) {
    if (value == now) return *this;
    value = now;
    if (Show) Show(now);
    return *this;
  }
  operator bool() const { return value; }

  std::function<void(bool)> Show;

 private:
  bool value;
};

/// A document's entry in `DocumentStates`.
struct DocumentState {
  bool Released = false;      ///< the window has been unloaded and the number may be given away again
  ShownFlag Changed = false;  ///< the table differs from what was last loaded or saved
};

/// One open table in its own child window. The window's title is the document's caption: the path
/// of its file, "Factory Default (Read-Only)", or a name that begins with "Untitled". The window
/// asks before it closes with changes, and tells nobody: whoever waits for its end uses `destroyed`
/// or `Released`.
class DocumentWindow : public QMdiSubWindow {
  Q_OBJECT

 public:
  using QMdiSubWindow::QMdiSubWindow;

  /// The document that the user has before them in `area`, also while another program has the
  /// screen; null when none is open.
  static DocumentWindow* ActiveIn(const QMdiArea& area);

  /// What the caption says: the table was never saved, or is not to be written where it came from.
  bool IsUntitled() const { return windowTitle().startsWith("Untitled"); }
  bool IsReadOnly() const {
    return windowTitle().contains(QLatin1String(ReadOnlyMark.data(), static_cast<qsizetype>(ReadOnlyMark.size())));
  }

  /// A word that came with the table from a unit and goes back with it; 0 = it came from elsewhere.
  std::uint16_t UnitTableTag = 0;
  /// The table's file as it was when this document read or wrote it; nothing when there is none.
  std::optional<FileStamp> KnownFile;
  /// What was not taken as it stood in the file that was loaded, a line each; why none of it, if none was.
  std::vector<std::string> ReadNotes;

 signals:
  /// The table is another one than before: it was loaded, received, or an edit was stored.
  void TableChanged();
  /// `State().Changed` is another one than before.
  void ChangedSignChanged();

 public:
  virtual DocumentState& State() const = 0;
  /// The warnings of the last validation, a line each, ended by CR LF.
  virtual QString WarningsText() const = 0;

  /// Replaces the table by the one in the file, sets the caption and validates. False, after a
  /// message, when the file cannot be read; the table is then empty.
  virtual bool LoadSigStandards(const QString& path) = 0;
  /// Stores open edits, validates and writes the table. On success the caption is the path; false,
  /// after a message, when writing failed. Leaves `Changed` to the caller. A file that somebody else
  /// has changed meanwhile is asked about first; true, too, when the user takes that for the table.
  virtual bool SaveChanplans(const QString& path) = 0;
  /// Stores an edit that is open, so that what follows finds the table as the user sees it.
  virtual void CommitEdit() = 0;
  virtual QString TableProperties() const = 0;

  /// Writes the table as an HTML report to the path `ReportName`, whole or not at all. False, after a
  /// message, when that failed.
  virtual bool SigReport(const QString& ReportName) = 0;
  /// Prints the table's listing on the default printer; a message when that failed.
  virtual void PrintSigs() = 0;
  /// Greets. Nothing calls it; it is there for those who wonder whether a document answers.
  virtual void ProcPrint() = 0;

  virtual void CopyCut(bool Cut) = 0;
  virtual void Paste() = 0;
  virtual void InsertBlank() = 0;
  /// Take the last change of the table back, or make it again. Nothing while an edit box is open,
  /// which has a history of its own.
  virtual void Undo() = 0;
  virtual void Redo() = 0;
  /// The change that `Undo` would take back, or `Redo` make again, such as "edit of Name"; empty when
  /// there is none.
  virtual QString UndoName() const = 0;
  virtual QString RedoName() const = 0;
  /// Selects the standard of this name in the list view, if there is one.
  virtual void FindSSEntry(const QString& name) = 0;
  /// Puts the cursor on the value that line `line` of `WarningsText` is about, if that line still
  /// names `name`. The focus stays where it is.
  virtual void ShowWarning(int line, const QString& name) = 0;

  /// Shows the chart of the table beside the grids, or hides it again.
  virtual void ToggleChart() = 0;
  /// Puts the cursor on a field of the row at table index `row`, whose standard is selected in the list.
  /// Does not take the keyboard. What a sub-band has from its standard is shown with that.
  virtual void ShowField(int row, Field field) = 0;
  /// Shows the bar that looks for names, frequencies and channels.
  virtual void Find() = 0;

  /// The table, without an edit that is open.
  virtual const SignalStandardTable& Table() const = 0;
  /// Takes a table that came from a unit. It is in no file yet, so unless it is empty it counts as changed.
  virtual void ShowUnitTable(const SignalStandardTable& received) = 0;
  /// The table, as it came here, is in no file: it counts as changed, also once all changes are taken back.
  virtual void MarkUnsaved() = 0;
  /// Passes the whole table on through `SharedTables`, or takes the one that was passed.
  virtual void GetTable() const = 0;
  virtual void SetTable() = 0;
};

}  // namespace chanplan
