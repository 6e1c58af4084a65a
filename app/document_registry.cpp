#include "app/document_registry.h"

#include <algorithm>

namespace chanplan {

bool DocumentRegistry::AnyDocumentOpen() const {
  return std::ranges::any_of(DocumentStates, [](const DocumentState& state) { return !state.Released; });
}

int DocumentRegistry::GetFreeDocumentSlot(bool newSlotRequested) {
  const bool onlyFirst = Documents.size() == 1 && Documents[0] != nullptr && !DocumentStates[0].Released;
  if (onlyFirst && !newSlotRequested && Documents[0]->IsUntitled() && !DocumentStates[0].Changed) return 1;
  std::size_t index = 0;
  while (index < DocumentStates.size() && !DocumentStates[index].Released) ++index;
  if (index == DocumentStates.size()) {
    Documents.emplace_back();
    DocumentStates.emplace_back();
  }
  Documents[index] = nullptr;
  DocumentStates[index] = {};
  return static_cast<int>(index) + 1;
}

}  // namespace chanplan
