// Asks a unit that answers any bytes at any time who it is.
#include <cmath>
#include <string>

#include "core/number_picture.h"
#include "tests/fuzz/scripted_line.h"
#include "unit/unit_connection.h"

namespace chanplan::fuzzing {
namespace {

constexpr std::chrono::seconds LongestIdentification = 60s;

void CheckUnit(const UnitLink& link) {
  Require(link.UnitModel.size() <= 7, "a model has its place in the answer");
  Require(link.UnitModel == link.UnitModel.substr(0, link.UnitModel.find_last_not_of(' ') + 1) &&
              !link.UnitModel.starts_with(' '),
          "a model has no blanks around it");
  Require(std::isfinite(link.UnitFirmwareVersion), "a firmware version is a number");
  Require(!FormatNumber(link.UnitFirmwareVersion, "#0.00").empty(), "a firmware version can be shown");
}

// Whether `reply` is what came first, echoes in front of it aside.
bool CameAs(const std::vector<ScriptedLine::Arrival>& came, const std::string& reply) {
  std::string bytes;
  for (const ScriptedLine::Arrival& arrival : came) bytes += arrival.Bytes;
  for (std::size_t skipped = 0; skipped <= bytes.size(); ++skipped) {
    if (bytes.compare(skipped, reply.size(), reply) == 0) return true;
    if (skipped < bytes.size() && bytes[skipped] != SyncByte) return false;
  }
  return false;
}

// Whether an answer is believed that came only once.
bool IsPlain(const std::string& reply) {
  return reply.size() == IdentitySize && !reply.starts_with(IdentifyCommand) &&
         reply.find(SyncByte) == std::string::npos;
}

void CheckReading(ScriptedLine& line) {
  UnitLink& link = line.Link;
  link.UnitModel = "former";
  link.OpenCommPort(link.CommPort);
  std::string reply;
  const LinkResult result = link.ReadUnitIdentity(IdentityTimeoutMs, reply);
  Require(result == LinkTrue || result == LinkTimeout, "a unit is identified in time or not");
  if (result == LinkTrue) {
    Require(reply.size() >= IdentitySize, "an identity is complete");
    Require(CameAs(line.CameAfter(IdentifyCommand), reply), "an identity is what the unit said when asked last");
    Require(IsPlain(reply) || line.TimesSent(IdentifyCommand) > 1, "what an echo may be part of is asked for again");
    Require(std::string_view(reply).substr(2, 7).find(link.UnitModel) != std::string_view::npos,
            "a model is what stands in its place");
    CheckUnit(link);
  } else {
    Require(link.UnitModel == "former", "a unit that did not answer is not known");
  }
  link.CloseCommPort();
}

void CheckConnecting(ScriptedLine& line) {
  const ConnectOutcome outcome = ConnectToUnit(line.Link);
  Require(outcome.Accepted() == outcome.Message.empty(), "a refusal is told");
  Require(outcome.Accepted() == outcome.Reason.empty(), "a refusal has a reason");
  Require(outcome.Reason.find('\n') == std::string::npos, "a reason is a line");
  CheckUnit(line.Link);
  if (!outcome.Accepted()) return;
  Require(line.Link.UnitModel == "QX4471C" || line.Link.UnitFirmwareVersion >= 3, "an accepted unit is not too old");
  Require(line.TimesSent(IdentifyCommand) > 0, "a unit is not known before it is asked");
}

}  // namespace

void FuzzIdentity(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = TakeInput(data, size);
  if (input.empty()) return;
  ScriptedLine line(input.substr(1));
  if (input.front() % 2 == 0)
    CheckReading(line);
  else
    CheckConnecting(line);
  Require(line.TimesSent(IdentifyCommand) <= 3, "a unit is asked three times at most");
  line.CheckConversation({&IdentifyCommand, 1}, LongestIdentification);
}

}  // namespace chanplan::fuzzing
