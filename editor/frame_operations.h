// What a document may ask of the frame: the frame's side of the seam between the two.
#pragma once

#include <QString>

namespace chanplan {

class FrameOperations {
 public:
  virtual ~FrameOperations() = default;

  virtual void mnuEditCopy_Click() = 0;
  virtual void mnuEditCut_Click() = 0;
  virtual void mnuEditPaste_Click() = 0;

  /// Fills the warnings pane with `WarningText`, lines separated by CR LF, and selects line
  /// `SelIndex`; -1 keeps the selected line where it is.
  virtual void Warnings(const QString& WarningText, qint16 SelIndex) = 0;
  /// The status bar's first panel.
  virtual void ShowStatus(const QString& text) = 0;
  /// The same for what holds of the active document as it is: it goes when a table is changed or saved, and when
  /// another document becomes the active one.
  virtual void ShowRemark(const QString& text) = 0;

  /// Whether documents that open show their chart: the user's last choice, which is remembered.
  virtual bool ShowsCharts() = 0;
  virtual void RememberCharts(bool shown) = 0;

  /// Asks for a file to save to; empty when the user cancels. `fileType` is ".sig" or ".htm".
  virtual QString PromptSaveFileName(const QString& proposedName, const QString& fileType) = 0;

  /// The title of message boxes.
  virtual QString ApplicationTitle() const = 0;
};

}  // namespace chanplan
