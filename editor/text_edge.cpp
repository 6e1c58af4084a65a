#include "editor/text_edge.h"

#include <QFileInfo>
#include <QHash>

#include "core/text_encoding.h"

namespace chanplan {

QString TextOf(std::string_view bytes) { return QString::fromStdString(Utf8FromWindows1252(bytes)); }

std::string BytesOf(const QString& text) {
  static const QHash<QChar, char> bytes = [] {
    QHash<QChar, char> inverse;
    for (int value = 0; value < 256; ++value) {
      const char byte = static_cast<char>(value);
      inverse.insert(TextOf({&byte, 1}).front(), byte);
    }
    return inverse;
  }();
  std::string result;
  for (const QChar character : text) result += bytes.value(character, '?');
  return result;
}

std::filesystem::path PathOf(const QString& path) { return path.toStdU16String(); }

bool IsNoFile(const QString& path) {
  const QFileInfo info(path);
  return info.exists() && !info.isFile() && !info.isDir();
}

}  // namespace chanplan
