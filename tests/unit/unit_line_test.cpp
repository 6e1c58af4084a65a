#include "unit/unit_line.h"

#include <gtest/gtest.h>

#include "tests/unit/wire_bytes.h"

namespace chanplan::testing {
namespace {

using namespace std::chrono_literals;

TEST(UnitLine, IsQuietWhenNothingCameForAWhile) {
  UnitLine line;
  line.Opened(1s);
  EXPECT_FALSE(line.IsQuiet(1s)) << "nobody knows what the port's former user left behind";
  EXPECT_FALSE(line.IsQuiet(1s + QuietTime - 1ns));
  EXPECT_TRUE(line.IsQuiet(1s + QuietTime));
  line.Heard("x", 2s);
  EXPECT_FALSE(line.IsQuiet(2s));
  EXPECT_TRUE(line.IsQuiet(2s + QuietTime));
}

TEST(UnitLine, IsNotQuietWhileAnEchoMayStillCome) {
  UnitLine line;
  line.SyncSent(1s);
  EXPECT_FALSE(line.IsQuiet(1s + LatestAnswer));
  EXPECT_TRUE(line.IsQuiet(1s + LatestAnswer + 1ns)) << "it is lost";
}

TEST(UnitLine, WaitsForAsManyEchoesAsThereWereSyncBytes) {
  UnitLine line;
  line.SyncSent(1s);
  line.SyncSent(1100ms);
  line.Heard("\xFF", 1200ms);
  EXPECT_FALSE(line.IsQuiet(2s));
  line.Heard("?", 1300ms);
  EXPECT_FALSE(line.IsQuiet(2s)) << "no echo";
  line.Heard("\xFF", 1400ms);
  EXPECT_TRUE(line.IsQuiet(2s));
}

TEST(UnitLine, OwesNothingOnceALaterCommandIsAnswered) {
  UnitLine line;
  line.SyncSent(1s);
  line.CommandSent(1100ms);
  EXPECT_FALSE(line.IsQuiet(1200ms));
  line.Answered(1200ms);
  EXPECT_TRUE(line.IsQuiet(1200ms + QuietTime));
}

TEST(UnitLine, KnowsAUnitThatAnswersSinceThePortWasOpened) {
  UnitLine line;
  EXPECT_FALSE(line.UnitIsThere());
  line.CommandSent(1s);
  EXPECT_FALSE(line.UnitIsThere());
  line.Answered(1s);
  EXPECT_TRUE(line.UnitIsThere());
  line.SyncSent(2s);
  EXPECT_FALSE(line.UnitIsThere());
  line.Heard("\xFF", 2s);
  EXPECT_TRUE(line.UnitIsThere());
  line.Opened(3s);
  EXPECT_FALSE(line.UnitIsThere());
}

TEST(EchoesInFront, AreOnlyThoseThatMakeTheAnswerTooLong) {
  struct Case {
    std::string Answer;
    std::size_t Echoes;
  };
  for (const Case& answer : {
           Case{Bytes({1, 2, 3}), 0},
           Case{Bytes({0xFF, 2, 3}), 0},
           Case{Bytes({0xFF, 0xFF, 0xFF}), 0},
           Case{Bytes({0xFF, 1, 2, 3}), 1},
           Case{Bytes({0xFF, 0xFF, 2, 3}), 1},
           Case{Bytes({0xFF, 0xFF, 1, 2, 3}), 2},
           Case{Bytes({0xFF, 0xFF, 0xFF, 0xFF}), 1},
           Case{Bytes({1, 2, 3, 0xFF}), 0},
           Case{Bytes({0xFF, 1}), 0},
           Case{"", 0},
       })
    EXPECT_EQ(EchoesInFront(answer.Answer, 3), answer.Echoes) << ::testing::PrintToString(answer.Answer);
}

}  // namespace
}  // namespace chanplan::testing
