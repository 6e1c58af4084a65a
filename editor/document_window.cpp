#include "editor/document_window.h"

#include <ranges>

namespace chanplan {

DocumentWindow* DocumentWindow::ActiveIn(const QMdiArea& area) {
  // The area has no current window while it is being activated itself, and none once its active one
  // was closed: then it is the one that was used last.
  if (auto* current = qobject_cast<DocumentWindow*>(area.currentSubWindow())) return current;
  const QList<QMdiSubWindow*> used = area.subWindowList(QMdiArea::ActivationHistoryOrder);
  for (QMdiSubWindow* window : used | std::views::reverse)
    if (auto* document = qobject_cast<DocumentWindow*>(window); document != nullptr && !document->State().Released)
      return document;
  return nullptr;
}

}  // namespace chanplan
