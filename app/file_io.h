// File dialogs, and opening tables.
#pragma once

#include <QString>

#include "app/command_frame.h"
#include "app/recent_files.h"

namespace chanplan {

/// Asks for a table file, opens it and makes it a recent file.
void PromptOpenFileName(CommandFrame& frame, RecentFileList& recent);

/// Asks for a file to save to, `proposedName` at first: its full path, or "" when the user cancels.
/// `fileType`, ".sig" or ".htm", decides on the files shown, and is added to a name without a type.
QString PromptSaveFileName(CommandFrame& frame, const RecentFileList& recent, const QString& proposedName,
                           const QString& fileType);

/// Opens the table at `path` in a document of its own, or in the untouched first document. When it
/// cannot be read the user is told, and no empty document stays behind.
void OpenTableFile(CommandFrame& frame, const QString& path);

}  // namespace chanplan
