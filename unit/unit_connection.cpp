#include "unit/unit_connection.h"

#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

constexpr double FirstCompatibleFirmware = 3.0;

// `reply` is what came of the identity.
ConnectRefusal TryToConnect(UnitLink& link, std::string& reply) {
  if (link.OpenCommPort(link.CommPort) != 1) return ConnectRefusal::PortNotOpened;
  if (link.ReadUnitIdentity(IdentityTimeoutMs, reply) != LinkTrue || IsSentBack(reply))
    return ConnectRefusal::NoProperResponse;
  if (!IsCompatibleUnit(link.UnitModel, link.UnitFirmwareVersion)) return ConnectRefusal::NotCompatible;
  return ConnectRefusal::None;
}

std::string_view RefusalText(ConnectRefusal refusal) {
  switch (refusal) {
    case ConnectRefusal::None:
      break;
    case ConnectRefusal::PortNotOpened:
      return "Failed to open a connection with an Orvenda test unit.";
    case ConnectRefusal::NoProperResponse:
      return "Failed to get a proper response from the connected Orvenda test unit.";
    case ConnectRefusal::NotCompatible:
      return "Unit firmware version is not compatible with this application.";
  }
  return {};
}

std::string RefusalReason(const UnitLink& link, ConnectRefusal refusal, std::string_view reply) {
  if (const auto failure = link.PortFailure()) return failure->what();
  if (refusal != ConnectRefusal::NoProperResponse) return std::string(RefusalText(refusal));
  if (IsSentBack(reply)) return std::string(SentBackText);
  if (reply.empty() && link.IsNoisy())
    return "the unit sends without being asked: wait until it has ended, or switch it off and on";
  if (reply.empty())
    return "no unit answered within 10 s: check that it is switched on and that the cable sits; after an upload that "
           "was broken off, switch it off and on";
  return "incomplete answer, " + std::to_string(reply.size()) + " of " + std::to_string(IdentitySize) +
         " bytes: check that the cable sits";
}

}  // namespace

bool IsSentBack(std::string_view reply) {
  return reply.starts_with(IdentifyCommand) && (reply.size() == 1 || reply.size() == 1 + IdentitySize);
}

bool IsCompatibleUnit(std::string_view model, double firmwareVersion) {
  return (model.ends_with('D') && firmwareVersion >= FirstCompatibleFirmware) || model == "QX4471C";
}

ConnectOutcome ConnectToUnit(UnitLink& link) {
  std::string reply;
  const ConnectRefusal refusal = TryToConnect(link, reply);
  const std::string reason = RefusalReason(link, refusal, reply);
  link.CloseCommPort();
  if (refusal == ConnectRefusal::None) return {};
  return {refusal, std::string(RefusalText(refusal)) + "\r\n\r\nThe requested operation has been aborted.", reason};
}

}  // namespace chanplan
