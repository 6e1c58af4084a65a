// What the transfer commands, their dialogs and the frame share.
#pragma once

#include <QPointer>
#include <cstdint>
#include <optional>

#include "editor/document_window.h"
#include "unit/unit_link.h"

namespace chanplan {

/// The user's wishes, and the transfer that runs. One instance for the whole application.
struct TransferState {
  bool AbortRequested = false;         ///< the user wants the operation stopped
  bool UploadAppend = false;           ///< the table is added to the unit's instead of replacing it
  bool UploadReplaceMatching = false;  ///< when adding: the table's standards replace those of the same name

  /// A transfer command runs, from connecting to the unit to the closed port.
  bool Running = false;
  /// The port that the user chose meanwhile: one command keeps to one unit.
  std::optional<std::int16_t> PortForTheNext;
  /// Of the table that was moved last.
  LinkResult Result = LinkFalse;
  /// Whose tables it moves; they stay open until its end.
  QPointer<DocumentWindow> Document;
  QPointer<DocumentWindow> Source;  ///< what an upload adds to the unit's table in `Document`

  bool Holds(const QObject* window) const { return Running && (window == Document || window == Source); }
};

}  // namespace chanplan
