#include <cerrno>
#include <fstream>

#include "console/unit_session.h"
#include "core/sig_file.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;

// What keeps `file` from being written, found by opening what is there, or by trying with an empty one beside it: a
// table that is on its way for ten seconds should find its place.
std::error_code WritingProblem(const fs::path& file) {
  std::error_code ignored;
  if (file == StandardStream) return {};
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

struct DownloadArguments {
  PortArguments Port;
  fs::path Out;
  bool Force = false;
};

void Download(const DownloadArguments& arguments) {
  FailUnlessSaved(arguments.Out, WritingProblem(arguments.Out));
  UnitSession session(arguments.Port);
  session.Connect();
  const SignalStandardTable table = session.Download().Table;
  if (table.Count == 0 && !arguments.Force) {
    const ReadOutcome former = LoadSigFile(arguments.Out);
    if (former.Ok() && former.Table.Count > 0)
      throw CommandFailure("the unit's table is empty and " + arguments.Out.string() + " holds " +
                           std::to_string(former.Table.Count) + " records: it was not replaced (--force replaces it)");
  }
  SaveTableAs(table, arguments.Out);
}

}  // namespace

void AddDownloadCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("download", "Save the table of a unit to a file");
  const auto arguments = std::make_shared<DownloadArguments>();
  arguments->Port.AddTo(*command);
  command->add_option("OUT", arguments->Out, "where to save the table")->required();
  command->add_flag("--force", arguments->Force, "replace a file that holds records also by an empty table");
  command->callback([arguments] { Download(*arguments); });
}

}  // namespace chanplan
