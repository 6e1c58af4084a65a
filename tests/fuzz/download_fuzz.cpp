// Takes any bytes for a unit's table, whole at once or as they come over the line.
#include <sstream>
#include <string>

#include "core/sig_file.h"
#include "core/table_difference.h"
#include "tests/fuzz/scripted_line.h"
#include "unit/transfer.h"
#include "unit/unit_connection.h"

namespace chanplan::fuzzing {
namespace {

constexpr std::chrono::seconds LongestDownload = 200s;
constexpr std::size_t LongestMessage = WireHeaderSize + (MaxRecords + 2) * WireRecordSize;

std::size_t SizeOf(std::string_view message) {
  return WireHeaderSize + static_cast<std::size_t>(TwoBytesToInteger(message.substr(2))) * WireRecordSize;
}

// How many records come before the list's end.
int RecordsIn(std::string_view message) {
  const int announced = TwoBytesToInteger(message.substr(2));
  for (int index = 0; index < announced; ++index) {
    const std::size_t place = WireHeaderSize + static_cast<std::size_t>(index) * WireRecordSize;
    if (place >= message.size() || message[place] == EndOfListState) return index;
  }
  return announced;
}

void CheckTable(const UnitTable& held) {
  const SignalStandardTable& table = held.Table;
  SubbandCounter subbands;
  for (int index = 0; index < table.Count; ++index) {
    const SignalStandardRecord& record = table.Row(index);
    Require(record.Name.size() <= 24, "a name has its place in the record");
    Require(std::ranges::none_of(record.Name, [](unsigned char c) { return c < 32; }),
            "a name has no control characters");
    if (subbands.Takes(record))
      Require(record.Name == table.Row(index - 1).Name, "sub-bands have their standard's name");
  }
  Require(WireLosses(table).empty(), "what came from a unit can go back");
  Require(SentTable(EncodeTable(table, held.UnitTableTag)) == table, "what goes back is what came");
  std::istringstream saved(WriteSigTable(table));
  const ReadOutcome read = ReadSigTable(saved);
  Require(read.Ok() && RowDifferences(table, read.Table).empty(), "what is saved is what came");
}

void CheckDecoding(std::string_view bytes) {
  std::string message(bytes);
  if (message.size() < WireHeaderSize) message.resize(WireHeaderSize);
  const std::size_t given = message.size();
  message.resize(std::min(SizeOf(message), LongestMessage));
  for (std::size_t place = given; place < message.size(); ++place) message[place] = message[place - given];
  UnitTable held;
  const bool whole = DecodeTable(message, held);
  const int records = RecordsIn(message);
  Require(whole == (records <= MaxRecords), "a table that has no room for all says so");
  Require(held.Table.Count == std::min(records, MaxRecords), "all records are taken that find room");
  Require(held.UnitTableTag == TwoBytesToInteger(message), "a table has its tag");
  CheckTable(held);
}

// Whether nothing but `held` came after it was asked for last, and then nothing for a while.
bool CameWhole(const ScriptedLine& line, const UnitTable& held) {
  std::string message;
  const auto came = line.CameAfter(SendTableCommand);
  for (std::size_t next = 0; next < came.size(); ++next) {
    message += came[next].Bytes;
    if (message.size() < WireHeaderSize || message.size() != SizeOf(message)) continue;
    const bool quietBehind = next + 1 == came.size() || came[next + 1].Time - came[next].Time > QuietTime - 1ms;
    UnitTable decoded;
    DecodeTable(message, decoded);
    return decoded.Table == held.Table && decoded.UnitTableTag == held.UnitTableTag &&
           (quietBehind || line.Port.Failure());
  }
  return false;
}

void CheckDownload(std::string_view script) {
  ScriptedLine line(script);
  UnitTable former;
  former.UnitTableTag = 4711;
  former.Table.Append({});
  UnitTable held = former;
  TransferProgress progress;
  const TransferOutcome outcome = RunDownload(line.Link, held, progress, [&] { return line.StopWanted(); });
  const bool brought = outcome.Moved() && (outcome.Result == LinkTrue || outcome.Result == LinkFalse);
  if (brought) {
    Require(CameWhole(line, held), "a table is what the unit said when asked last");
    Require(outcome.Result == LinkTrue || held.Table.Count == MaxRecords, "a table that has no room for all is full");
    CheckTable(held);
  } else {
    Require(held.Table == former.Table && held.UnitTableTag == former.UnitTableTag,
            "a table that did not come leaves the former one");
  }
  Require(outcome.UnitAnswered || !outcome.Moved(), "a unit that did not answer sends nothing");
  Require(!outcome.Done() || outcome.Message.empty() || line.Port.Failure(), "nothing is said of a table that came");
  Require(outcome.Done() || outcome.Aborted || outcome.Result == LinkTimeout || !outcome.Message.empty(),
          "a failure is told");
  Require(outcome.Moved() == (line.TimesSent(SendTableCommand) > 0) || outcome.Result == LinkTimeout,
          "a table is asked for when it is wanted");
  const std::size_t sentBefore = line.Port.Sent.size();
  const LinkResult sync = FinishTransfer(line.Link, outcome);
  Require(sync != LinkAck || line.Port.Sent.size() > sentBefore, "no echo without a sync byte");
  Require(line.TimesSent(SendTableCommand) <= 2, "a table is asked for twice at most");
  line.CheckConversation(std::string{IdentifyCommand, SendTableCommand}, LongestDownload);
}

}  // namespace

void FuzzDownload(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = TakeInput(data, size);
  if (input.empty()) return;
  if (input.front() % 2 == 0)
    CheckDownload(input.substr(1));
  else
    CheckDecoding(input.substr(1));
}

}  // namespace chanplan::fuzzing
