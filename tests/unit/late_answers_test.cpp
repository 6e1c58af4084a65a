// Units that answer late: no answer is taken for another, in one command, between two, and between two programs.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/unit/fake_unit.h"
#include "tests/unit/hand_driven_link.h"
#include "tests/unit/wire_bytes.h"
#include "unit/transfer.h"
#include "unit/unit_connection.h"
#include "unit/wire_encoding.h"

namespace chanplan::testing {
namespace {

constexpr int EchoDelays[] = {0, 5, 100, 495, 505, 1000, 1500, 2000};  // ms

// A unit whose table has a tag with a low byte of 0: behind an echo it looks like an empty table.
struct LateUnit : HandDrivenLink {
  FakeUnit Unit;
  int EchoDelayMs = 0;
  int AnswerDelayMs = 0;
  std::vector<std::string> Names{"one", "two"};

  LateUnit() {
    Unit.TableBytes = TableHeader(0x0100, 2) + RecordBytes(2, 0, "one") + RecordBytes(1, 0, "two");
    Port.KeepsInputWhileClosed = true;
    Port.Script = [this, script = Unit.Script()](std::string_view sent) {
      std::vector<DelayedBytes> replies = script(sent);
      for (DelayedBytes& reply : replies) reply.DelayMs += reply.Bytes == "\xFF" ? EchoDelayMs : AnswerDelayMs;
      return replies;
    };
  }

  // A whole command, as both programs do it.
  static void ExpectDownload(UnitLink& link, const std::vector<std::string>& names) {
    EXPECT_TRUE(ConnectToUnit(link).Accepted());
    TransferProgress progress;
    UnitTable held;
    const TransferOutcome outcome = RunDownload(link, held, progress, [] { return false; });
    EXPECT_TRUE(outcome.Done()) << outcome.Message;
    EXPECT_EQ(RowNames(held.Table), names);
    EXPECT_EQ(held.UnitTableTag, 0x0100);
    EXPECT_EQ(FinishTransfer(link, outcome), LinkAck);
  }
  LinkResult UploadConfirmed() {
    TransferProgress progress;
    const std::string message = EncodeTable(TableOf({NamedRow("new")}), 0x0100);
    EXPECT_TRUE(ConnectToUnit(Link).Accepted());
    return FinishTransfer(Link, RunUpload(Link, message, progress, [] { return false; }));
  }
};

TEST(LateEcho, IsNotTakenForAnAnswerInACommandNorInTheNext) {
  for (const int delay : EchoDelays) {
    SCOPED_TRACE(delay);
    LateUnit rig;
    rig.EchoDelayMs = delay;
    rig.ExpectDownload(rig.Link, rig.Names);
    EXPECT_EQ(rig.UploadConfirmed(), LinkAck);
    rig.ExpectDownload(rig.Link, {"new"});
  }
}

TEST(LateEcho, IsNotTakenForAnAnswerByTheNextProgram) {
  for (const int delay : EchoDelays) {
    SCOPED_TRACE(delay);
    LateUnit rig;
    rig.EchoDelayMs = delay;
    rig.ExpectDownload(rig.Link, rig.Names);
    UnitLink next(rig.Port, rig.Clock.Timing());
    rig.ExpectDownload(next, rig.Names);
  }
}

// Everything is late, and in its order.
TEST(LateUnit, IsReadRightByOneProgramAfterTheOther) {
  for (const int delay : {500, 1500, 2000}) {
    SCOPED_TRACE(delay);
    LateUnit rig;
    rig.EchoDelayMs = rig.AnswerDelayMs = delay;
    rig.ExpectDownload(rig.Link, rig.Names);
    UnitLink next(rig.Port, rig.Clock.Timing());
    rig.ExpectDownload(next, rig.Names);
  }
}

TEST(LateEcho, OfAProgramThatWasKilledIsSkippedInFrontOfTheIdentity) {
  for (const std::string& own : {Bytes({0, 0}), Bytes({0xFF, 0}), Bytes({0xFF, 0xFF})}) {
    for (const std::size_t echoes : {0u, 1u, 2u}) {
      SCOPED_TRACE(::testing::PrintToString(own) + std::to_string(echoes));
      HandDrivenLink rig;
      rig.Open();
      const std::string identity = own + "XY1234D3.00";
      // The thirteenth byte comes with an echo counted in; the rest behind it.
      rig.Port.Script = AnswerTo('E', {{std::string(echoes, '\xFF') + identity.substr(0, 13 - echoes), 5},
                                       {identity.substr(13 - echoes), 15}});
      std::string reply;
      EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
      EXPECT_EQ(reply, identity);
      EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
    }
  }
}

// One byte of the identity is lost, and an echo makes up for it.
TEST(LateEcho, DoesNotMakeAnIdentityWhole) {
  const std::string identity = Bytes({1, 2}) + "XY1234D3.00";
  for (const std::size_t lost : {0u, 5u, 12u})
    for (const std::size_t place : {0u, 6u, 12u}) {
      SCOPED_TRACE(std::to_string(lost) + " " + std::to_string(place));
      HandDrivenLink rig;
      rig.Open();
      std::string spoilt = identity;
      spoilt.erase(lost, 1).insert(place, "\xFF");
      rig.Port.Script = [&](std::string_view sent) {
        return std::vector<DelayedBytes>{{sent == "E" ? spoilt : identity, 5}};
      };
      std::string reply;
      EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
      EXPECT_EQ(reply, identity);
      EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
      EXPECT_EQ(rig.Port.SentBytes(), "EE");
    }
}

TEST(LateEcho, AmongTheBytesOfAnIdentityIsTold) {
  const std::string identity = Bytes({1, 2}) + "XY1234D3.00";
  for (std::size_t place = 0; place <= 13; ++place) {
    HandDrivenLink rig;
    rig.Open();
    std::string longer = identity;
    longer.insert(place, "\xFF");
    rig.Port.Script = [&](std::string_view sent) {
      return std::vector<DelayedBytes>{{sent == "E" ? longer.substr(0, 13) : identity, 5},
                                       {sent == "E" ? longer.substr(13) : "", 7}};
    };
    std::string reply;
    EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
    EXPECT_EQ(rig.Link.UnitModel, "XY1234D") << place;
    EXPECT_EQ(rig.Link.UnitFirmwareVersion, 3.0) << place;
  }
}

// Other answers overtake it. In the header it makes the count 0 or larger than any; behind it, one byte too many.
TEST(LateEcho, OfAProgramThatWasKilledCostsNoTable) {
  for (const int tag : {0x0064, 0x0100, 0x0000, 0xFFFF})
    for (const std::size_t place : {0u, 1u, 2u, 3u, 4u, 30u, 100u}) {
      SCOPED_TRACE(std::to_string(tag) + " " + std::to_string(place));
      HandDrivenLink rig;
      rig.Open();
      const std::string table = TableHeader(tag, 2) + RecordBytes(2, 0, "one") + RecordBytes(1, 0, "two");
      rig.Port.Script = [&](std::string_view sent) {
        std::string reply = table;
        if (sent == "O") reply.insert(place, "\xFF");
        return std::vector<DelayedBytes>{{reply.substr(0, 60), 5}, {reply.substr(60), 60}};
      };
      TransferProgress progress;
      UnitTable held;
      EXPECT_EQ(Query_Chanplans(rig.Link, held, progress), LinkTrue);
      EXPECT_EQ(RowNames(held.Table), (std::vector<std::string>{"one", "two"}));
      EXPECT_EQ(held.UnitTableTag, tag);
      EXPECT_EQ(rig.Port.SentBytes(), "OO");
    }
}

TEST(LateEcho, OfAProgramThatWasKilledConfirmsNoUpload) {
  for (const bool off : {false, true}) {
    LateUnit rig;
    rig.Port.Script = [&, script = rig.Port.Script](std::string_view sent) {
      const bool uploading = sent.size() > 1 && sent.find('N') != std::string_view::npos;
      return off && uploading ? std::vector<DelayedBytes>() : script(sent);
    };
    rig.Port.Arrive("\xFF", 400ms);  // while the echo of the last sync byte is waited for
    TransferProgress progress;
    const TransferOutcome outcome =
        RunUpload(rig.Link, EncodeTable(TableOf({NamedRow("new")}), 1), progress, [] { return false; });
    ASSERT_TRUE(outcome.Done());
    EXPECT_EQ(FinishTransfer(rig.Link, outcome), off ? LinkTimeout : LinkAck);
  }
}

TEST(Line, IsListenedToUntilAnOlderAnswerIsOver) {
  LateUnit rig;
  rig.Link.OpenCommPort(1);
  for (int ms = 0; ms < 8000; ++ms)
    rig.Port.Arrive("E", std::chrono::milliseconds(ms));  // of a program that was killed
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  EXPECT_GE(rig.Port.Sent.at(0).Time, 8s);
  EXPECT_EQ(rig.Link.UnitModel, "XY1234D");
}

TEST(Line, ThatDoesNotComeToRestIsSentNothing) {
  HandDrivenLink rig;
  rig.Open();
  for (int ms = 0; ms < 60000; ms += 10) rig.Port.Arrive("?", std::chrono::milliseconds(ms));
  std::string reply;
  const auto elapsed = Elapsed(rig.Clock, [&] { EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTimeout); });
  EXPECT_LT(elapsed, 15s);
  TransferProgress progress;
  EXPECT_EQ(UploadChanplans(rig.Link, EncodeTable({}, 1), progress), LinkUnrest);
  EXPECT_EQ(rig.Port.SentBytes(), "");
}

// Nothing else tells that a program was held up from a line on which nothing comes.
TEST(Line, IsNotTakenForQuietByAProgramThatWasHeldUp) {
  HandDrivenLink rig;
  rig.Open();
  rig.Clock.Advance = [](std::chrono::nanoseconds) { return 200ms; };
  for (int ms = 0; ms < 3000; ms += 10) rig.Port.Arrive("?", std::chrono::milliseconds(ms));
  std::string rest;
  EXPECT_TRUE(rig.Link.ReadUntilQuiet(rest));
  EXPECT_EQ(rest.size(), 300u);
}

// What is read behind a hold-up came while it lasted, up to its end.
TEST(Line, IsNotTakenForQuietRightBehindAHoldUp) {
  HandDrivenLink rig;
  rig.Open();
  bool heldUp = false;
  rig.Clock.Advance = [&](std::chrono::nanoseconds longest) {
    return std::exchange(heldUp, true) ? std::max<std::chrono::nanoseconds>(longest, 10us) : 200ms;
  };
  for (int ms = 0; ms < 300; ms += 10) rig.Port.Arrive("?", std::chrono::milliseconds(ms));
  std::string rest;
  EXPECT_TRUE(rig.Link.ReadUntilQuiet(rest));
  EXPECT_EQ(rest.size(), 30u);
}

TEST(Line, IsNotTakenForQuietWhereWhatCameIsNotReadYet) {
  HandDrivenClock clock;
  FakePort port(clock);
  port.ReadsWhileEventsRun = true;
  LinkTiming timing = clock.Timing();
  bool heldUp = true;  // until the port is open
  timing.Now = [&] {
    if (clock.LastPass == clock.Time && !std::exchange(heldUp, true)) {
      port.Arrive("?", 50ms);
      clock.Time += 200ms;
    }
    return clock.Time;
  };
  UnitLink link(port, timing);
  link.OpenCommPort(1);
  clock.Time += 1us;  // so that the program is held up right behind the next pass
  heldUp = false;
  std::string rest;
  EXPECT_TRUE(link.ReadUntilQuiet(rest));
  EXPECT_EQ(rest, "?");
}

TEST(CloseCommPort, WaitsLongerForTheEchoOfAUnitThatAnswers) {
  HandDrivenLink rig;
  rig.Open();
  rig.Port.Script = [](std::string_view sent) {
    return sent.back() == 'E' ? std::vector<DelayedBytes>{{IdentityReply("XY1234D", "3.00"), 5}}
                              : std::vector<DelayedBytes>{{"\xFF", 1500}};
  };
  std::string reply;
  ASSERT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  const auto elapsed = Elapsed(rig.Clock, [&] { rig.Link.CloseCommPort(); });
  EXPECT_GE(elapsed, 1500ms);
  EXPECT_LT(elapsed, 1510ms);
  rig.Open();
  const auto next = Elapsed(rig.Clock, [&] { EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue); });
  EXPECT_LT(next, 20ms + QuietTime) << "nothing is owed any more";
}

struct StoppedLink : HandDrivenLink {
  std::chrono::nanoseconds StopAt = 3s;

  StoppedLink() {
    Open();
    Link.StopRequested = [this] { return Clock.Time >= StopAt; };
  }
};

TEST(StopRequested, EndsTheWaitForASilentUnitAtOnce) {
  StoppedLink rig;
  std::string reply;
  EXPECT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTimeout);
  EXPECT_LT(rig.Clock.Time, 3s + 10ms);
  rig.StopAt = rig.Clock.Time;
  const auto elapsed = Elapsed(rig.Clock, [&] { EXPECT_EQ(rig.Link.SendSyncByte(10000), LinkTimeout); });
  EXPECT_GE(elapsed, 500ms) << "a unit that answers is not silent, and wants the end of the exchange";
  EXPECT_LT(elapsed, 510ms);
}

TEST(StopRequested, LeavesALateUnitItsTimeForTheEcho) {
  StoppedLink rig;
  rig.Port.Script = [](std::string_view sent) {
    return sent.back() == 'E' ? std::vector<DelayedBytes>{{IdentityReply("XY1234D", "3.00"), 5}}
                              : std::vector<DelayedBytes>{{"\xFF", 1500}};
  };
  std::string reply;
  ASSERT_EQ(rig.Link.ReadUnitIdentity(10000, reply), LinkTrue);
  rig.StopAt = rig.Clock.Time;
  EXPECT_EQ(rig.Link.SendSyncByte(10000), LinkAck) << "an upload that has begun is confirmed";
}

TEST(StopRequested, LetsATableThatIsArrivingArrive) {
  StoppedLink rig;
  rig.StopAt = rig.Clock.Time;
  std::vector<DelayedBytes> pieces;
  const std::string table = TableHeader(1, 2) + RecordBytes(1, 0, "A") + RecordBytes(1, 0, "B");
  for (std::size_t index = 0; index < table.size(); ++index)
    pieces.push_back({table.substr(index, 1), static_cast<int>(index + 1) * 100});
  rig.Port.Script = AnswerTo('O', pieces);
  UnitTable held;
  TransferProgress progress;
  EXPECT_EQ(Query_Chanplans(rig.Link, held, progress), LinkTrue);
  EXPECT_EQ(held.Table.Count, 2);
}

TEST(StopRequested, EndsTheWaitForTheRestOfATable) {
  StoppedLink rig;
  rig.Port.Script = AnswerTo('O', {{TableHeader(1, 2), 5}});
  UnitTable held;
  TransferProgress progress;
  EXPECT_EQ(Query_Chanplans(rig.Link, held, progress), LinkTimeout);
  EXPECT_LT(rig.Clock.Time, 3s + 10ms);
}

TEST(RunTransfer, ThatIsStoppedBeforeTheUnitAnswersIsNoFailure) {
  LateUnit rig;
  rig.AnswerDelayMs = 8000;
  rig.Link.StopRequested = [&] { return rig.Clock.Time >= 3s; };
  UnitTable held;
  TransferProgress progress;
  const TransferOutcome outcome = RunDownload(rig.Link, held, progress, rig.Link.StopRequested);
  EXPECT_TRUE(outcome.Aborted);
  EXPECT_EQ(outcome.Message, "");
  EXPECT_LT(rig.Clock.Time, 3s + 10ms);
}

}  // namespace
}  // namespace chanplan::testing
