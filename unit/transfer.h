// Moving whole tables from and to the unit.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/signal_standard_table.h"
#include "unit/unit_link.h"

namespace chanplan {

/// Where a transfer shows how far it is. The defaults show nothing.
class TransferProgress {
 public:
  virtual ~TransferProgress() = default;
  virtual void SetLabel(std::string_view /*text*/) {}
  virtual void SetCaption(std::string_view /*text*/) {}
  virtual void SetRange(int /*low*/, int /*high*/) {}
  virtual void SetValue(int /*value*/) {}
};

/// A table as a unit holds it: the rows, and the word that a download brings and an upload takes back
/// to the unit first.
struct UnitTable {
  SignalStandardTable Table;
  std::uint16_t UnitTableTag = 0;
};

/// The table in `message`, header and records, as a unit sends it: sub-bands take their standard's name.
/// False when there are more than 200 records; the first 200 are kept.
bool DecodeTable(std::string_view message, UnitTable& held);

/// The table that a unit has once it took `message`, as it is read back from it.
SignalStandardTable SentTable(std::string_view message);

/// Reads the unit's table into `held`. LinkTrue; LinkTimeout when the reply was not complete in
/// 30000 ms and LinkUnrest when more came than it announces, also when asked again, which both leave `held` as it was;
/// LinkFalse when the unit sent more than 200 records, of which the first 200 are kept.
LinkResult Query_Chanplans(UnitLink& link, UnitTable& held, TransferProgress& progress);

/// The tag that a table goes out with, and keeps: its own, or 100 when it never came from a unit.
std::uint16_t UploadTag(std::uint16_t unitTableTag);

/// Writes a table into the unit, one byte a millisecond. `message` is what EncodeTable makes of it.
/// LinkTrue when all bytes were sent; LinkFalse when the port broke on the way, or when the program was
/// held up between two bytes for so long that the unit may take the rest for commands; LinkUnrest when
/// nothing was sent as the line did not become quiet.
LinkResult UploadChanplans(UnitLink& link, std::string_view message, TransferProgress& progress);

struct TransferOutcome {
  bool UnitAnswered = false;      ///< the unit identified itself
  bool Aborted = false;           ///< the user had asked to stop before the table was moved
  LinkResult Result = LinkFalse;  ///< of moving the table
  /// What to tell the user, UTF-8: no answer, a port that broke, a table that is not whole. Otherwise empty,
  /// also when the unit's table did not arrive in time.
  std::string Message;

  /// Whether moving the table was begun.
  bool Moved() const { return UnitAnswered && !Aborted; }
  /// Whether the whole of it was.
  bool Done() const { return Moved() && Result == LinkTrue; }
};

/// Opens the port, identifies the unit and reads its table into `held`, unless `abortRequested` says by
/// then that the user wants to stop. The port is left open for FinishTransfer.
TransferOutcome RunDownload(UnitLink& link, UnitTable& held, TransferProgress& progress,
                            const std::function<bool()>& abortRequested);

/// The same the other way: writes the table that EncodeTable made `message` of into the unit.
TransferOutcome RunUpload(UnitLink& link, std::string_view message, TransferProgress& progress,
                          const std::function<bool()>& abortRequested);

/// Ends the exchange with the sync byte where the unit had answered, and closes the port in any
/// case. The result is that of the sync byte; LinkTimeout when none was sent. Where its echo may have been one that
/// another program asked for, it is that of the closing sync byte, too: two echoes do not come from one.
LinkResult FinishTransfer(UnitLink& link, const TransferOutcome& outcome);

}  // namespace chanplan
