// Which bytes may still be on their way from the unit, and whom they answer.
#pragma once

#include <chrono>
#include <cstddef>
#include <string_view>

namespace chanplan {

/// A line on which nothing came for so long is quiet: even from a unit at half the speed bytes follow
/// each other within 2 ms, and adapters hand them over every 16 ms.
inline constexpr std::chrono::milliseconds QuietTime(40);
/// How long after the byte that asked for it an answer may still come. What is later is taken for lost.
inline constexpr std::chrono::milliseconds LatestAnswer(2500);

/// The state of the line, from the moments at which bytes were sent and heard; README.md has the states
/// in a table. It rests on one thing: the unit answers in the order in which it was asked.
class UnitLine {
 public:
  using Time = std::chrono::nanoseconds;

  /// The port was opened: what was sent before it, by whatever program, may still be answered.
  void Opened(Time now);
  /// A byte that the unit answers was sent.
  void CommandSent(Time now);
  void SyncSent(Time now);
  /// The last command's answer is whole, and so is everything that was asked for before it.
  void Answered(Time now);
  /// Bytes came that are no part of a command's answer.
  void Heard(std::string_view bytes, Time now);
  /// A part of the awaited answer came.
  void HeardAnswer(Time now) { lastHeard = now; }

  /// Whether nothing is on its way, so that whatever comes next answers what is sent next: nothing came
  /// for `quiet`.
  bool IsQuiet(Time now, Time quiet = QuietTime) const;
  /// Whether an echo that came at `now` may be one that another program asked for before the port was opened.
  bool MayHearOthers(Time now) const { return now - openedAt <= LatestAnswer; }
  /// Whether the unit answers since the port was opened, and all it was asked.
  bool UnitIsThere() const { return answeredSinceOpened && !Owes(); }
  Time LastHeard() const { return lastHeard; }
  Time LastAsked() const { return lastAsked; }

 private:
  bool Owes() const { return owesAnswer || owedEchoes > 0; }

  Time openedAt{};
  Time lastHeard{};
  Time lastAsked{};
  int owedEchoes = 0;
  bool owesAnswer = false;
  bool answeredSinceOpened = false;
};

/// How many bytes in front of `answer`, of which `size` bytes are the answer itself, are echoes of
/// sync bytes that were sent before it was asked for. An answer that begins with 0xFF is no longer
/// than its size, so none of it is taken.
std::size_t EchoesInFront(std::string_view answer, std::size_t size);

}  // namespace chanplan
