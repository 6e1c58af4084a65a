// Connecting to a unit and deciding whether this editor may talk to it.
#pragma once

#include <string>
#include <string_view>

#include "unit/unit_link.h"

namespace chanplan {

inline constexpr int IdentityTimeoutMs = 10000;

/// Whether this editor works with a unit of this model and firmware: models that end in "D" from
/// firmware 3.00 on, and the QX4471C with any.
bool IsCompatibleUnit(std::string_view model, double firmwareVersion);

/// Whether `reply` to the question who the unit is begins with that question, as the line sends back what is sent.
bool IsSentBack(std::string_view reply);
inline constexpr std::string_view SentBackText =
    "the line sends back what is sent to it: switch the echo of the adapter off, or take out a plug that joins its "
    "pins";

enum class ConnectRefusal { None, PortNotOpened, NoProperResponse, NotCompatible };

struct ConnectOutcome {
  ConnectRefusal Refusal = ConnectRefusal::None;
  std::string Message;  ///< what to tell the user about a refusal, lines ended by CR LF
  std::string Reason;   ///< what lies behind it and what to do about it, a line (UTF-8)

  bool Accepted() const { return Refusal == ConnectRefusal::None; }
};

/// Opens the link's port, asks the unit who it is and closes the port again.
ConnectOutcome ConnectToUnit(UnitLink& link);

}  // namespace chanplan
