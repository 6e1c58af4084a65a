// Reads any bytes as a table and does with it whatever the programs do; aborts where that goes wrong.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "core/sig_file.h"
#include "core/signal_standard_table.h"
#include "core/table_difference.h"
#include "core/table_merge.h"
#include "core/validation.h"
#include "tests/fuzz/fuzz_target.h"

namespace chanplan::fuzzing {
namespace {

ReadOutcome Read(const std::string& bytes) {
  std::istringstream input(bytes);
  return ReadSigTable(input);
}

void CheckFailure(const ReadOutcome& outcome) {
  Require(outcome.Table.Count == 0, "a failed read leaves the table empty");
  Require(!outcome.Truncated, "a failed read is not a truncated one");
  Require(!outcome.Reason.empty(), "a failure has a reason");
  Require((outcome.Line > 0) == (outcome.Failure != ReadFailure::Empty), "a failure tells its line where it has one");
}

bool HasTooLongLine(const std::string& bytes) {
  for (std::size_t start = 0, end; (end = bytes.find("\r\n", start)) != std::string::npos; start = end + 2)
    if (end - start > MaxLineLength) return true;
  return false;
}

void CheckRoundTrip(const SignalStandardTable& table) {
  const std::string written = WriteSigTable(table);
  if (HasTooLongLine(written)) return;  // a save refuses such a table
  const ReadOutcome again = Read(written);
  Require(again.Ok(), "what was written can be read");
  Require(RowDifferences(table, again.Table).empty(), "what is read is what was written");
  Require(WriteSigTable(again.Table) == written, "writing is stable");
}

void CheckWalk(const SignalStandardTable& table) {
  const std::vector<int> standards = StandardIndices(table);
  Require(std::ranges::is_sorted(standards, std::less_equal<>()), "a walk goes forward");
  Require(standards.empty() == (table.Count == 0), "a table of rows has a standard");
  Require(standards.empty() || (standards.front() == 0 && standards.back() < table.Count), "a walk stays in the table");
  for (int index = 0; index < table.Count; ++index)
    ModulationTexts.at(static_cast<std::size_t>(Modulation(table.Row(index))));
}

SignalStandardTable CheckValidation(const SignalStandardTable& table) {
  const std::vector<std::string> listNames = ListNames(table);
  SignalStandardTable once = table;
  AlignSubbands(once);
  Require(once.Count == table.Count, "validation keeps the rows");
  const std::vector<Warning> warnings = FindWarnings(table, listNames);
  for (const Warning& warning : warnings) {
    const std::string text = WarningText(warning);
    Require(text.starts_with("Warning:\t") && text.ends_with('.'), "a warning has its form");
    const bool duplicate = warning.Message.starts_with("Duplicate");
    Require((duplicate ? table : once).Row(warning.Row).Name == warning.Name, "a warning names its row");
  }
  Require(FindWarnings(once, listNames) == warnings, "validation says the same again");
  SignalStandardTable twice = once;
  AlignSubbands(twice);
  Require(twice == once, "validation changes nothing more");
  return once;
}

bool Contains(const SignalStandardTable& table, const SignalStandardRecord& row) {
  return std::ranges::find(table.Records, row) != table.Records.end();
}

void CheckMerge(const SignalStandardTable& base, const SignalStandardTable& source) {
  for (const bool replace : {false, true}) {
    const MergeOutcome outcome = MergeTables(base, source, replace);
    Require(outcome.Table.Count >= 1 && outcome.Table.Count <= MaxRecords, "a merge keeps within the table");
    Require(outcome.Truncated == (outcome.Table.Count == MaxRecords), "a full merge is a truncated one");
    for (int index = 0; index < outcome.Table.Count; ++index) {
      const SignalStandardRecord& row = outcome.Table.Row(index);
      Require(row == SignalStandardRecord() || Contains(base, row) || Contains(source, row),
              "a merge makes no rows up");
    }
  }
}

}  // namespace

void FuzzSigFile(const std::uint8_t* data, std::size_t size) {
  const std::string bytes(TakeInput(data, size));
  const ReadOutcome outcome = Read(bytes);
  if (!outcome.Ok()) {
    CheckFailure(outcome);
    return;
  }
  const SignalStandardTable& table = outcome.Table;
  Require(table.Count >= 0 && table.Count <= MaxRecords, "a table holds at most 200 rows");
  Require(outcome.Truncated == (table.Count == MaxRecords), "a full table is a truncated one");
  CheckRoundTrip(table);
  CheckWalk(table);
  const SignalStandardTable validated = CheckValidation(table);
  CheckRoundTrip(validated);
  CheckMerge(table, validated);
  Require(TableDifferences(table, table).empty(), "a table does not differ from itself");
  TableDifferences(table, validated);
}

}  // namespace chanplan::fuzzing
