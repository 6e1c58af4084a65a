#include "app/recovery_copy.h"

#include <QUrl>
#include <sstream>

#include "core/sig_file.h"

namespace chanplan {
namespace {

constexpr std::string_view Title = "Chanplan recovery copy 1";

}  // namespace

std::string CopyText(const UnsavedTable& unsaved) {
  std::ostringstream text;
  text << Title << '\n'
       << QUrl::toPercentEncoding(unsaved.Caption).toStdString() << '\n'
       << unsaved.UnitTableTag << '\n'
       << unsaved.KnownFile.has_value();
  if (const auto& file = unsaved.KnownFile)
    text << ' ' << file->Device << ' ' << file->Number << ' ' << file->Modified << ' ' << file->Size;
  text << '\n' << WriteSigTable(unsaved.Table);
  return text.str();
}

std::optional<UnsavedTable> ReadCopyText(const std::string& text) {
  std::istringstream input(text);
  std::string title, caption, line;
  UnsavedTable unsaved;
  bool hasFile = false;
  std::getline(input, title);
  std::getline(input, caption);
  input >> unsaved.UnitTableTag >> hasFile;
  if (hasFile) {
    FileStamp& file = unsaved.KnownFile.emplace();
    input >> file.Device >> file.Number >> file.Modified >> file.Size;
  }
  std::getline(input, line);
  if (!input || title != Title) return std::nullopt;
  unsaved.Caption = QUrl::fromPercentEncoding(QByteArray::fromStdString(caption));
  ReadOutcome read = ReadSigTable(input, text.size());  // a table that no file takes is to be had again, too
  if (!read.Ok()) return std::nullopt;
  unsaved.Table = std::move(read.Table);
  return unsaved;
}

}  // namespace chanplan
