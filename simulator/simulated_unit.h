// A handheld unit without hardware: what it holds, what it answers, and how it can misbehave.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/signal_standard_table.h"

namespace chanplan {

/// Ways in which a unit, its cable or its line can fail.
enum class Fault {
  None,
  Silent,
  SilentAfterIdentify,
  TruncateReply,
  Garbage,
  WrongCount,
  TooMany,
  DropEveryNthByte,
  Slow,
  LateEcho,
  Echo,
  OffInUpload,
  HangUp,
};

struct FaultName {
  std::string_view Name;
  Fault Kind;
  std::string_view Words;  ///< for people who choose one
};
inline constexpr std::array<FaultName, 13> FaultNames = {{
    {"none", Fault::None, "behaves"},
    {"silent", Fault::Silent, "answers nothing"},
    {"silent-after-identify", Fault::SilentAfterIdentify, "answers one identification and nothing after it"},
    {"truncate-reply", Fault::TruncateReply, "sends the first half of its table"},
    {"garbage", Fault::Garbage, "sends noise in place of its table and of the sync byte"},
    {"wrong-count", Fault::WrongCount, "announces one record more than it sends"},
    {"too-many", Fault::TooMany, "announces and sends 201 records, more than a table can hold"},
    {"drop-every-nth-byte", Fault::DropEveryNthByte, "loses bytes in both directions, see --nth"},
    {"slow", Fault::Slow, "answers 2 s late and at half the speed"},
    {"late-echo", Fault::LateEcho, "echoes the sync byte 1.5 s late, other answers overtake it"},
    {"echo", Fault::Echo, "sends every byte back before it answers"},
    {"off-in-upload", Fault::OffInUpload, "is switched off in the middle of an upload, and stays off"},
    {"hang-up", Fault::HangUp, "hangs up in the middle of the first table that is moved, and ends"},
}};

struct SimulatedUnitOptions {
  std::string Model = "QX4471C";  ///< up to 7 characters
  std::string Firmware = "3.00";  ///< up to 4 characters
  SignalStandardTable Table{};    ///< what it holds at start
  std::uint16_t Tag = 100;        ///< of this table
  Fault Misbehaviour = Fault::None;
  int FaultFrom = 1;       ///< the command, counted from 1, from which on it misbehaves
  int DropInterval = 100;  ///< the n of DropEveryNthByte
};

/// The unit as a machine of received bytes: no time, no terminal.
class SimulatedUnit {
 public:
  static constexpr std::size_t ModelSize = 7;     ///< characters
  static constexpr std::size_t FirmwareSize = 4;  ///< characters

  using TraceWriter = std::function<void(const std::string& line)>;

  /// `traceWriter` gets a line (UTF-8) for everything that happens. Throws WireMisfit when the table does not fit.
  SimulatedUnit(const SimulatedUnitOptions& unitOptions, TraceWriter traceWriter);

  /// Takes bytes from the line and returns the reply to them.
  std::string Receive(std::string_view bytes);

  /// Takes the echoes that are to be sent late, behind the reply of Receive.
  std::string TakeLateEchoes();

  /// Whether it misbehaves in this way by now.
  bool Has(Fault fault) const { return options.Misbehaviour == fault && commands >= options.FaultFrom; }

  /// Tells the unit that nothing came for a while, or that nobody is there any more: it forgets an upload that has
  /// not become complete.
  void LineIsQuiet();
  /// Whether it waits for the rest of an upload.
  bool ReceivesTable() const { return receivesTable; }

  /// The table it holds, names as they came over the wire.
  SignalStandardTable Table() const;
  /// Uploads that arrived whole.
  int Uploads() const { return uploads; }
  /// The line is to be hung up once the reply has been sent.
  bool HangsUp() const { return hangsUp; }

 private:
  void ReceiveByte(char byte, std::string& reply);
  void ReceiveCommand(char command, std::string& reply);
  void ReceiveTableByte(char byte);
  std::string TableReply();
  std::string IdentityReply() const;
  bool LosesByte(int command);
  void SwitchOff();
  void TraceBytes();
  void Trace(const std::string& event);

  SimulatedUnitOptions options;
  TraceWriter writeTrace;
  std::string memory;  // the table as it travels: header and records
  std::string upload;  // what has come of the table that is being received
  std::string lateEchoes;
  std::string untracedBytes;
  bool receivesTable = false;
  bool identified = false;
  bool hangsUp = false;
  bool off = false;
  int commands = 0;
  int uploads = 0;
  int bytesOnLine = 0;
};

}  // namespace chanplan
