#include "app/command_line.h"

#include <QDir>
#include <QFileInfo>

#include "app/file_io.h"
#include "core/text_encoding.h"

namespace chanplan {
namespace {

constexpr char Help[] =
    "Usage: chanplan-editor [OPTIONS] [--] [FILE...]\n"
    "Edit the channel plans of handheld RF test units.\n\n"
    "  FILE       tables to open, names or file: addresses\n"
    "  --help     print this\n"
    "  --version  print the version\n";

QString PathGiven(const QString& file) {
  const QString path = file.startsWith("file:") ? LocalPathOf(QUrl(file)) : QString();
  return QDir::toNativeSeparators(path.isEmpty() ? QFileInfo(file).absoluteFilePath() : path);
}

// A terminal obeys control characters.
QString Harmless(const QString& argument) { return QString::fromStdString(HarmlessText(argument.toStdString())); }

}  // namespace

CommandLine ReadCommandLine(const QStringList& arguments) {
  CommandLine line;
  bool onlyFiles = false;
  for (const QString& argument : arguments) {
    if (onlyFiles || !argument.startsWith('-'))
      line.Files += PathGiven(argument);
    else if (argument == "--")
      onlyFiles = true;
    else if (argument == "--help")
      return {{}, Help};
    else if (argument == "--version")
      return {{}, "Chanplan Editor " CHANPLAN_VERSION "\n"};
    else
      return {{}, "There is no option " + Harmless(argument) + "; chanplan-editor --help names them all.\n", true};
  }
  return line;
}

}  // namespace chanplan
