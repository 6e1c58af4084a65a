// The documents and their numbers, which begin with 1.
#pragma once

#include <QPointer>
#include <deque>

#include "editor/document_window.h"

namespace chanplan {

/// A number that its document no longer needs is given away again. Number 1 is there from the start,
/// free for the first document.
class DocumentRegistry {
 public:
  bool AnyDocumentOpen() const;
  /// The number of the next document, whose state is then in use. It may be number 1 of an untouched
  /// first document, unless a new one is asked for.
  int GetFreeDocumentSlot(bool newSlotRequested);
  /// The document of `slot`, null when none is open under this number.
  DocumentWindow* Document(int slot) const { return Documents[static_cast<std::size_t>(slot) - 1]; }

  std::deque<QPointer<DocumentWindow>> Documents = std::deque<QPointer<DocumentWindow>>(1);
  /// As long as `Documents`; documents keep references.
  std::deque<DocumentState> DocumentStates = {{.Released = true}};
};

}  // namespace chanplan
