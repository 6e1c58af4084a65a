#include "console/command.h"
#include "core/table_merge.h"

namespace chanplan {
namespace {

struct MergeArguments {
  std::filesystem::path Base;
  std::filesystem::path Source;
  std::filesystem::path Out;
  bool ReplaceMatching = false;
};

void Merge(const MergeArguments& arguments) {
  const SignalStandardTable base = OpenTable(arguments.Base);
  const MergeOutcome merged = MergeWholeGroups(base, OpenTable(arguments.Source), arguments.ReplaceMatching);
  SaveTableAs(merged.Table, arguments.Out);
  if (merged.Truncated) Note(WithLfLineEnds(std::string(MergeTruncatedText)));
}

}  // namespace

void AddMergeCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("merge", "Merge the standards of one table into another");
  const auto arguments = std::make_shared<MergeArguments>();
  command->add_option("BASE", arguments->Base, "the table to merge into")->required();
  command->add_option("SOURCE", arguments->Source, "the table whose standards are added")->required();
  command->add_option("OUT", arguments->Out, "where to save the merged table")->required();
  command->add_flag("--replace-matching", arguments->ReplaceMatching,
                    "standards of SOURCE replace those of the same name in BASE");
  command->callback([arguments] { Merge(*arguments); });
}

}  // namespace chanplan
