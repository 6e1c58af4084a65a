// A line to a unit that is neither sound nor patient: what comes, when it comes and what breaks stands in the input.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/fuzz_target.h"
#include "tests/unit/hand_driven_link.h"
#include "unit/wire_encoding.h"

namespace chanplan::fuzzing {

using namespace std::chrono_literals;

/// The input, two bytes about the program and then what the unit says: at first unasked, then upon each byte that it
/// hears. That is a number of chunks, modulo 4, each with its delay, its length and how often it is repeated, a byte
/// each, and its bytes. Where the input ends, the unit falls silent.
class ScriptedLine : public testing::HandDrivenLink {
 public:
  struct Arrival {
    std::chrono::nanoseconds Time;
    std::string Bytes;
  };

  explicit ScriptedLine(std::string_view script) : left(script) {
    const int program = TakeByte();
    const std::chrono::nanoseconds step = Steps[static_cast<std::size_t>(program) % Steps.size()];
    Clock.Advance = [step](std::chrono::nanoseconds longest) { return longest == 0ns ? Moment : step; };
    const int fault = TakeByte();
    if (fault % 16 > 0) Port.BreaksAfterBytes = static_cast<std::size_t>(fault % 16);
    if (fault / 16 > 0) stopAt = (fault / 16) * 1s;
    Link.StopRequested = [this] { return StopWanted(); };
    for (const testing::DelayedBytes& chunk : TakeAnswer())
      Port.Arrive(chunk.Bytes, std::chrono::milliseconds(chunk.DelayMs));
    Port.Script = [this](std::string_view) { return TakeAnswer(); };
  }

  bool StopWanted() const { return Clock.Time >= stopAt; }

  /// When `byte` was sent last.
  std::chrono::nanoseconds LastSent(char byte) const {
    std::chrono::nanoseconds time = -1ns;
    for (const testing::SentByte& sent : Port.Sent)
      if (sent.Byte == byte) time = sent.Time;
    return time;
  }
  std::ptrdiff_t TimesSent(char byte) const { return std::ranges::count(Port.SentBytes(), byte); }

  /// All that came, or was still on its way, after `byte` was sent last, in its order.
  std::vector<Arrival> CameAfter(char byte) const {
    std::vector<Arrival> came;
    for (const Arrival& arrival : arrivals)
      if (arrival.Time > LastSent(byte) - Moment) came.push_back(arrival);
    std::ranges::stable_sort(came, {}, &Arrival::Time);
    return came;
  }

  /// What holds of every conversation that is over, with `commands` among those that may be sent.
  void CheckConversation(std::string_view commands, std::chrono::seconds longest) const {
    Require(!Port.IsOpen(), "the port is closed in the end");
    Require(Clock.Time <= longest, "a conversation comes to its end");
    for (const testing::SentByte& sent : Port.Sent) {
      if (sent.Byte == SyncByte) continue;
      Require(commands.find(sent.Byte) != std::string_view::npos, "nothing else is said to the unit");
      Require(std::ranges::none_of(arrivals,
                                   [&](const Arrival& arrival) {
                                     const auto before = sent.Time - arrival.Time;
                                     return before > 1ms && before < QuietTime - 1ms;
                                   }),
              "a command is sent on a quiet line");
    }
  }

 private:
  // How long the program is away from the port at a time.
  static constexpr std::array<std::chrono::milliseconds, 4> Steps = {4ms, 16ms, 45ms, 700ms};
  static constexpr std::chrono::nanoseconds Moment = 10us;  // what handling events takes when there are none
  static constexpr std::size_t MostRepeated = 12000;        // bytes, more than a full table

  int TakeByte() {
    if (left.empty()) return 0;
    const char byte = left.front();
    left.remove_prefix(1);
    return static_cast<unsigned char>(byte);
  }

  // Milliseconds one by one where answers are due, up to beyond the longest waits.
  static int DelayOf(int byte) { return byte < 128 ? byte : (byte - 127) * 100; }

  std::vector<testing::DelayedBytes> TakeAnswer() {
    std::vector<testing::DelayedBytes> chunks;
    for (int number = TakeByte() % 4; number > 0; --number) {
      const int delayMs = DelayOf(TakeByte());
      const auto length = static_cast<std::size_t>(TakeByte());
      const int repeated = TakeByte();
      const std::string_view bytes = left.substr(0, length);
      left.remove_prefix(bytes.size());
      std::string chunk(bytes);
      for (int time = 0; time < repeated && chunk.size() < MostRepeated; ++time) chunk += bytes;
      if (chunk.empty()) continue;
      arrivals.push_back({Clock.Time + std::chrono::milliseconds(delayMs), chunk});
      chunks.push_back({std::move(chunk), delayMs});
    }
    return chunks;
  }

  std::string_view left;
  std::chrono::nanoseconds stopAt = std::chrono::nanoseconds::max();
  std::vector<Arrival> arrivals;  // in the order in which they were sent
};

}  // namespace chanplan::fuzzing
