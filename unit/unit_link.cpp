#include "unit/unit_link.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/lenient_number.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t BufferSize = 10000;
constexpr int CloseSyncTimeoutMs = 500;
// How long the processor is given away between two looks at the port.
constexpr std::chrono::nanoseconds PollPause = 1ms;
// A sleeping thread wakes late by less than this; the rest of a pause is polled away.
constexpr std::chrono::nanoseconds WakeUpMargin = 100us;
// A unit is asked so often who it is until one answer is beyond doubt or like the one before it.
constexpr int MostIdentities = 3;
// The rest of a full table, which a program that was killed had asked for, takes less.
constexpr int LongestUnrestMs = 12000;

std::string_view TrimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Whether nothing but the answer of a unit can be in `reply`: as long as it should be, and no echo.
bool IsBeyondDoubt(std::string_view reply) {
  return reply.size() == IdentitySize && reply.front() != IdentifyCommand &&
         reply.find(SyncByte) == std::string_view::npos;
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
  line.Opened(Now());
  return 1;
}

bool UnitLink::CloseCommPort() {
  if (CommControl.IsOpen()) {
    const bool unitIsThere = line.UnitIsThere();
    if (SendSyncByte(CloseSyncTimeoutMs) == LinkTimeout && unitIsThere)
      LastSync = AwaitEcho(static_cast<int>(LatestAnswer.count()), LatestAnswer);
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
  const auto silence = line.UnitIsThere() ? LatestAnswer : Silence;
  ClearCommBuffers();
  SendCommString(CommHandle, {&SyncByte, 1});
  line.SyncSent(Now());
  return LastSync = AwaitEcho(timeoutMs, silence);
}

LinkResult UnitLink::AwaitEcho(int timeoutMs, std::chrono::milliseconds silence) {
  const auto came = [this] { return CommControl.BytesWaiting() >= 1; };
  if (!WaitUntil(line.LastAsked(), timeoutMs, came, silence)) return LinkTimeout;
  const std::string echo = CommControl.ReadInput();
  line.Heard(echo, Now());
  return echo.ends_with(SyncByte) ? LinkAck : LinkTrue;
}

bool UnitLink::ReadUntilQuiet(std::string& rest, std::chrono::milliseconds quiet) {
  return WaitUntil(Now(), LongestUnrestMs, [&] {
    // What had come by `now` is seen, however long the program was held up before it; what is read may have come
    // since.
    const auto now = Now();
    LetEventsRun();
    const std::string bytes = CommControl.ReadInput();
    line.Heard(bytes, Now());
    rest += bytes;
    return line.IsQuiet(now, quiet);
  });
}

LinkResult UnitLink::ReadAnswer(char command, int timeoutMs, std::string& reply, const std::function<bool()>& whole) {
  std::string stale;
  reply.clear();
  if (!ReadUntilQuiet(stale)) return LinkTimeout;
  SendCommString(CommHandle, {&command, 1});
  line.CommandSent(Now());
  const bool came = WaitUntil(Now(), timeoutMs, [&] {
    const std::string bytes = CommControl.ReadInput();
    if (!bytes.empty()) line.HeardAnswer(Now());
    reply += bytes;
    return whole();
  });
  if (came) line.Answered(Now());
  return came ? LinkTrue : LinkTimeout;
}

LinkResult UnitLink::ReadUnitIdentity(int timeoutMs, std::string& reply) {
  const auto start = Now();
  std::string former;
  for (int asked = 1; asked <= MostIdentities; ++asked, former = reply) {
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(Now() - start).count();
    const int left = timeoutMs - static_cast<int>(passed);
    if (ReadAnswer(IdentifyCommand, left, reply, [&] { return reply.size() >= IdentitySize; }) != LinkTrue)
      return LinkTimeout;
    if (IsBeyondDoubt(reply)) break;
    // Echoes of sync bytes may stand in front; what follows tells them from an identity that begins with 0xFF.
    ReadUntilQuiet(reply);
    reply.erase(0, EchoesInFront(reply, IdentitySize));
    if (IsBeyondDoubt(reply) || reply == former) break;
  }
  const std::string_view identity = reply;
  UnitModel = TrimBlanks(ReplyToText(identity.substr(2, 7)));
  UnitFirmwareVersion = LeadingNumber(ReplyToText(identity.substr(9, 4)));
  return LinkTrue;
}

bool UnitLink::ProbeCommPort(int portNumber) {
  openFailure.reset();
  try {
    CommControl.SetPortNumber(portNumber);
    CommControl.Open();
  } catch (const PortError& error) {
    openFailure = error;
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

bool UnitLink::WaitUntil(std::chrono::nanoseconds start, int timeoutMs, const std::function<bool()>& enough,
                         std::chrono::milliseconds silence) {
  while (true) {
    const bool timedOut = Now() - start > std::chrono::milliseconds(timeoutMs);
    const bool done = enough();
    if (done || timedOut || CommControl.Failure()) return done && !timedOut;
    if (StopRequested() && Now() - std::max(start, line.LastHeard()) >= silence) return false;
    timing.LetEventsRun(PollPause);
  }
}

std::optional<PortError> UnitLink::PortFailure() const { return openFailure ? openFailure : CommControl.Failure(); }

std::string ReplyToText(std::string_view reply) { return std::string(reply); }

}  // namespace chanplan
