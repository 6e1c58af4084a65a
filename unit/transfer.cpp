#include "unit/transfer.h"

#include <utility>

#include "unit/unit_connection.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

constexpr int DownloadTimeoutMs = 30000;
constexpr int SyncTimeoutMs = 10000;
constexpr std::uint16_t FirstTableTag = 100;
constexpr std::chrono::seconds LongestPause(2);  // between two bytes of an upload
constexpr std::size_t LargestTable = WireHeaderSize + MaxRecords * WireRecordSize;

// Why a table that was asked for did not come; nothing when it did, and when it did not in time.
std::string DownloadProblem(const UnitLink& link, LinkResult result) {
  if (const auto failure = link.PortFailure()) return failure->what();
  if (result == LinkUnrest) return "The unit sent more than it announced, so its table is not whole: start again";
  if (result == LinkFalse)
    return "The unit announces more than 200 records, which no table can hold: its first 200 are not its whole table";
  return {};
}

// Why a table was not sent whole; nothing when it was.
std::string UploadProblem(const UnitLink& link, LinkResult result) {
  if (const auto failure = link.PortFailure()) return failure->what();
  if (result == LinkUnrest) return "The unit sends without being asked, so nothing was uploaded: start again";
  if (result == LinkFalse)
    return "The upload was held up, so that the unit may have given it up: upload the table again";
  return {};
}

// Asks for the table: LinkTrue when `reply` has as many bytes as it announces; LinkTimeout; LinkUnrest when
// more came. Where `announcementIsDoubted`, a table that stops coming and announced more than a unit can hold is
// no time-out but LinkUnrest: an echo in its header makes the count 0, or too large.
LinkResult ReadTable(UnitLink& link, std::string& reply, TransferProgress& progress, bool announcementIsDoubted) {
  progress.SetRange(0, 100);
  progress.SetValue(0);
  std::size_t replySize = 0;  // not known before the header is in
  std::size_t sizeBefore = 0;
  auto lastCame = link.Now();
  const auto whole = [&] {
    if (reply.size() != std::exchange(sizeBefore, reply.size())) lastCame = link.Now();
    if (replySize == 0 && reply.size() >= WireHeaderSize) {
      const int recordBytes = TwoBytesToInteger(std::string_view(reply).substr(2)) * static_cast<int>(WireRecordSize);
      replySize = WireHeaderSize + static_cast<std::size_t>(recordBytes);
      progress.SetRange(0, recordBytes);
    }
    progress.SetValue(static_cast<int>(reply.size()));
    if (announcementIsDoubted && replySize > LargestTable && link.Now() - lastCame > LatestAnswer) return true;
    return replySize != 0 && reply.size() >= replySize;
  };
  if (link.ReadAnswer(SendTableCommand, DownloadTimeoutMs, reply, whole) != LinkTrue) return LinkTimeout;
  // A byte that was lost, doubled or another answer's leaves a number of bytes that no table has.
  link.ReadUntilQuiet(reply);
  return reply.size() == replySize ? LinkTrue : LinkUnrest;
}

// Opens the port, identifies the unit and lets `move` move the table, unless the user wants to stop by then.
TransferOutcome RunTransfer(UnitLink& link, std::string_view title, TransferProgress& progress,
                            const std::function<bool()>& abortRequested, const std::function<LinkResult()>& move) {
  progress.SetCaption(title);
  progress.SetLabel("Connecting to Handheld Product...");
  progress.SetRange(0, 100);
  progress.SetValue(0);
  TransferOutcome outcome;
  std::string reply;
  link.OpenCommPort(link.CommPort);
  outcome.UnitAnswered = link.CommControl.IsOpen() && link.ReadUnitIdentity(IdentityTimeoutMs, reply) == LinkTrue;
  outcome.Aborted = abortRequested();
  if (outcome.Aborted) return outcome;
  if (!outcome.UnitAnswered) {
    outcome.Message = "Error establishing communication with Handheld Product!";
  } else {
    progress.SetLabel(title);
    outcome.Result = move();
  }
  return outcome;
}

}  // namespace

bool DecodeTable(std::string_view reply, UnitTable& held) {
  const int announced = TwoBytesToInteger(reply.substr(2, 2));
  held.Table.Count = 0;
  held.UnitTableTag = static_cast<std::uint16_t>(TwoBytesToInteger(reply));
  SubbandCounter subbands;
  for (int index = 0; index < announced; ++index) {
    const std::string_view bytes = reply.substr(WireHeaderSize + WireRecordSize * static_cast<std::size_t>(index));
    if (bytes[0] == EndOfListState) break;
    if (index == MaxRecords) return false;
    SignalStandardRecord record = DecodeRecord(bytes.substr(0, WireRecordSize));
    if (subbands.Takes(record)) record.Name = held.Table.Row(index - 1).Name;
    held.Table.Append(std::move(record));
  }
  return true;
}

SignalStandardTable SentTable(std::string_view message) {
  UnitTable sent;
  DecodeTable(message, sent);
  return sent.Table;
}

LinkResult Query_Chanplans(UnitLink& link, UnitTable& held, TransferProgress& progress) {
  std::string reply;
  LinkResult result = ReadTable(link, reply, progress, true);
  // An echo that another program waited for may have come among the table's bytes. Reading changes nothing,
  // so the unit is asked once more, when no echo can be on its way any longer.
  std::string stale;
  if (result == LinkUnrest && link.ReadUntilQuiet(stale, LatestAnswer))
    result = ReadTable(link, reply, progress, false);
  if (result != LinkTrue) return result;
  return DecodeTable(reply, held) ? LinkTrue : LinkFalse;
}

std::uint16_t UploadTag(std::uint16_t unitTableTag) { return unitTableTag == 0 ? FirstTableTag : unitTableTag; }

LinkResult UploadChanplans(UnitLink& link, std::string_view message, TransferProgress& progress) {
  progress.SetValue(0);
  std::string stale;
  if (!link.ReadUntilQuiet(stale)) return link.PortFailure() ? LinkFalse : LinkUnrest;
  const auto sendInTime = [&](const char& byte) {
    const auto start = link.Now();
    link.SendCommString(link.CommHandle, {&byte, 1});
    return !link.PortFailure() && link.Now() - start <= LongestPause;
  };
  if (!sendInTime(ReceiveTableCommand)) return LinkFalse;
  progress.SetRange(0, static_cast<int>(message.size()));
  for (std::size_t sent = 0; sent < message.size(); ++sent) {
    if (!sendInTime(message[sent])) return LinkFalse;
    progress.SetValue(static_cast<int>(sent + 1));
  }
  progress.SetCaption(std::to_string(message.size()));
  return LinkTrue;
}

TransferOutcome RunDownload(UnitLink& link, UnitTable& held, TransferProgress& progress,
                            const std::function<bool()>& abortRequested) {
  TransferOutcome outcome = RunTransfer(link, "Downloading Signal Standards...", progress, abortRequested,
                                        [&] { return Query_Chanplans(link, held, progress); });
  if (outcome.Moved()) outcome.Message = DownloadProblem(link, outcome.Result);
  return outcome;
}

TransferOutcome RunUpload(UnitLink& link, std::string_view message, TransferProgress& progress,
                          const std::function<bool()>& abortRequested) {
  TransferOutcome outcome = RunTransfer(link, "Uploading Signal Standards...", progress, abortRequested,
                                        [&] { return UploadChanplans(link, message, progress); });
  if (outcome.Moved()) outcome.Message = UploadProblem(link, outcome.Result);
  return outcome;
}

LinkResult FinishTransfer(UnitLink& link, const TransferOutcome& outcome) {
  const LinkResult sync =
      link.CommControl.IsOpen() && outcome.UnitAnswered ? link.SendSyncByte(SyncTimeoutMs) : LinkTimeout;
  const bool mayBeOthers = sync == LinkAck && link.MayHearOthers();
  link.CloseCommPort();
  return mayBeOthers ? link.LastSync : sync;
}

}  // namespace chanplan
