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

// Compares with what went over the wire: what that is not like was said before.
void Verify(UnitSession& session, std::string_view message) {
  UnitTable sent;
  DecodeTable(message, sent);
  const auto differences = RowDifferences(sent.Table, session.Download().Table);
  if (differences.empty()) return;
  for (const std::string& line : differences) Note(line);
  throw CommandFailure("the unit's table is not the one that was sent: upload it again");
}

void Upload(const UploadArguments& arguments) {
  SignalStandardTable table = OpenTable(arguments.File);
  UnitSession session(arguments.Port);
  // A table that does not fit is refused before anything is said to the unit.
  std::string message = EncodeTable(table, UploadTag(0));
  session.Connect();
  if (arguments.Append) {
    const UnitTable held = session.Download();
    const MergeOutcome merged = MergeWholeGroups(held.Table, table, arguments.ReplaceMatching);
    if (merged.Truncated) Note(WithLfLineEnds(std::string(MergeTruncatedText)));
    if (merged.Dropped > 0 && !arguments.Truncate)
      throw CommandFailure(std::to_string(merged.Dropped) +
                           " records find no room in the unit; nothing was sent (--truncate sends the first 200)");
    table = merged.Table;
    message = EncodeTable(table, UploadTag(held.UnitTableTag));
  }
  for (const std::string& loss : WireLosses(table)) Note(loss);
  session.Upload(message);
  if (arguments.Verify) Verify(session, message);
}

}  // namespace

void AddUploadCommand(CLI::App& app, int& /*exitCode*/) {
  CLI::App* command = app.add_subcommand("upload", "Put a table into a unit");
  const auto arguments = std::make_shared<UploadArguments>();
  arguments->Port.AddTo(*command);
  command->add_option("FILE", arguments->File, "the table")->required();
  CLI::Option* append =
      command->add_flag("--append", arguments->Append, "keep the unit's standards and add the table's");
  command
      ->add_flag("--replace-matching", arguments->ReplaceMatching,
                 "standards of the table replace those of the same name in the unit")
      ->needs(append);
  command->add_flag("--truncate", arguments->Truncate, "send the first 200 records when the unit has no room for all")
      ->needs(append);
  command->add_flag("--verify", arguments->Verify, "read the unit's table back and compare it record by record");
  command->callback([arguments] {
    try {
      Upload(*arguments);
    } catch (const WireMisfit& misfit) {
      throw CommandFailure(std::string(misfit.what()) + "; nothing was sent");
    }
  });
}

}  // namespace chanplan
