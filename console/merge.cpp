#include <iostream>
#include <set>

#include "console/command.h"
#include "core/table_merge.h"

namespace chanplan {
namespace {

struct MergeArguments {
  std::filesystem::path Base;
  std::filesystem::path Source;
  std::filesystem::path Out;
  bool ReplaceMatching = false;
  bool DryRun = false;
};

using Names = std::set<std::string, std::less<>>;

Names StandardNames(const SignalStandardTable& table) {
  Names names;
  for (const int index : StandardIndices(table))
    if (!table.Row(index).Name.empty()) names.emplace(BaseName(table.Row(index).Name));
  return names;
}

// A line for each standard of either table, in the tables' order. Of two that match, the one that gives way
// was replaced in the base, and dropped from the source.
void PrintFates(const SignalStandardTable& base, const SignalStandardTable& source, const SignalStandardTable& merged,
                bool replaceMatching, std::ostream& output) {
  const Names inBase = StandardNames(base), inSource = StandardNames(source), inMerged = StandardNames(merged);
  const auto print = [&](std::string_view fate, std::string_view name) {
    output << (inMerged.contains(name) ? fate : "dropped") << '\t' << PrintedText(name) << '\n';
  };
  const auto forEach = [](const SignalStandardTable& table, const auto& act) {
    for (const int index : StandardIndices(table))
      if (!table.Row(index).Name.empty()) act(BaseName(table.Row(index).Name));
  };
  forEach(base, [&](std::string_view name) {
    print(replaceMatching && inSource.contains(name) ? "replaced" : "kept", name);
  });
  forEach(source, [&](std::string_view name) {
    if (!inBase.contains(name))
      print("added", name);
    else if (!replaceMatching)
      print("dropped", name);
  });
}

int Merge(const MergeArguments& arguments) {
  RefuseStandardInputTwice(arguments.Base, arguments.Source);
  const OpenedTable base = OpenWithNotes(arguments.Base);
  const OpenedTable source = OpenWithNotes(arguments.Source);
  const MergeOutcome merged = MergeWholeGroups(base.Table, source.Table, arguments.ReplaceMatching);
  if (!arguments.DryRun) SaveTableAs(merged.Table, arguments.Out);
  // Standard output may be where the table goes.
  const bool outputIsTaken = !arguments.DryRun && arguments.Out == StandardStream;
  PrintFates(base.Table, source.Table, merged.Table, arguments.ReplaceMatching, outputIsTaken ? std::cerr : std::cout);
  if (merged.Truncated) Note(WithLfLineEnds(std::string(MergeTruncatedText)));
  return ExitCodeAfterMerge(base.RowsLeftOut + source.RowsLeftOut + merged.Dropped, merged.Nameless);
}

}  // namespace

void AddMergeCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("merge", "Merge the standards of one table into another");
  const auto arguments = std::make_shared<MergeArguments>();
  AddFileArgument(*command, "BASE", arguments->Base, "the table to merge into");
  AddFileArgument(*command, "SOURCE", arguments->Source, "the table whose standards are added");
  AddFileArgument(*command, "OUT", arguments->Out, "where to save the merged table");
  command->add_flag("--replace-matching", arguments->ReplaceMatching,
                    "standards of SOURCE replace those of the same name in BASE");
  command->add_flag("--dry-run", arguments->DryRun, "only tell what would become of each standard");
  command->footer("Exit status: 0 merged, 2 failed, 3 merged, but rows were lost.");
  command->callback([arguments, &exitCode] { exitCode = Merge(*arguments); });
}

}  // namespace chanplan
