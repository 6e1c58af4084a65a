// The byte link between the editor and the handheld unit.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "unit/port_object.h"
#include "unit/unit_line.h"

namespace chanplan {

inline constexpr std::size_t IdentitySize = 13;  ///< bytes
/// A unit that is heard at shorter intervals is not silent.
inline constexpr std::chrono::milliseconds Silence(500);

/// Results of the link's operations.
enum LinkResult : std::int16_t {
  LinkTrue = -1,      ///< the operation completed
  LinkFalse = 0,      ///< it did not, and no byte is to blame
  LinkAck = 100,      ///< the unit echoed the sync byte
  LinkTimeout = 101,  ///< the expected bytes did not arrive in time
  LinkUnrest = 102,   ///< bytes came that nothing had asked for
};

/// What the link needs of the world around it. Tests give it a clock that they move by hand.
struct LinkTiming {
  /// Time since some fixed moment; never goes back.
  std::function<std::chrono::nanoseconds()> Now;
  /// Handles the pending events, then may give the processor away until `longest` has passed since the call.
  std::function<void(std::chrono::nanoseconds longest)> LetEventsRun;
};

/// The serial connection. It is opened for one transfer and closed at its end; its state lives on.
///
/// No operation shows a message or throws. Once the port is open its errors are passed over, so
/// that a half-working port still yields a result; a port that is gone (`PortFailure`) ends waits
/// early, as nothing can arrive any more.
class UnitLink {
 public:
  UnitLink(PortObject& commControl, LinkTiming linkTiming);

  PortObject& CommControl;
  std::intptr_t CommHandle = 0;   ///< the operating-system handle of the port opened last
  std::int16_t CommPort = 1;      ///< the chosen port, 1 = COM1
  std::string BaudRate = "9600";  ///< the chosen speed; opening the port sets it to "9600"

  std::string UnitModel;              ///< of the unit that answered last
  double UnitFirmwareVersion = 0;     ///< of the unit that answered last
  LinkResult LastSync = LinkTimeout;  ///< what came of the sync byte that was sent last

  /// 1 when the port was opened, otherwise 0 and `PortFailure` says why. The link always runs at
  /// 9600 baud: the units know no other speed, whatever was chosen.
  std::int16_t OpenCommPort(int portNumber);
  /// Sends the sync byte, with 500 ms for its echo, and closes the port. A unit that has answered gets
  /// until LatestAnswer for it: whoever opens the port next shall not hear the echo.
  bool CloseCommPort();
  bool ClearCommBuffers();
  /// Sends `text` byte by byte with a pause of at least 1 ms behind each.
  bool SendCommString(std::intptr_t handle, std::string_view text);
  /// LinkAck, LinkTimeout, or LinkTrue when the reply did not end in the sync byte.
  LinkResult SendSyncByte(int timeoutMs);
  /// Asks the unit who it is: LinkTrue with `reply`, `UnitModel` and `UnitFirmwareVersion`, or LinkTimeout
  /// with what came of the reply. What an echo may be a part of is believed when the unit says it twice.
  LinkResult ReadUnitIdentity(int timeoutMs, std::string& reply);
  /// Whether the port could be opened; otherwise `PortFailure` says why not.
  bool ProbeCommPort(int portNumber);
  /// Waits while events run; returns the milliseconds that passed.
  std::int32_t DelayMs(std::int16_t milliseconds);
  void LetEventsRun();

  /// Waits until nothing came for `quiet` and reads what still comes by then. False when the line does not
  /// become quiet: the port is gone, the user wants to stop, or bytes come and come.
  bool ReadUntilQuiet(std::string& rest, std::chrono::milliseconds quiet = QuietTime);
  /// Sends `command` on a quiet line and gathers its answer in `reply` until it is `whole`: LinkTrue, or
  /// LinkTimeout. Nothing is sent on a line that does not become quiet.
  LinkResult ReadAnswer(char command, int timeoutMs, std::string& reply, const std::function<bool()>& whole);

  /// Whether the user wants to stop. It ends the waits for a unit that has been silent for half a second;
  /// one that has answered gets until LatestAnswer for an echo.
  std::function<bool()> StopRequested = [] { return false; };

  /// Waits until `enough` says so, letting events run: false when more than `timeoutMs` have
  /// passed since `start`, when the port is gone, or when the user wants to stop and nothing came for
  /// `silence`.
  bool WaitUntil(std::chrono::nanoseconds start, int timeoutMs, const std::function<bool()>& enough,
                 std::chrono::milliseconds silence = Silence);
  std::chrono::nanoseconds Now() const { return timing.Now(); }
  /// Whether bytes that nothing had asked for came until just now.
  bool IsNoisy() const { return Now() - line.LastHeard() < Silence; }
  /// Whether an echo that came now may be one that another program asked for.
  bool MayHearOthers() const { return line.MayHearOthers(Now()); }

  /// Why the port could not be opened, or what broke it since.
  std::optional<PortError> PortFailure() const;

 private:
  LinkResult AwaitEcho(int timeoutMs, std::chrono::milliseconds silence);

  LinkTiming timing;
  UnitLine line;
  std::optional<PortError> openFailure;
};

/// A text cut from a unit's reply. Texts are single bytes throughout, so nothing is left to widen.
std::string ReplyToText(std::string_view reply);

}  // namespace chanplan
