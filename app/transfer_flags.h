// What the user wants of transfers, as their dialogs tell the command.
#pragma once

namespace chanplan {

/// One instance for the whole application.
struct TransferFlags {
  bool AbortRequested = false;         ///< the user wants the operation stopped
  bool UploadAppend = false;           ///< the table is added to the unit's instead of replacing it
  bool UploadReplaceMatching = false;  ///< when adding: the table's standards replace those of the same name
  bool UploadKeepCopy = false;         ///< the unit's table goes into a file first
  bool UploadReadBack = false;         ///< the unit's table is read and compared afterwards
};

}  // namespace chanplan
