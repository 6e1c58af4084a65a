#include "unit/transfer.h"

#include "unit/unit_connection.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

constexpr int DownloadTimeoutMs = 30000;
constexpr int SyncTimeoutMs = 10000;
constexpr std::uint16_t FirstTableTag = 100;
constexpr std::chrono::seconds LongestPause(2);  // between two bytes of an upload

// Fills `held` from a complete reply. False when it holds more records than a table can.
bool DecodeReply(std::string_view reply, UnitTable& held) {
  const int announced = TwoBytesToInteger(reply.substr(2, 2));
  held.Table.Count = 0;
  held.UnitTableTag = static_cast<std::uint16_t>(TwoBytesToInteger(reply));
  int subbandsExpected = 0;
  for (int index = 0; index < announced; ++index) {
    const std::string_view bytes = reply.substr(WireHeaderSize + WireRecordSize * static_cast<std::size_t>(index));
    if (bytes[0] == EndOfListState) break;
    if (index == MaxRecords) return false;
    SignalStandardRecord record = DecodeRecord(bytes.substr(0, WireRecordSize));
    if (record.Subbands > 0) {
      subbandsExpected = record.Subbands;
    } else if (subbandsExpected > 0) {
      --subbandsExpected;
      record.Name = held.Table.Row(index - 1).Name;
    }
    held.Table.Append(std::move(record));
  }
  return true;
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
  if (!outcome.UnitAnswered) {
    outcome.Message = "Error establishing communication with Handheld Product!";
  } else if (!outcome.Aborted) {
    progress.SetLabel(title);
    outcome.Result = move();
    if (const auto failure = link.PortFailure()) outcome.Message = failure->what();
  }
  return outcome;
}

}  // namespace

LinkResult Query_Chanplans(UnitLink& link, UnitTable& held, TransferProgress& progress) {
  progress.SetRange(0, 100);
  progress.SetValue(0);
  link.CommControl.ReadInput();
  link.SendCommString(link.CommHandle, {&SendTableCommand, 1});
  std::string reply;
  std::size_t replySize = 0;  // not known before the header is in
  const auto complete = [&] {
    reply += link.CommControl.ReadInput();
    if (replySize == 0 && reply.size() >= WireHeaderSize) {
      const int recordBytes = TwoBytesToInteger(std::string_view(reply).substr(2)) * static_cast<int>(WireRecordSize);
      replySize = WireHeaderSize + static_cast<std::size_t>(recordBytes);
      progress.SetRange(0, recordBytes);
    }
    progress.SetValue(static_cast<int>(reply.size()));
    return replySize != 0 && reply.size() >= replySize;
  };
  if (!link.WaitUntil(link.Now(), DownloadTimeoutMs, complete)) return LinkTimeout;
  return DecodeReply(reply, held) ? LinkTrue : LinkFalse;
}

std::uint16_t UploadTag(std::uint16_t unitTableTag) { return unitTableTag == 0 ? FirstTableTag : unitTableTag; }

LinkResult UploadChanplans(UnitLink& link, std::string_view message, TransferProgress& progress) {
  progress.SetValue(0);
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
  return RunTransfer(link, "Downloading Signal Standards...", progress, abortRequested,
                     [&] { return Query_Chanplans(link, held, progress); });
}

TransferOutcome RunUpload(UnitLink& link, std::string_view message, TransferProgress& progress,
                          const std::function<bool()>& abortRequested) {
  TransferOutcome outcome = RunTransfer(link, "Uploading Signal Standards...", progress, abortRequested,
                                        [&] { return UploadChanplans(link, message, progress); });
  if (outcome.Message.empty() && !outcome.Aborted && outcome.Result != LinkTrue)
    outcome.Message = "The upload was held up, so that the unit may have given it up: upload the table again";
  return outcome;
}

LinkResult FinishTransfer(UnitLink& link, const TransferOutcome& outcome) {
  const LinkResult sync =
      link.CommControl.IsOpen() && outcome.UnitAnswered ? link.SendSyncByte(SyncTimeoutMs) : LinkTimeout;
  link.CloseCommPort();
  return sync;
}

}  // namespace chanplan
