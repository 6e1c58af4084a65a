#include "unit/unit_link.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/unit/fake_unit.h"
#include "tests/unit/hand_driven_link.h"
#include "tests/unit/wire_bytes.h"

namespace chanplan::testing {
namespace {

using Calls = std::vector<std::string>;
using Duration = std::chrono::nanoseconds;

constexpr char SyncByte = '\xFF';

TEST(LinkResult, HasTheCodesThatItsUsersKnow) {
  EXPECT_EQ(static_cast<int>(LinkTrue), -1);
  EXPECT_EQ(static_cast<int>(LinkFalse), 0);
  EXPECT_EQ(static_cast<int>(LinkAck), 100);
  EXPECT_EQ(static_cast<int>(LinkTimeout), 101);
}

TEST(OpenCommPort, SetsThePortUpAndOpensIt) {
  HandDrivenLink rig;
  EXPECT_EQ(rig.Link.OpenCommPort(3), 1);
  EXPECT_EQ(rig.Port.Calls, (Calls{"port number 3", "settings 9600,N,8,1", "receive buffer 10000",
                                   "transmit buffer 10000", "input length 0", "open"}));
  EXPECT_TRUE(rig.Port.IsOpen());
  EXPECT_EQ(rig.Link.PortFailure(), std::nullopt);
  EXPECT_EQ(rig.Port.SentBytes(), "");
}

TEST(OpenCommPort, LeavesPortZeroUntouched) {
  HandDrivenLink rig;
  EXPECT_EQ(rig.Link.OpenCommPort(0), 0);
  EXPECT_EQ(rig.Port.Calls, Calls{});
  EXPECT_FALSE(rig.Port.IsOpen());
}

TEST(OpenCommPort, SaysWhyPortZeroIsNotOpened) {
  HandDrivenLink rig;
  EXPECT_EQ(rig.Link.OpenCommPort(0), 0);
  EXPECT_TRUE(rig.Link.PortFailure().has_value());
}

TEST(OpenCommPort, RunsAt9600BaudWhateverWasChosen) {
  for (const char* const chosen : {"", "9600", "19200", "38400", "57600", "115200"}) {
    SCOPED_TRACE(chosen);
    HandDrivenLink rig;
    rig.Link.BaudRate = chosen;
    EXPECT_EQ(rig.Link.OpenCommPort(1), 1);
    EXPECT_EQ(rig.Port.Calls.at(1), "settings 9600,N,8,1");
    EXPECT_EQ(rig.Link.BaudRate, "9600");
  }
}

TEST(OpenCommPort, GivesZeroAndTheReasonWhenAnyStepFails) {
  for (const char* const step :
       {"port number", "settings", "receive buffer", "transmit buffer", "input length", "open"}) {
    SCOPED_TRACE(step);
    HandDrivenLink rig;
    rig.Port.RefusedCall = step;
    EXPECT_EQ(rig.Link.OpenCommPort(1), 0);
    EXPECT_FALSE(rig.Port.IsOpen());
    EXPECT_TRUE(rig.Port.Calls.back().starts_with(step)) << "nothing may follow the failure";
    ASSERT_TRUE(rig.Link.PortFailure().has_value());
    EXPECT_EQ(rig.Link.PortFailure()->what(), "refused: " + std::string(step));
  }
}

TEST(OpenCommPort, ForgetsTheReasonOfAnEarlierFailure) {
  HandDrivenLink rig;
  rig.Port.RefusedCall = "open";
  EXPECT_EQ(rig.Link.OpenCommPort(1), 0);
  rig.Port.RefusedCall.clear();
  EXPECT_EQ(rig.Link.OpenCommPort(1), 1);
  EXPECT_EQ(rig.Link.PortFailure(), std::nullopt);
}

TEST(OpenCommPort, DoesNotOpenAnOpenPortAgain) {
  HandDrivenLink rig;
  rig.Link.OpenCommPort(1);
  rig.Port.Calls.clear();
  EXPECT_EQ(rig.Link.OpenCommPort(1), 1);
  EXPECT_EQ(rig.Port.Calls, (Calls{"port number 1", "settings 9600,N,8,1", "receive buffer 10000",
                                   "transmit buffer 10000", "input length 0"}));
}

TEST(OpenCommPort, ThrowsStaleInputAway) {
  HandDrivenLink rig;
  rig.Port.Arrive("left over");
  rig.Link.OpenCommPort(1);
  EXPECT_EQ(rig.Port.BytesWaiting(), 0u);
}

TEST(OpenCommPort, KeepsTheHandleOfTheOpenPort) {
  HandDrivenLink rig;
  rig.Port.HandleWhenOpen = 4711;
  rig.Link.OpenCommPort(1);
  EXPECT_EQ(rig.Link.CommHandle, 4711);
}

TEST(OpenCommPort, LetsEventsRunBetweenItsSteps) {
  HandDrivenLink rig;
  rig.Link.OpenCommPort(1);
  EXPECT_GE(rig.Clock.Passes, 4);
  EXPECT_EQ(rig.Clock.GivenAway, 0ns) << "there is nothing to wait for";
}

TEST(CloseCommPort, SendsTheSyncByteAndCloses) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Script = AnswerTo(SyncByte, {{"\xFF", 20}});
  EXPECT_LT(Elapsed(rig.Clock, [&] { EXPECT_TRUE(rig.Link.CloseCommPort()); }), 30ms);
  EXPECT_EQ(rig.Port.SentBytes(), "\xFF");
  EXPECT_EQ(rig.Port.Calls, (Calls{"discard received", "discard transmitted", "close"}));
  EXPECT_FALSE(rig.Port.IsOpen());
}

TEST(CloseCommPort, GivesASilentUnitHalfASecond) {
  HandDrivenLink rig;
  rig.Open();
  const Duration elapsed = Elapsed(rig.Clock, [&] { EXPECT_TRUE(rig.Link.CloseCommPort()); });
  EXPECT_GT(elapsed, 500ms);
  EXPECT_LT(elapsed, 510ms);
  EXPECT_FALSE(rig.Port.IsOpen());
}

TEST(CloseCommPort, ClosesABrokenPortWithoutWaitingForIt) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.BreaksAt = rig.Clock.Time;
  EXPECT_LT(Elapsed(rig.Clock, [&] { EXPECT_TRUE(rig.Link.CloseCommPort()); }), 10ms);
  EXPECT_FALSE(rig.Port.IsOpen());
}

TEST(CloseCommPort, HasNothingToDoOnAClosedPort) {
  HandDrivenLink rig;
  EXPECT_TRUE(rig.Link.CloseCommPort());
  EXPECT_EQ(rig.Port.Calls, Calls{});
  EXPECT_EQ(rig.Clock.Time, 0ns) << "nobody is there to wait for";
}

TEST(ClearCommBuffers, DiscardsInputThenOutput) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Arrive("noise");
  EXPECT_TRUE(rig.Link.ClearCommBuffers());
  EXPECT_EQ(rig.Port.Calls, (Calls{"discard received", "discard transmitted"}));
  EXPECT_EQ(rig.Port.BytesWaiting(), 0u);
}

TEST(SendCommString, OfNothingSendsNothing) {
  HandDrivenLink rig;
  rig.Open();
  EXPECT_TRUE(rig.Link.SendCommString(rig.Link.CommHandle, ""));
  EXPECT_EQ(rig.Port.SentBytes(), "");
  EXPECT_EQ(rig.Clock.Passes, 0);
}

TEST(SendCommString, SendsEveryByteInOrderThroughTheHandle) {
  const std::string all = Bytes({0x00, 0x4E, 0x7F, 0x80, 0xFF, 0x0D, 0x0A, 0x00});
  HandDrivenLink rig;
  rig.Open();
  EXPECT_TRUE(rig.Link.SendCommString(4711, all));
  EXPECT_EQ(rig.Port.SentBytes(), all);
  for (const SentByte& sent : rig.Port.Sent) EXPECT_EQ(sent.Handle, 4711);
}

TEST(SendCommString, LetsEventsRunForEveryByte) {
  HandDrivenLink rig;
  rig.Open();
  // One pass moves the clock by more than the pause, so none is needed for waiting.
  rig.Clock.Advance = [](Duration) { return 2ms; };
  rig.Link.SendCommString(1, "ABCD");
  EXPECT_EQ(rig.Clock.Passes, 1 + 4 * 2 + 1);
}

struct WakeUp {
  const char* Description;
  Duration (*Advance)(Duration longest);
};

constexpr std::array WakeUps = {
    WakeUp{"on time", [](Duration longest) { return std::max<Duration>(longest, 10us); }},
    WakeUp{"at once, whatever was asked for", [](Duration) { return Duration(3us); }},
    WakeUp{"after half the time", [](Duration longest) { return longest / 2 + 1us; }},
    WakeUp{"a little late", [](Duration longest) { return longest + 129us; }},
    WakeUp{"very late", [](Duration longest) { return longest + 15ms; }},
    WakeUp{"in odd steps", [](Duration) { return Duration(333333ns); }},
};

TEST(SendCommString, PausesAtLeastAMillisecondAfterEveryByte) {
  for (const WakeUp& wakeUp : WakeUps) {
    SCOPED_TRACE(wakeUp.Description);
    HandDrivenLink rig;
    rig.Open();
    rig.Clock.Advance = wakeUp.Advance;
    rig.Link.SendCommString(1, "0123456789");
    ASSERT_EQ(rig.Port.Sent.size(), 10u);
    for (std::size_t index = 1; index < rig.Port.Sent.size(); ++index)
      EXPECT_GE(rig.Port.Sent[index].Time - rig.Port.Sent[index - 1].Time, 1ms);
    EXPECT_GE(rig.Clock.Time - rig.Port.Sent.back().Time, 1ms) << "the last byte has its pause too";
  }
}

TEST(SendCommString, PausesHardlyMoreThanNeededThoughSleepersWakeUpLate) {
  HandDrivenLink rig;
  rig.Open();
  rig.Clock.Advance = [](Duration longest) { return longest > 0ns ? longest + 55us : Duration(10us); };
  const Duration elapsed = Elapsed(rig.Clock, [&] { rig.Link.SendCommString(1, std::string(1000, 'x')); });
  EXPECT_LT(elapsed, 1050ms);
}

TEST(SendCommString, GivesMostOfThePauseToOthers) {
  HandDrivenLink rig;
  rig.Open();
  const Duration elapsed = Elapsed(rig.Clock, [&] { rig.Link.SendCommString(1, std::string(100, 'x')); });
  EXPECT_GT(rig.Clock.GivenAway, elapsed * 3 / 4);
}

struct SyncCase {
  const char* Description;
  std::string Reply;
  LinkResult Result;
};

TEST(SendSyncByte, LooksAtTheLastByteOfTheReply) {
  const std::array cases = {
      SyncCase{"the echo", Bytes({0xFF}), LinkAck},
      SyncCase{"something before the echo", Bytes({0x00, 0x4F, 0xFF}), LinkAck},
      SyncCase{"another byte", Bytes({0x06}), LinkTrue},
      SyncCase{"a zero byte", Bytes({0x00}), LinkTrue},
      SyncCase{"something behind the echo", Bytes({0xFF, 0x06}), LinkTrue},
  };
  for (const SyncCase& sync : cases) {
    SCOPED_TRACE(sync.Description);
    HandDrivenLink rig;
    rig.Open();
    rig.Port.Script = AnswerTo(SyncByte, {{sync.Reply, 100}});
    EXPECT_EQ(rig.Link.SendSyncByte(500), sync.Result);
    EXPECT_EQ(rig.Port.SentBytes(), "\xFF");
    EXPECT_EQ(rig.Port.BytesWaiting(), 0u) << "the reply is read";
  }
}

TEST(SendSyncByte, TimesOutJustAfterItsTime) {
  for (const int timeoutMs : {0, 1, 500, 10000}) {
    SCOPED_TRACE(timeoutMs);
    HandDrivenLink rig;
    rig.Open();
    LinkResult result = LinkTrue;
    Elapsed(rig.Clock, [&] { result = rig.Link.SendSyncByte(timeoutMs); });
    EXPECT_EQ(result, LinkTimeout);
    const Duration sinceSent = rig.Clock.Time - rig.Port.Sent.at(0).Time;
    EXPECT_GT(sinceSent, std::chrono::milliseconds(timeoutMs));
    EXPECT_LT(sinceSent, std::chrono::milliseconds(timeoutMs + 5));
  }
}

TEST(SendSyncByte, TakesAReplyShortlyBeforeItsTimeAndNoneAfterIt) {
  struct Late {
    int DelayMs;
    LinkResult Result;
  };
  for (const Late& late : {Late{495, LinkAck}, Late{505, LinkTimeout}}) {
    SCOPED_TRACE(late.DelayMs);
    HandDrivenLink rig;
    rig.Open();
    rig.Port.Script = AnswerTo(SyncByte, {{"\xFF", late.DelayMs}});
    EXPECT_EQ(rig.Link.SendSyncByte(500), late.Result);
  }
}

TEST(SendSyncByte, ComesBackWithTheFirstByte) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Script = AnswerTo(SyncByte, {{"\x01", 50}, {"\xFF", 400}});
  const Duration elapsed = Elapsed(rig.Clock, [&] { EXPECT_EQ(rig.Link.SendSyncByte(500), LinkTrue); });
  EXPECT_LT(elapsed, 60ms);
}

TEST(SendSyncByte, IsNotAnsweredByWhatWaitedBefore) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Arrive("\xFF");
  EXPECT_EQ(rig.Link.SendSyncByte(500), LinkTimeout);
}

TEST(ReadUnitIdentity, AsksWithOneByteAndFillsInTheUnit) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Script = AnswerTo('E', {{IdentityReply("XY1234D", "3.14"), 30}});
  std::string reply = "old";
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  EXPECT_EQ(rig.Port.SentBytes(), "\x45");
  EXPECT_EQ(reply, IdentityReply("XY1234D", "3.14"));
  EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
  EXPECT_EQ(rig.Link.UnitFirmwareVersion, 3.14);
}

struct IdentityCase {
  const char* Model;
  const char* Firmware;
  const char* UnitModel;
  double UnitFirmwareVersion;
};

TEST(ReadUnitIdentity, TrimsTheModelAndReadsTheVersionLeniently) {
  constexpr IdentityCase cases[] = {
      {"QX4471C", "1.00", "QX4471C", 1.0}, {"AB12D  ", "3.00", "AB12D", 3.0},
      {"  AB12D", "2.99", "AB12D", 2.99},  {" A B D ", "12.5", "A B D", 12.5},
      {"       ", "3.00", "", 3.0},        {"XY1234D", "    ", "XY1234D", 0.0},
      {"XY1234D", " 3.1", "XY1234D", 3.1}, {"XY1234D", "4   ", "XY1234D", 4.0},
      {"XY1234D", "3.0b", "XY1234D", 3.0}, {"XY1234D", "v3.0", "XY1234D", 0.0},
      {"XY1234D", "3,50", "XY1234D", 3.0}, {"\xC4\xD6\xDCXYZD", "0003", "\xC4\xD6\xDCXYZD", 3.0},
  };
  for (const IdentityCase& identity : cases) {
    SCOPED_TRACE(std::string(identity.Model) + "/" + identity.Firmware);
    HandDrivenLink rig;
    rig.Open();
    rig.Port.Script = AnswerTo('E', {{IdentityReply(identity.Model, identity.Firmware), 1}});
    std::string reply;
    EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
    EXPECT_EQ(rig.Link.UnitModel, identity.UnitModel);
    EXPECT_EQ(rig.Link.UnitFirmwareVersion, identity.UnitFirmwareVersion);
  }
}

TEST(ReadUnitIdentity, IgnoresTheFirstTwoBytes) {
  for (const std::string& first : {Bytes({0x00, 0x00}), Bytes({0xFF, 0xFF}), std::string("  ")}) {
    HandDrivenLink rig;
    rig.Open();
    rig.Port.Script = AnswerTo('E', {{first + "XY1234D3.00", 1}});
    std::string reply;
    EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
    EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
    EXPECT_EQ(rig.Link.UnitFirmwareVersion, 3.0);
  }
}

TEST(ReadUnitIdentity, WaitsForTheLastPieceOfTheReply) {
  HandDrivenLink rig;
  rig.Open();
  const std::string identity = IdentityReply("XY1234D", "3.00");
  std::vector<DelayedBytes> pieces;
  for (int index = 0; index < 13; ++index)
    pieces.push_back({identity.substr(static_cast<std::size_t>(index), 1), 700 * (index + 1)});
  rig.Port.Script = AnswerTo('E', pieces);
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  EXPECT_EQ(reply, identity);
  EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
}

TEST(ReadUnitIdentity, KeepsWhatFollowsTheThirteenBytesInTheReplyOnly) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Script = AnswerTo('E', {{IdentityReply("XY1234D", "3.00") + "99", 1}});
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  EXPECT_EQ(reply.size(), 15u);
  EXPECT_EQ(rig.Link.UnitFirmwareVersion, 3.0);
}

TEST(ReadUnitIdentity, AsksAThirdTimeWhereEchoesStandInTwoAnswers) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Script = [](std::string_view sent) {
    std::string identity = IdentityReply("XY1234D", "3.00");
    if (sent.size() < 3) identity.insert(3 + sent.size(), 1, '\xFF');
    return std::vector<DelayedBytes>{{identity, 1}};
  };
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  EXPECT_EQ(rig.Port.SentBytes(), "EEE");
  EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
}

TEST(ReadUnitIdentity, TimesOutJustAfterItsTime) {
  struct Incomplete {
    const char* Description;
    std::string Reply;
  };
  for (const Incomplete& incomplete :
       {Incomplete{"silent", ""}, Incomplete{"one byte short", IdentityReply("XY1234D", "3.0")}}) {
    SCOPED_TRACE(incomplete.Description);
    HandDrivenLink rig;
    rig.Open();
    rig.Link.UnitModel = "of before";
    rig.Link.UnitFirmwareVersion = 1.5;
    rig.Port.Script = AnswerTo('E', {{incomplete.Reply, 1}});
    std::string reply;
    EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTimeout);
    const Duration sinceSent = rig.Clock.Time - rig.Port.Sent.at(0).Time;
    EXPECT_GT(sinceSent, 10000ms);
    EXPECT_LT(sinceSent, 10005ms);
    EXPECT_EQ(rig.Link.UnitModel, "of before");
    EXPECT_EQ(rig.Link.UnitFirmwareVersion, 1.5);
  }
}

TEST(ReadUnitIdentity, IsNotAnsweredByWhatWaitedBefore) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Arrive(IdentityReply("STALE1D", "9.99"));
  rig.Port.Script = AnswerTo('E', {{IdentityReply("XY1234D", "3.00"), 1}});
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
}

// Announces more than a read then yields, and loses the rest.
class LossyPort : public FakePort {
 public:
  using FakePort::FakePort;
  std::string ReadInput() override { return FakePort::ReadInput().substr(0, 5); }
};

struct LossyLink {
  HandDrivenClock Clock;
  LossyPort Port{Clock};
  UnitLink Link{Port, Clock.Timing()};
};

TEST(ReadUnitIdentity, AppendsWhatAShortReadLeftOut) {
  LossyLink rig;
  rig.Link.OpenCommPort(1);
  rig.Port.Script = AnswerTo('E', {{"\x01\x02XY1lostlost", 100}, {"234D3lost", 200}, {".00", 300}});
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  EXPECT_EQ(reply, IdentityReply("XY1234D", "3.00"));
  EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
  EXPECT_EQ(rig.Link.UnitFirmwareVersion, 3.0);
}

TEST(ReadUnitIdentity, GivesASecondWaitNoTimeOfItsOwn) {
  LossyLink rig;
  rig.Link.OpenCommPort(1);
  rig.Port.Script = AnswerTo('E', {{"\x01\x02XY1lostlost", 6000}});
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTimeout);
  EXPECT_LT(rig.Clock.Time - rig.Port.Sent.at(0).Time, 10005ms);
}

TEST(ProbeCommPort, SaysWhetherThePortOpensAndClosesItAgain) {
  HandDrivenLink rig;
  rig.Link.CommPort = 2;
  EXPECT_TRUE(rig.Link.ProbeCommPort(5));
  EXPECT_EQ(rig.Port.Calls, (Calls{"port number 5", "open", "close"}));
  EXPECT_FALSE(rig.Port.IsOpen());
  EXPECT_EQ(rig.Port.SentBytes(), "");
  EXPECT_EQ(rig.Link.CommPort, 2) << "looking at a port does not choose it";
}

TEST(ProbeCommPort, IsFalseWhenThePortDoesNotOpen) {
  for (const char* const step : {"port number", "open"}) {
    SCOPED_TRACE(step);
    HandDrivenLink rig;
    rig.Port.RefusedCall = step;
    EXPECT_FALSE(rig.Link.ProbeCommPort(1));
    EXPECT_FALSE(rig.Port.IsOpen());
  }
}

TEST(DelayMs, OfZeroReturnsAtOnce) {
  HandDrivenLink rig;
  EXPECT_EQ(rig.Link.DelayMs(0), 0);
  EXPECT_LT(rig.Clock.Time, 1ms);
  EXPECT_EQ(rig.Clock.GivenAway, 0ns);
}

TEST(DelayMs, LastsAtLeastItsTimeWheneverTheThreadWakesUp) {
  for (const WakeUp& wakeUp : WakeUps) {
    for (const std::int16_t milliseconds : std::initializer_list<std::int16_t>{1, 2, 17, 500}) {
      SCOPED_TRACE(wakeUp.Description + (" " + std::to_string(milliseconds)));
      HandDrivenLink rig;
      rig.Clock.Advance = wakeUp.Advance;
      const std::int32_t reported = rig.Link.DelayMs(milliseconds);
      EXPECT_GE(rig.Clock.Time, std::chrono::milliseconds(milliseconds));
      EXPECT_LT(rig.Clock.Time, std::chrono::milliseconds(milliseconds + 20));
      EXPECT_LE(std::chrono::abs(rig.Clock.Time - std::chrono::milliseconds(reported)), 500us);
    }
  }
}

TEST(DelayMs, RoundsTheElapsedTimeToWholeMilliseconds) {
  struct Step {
    Duration Of;
    std::int32_t Elapsed;
  };
  for (const Step& step : {Step{1400us, 1}, Step{1600us, 2}, Step{600us, 1}, Step{800us, 2}}) {
    HandDrivenLink rig;
    rig.Clock.Advance = [&](Duration) { return step.Of; };
    EXPECT_EQ(rig.Link.DelayMs(1), step.Elapsed);
  }
}

TEST(DelayMs, MayLastAsLongAsItsArgumentCanSay) {
  HandDrivenLink rig;
  EXPECT_EQ(rig.Link.DelayMs(32767), 32767);
}

TEST(WaitUntil, CountsAsInTimeAtItsVeryEnd) {
  struct Moment {
    Duration SinceStart;
    bool InTime;
  };
  for (const Moment& moment : {Moment{0ns, true}, Moment{500ms, true}, Moment{500ms + 1ns, false}}) {
    SCOPED_TRACE(moment.SinceStart.count());
    HandDrivenLink rig;
    rig.Clock.Time = 3s + moment.SinceStart;
    EXPECT_EQ(rig.Link.WaitUntil(3s, 500, [] { return true; }), moment.InTime);
  }
}

TEST(WaitUntil, KeepsTheInterfaceAliveAndYieldsTheProcessor) {
  HandDrivenLink rig;
  EXPECT_FALSE(rig.Link.WaitUntil(rig.Link.Now(), 1000, [] { return false; }));
  EXPECT_LE(rig.Clock.LongestPause, 20ms) << "a click must not wait longer";
  EXPECT_GE(rig.Clock.GivenAway, 900ms);
}

TEST(WaitUntil, EndsWithAPortThatBreaks) {
  HandDrivenLink rig;
  rig.Open();
  const Duration start = rig.Clock.Time;
  rig.Port.BreaksAt = start + 100ms;
  EXPECT_FALSE(rig.Link.WaitUntil(start, 30000, [] { return false; }));
  EXPECT_GE(rig.Clock.Time - start, 100ms);
  EXPECT_LT(rig.Clock.Time - start, 105ms);
}

TEST(WaitUntil, TakesWhatArrivedBeforeThePortBroke) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Arrive("x");
  rig.Port.BreaksAt = rig.Clock.Time;
  EXPECT_TRUE(rig.Link.WaitUntil(rig.Link.Now(), 500, [&] { return rig.Port.BytesWaiting() == 1; }));
}

TEST(PortFailure, TellsWhatBrokeTheOpenPort) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.BreaksAt = rig.Clock.Time;
  ASSERT_TRUE(rig.Link.PortFailure().has_value());
  EXPECT_STREQ(rig.Link.PortFailure()->what(), "the cable was pulled");
}

TEST(BrokenPort, EndsEveryExchangeSoonAfterItBreaks) {
  struct Exchange {
    const char* Name;
    LinkResult (*Run)(UnitLink& link);
  };
  constexpr std::array exchanges = {
      Exchange{"sync", [](UnitLink& link) { return link.SendSyncByte(10000); }},
      Exchange{"identity",
               [](UnitLink& link) {
                 std::string reply;
                 return link.ReadUnitIdentity(10000, reply);
               }},
  };
  for (const Exchange& exchange : exchanges) {
    SCOPED_TRACE(exchange.Name);
    HandDrivenLink rig;
    rig.Open();
    rig.Port.BreaksAt = rig.Clock.Time + 200ms;
    const Duration elapsed = Elapsed(rig.Clock, [&] { EXPECT_EQ(exchange.Run(rig.Link), LinkTimeout); });
    EXPECT_GE(elapsed, 200ms);
    EXPECT_LT(elapsed, 205ms);
  }
}

TEST(ReplyToText, KeepsEveryByte) {
  std::string all;
  for (int value = 0; value < 256; ++value) all += static_cast<char>(value);
  EXPECT_EQ(ReplyToText(all), all);
  EXPECT_EQ(ReplyToText(""), "");
}

}  // namespace
}  // namespace chanplan::testing
