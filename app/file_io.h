// File dialogs, and opening tables.
#pragma once

#include <QString>
#include <QUrl>

#include "app/command_frame.h"
#include "app/recent_files.h"

namespace chanplan {

/// The absolute path of a file of this machine; "" for every other address.
QString LocalPathOf(QUrl address);

/// Asks for table files, one or several, opens them and makes them recent files.
void PromptOpenFileName(CommandFrame& frame, RecentFileList& recent);

/// Asks for one table file that is there already: its full path, or "" when the user cancels.
QString PromptTableFile(CommandFrame& frame, const RecentFileList& recent);

/// Asks for a file to save to, `proposedName` at first: its full path, or "" when the user cancels.
/// `fileType`, ".sig" or ".htm", decides on the files shown, and is added to a name without a type.
QString PromptSaveFileName(CommandFrame& frame, const RecentFileList& recent, const QString& proposedName,
                           const QString& fileType);

/// Whether there is a file at `path` that may be read.
bool CanOpenFile(const QString& path);

/// Opens the table at `path` in a document of its own, or in the untouched first document. When it
/// cannot be read the user is told, and no empty document stays behind.
void OpenTableFile(CommandFrame& frame, const QString& path);

/// Opens the tables at `paths`, one after the other, and makes them recent files.
void OpenTableFiles(CommandFrame& frame, RecentFileList& recent, const QStringList& paths);

}  // namespace chanplan
