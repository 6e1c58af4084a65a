#include "unit/unit_link.h"

#include <cmath>
#include <utility>

#include "core/lenient_number.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t BufferSize = 10000;
constexpr std::size_t IdentitySize = 13;
constexpr int CloseSyncTimeoutMs = 500;
// How long the processor is given away between two looks at the port.
constexpr std::chrono::nanoseconds PollPause = 1ms;
// A sleeping thread wakes late by less than this; the rest of a pause is polled away.
constexpr std::chrono::nanoseconds WakeUpMargin = 130us;

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace

UnitLink::UnitLink(PortObject& commControl, LinkTiming linkTiming)
    : CommControl(commControl), timing(std::move(linkTiming)) {}

std::int16_t UnitLink::OpenCommPort(int portNumber) {
  openFailure.reset();
  if (portNumber == 0) {
    openFailure.emplace("there is no port 0: ports are numbered from 1");
    return 0;
  }
  try {
    CommControl.SetPortNumber(portNumber);
    LetEventsRun();
    BaudRate = "9600";
    CommControl.SetSettings(BaudRate + ",N,8,1");
    CommControl.SetReceiveBufferSize(BufferSize);
    CommControl.SetTransmitBufferSize(BufferSize);
    LetEventsRun();
    CommControl.SetInputLength(0);
    LetEventsRun();
    if (!CommControl.IsOpen()) CommControl.Open();
    LetEventsRun();
  } catch (const PortError& error) {
    openFailure = error;
    return 0;
  }
  CommControl.ReadInput();
  CommHandle = CommControl.Handle();
  return 1;
}

bool UnitLink::CloseCommPort() {
  if (CommControl.IsOpen()) {
    SendSyncByte(CloseSyncTimeoutMs);
    CommControl.Close();
  }
  return true;
}

bool UnitLink::ClearCommBuffers() {
  CommControl.DiscardReceived();
  CommControl.DiscardTransmitted();
  return true;
}

bool UnitLink::SendCommString(std::intptr_t handle, std::string_view text) {
  if (text.empty()) return true;
  LetEventsRun();
  for (const char byte : text) {
    CommControl.TransmitCommChar(handle, byte);
    DelayMs(1);
    LetEventsRun();
  }
  LetEventsRun();
  return true;
}

LinkResult UnitLink::SendSyncByte(int timeoutMs) {
  ClearCommBuffers();
  SendCommString(CommHandle, {&SyncByte, 1});
  if (!WaitUntil(Now(), timeoutMs, [this] { return CommControl.BytesWaiting() >= 1; })) return LinkTimeout;
  return CommControl.ReadInput().ends_with(SyncByte) ? LinkAck : LinkTrue;
}

LinkResult UnitLink::ReadUnitIdentity(int timeoutMs, std::string& reply) {
  CommControl.ReadInput();
  reply.clear();
  SendCommString(CommHandle, {&IdentifyCommand, 1});
  const auto start = Now();
  while (reply.size() < IdentitySize) {
    const std::size_t missing = IdentitySize - reply.size();
    if (!WaitUntil(start, timeoutMs, [&] { return CommControl.BytesWaiting() >= missing; })) return LinkTimeout;
    reply += CommControl.ReadInput();
  }
  const std::string_view identity = reply;
  UnitModel = TrimBlanks(ReplyToText(identity.substr(2, 7)));
  UnitFirmwareVersion = LeadingNumber(ReplyToText(identity.substr(9, 4)));
  return LinkTrue;
}

bool UnitLink::ProbeCommPort(int portNumber) {
  try {
    CommControl.SetPortNumber(portNumber);
    CommControl.Open();
  } catch (const PortError&) {
    return false;
  }
  if (CommControl.IsOpen()) CommControl.Close();
  return true;
}

std::int32_t UnitLink::DelayMs(std::int16_t milliseconds) {
  const auto start = Now();
  const std::chrono::nanoseconds wanted = std::chrono::milliseconds(milliseconds);
  std::chrono::nanoseconds elapsed{};
  do {
    timing.LetEventsRun(std::max(wanted - elapsed - WakeUpMargin, 0ns));
    elapsed = Now() - start;
  } while (elapsed < wanted);
  return static_cast<std::int32_t>(std::lround(std::chrono::duration<double, std::milli>(elapsed).count()));
}

void UnitLink::LetEventsRun() { timing.LetEventsRun(0ns); }

bool UnitLink::WaitUntil(std::chrono::nanoseconds start, int timeoutMs, const std::function<bool()>& enough) {
  while (true) {
    const bool timedOut = Now() - start > std::chrono::milliseconds(timeoutMs);
    const bool done = enough();
    if (done || timedOut || CommControl.Failure()) return done && !timedOut;
    timing.LetEventsRun(PollPause);
  }
}

std::optional<PortError> UnitLink::PortFailure() const { return openFailure ? openFailure : CommControl.Failure(); }

std::string ReplyToText(std::string_view reply) { return std::string(reply); }

}  // namespace chanplan
