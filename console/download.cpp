#include <cerrno>
#include <fstream>

#include "console/terminal.h"
#include "console/unit_session.h"
#include "core/file_system.h"
#include "core/sig_file.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

// What keeps `file` from being written, found by opening what is there, or by trying with an empty one beside it: a
// table that is on its way for ten seconds should find its place.
std::error_code WritingProblem(const fs::path& file) {
  std::error_code ignored;
  if (file == StandardStream) return {};
  if (!file.has_filename()) return std::make_error_code(std::errc::no_such_file_or_directory);
  if (fs::is_directory(file, ignored)) return std::make_error_code(std::errc::is_a_directory);
  if (fs::exists(file, ignored) && !fs::is_regular_file(file, ignored)) return {};
  const fs::path target = fs::weakly_canonical(file, ignored);
  fs::path probe = target;
  probe += ".chanplan-probe";
  errno = 0;
  // One that is there may be changed in place, in a folder that takes no new file.
  if (fs::exists(target, ignored))
    return std::ofstream(target, std::ios::app) ? std::error_code() : std::error_code(errno, std::generic_category());
  if (!std::ofstream(probe, std::ios::app)) return {errno, std::generic_category()};
  fs::remove(probe, ignored);
  return {};
}

// Whether anything would be lost with `file`, a table or not: all but nothing and an empty table.
bool HoldsSomething(const fs::path& file) {
  std::error_code ignored;
  if (file == StandardStream || !fs::is_regular_file(file, ignored) || fs::is_empty(file, ignored)) return false;
  const std::string emptyTable = WriteSigTable({});
  std::string content(emptyTable.size() + 1, '\0');
  std::ifstream input(file, std::ios::binary);
  input.read(content.data(), static_cast<std::streamsize>(content.size()));
  content.resize(static_cast<std::size_t>(input.gcount()));
  return content != emptyTable;
}

struct DownloadArguments {
  PortArguments Port;
  fs::path Out;
  bool Force = false;
};

void Download(const DownloadArguments& arguments) {
  FailUnlessSaved(arguments.Out, WritingProblem(arguments.Out));
  UnitSession session(arguments.Port);
  if (AreSameFile(session.PortName(), arguments.Out == StandardStream ? FileOfStandardOutput() : arguments.Out))
    throw CommandFailure(arguments.Out.string() + " is the unit's own port, which would take its table for commands");
  session.Connect();
  const SignalStandardTable table = session.Download().Table;
  if (table.Count == 0 && !arguments.Force && HoldsSomething(arguments.Out)) {
    const int records = LoadSigFile(arguments.Out).Table.Count;
    throw CommandFailure("the unit's table is empty and " + arguments.Out.string() +
                         (records > 0 ? " holds " + std::to_string(records) + " records" : " is not") +
                         ": it was not replaced (--force replaces it)");
  }
  SaveTableAs(table, arguments.Out);
}

}  // namespace

void AddDownloadCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("download", "Save the table of a unit to a file");
  const auto arguments = std::make_shared<DownloadArguments>();
  arguments->Port.AddTo(*command);
  AddFileArgument(*command, "OUT", arguments->Out, "where to save the table");
  command->add_flag("--force", arguments->Force, "replace a file that is not empty also by an empty table");
  command->callback([arguments] { Download(*arguments); });
}

}  // namespace chanplan
