#include "unit/unit_connection.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/unit/fake_unit.h"
#include "tests/unit/hand_driven_link.h"

namespace chanplan::testing {
namespace {

constexpr std::string_view Aborted = "\r\n\r\nThe requested operation has been aborted.";

struct CompatibilityCase {
  const char* Model;  // as it stands in the seven bytes of the reply
  const char* Firmware;
  bool Accepted;
};

constexpr std::array CompatibilityCases = {
    CompatibilityCase{"XY1234D", "2.99", false}, CompatibilityCase{"XY1234D", "3.00", true},
    CompatibilityCase{"XY1234D", "3.01", true},  CompatibilityCase{"XY1234D", "9999", true},
    CompatibilityCase{"XY1234D", "    ", false}, CompatibilityCase{"XY1234D", "abcd", false},
    CompatibilityCase{"XY1234D", "-3.0", false}, CompatibilityCase{"XY1234d", "3.00", false},
    CompatibilityCase{"XY1234C", "3.00", false}, CompatibilityCase{"DXY1234", "3.00", false},
    CompatibilityCase{"AB12D  ", "3.00", true},  CompatibilityCase{"  AB12D", "3.00", true},
    CompatibilityCase{"D      ", "3.00", true},  CompatibilityCase{"       ", "3.00", false},
    CompatibilityCase{"QX4471C", "1.00", true},  CompatibilityCase{"QX4471C", "    ", true},
    CompatibilityCase{"QX4471C", "9.99", true},  CompatibilityCase{"qx4471c", "9.99", false},
    CompatibilityCase{"QX4471 ", "9.99", false}, CompatibilityCase{"QX4471B", "9.99", false},
    CompatibilityCase{"QX447D ", "2.00", false},
};

TEST(ConnectToUnit, AcceptsUnitsByModelAndFirmware) {
  for (const CompatibilityCase& unitCase : CompatibilityCases) {
    SCOPED_TRACE(std::string(unitCase.Model) + "/" + unitCase.Firmware);
    FakeUnit unit;
    unit.Identity = IdentityReply(unitCase.Model, unitCase.Firmware);
    HandDrivenLink rig;
    rig.Port.Script = unit.Script();
    const ConnectOutcome outcome = ConnectToUnit(rig.Link);
    EXPECT_EQ(outcome.Accepted(), unitCase.Accepted);
    EXPECT_EQ(outcome.Refusal, unitCase.Accepted ? ConnectRefusal::None : ConnectRefusal::NotCompatible);
    EXPECT_EQ(outcome.Message, unitCase.Accepted ? ""
                                                 : "Unit firmware version is not compatible with this application." +
                                                       std::string(Aborted));
    EXPECT_FALSE(rig.Port.IsOpen());
  }
}

TEST(ConnectToUnit, TalksOnceAndEndsWithTheSyncByte) {
  FakeUnit unit;
  HandDrivenLink rig;
  rig.Link.CommPort = 4;
  rig.Port.Script = unit.Script();
  EXPECT_TRUE(ConnectToUnit(rig.Link).Accepted());
  EXPECT_EQ(rig.Port.SentBytes(), "\x45\xFF");
  EXPECT_EQ(rig.Port.Calls.front(), "port number 4");
  EXPECT_EQ(rig.Port.Calls.back(), "close");
  EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
  EXPECT_EQ(rig.Link.UnitFirmwareVersion, 3.0);
}

TEST(ConnectToUnit, SaysThatThePortDidNotOpen) {
  struct Obstacle {
    std::int16_t CommPort;
    const char* RefusedCall;
  };
  for (const Obstacle& obstacle : {Obstacle{0, ""}, Obstacle{1, "open"}, Obstacle{1, "settings"}}) {
    SCOPED_TRACE(obstacle.RefusedCall);
    HandDrivenLink rig;
    rig.Link.CommPort = obstacle.CommPort;
    rig.Port.RefusedCall = obstacle.RefusedCall;
    const ConnectOutcome outcome = ConnectToUnit(rig.Link);
    EXPECT_FALSE(outcome.Accepted());
    EXPECT_EQ(outcome.Refusal, ConnectRefusal::PortNotOpened);
    EXPECT_EQ(outcome.Message, "Failed to open a connection with an Orvenda test unit." + std::string(Aborted));
    EXPECT_FALSE(rig.Port.IsOpen());
    EXPECT_EQ(rig.Port.SentBytes(), "");
  }
}

TEST(ConnectToUnit, GivesASilentUnitTenSeconds) {
  HandDrivenLink rig;
  const auto elapsed = Elapsed(rig.Clock, [&] {
    const ConnectOutcome outcome = ConnectToUnit(rig.Link);
    EXPECT_EQ(outcome.Refusal, ConnectRefusal::NoProperResponse);
    EXPECT_EQ(outcome.Message,
              "Failed to get a proper response from the connected Orvenda test unit." + std::string(Aborted));
  });
  EXPECT_EQ(rig.Port.SentBytes(), "\x45\xFF");
  EXPECT_GT(elapsed, 10000ms + 500ms) << "the identity and the sync byte";
  EXPECT_LT(elapsed, 10000ms + 500ms + 20ms + QuietTime);
  EXPECT_FALSE(rig.Port.IsOpen());
}

TEST(ConnectToUnit, TakesAnAnswerInItsLastMoment) {
  HandDrivenLink rig;
  rig.Port.Script = AnswerTo('E', {{IdentityReply("XY1234D", "3.00"), 9995}});
  EXPECT_TRUE(ConnectToUnit(rig.Link).Accepted());
}

TEST(ConnectToUnit, TakesAnIncompleteAnswerForNone) {
  HandDrivenLink rig;
  rig.Port.Script = AnswerTo('E', {{IdentityReply("XY1234D", "3.0"), 5}});
  EXPECT_EQ(ConnectToUnit(rig.Link).Refusal, ConnectRefusal::NoProperResponse);
  EXPECT_FALSE(rig.Port.IsOpen());
}

TEST(ConnectToUnit, NamesALineThatSendsBackWhatIsSent) {
  const std::string identity = IdentityReply("XY1234D", "3.00");
  for (const std::string& reply : {"E" + identity, std::string("E")}) {
    HandDrivenLink rig;
    rig.Port.Script =
        AnswerTo('E', {{reply.substr(0, 13), 5}, {reply.substr(std::min<std::size_t>(13, reply.size())), 7}});
    const ConnectOutcome outcome = ConnectToUnit(rig.Link);
    EXPECT_EQ(outcome.Refusal, ConnectRefusal::NoProperResponse);
    EXPECT_EQ(outcome.Reason, SentBackText);
  }
}

TEST(ConnectToUnit, TakesAnIdentityThatBeginsWithTheQuestionForWhatItIs) {
  HandDrivenLink rig;
  rig.Port.Script = AnswerTo('E', {{"E1XY1234D3.00", 5}});
  EXPECT_TRUE(ConnectToUnit(rig.Link).Accepted());
}

TEST(ConnectToUnit, DoesNotWaitForAPortThatBroke) {
  HandDrivenLink rig;
  rig.Port.BreaksAfterBytes = 1;
  const auto elapsed =
      Elapsed(rig.Clock, [&] { EXPECT_EQ(ConnectToUnit(rig.Link).Refusal, ConnectRefusal::NoProperResponse); });
  EXPECT_LT(elapsed, 20ms + QuietTime);
  EXPECT_FALSE(rig.Port.IsOpen());
}

TEST(ConnectToUnit, JudgesTheUnitAnewEveryTime) {
  FakeUnit unit;
  HandDrivenLink rig;
  rig.Port.Script = unit.Script();
  EXPECT_TRUE(ConnectToUnit(rig.Link).Accepted());
  unit.Identity = IdentityReply("XY1234D", "2.00");
  EXPECT_FALSE(ConnectToUnit(rig.Link).Accepted());
  unit.Identity = IdentityReply("QX4471C", "2.00");
  EXPECT_TRUE(ConnectToUnit(rig.Link).Accepted());
}

TEST(IsCompatibleUnit, NeedsTheWholeNameOfTheUnitThatComesWithAnyFirmware) {
  EXPECT_TRUE(IsCompatibleUnit("QX4471C", 0));
  EXPECT_FALSE(IsCompatibleUnit("QX4471C ", 0));
  EXPECT_FALSE(IsCompatibleUnit("AQX4471C", 0));
  EXPECT_FALSE(IsCompatibleUnit("", 3.0));
}

TEST(IsCompatibleUnit, DrawsTheLineAtFirmwareThree) {
  EXPECT_FALSE(IsCompatibleUnit("D", 2.9999999));
  EXPECT_TRUE(IsCompatibleUnit("D", 3.0));
}

TEST(ConnectToUnit, NamesAUnitThatDoesNotStopSending) {
  HandDrivenLink rig;
  for (int ms = 0; ms < 40000; ms += 10) rig.Port.Arrive("?", std::chrono::milliseconds(ms));
  const ConnectOutcome outcome = ConnectToUnit(rig.Link);
  EXPECT_EQ(outcome.Refusal, ConnectRefusal::NoProperResponse);
  EXPECT_EQ(outcome.Reason, "the unit sends without being asked: wait until it has ended, or switch it off and on");
}

}  // namespace
}  // namespace chanplan::testing
