// Undo and redo as keys and as items of context menus.
#pragma once

#include <QMenu>
#include <functional>

#include "editor/document_window.h"

namespace chanplan {

/// Gives `place` and what is in it the keys for undo and redo. `document` returns the document whose
/// history is meant; null when there is none.
void AddHistoryKeys(QWidget& place, const std::function<DocumentWindow*()>& document);

/// Adds `mnuContextUndo` and `mnuContextRedo` to `menu`, with what they would do to `document`;
/// greyed where there is nothing to do.
void AddHistoryItems(QMenu& menu, DocumentWindow* document);

}  // namespace chanplan
