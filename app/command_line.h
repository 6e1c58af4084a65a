// What the editor is started with.
#pragma once

#include <QStringList>

namespace chanplan {

struct CommandLine {
  QStringList Files;  ///< absolute paths
  QString Answer;     ///< to --help, --version or an option that there is none of; nothing is opened then
  bool Wrong = false;
};

/// `arguments` without the program's name. Files may be addresses that begin with "file:"; behind "--"
/// everything is a file.
CommandLine ReadCommandLine(const QStringList& arguments);

}  // namespace chanplan
