// A link without a wire and without waiting: a port that answers from a script, and a clock that
// only letting events run moves.
#pragma once

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "unit/port_object.h"
#include "unit/unit_link.h"

namespace chanplan::testing {

using namespace std::chrono_literals;

/// The clock of a link's timing, and a record of how its waits treat the rest of the world.
class HandDrivenClock {
 public:
  using Duration = std::chrono::nanoseconds;

  Duration Time{};
  Duration LastPass{};      ///< when events were let run last
  int Passes = 0;           ///< how often events were let run
  Duration GivenAway{};     ///< the processor time offered to others, all passes together
  Duration LongestPause{};  ///< the most that one pass offered
  /// How far a pass that may last for `longest` moves the clock.
  std::function<Duration(Duration longest)> Advance = [](Duration longest) {
    return std::max<Duration>(longest, 10us);
  };

  LinkTiming Timing() {
    return {[this] { return Time; }, [this](Duration longest) { LetEventsRun(longest); }};
  }

 private:
  void LetEventsRun(Duration longest) {
    ++Passes;
    GivenAway += longest;
    LongestPause = std::max(LongestPause, longest);
    Time += Advance(longest);
    LastPass = Time;
    // A wait that does not end has to fail its test instead of hanging it.
    if (Time > 1h) throw std::logic_error("a wait does not end");
  }
};

/// Bytes that arrive some time after the byte that they answer was sent.
struct DelayedBytes {
  std::string Bytes;
  int DelayMs = 0;
};

/// What a port sends back upon a byte: gets all bytes sent so far, the newest last.
using PortScript = std::function<std::vector<DelayedBytes>(std::string_view sent)>;

/// Answers every `byte` with `replies`, and nothing else.
inline PortScript AnswerTo(char byte, std::vector<DelayedBytes> replies) {
  return [byte, replies = std::move(replies)](std::string_view sent) {
    return sent.back() == byte ? replies : std::vector<DelayedBytes>();
  };
}

struct SentByte {
  char Byte;
  std::chrono::nanoseconds Time;
  std::intptr_t Handle;
};

/// A port that lives in memory. It writes down what is done to it.
class FakePort : public PortObject {
 public:
  explicit FakePort(const HandDrivenClock& portClock) : clock(portClock) {}

  // What a test decides.
  PortScript Script = [](std::string_view) { return std::vector<DelayedBytes>(); };
  std::string RefusedCall;  ///< this entry of `Calls`, or those that begin with it, fails
  std::intptr_t HandleWhenOpen = 77;
  std::size_t BreaksAfterBytes = std::string::npos;                     ///< as soon as so many were sent
  std::chrono::nanoseconds BreaksAt = std::chrono::nanoseconds::max();  ///< by the clock
  bool KeepsInputWhileClosed = false;                                   ///< as pseudo-terminals do
  bool ReadsWhileEventsRun = false;  ///< and not meanwhile, as the platform library's ports do
  void Arrive(const std::string& bytes, std::chrono::nanoseconds delay = {}) {
    incoming.emplace(clock.Time + delay, bytes);
  }

  // What the link did.
  std::vector<std::string> Calls;  ///< all but reading, looking and sending, such as "port number 1"
  std::vector<SentByte> Sent;
  const std::string& SentBytes() const { return sentBytes; }

  void SetPortNumber(int number) override { Call("port number " + std::to_string(number)); }
  void SetSettings(std::string_view settings) override { Call("settings " + std::string(settings)); }
  void SetReceiveBufferSize(std::size_t bytes) override { Call("receive buffer " + std::to_string(bytes)); }
  void SetTransmitBufferSize(std::size_t bytes) override { Call("transmit buffer " + std::to_string(bytes)); }
  void SetInputLength(int bytes) override { Call("input length " + std::to_string(bytes)); }
  void Open() override {
    Call("open");
    open = true;
  }
  void Close() override {
    Call("close");
    open = false;
    if (!KeepsInputWhileClosed) incoming.clear();
  }
  bool IsOpen() const override { return open; }
  std::size_t BytesWaiting() override {
    std::size_t waiting = 0;
    for (auto chunk = incoming.begin(); chunk != Arrived(); ++chunk) waiting += chunk->second.size();
    return waiting;
  }
  void DiscardReceived() override {
    Call("discard received");
    incoming.erase(incoming.begin(), Arrived());
  }
  void DiscardTransmitted() override { Call("discard transmitted"); }
  std::string ReadInput() override {
    std::string input;
    for (auto chunk = incoming.begin(); chunk != Arrived(); ++chunk) input += chunk->second;
    incoming.erase(incoming.begin(), Arrived());
    return input;
  }
  std::intptr_t Handle() const override { return open ? HandleWhenOpen : -1; }
  void TransmitCommChar(std::intptr_t handle, char byte) override {
    if (!open) Call("transmit while closed");
    if (!open || Broken()) return;
    Sent.push_back({byte, clock.Time, handle});
    sentBytes += byte;
    if (sentBytes.size() == BreaksAfterBytes) BreaksAt = clock.Time;
    for (const DelayedBytes& reply : Script(sentBytes)) Arrive(reply.Bytes, std::chrono::milliseconds(reply.DelayMs));
  }
  std::optional<PortError> Failure() const override {
    if (Broken()) return PortError("the cable was pulled");
    return std::nullopt;
  }

 private:
  using Incoming = std::multimap<std::chrono::nanoseconds, std::string>;

  void Call(const std::string& call) {
    Calls.push_back(call);
    if (!RefusedCall.empty() && call.starts_with(RefusedCall)) throw PortError("refused: " + RefusedCall);
  }
  bool Broken() const { return clock.Time >= BreaksAt; }
  Incoming::iterator Arrived() {
    const auto read = ReadsWhileEventsRun ? clock.LastPass : clock.Time;
    return open ? incoming.upper_bound(std::min(read, BreaksAt)) : incoming.begin();
  }

  const HandDrivenClock& clock;
  bool open = false;
  std::string sentBytes;
  Incoming incoming;  // by the time of arrival
};

/// A link with its port and its clock.
struct HandDrivenLink {
  HandDrivenClock Clock;
  FakePort Port{Clock};
  UnitLink Link{Port, Clock.Timing()};

  /// Opens the port; what has been written down so far is forgotten.
  void Open() {
    Link.OpenCommPort(Link.CommPort);
    Port.Calls.clear();
    Clock.Passes = 0;
    Clock.GivenAway = Clock.LongestPause = {};
  }
};

/// How long `operation` took by `clock`.
template <typename Operation>
std::chrono::nanoseconds Elapsed(const HandDrivenClock& clock, const Operation& operation) {
  const auto start = clock.Time;
  operation();
  return clock.Time - start;
}

}  // namespace chanplan::testing
