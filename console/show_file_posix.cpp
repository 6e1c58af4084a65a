#include <QProcess>

#include "console/command.h"

namespace chanplan {

void ShowFile(const std::filesystem::path& file) {
  constexpr char opener[] = "xdg-open";
  const QString path = QString::fromStdU16String(std::filesystem::absolute(file).u16string());
  if (!QProcess::startDetached(opener, {path}))
    throw CommandFailure(file.string() + " was written, but cannot be shown: there is no " + opener);
}

}  // namespace chanplan
