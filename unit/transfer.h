// Moving whole tables between a document and the unit.
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

/// A document's table as transfers need it: the rows, and the word that a download brings and an
/// upload takes back to the unit first.
struct UnitTable {
  SignalStandardTable Table;
  std::uint16_t UnitTableTag = 0;
};

/// Reads the unit's table into `document`. LinkTrue; LinkTimeout when the reply was not complete in
/// 30000 ms, which leaves `document` as it was; LinkFalse when the unit sent more than 200 records,
/// of which the first 200 are kept.
LinkResult Query_Chanplans(UnitLink& link, UnitTable& document, TransferProgress& progress);

/// Writes the table of `document` into the unit, one byte a millisecond. LinkTrue when all bytes
/// were sent; LinkFalse when the port broke on the way, or when the program was held up between two
/// bytes for so long that the unit may take the rest for commands. A tag of 0 becomes 100 and stays so.
/// Throws WireMisfit, with nothing sent, when a value does not fit.
LinkResult UploadChanplans(UnitLink& link, UnitTable& document, TransferProgress& progress);

enum class TransferDirection { Download, Upload };

std::string_view TransferTitle(TransferDirection direction);

struct TransferOutcome {
  bool UnitAnswered = false;      ///< the unit identified itself
  bool Misfit = false;            ///< a value does not fit, so the unit was not asked
  bool Aborted = false;           ///< the user had asked to stop before the table was moved
  LinkResult Result = LinkFalse;  ///< of moving the table
  /// What to tell the user, UTF-8: no answer, a value that does not fit, a port that broke, an upload that
  /// was held up. Otherwise empty, also when the unit's table did not arrive in time.
  std::string Message;
};

/// Opens the port, identifies the unit and moves the table, unless `abortRequested` says by then
/// that the user wants to stop. The port is left open for FinishTransfer. A table to be uploaded
/// whose values do not fit is refused before the port is touched.
TransferOutcome RunTransfer(UnitLink& link, TransferDirection direction, UnitTable& document,
                            TransferProgress& progress, const std::function<bool()>& abortRequested);

/// Ends the exchange with the sync byte where the unit had answered, and closes the port in any
/// case. The result is that of the sync byte; LinkTimeout when none was sent.
LinkResult FinishTransfer(UnitLink& link, const TransferOutcome& outcome);

}  // namespace chanplan
