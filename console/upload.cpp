#include "console/unit_session.h"
#include "core/table_difference.h"
#include "core/table_merge.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

struct UploadArguments {
  PortArguments Port;
  std::filesystem::path File;
  bool Append = false;
  bool ReplaceMatching = false;
  bool Truncate = false;
  bool Verify = false;
};

// The unit's table behind an upload that was confirmed.
SignalStandardTable ReadBack(UnitSession& session) {
  try {
    return session.Download().Table;
  } catch (const CommandFailure& failure) {
    throw CommandFailure(
        std::string("the unit confirmed the upload, but its table could not be read back to compare it: ") +
        failure.what());
  }
}

// Compares with what went over the wire: what that is not like was said before.
void Verify(UnitSession& session, std::string_view message) {
  const auto differences = RowDifferences(SentTable(message), ReadBack(session));
  if (differences.empty()) return;
  for (const std::string& line : differences) Note(line);
  throw CommandFailure("the unit's table is not the one that was sent: upload it again");
}

// Throws CommandFailure when rows would be lost that the user did not give up.
void RefuseLosses(const UploadArguments& arguments, int withoutRoom, int nameless) {
  if (arguments.Truncate) return;
  if (withoutRoom > 0)
    throw CommandFailure(std::to_string(withoutRoom) + (withoutRoom == 1 ? " record finds" : " records find") +
                         " no room in the unit; nothing was sent (--truncate sends the first 200)");
  if (nameless > 0)
    throw CommandFailure(std::to_string(nameless) + (nameless == 1 ? " record has" : " records have") +
                         " no name and would be left out; nothing was sent (--truncate allows it)");
}

int Upload(const UploadArguments& arguments) {
  const OpenedTable opened = OpenWithNotes(arguments.File);
  SignalStandardTable table = opened.Table;
  int withoutRoom = opened.RowsLeftOut, nameless = 0;
  UnitSession session(arguments.Port);
  // A table that does not fit is refused before anything is said to the unit.
  std::string message = EncodeTable(table, UploadTag(0));
  session.Connect();
  if (arguments.Append) {
    const UnitTable held = session.Download();
    const MergeOutcome merged = MergeWholeGroups(held.Table, table, arguments.ReplaceMatching);
    withoutRoom += merged.Dropped;
    nameless = merged.Nameless;
    RefuseLosses(arguments, withoutRoom, nameless);
    if (merged.Truncated) Note(WithLfLineEnds(std::string(MergeTruncatedText)));
    table = merged.Table;
    message = EncodeTable(table, UploadTag(held.UnitTableTag));
  }
  for (const std::string& loss : WireLosses(table)) Note(loss);
  session.Upload(message);
  if (arguments.Verify) Verify(session, message);
  return ExitCodeAfterMerge(withoutRoom, nameless);
}

}  // namespace

void AddUploadCommand(CLI::App& app, int& exitCode) {
  CLI::App* command = app.add_subcommand("upload", "Put a table into a unit");
  const auto arguments = std::make_shared<UploadArguments>();
  arguments->Port.AddTo(*command);
  AddFileArgument(*command, "FILE", arguments->File, "the table");
  CLI::Option* append =
      command->add_flag("--append", arguments->Append, "keep the unit's standards and add the table's");
  command
      ->add_flag("--replace-matching", arguments->ReplaceMatching,
                 "standards of the table replace those of the same name in the unit")
      ->needs(append);
  command
      ->add_flag("--truncate", arguments->Truncate,
                 "send the first 200 records when the unit has no room for all, and leave out records without a name")
      ->needs(append);
  command->add_flag("--verify", arguments->Verify, "read the unit's table back and compare it record by record");
  command->callback([arguments, &exitCode] {
    try {
      exitCode = Upload(*arguments);
    } catch (const WireMisfit& misfit) {
      throw CommandFailure(std::string(misfit.what()) + "; nothing was sent");
    }
  });
}

}  // namespace chanplan
