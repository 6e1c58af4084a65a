#include <QProcess>

#include "console/command.h"

namespace chanplan {
namespace {

#ifdef _WIN32
constexpr char Opener[] = "explorer.exe";
#else
constexpr char Opener[] = "xdg-open";
#endif

}  // namespace

std::shared_ptr<bool> AddOpenOption(CLI::App& command) {
  auto open = std::make_shared<bool>(false);
  command.add_flag("--open", *open, "show OUT in the program that the desktop has for it");
  return open;
}

void RefuseToShow(const std::filesystem::path& out) {
  if (out == StandardStream) throw CommandFailure("standard output cannot be opened: name a file with --open");
}

void ShowFile(const std::filesystem::path& file) {
  const QString path = QString::fromStdU16String(std::filesystem::absolute(file).u16string());
  if (!QProcess::startDetached(Opener, {path}))
    throw CommandFailure(file.string() + " was written, but cannot be shown: there is no " + Opener);
}

}  // namespace chanplan
