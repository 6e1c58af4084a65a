#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/unit/fake_unit.h"
#include "tests/unit/hand_driven_link.h"
#include "tests/unit/recorded_progress.h"
#include "tests/unit/wire_bytes.h"
#include "unit/transfer.h"
#include "unit/wire_encoding.h"

namespace chanplan::testing {
namespace {

using Texts = std::vector<std::string>;

constexpr std::string_view NoAnswer = "Error establishing communication with Handheld Product!";

enum class Direction { Download, Upload };

constexpr Direction Directions[] = {Direction::Download, Direction::Upload};

std::string_view Title(Direction direction) {
  return direction == Direction::Download ? "Downloading Signal Standards..." : "Uploading Signal Standards...";
}

// A unit on a closed port, and a table of one row.
struct Transfer : HandDrivenLink {
  FakeUnit Unit;
  UnitTable Held{TableOf({NamedRow("mine")}), 7};
  const UnitTable Before = Held;
  RecordedProgress Progress;
  bool AbortRequested = false;
  int AbortQuestions = 0;

  Transfer() {
    Unit.TableBytes = TableHeader(21, 2) + RecordBytes(2, 0, "one") + RecordBytes(1, 0, "two");
    Port.Script = Unit.Script();
  }
  TransferOutcome Run(Direction direction) {
    const auto abortRequested = [this] {
      ++AbortQuestions;
      return AbortRequested;
    };
    if (direction == Direction::Download) return RunDownload(Link, Held, Progress, abortRequested);
    return RunUpload(Link, EncodeTable(Held.Table, Held.UnitTableTag), Progress, abortRequested);
  }
};

void ExpectTableUnchanged(const Transfer& transfer) {
  EXPECT_EQ(transfer.Held.Table, transfer.Before.Table);
  EXPECT_EQ(transfer.Held.UnitTableTag, transfer.Before.UnitTableTag);
}

TEST(RunTransfer, DownloadsTheUnitsTable) {
  Transfer transfer;
  transfer.Link.CommPort = 6;
  const TransferOutcome outcome = transfer.Run(Direction::Download);
  EXPECT_TRUE(outcome.UnitAnswered);
  EXPECT_FALSE(outcome.Aborted);
  EXPECT_EQ(outcome.Result, LinkTrue);
  EXPECT_EQ(outcome.Message, "");
  EXPECT_EQ(transfer.Port.Calls.at(0), "port number 6");
  EXPECT_EQ(transfer.Port.SentBytes(), "\x45\x4F");
  EXPECT_EQ(RowNames(transfer.Held.Table), (Texts{"one", "two"}));
  EXPECT_EQ(transfer.Held.UnitTableTag, 21);
  EXPECT_TRUE(transfer.Port.IsOpen()) << "the exchange is not ended yet";
}

TEST(RunTransfer, UploadsATable) {
  Transfer transfer;
  const TransferOutcome outcome = transfer.Run(Direction::Upload);
  EXPECT_TRUE(outcome.UnitAnswered);
  EXPECT_FALSE(outcome.Aborted);
  EXPECT_EQ(outcome.Result, LinkTrue);
  EXPECT_EQ(outcome.Message, "");
  EXPECT_EQ(transfer.Port.SentBytes().substr(0, 2), "\x45\x4E");
  EXPECT_EQ(transfer.Unit.TablesReceived, 1);
  EXPECT_EQ(transfer.Unit.TableBytes,
            TableHeader(7, 1) + RecordBytes(2, 0, "mine", {1850200000, 1930200000, 512, 810, 200000, 250000, 1}));
  ExpectTableUnchanged(transfer);
  EXPECT_TRUE(transfer.Port.IsOpen()) << "the exchange is not ended yet";
}

TEST(RunTransfer, GivesASilentUnitTenSecondsToIdentifyItself) {
  for (const Direction direction : Directions) {
    SCOPED_TRACE(Title(direction));
    Transfer transfer;
    transfer.Port.Script = AnswerTo('\xFF', {});
    const auto elapsed = Elapsed(transfer.Clock, [&] {
      const TransferOutcome outcome = transfer.Run(direction);
      EXPECT_FALSE(outcome.UnitAnswered);
      EXPECT_NE(outcome.Result, LinkTrue);
      EXPECT_EQ(outcome.Message, NoAnswer);
    });
    EXPECT_GT(elapsed, 10000ms);
    EXPECT_LT(elapsed, 10010ms + QuietTime);
    EXPECT_EQ(transfer.Port.SentBytes(), "\x45");
    ExpectTableUnchanged(transfer);
  }
}

TEST(RunTransfer, DoesNotWaitForAPortThatDoesNotOpen) {
  for (const Direction direction : Directions) {
    SCOPED_TRACE(Title(direction));
    Transfer transfer;
    transfer.Port.RefusedCall = "open";
    const auto elapsed = Elapsed(transfer.Clock, [&] {
      const TransferOutcome outcome = transfer.Run(direction);
      EXPECT_FALSE(outcome.UnitAnswered);
      EXPECT_EQ(outcome.Message, NoAnswer);
    });
    EXPECT_LT(elapsed, 10ms);
    EXPECT_EQ(transfer.Port.SentBytes(), "");
    ASSERT_TRUE(transfer.Link.PortFailure().has_value());
    EXPECT_STREQ(transfer.Link.PortFailure()->what(), "refused: open");
    ExpectTableUnchanged(transfer);
  }
}

TEST(RunTransfer, MovesNothingOnceTheUserWantsToStop) {
  for (const Direction direction : Directions) {
    SCOPED_TRACE(Title(direction));
    Transfer transfer;
    transfer.AbortRequested = true;
    const TransferOutcome outcome = transfer.Run(direction);
    EXPECT_TRUE(outcome.UnitAnswered);
    EXPECT_TRUE(outcome.Aborted);
    EXPECT_NE(outcome.Result, LinkTrue);
    EXPECT_EQ(outcome.Message, "");
    EXPECT_EQ(transfer.Port.SentBytes(), "\x45");
    ExpectTableUnchanged(transfer);
  }
}

TEST(RunTransfer, AsksForTheUsersWishOnlyBeforeTheTableIsMoved) {
  for (const Direction direction : Directions) {
    SCOPED_TRACE(Title(direction));
    Transfer transfer;
    const PortScript unit = transfer.Unit.Script();
    transfer.Port.Script = [&](std::string_view sent) {
      transfer.AbortRequested = sent.size() >= 2;  // behind the identification
      return unit(sent);
    };
    const TransferOutcome outcome = transfer.Run(direction);
    EXPECT_TRUE(transfer.AbortRequested);
    EXPECT_EQ(transfer.AbortQuestions, 1);
    EXPECT_EQ(outcome.Result, LinkTrue);
  }
}

TEST(RunTransfer, NoticesAWishToStopWhileTheUnitIdentifiesItself) {
  Transfer transfer;
  transfer.Port.Script = [&](std::string_view sent) {
    transfer.AbortRequested = true;
    return std::vector<DelayedBytes>{{sent == "\x45" ? transfer.Unit.Identity : "", 8000}};
  };
  EXPECT_TRUE(transfer.Run(Direction::Download).Aborted);
  EXPECT_EQ(transfer.Port.SentBytes(), "\x45");
}

TEST(RunTransfer, DownloadsOverATableThatCouldNotBeSent) {
  Transfer transfer;
  transfer.Held.Table.Row(0).Step = 65536;
  EXPECT_EQ(transfer.Run(Direction::Download).Result, LinkTrue);
  EXPECT_EQ(RowNames(transfer.Held.Table), (Texts{"one", "two"}));
}

TEST(RunTransfer, TalksToAUnitOfAnyModelAndFirmware) {
  Transfer transfer;
  transfer.Unit.Identity = IdentityReply("OTHER  ", "0.01");
  EXPECT_EQ(transfer.Run(Direction::Download).Result, LinkTrue);
}

TEST(RunTransfer, TakesADownloadWithoutAnAnswerForNoFailureOfTheConnection) {
  Transfer transfer;
  transfer.Port.Script = AnswerTo('E', {{transfer.Unit.Identity, 5}});
  const TransferOutcome outcome = transfer.Run(Direction::Download);
  EXPECT_TRUE(outcome.UnitAnswered);
  EXPECT_EQ(outcome.Result, LinkTimeout);
  EXPECT_EQ(outcome.Message, "");
  ExpectTableUnchanged(transfer);
}

TEST(RunTransfer, ShowsWhatItIsDoing) {
  struct Case {
    Direction Way;
    Texts Shown;
  };
  const Case cases[] = {
      {Direction::Download,
       {"caption Downloading Signal Standards...", "label Connecting to Handheld Product...", "range 0 100",
        "label Downloading Signal Standards...", "range 0 100", "range 0 96"}},
      {Direction::Upload,
       {"caption Uploading Signal Standards...", "label Connecting to Handheld Product...", "range 0 100",
        "label Uploading Signal Standards...", "range 0 52", "caption 52"}},
  };
  for (const Case& transferCase : cases) {
    Transfer transfer;
    transfer.Run(transferCase.Way);
    EXPECT_EQ(transfer.Progress.Texts, transferCase.Shown);
  }
}

TEST(RunTransfer, ShowsThatItConnectsUntilTheUnitAnswers) {
  Transfer transfer;
  transfer.Port.Script = AnswerTo('E', {});
  transfer.Run(Direction::Download);
  EXPECT_EQ(transfer.Progress.Texts, (Texts{"caption Downloading Signal Standards...",
                                            "label Connecting to Handheld Product...", "range 0 100"}));
  EXPECT_EQ(transfer.Progress.Values, std::vector<int>{0});
}

TEST(FinishTransfer, SendsTheSyncByteTwiceAndClosesThePort) {
  for (const Direction direction : Directions) {
    SCOPED_TRACE(Title(direction));
    Transfer transfer;
    const TransferOutcome outcome = transfer.Run(direction);
    EXPECT_EQ(FinishTransfer(transfer.Link, outcome), LinkAck);
    EXPECT_TRUE(transfer.Port.SentBytes().ends_with("\xFF\xFF"));
    EXPECT_EQ(transfer.Port.Calls.back(), "close");
    EXPECT_FALSE(transfer.Port.IsOpen());
  }
}

TEST(FinishTransfer, EndsTheExchangeAfterAnAbortToo) {
  Transfer transfer;
  transfer.AbortRequested = true;
  const TransferOutcome outcome = transfer.Run(Direction::Upload);
  EXPECT_EQ(FinishTransfer(transfer.Link, outcome), LinkAck);
  EXPECT_EQ(transfer.Port.SentBytes(), "\x45\xFF\xFF");
  EXPECT_FALSE(transfer.Port.IsOpen());
}

TEST(FinishTransfer, GivesASilentUnitTenSecondsAndHalfASecond) {
  Transfer transfer;
  transfer.Port.Script = AnswerTo('E', {{transfer.Unit.Identity, 5}});
  const TransferOutcome outcome = transfer.Run(Direction::Upload);
  const auto elapsed = Elapsed(transfer.Clock, [&] { EXPECT_EQ(FinishTransfer(transfer.Link, outcome), LinkTimeout); });
  EXPECT_GT(elapsed, 10000ms + 500ms);
  EXPECT_LT(elapsed, 10000ms + 500ms + 20ms);
  EXPECT_FALSE(transfer.Port.IsOpen());
}

TEST(FinishTransfer, ReportsAReplyThatIsNoEcho) {
  Transfer transfer;
  const PortScript unit = transfer.Unit.Script();
  transfer.Port.Script = [&](std::string_view sent) {
    return sent.ends_with('\xFF') ? std::vector<DelayedBytes>{{"?", 5}} : unit(sent);
  };
  const TransferOutcome outcome = transfer.Run(Direction::Download);
  EXPECT_EQ(FinishTransfer(transfer.Link, outcome), LinkTrue);
}

TEST(FinishTransfer, SendsASilentUnitTheSyncByteOfClosingOnly) {
  Transfer transfer;
  transfer.Port.Script = AnswerTo('E', {});
  const TransferOutcome outcome = transfer.Run(Direction::Download);
  const auto elapsed = Elapsed(transfer.Clock, [&] { EXPECT_EQ(FinishTransfer(transfer.Link, outcome), LinkTimeout); });
  EXPECT_LT(elapsed, 510ms);
  EXPECT_EQ(transfer.Port.SentBytes(), "\x45\xFF");
  EXPECT_FALSE(transfer.Port.IsOpen());
}

TEST(FinishTransfer, ClosesThePortWhereverItBroke) {
  for (const Direction direction : Directions) {
    for (std::size_t sent = 1; sent <= 60; ++sent) {
      SCOPED_TRACE(std::string(Title(direction)) + std::to_string(sent));
      Transfer transfer;
      transfer.Port.BreaksAfterBytes = sent;
      const auto elapsed = Elapsed(transfer.Clock, [&] {
        const TransferOutcome outcome = transfer.Run(direction);
        FinishTransfer(transfer.Link, outcome);
      });
      EXPECT_FALSE(transfer.Port.IsOpen());
      EXPECT_LT(elapsed, 150ms + 3 * QuietTime) << "the line is listened to before each command, and behind a table";
    }
  }
}

TEST(FinishTransfer, LeavesALinkThatTheNextTransferCanUse) {
  Transfer transfer;
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(FinishTransfer(transfer.Link, transfer.Run(Direction::Upload)), LinkAck);
    EXPECT_EQ(FinishTransfer(transfer.Link, transfer.Run(Direction::Download)), LinkAck);
  }
  EXPECT_EQ(transfer.Unit.TablesReceived, 3);
  ExpectTableUnchanged(transfer);
}

}  // namespace
}  // namespace chanplan::testing
