// What commands may ask of the frame: its side of the seam between the two.
#pragma once

#include <QMainWindow>

#include "editor/document_window.h"
#include "editor/frame_operations.h"

namespace chanplan {

/// The window that dialogs stand over, the status bar, and a place for documents.
class CommandFrame : public QMainWindow, public FrameOperations {
 public:
  /// Takes a number and makes the document of this number, unless it is the untouched first one that
  /// is used again. Its caption is `name` followed by its number. The frame owns it; it is not shown yet.
  virtual DocumentWindow& CreateDocument(bool newSlotRequested, const QString& name = "Untitled ") = 0;
  virtual void ShowDocument(DocumentWindow& document) = 0;
  /// The document that commands act on, null when there is none.
  virtual DocumentWindow* ActiveDocument() const = 0;
};

}  // namespace chanplan
