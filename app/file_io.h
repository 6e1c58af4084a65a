// File dialogs, opening tables, and the recent files.
#pragma once

#include <QString>

namespace chanplan {

class frmMain;

/// Asks for a table file and opens it.
void PromptOpenFileName(frmMain& frame);

/// Asks for a file to save to, `proposedName` at first: its full path, or "" when the user cancels.
/// `fileType`, ".sig" or ".htm", decides on the files shown, and is added to a name without a type.
QString PromptSaveFileName(frmMain& frame, const QString& proposedName, const QString& fileType);

/// Opens the table at `path` in a document of its own, or in the untouched first document. When it
/// cannot be read the user is told, and no empty document stays behind.
void OpenTableFile(frmMain& frame, const QString& path);

/// Makes `path` the newest recent file, unless it is one of the first four in the menu.
void UpdateRecentFiles(frmMain& frame, const QString& path);
bool RecentMenuContains(const frmMain& frame, const QString& path);

}  // namespace chanplan
