#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/unit/hand_driven_link.h"
#include "tests/unit/recorded_progress.h"
#include "tests/unit/wire_bytes.h"
#include "unit/transfer.h"

namespace chanplan::testing {
namespace {

using Names = std::vector<std::string>;
using Texts = std::vector<std::string>;

constexpr char SendTable = 'O';

// A download over an open link into a table that has rows already.
struct Download : HandDrivenLink {
  UnitTable Held{TableOf({NamedRow("before"), NamedRow("before too")}), 4711};
  RecordedProgress Progress;
  const UnitTable Before = Held;

  LinkResult Run(std::vector<DelayedBytes> replies) {
    Open();
    Port.Script = AnswerTo(SendTable, std::move(replies));
    return Query_Chanplans(Link, Held, Progress);
  }
  // Since the command was sent.
  std::chrono::nanoseconds Lasted() const { return Clock.Time - Port.Sent.at(0).Time; }
};

void ExpectUnchanged(const Download& download) {
  EXPECT_EQ(download.Held.Table, download.Before.Table);
  EXPECT_EQ(download.Held.UnitTableTag, download.Before.UnitTableTag);
}

TEST(Query_Chanplans, ReplacesTheTableByThatOfTheUnit) {
  const WireNumbers gsm = {880200000, 925200000, 975, 1023, 200000, 200000, 1};
  const WireNumbers cdma = {825030000, 870030000, 1, 799, 1230000, 30000, 2};
  Download download;
  EXPECT_EQ(
      download.Run(
          {{TableHeader(0x1234, 2) + RecordBytes(2, 0, "GSM 900", gsm) + RecordBytes(0x81, 0, "CDMA 800", cdma), 5}}),
      LinkTrue);
  EXPECT_EQ(download.Port.SentBytes(), "\x4F");
  EXPECT_EQ(download.Held.UnitTableTag, 0x1234);
  EXPECT_EQ(download.Held.Table, TableOf({{"2", 0, "GSM 900", 880.2, 925.2, 975, 1023, 0.2, 0.2, 1},
                                          {"129", 0, "CDMA 800", 825.03, 870.03, 1, 799, 1.23, 0.03, 2}}));
}

TEST(Query_Chanplans, ReadsFrequenciesInHertz) {
  Download download;
  std::string record(48, '\0');
  record.replace(26, 4, Bytes({0x35, 0xA4, 0xE9, 0x00}));
  EXPECT_EQ(download.Run({{TableHeader(1, 1) + record, 5}}), LinkTrue);
  EXPECT_EQ(download.Held.Table.Row(0).UplinkStartFreq, 900);
}

TEST(Query_Chanplans, TakesAHeaderWithoutRecordsForAnEmptyTableAtOnce) {
  Download download;
  EXPECT_EQ(download.Run({{TableHeader(9, 0), 5}}), LinkTrue);
  EXPECT_EQ(download.Held.Table.Count, 0);
  EXPECT_EQ(download.Held.UnitTableTag, 9);
  EXPECT_LT(download.Lasted(), 10ms + QuietTime) << "more would follow within that";
}

TEST(Query_Chanplans, EndsTheListAtItsMark) {
  const std::string mark = RecordBytes(0xFF, 2, "end of list");
  const std::string record = RecordBytes(2, 0, "GSM");
  struct Case {
    const char* Description;
    int Announced;
    std::string Records;
    int Count;
  };
  const Case cases[] = {
      {"first", 3, mark + record + record, 0},
      {"second", 3, record + mark + record, 1},
      {"last", 3, record + record + mark, 2},
      {"none", 3, record + record + record, 3},
      {"a State one lower", 2, RecordBytes(0xFE, 0, "GSM") + record, 2},
  };
  for (const Case& list : cases) {
    SCOPED_TRACE(list.Description);
    Download download;
    EXPECT_EQ(download.Run({{TableHeader(1, list.Announced) + list.Records, 5}}), LinkTrue);
    EXPECT_EQ(download.Held.Table.Count, list.Count);
  }
}

struct NameCase {
  const char* Description;
  std::vector<std::pair<int, const char*>> Records;  // sub-bands and name on the wire
  Names Read;
};

TEST(Query_Chanplans, NamesSubbandsAsTheirStandard) {
  const NameCase cases[] = {
      {"two sub-bands", {{2, "Band"}, {0, "x"}, {0, ""}}, {"Band", "Band", "Band"}},
      {"a standard behind them", {{2, "Band"}, {0, "x"}, {0, "y"}, {0, "Next"}}, {"Band", "Band", "Band", "Next"}},
      {"no sub-bands", {{0, "One"}, {0, "Two"}}, {"One", "Two"}},
      {"two split standards", {{1, "A"}, {0, "x"}, {1, "B"}, {0, "y"}, {0, "C"}}, {"A", "A", "B", "B", "C"}},
      {"a standard among the sub-bands of another starts to count anew",
       {{3, "A"}, {0, "x"}, {1, "B"}, {0, "y"}, {0, "C"}},
       {"A", "A", "B", "B", "C"}},
      {"fewer rows than sub-bands", {{5, "A"}, {0, "x"}}, {"A", "A"}},
      {"a standard without a name", {{1, ""}, {0, "x"}}, {"", ""}},
      {"many sub-bands", {{255, "A"}, {0, "x"}}, {"A", "A"}},
  };
  for (const NameCase& names : cases) {
    SCOPED_TRACE(names.Description);
    std::string reply = TableHeader(1, static_cast<int>(names.Records.size()));
    for (const auto& [subbands, name] : names.Records) reply += RecordBytes(0, subbands, name);
    Download download;
    EXPECT_EQ(download.Run({{reply, 5}}), LinkTrue);
    EXPECT_EQ(RowNames(download.Held.Table), names.Read);
    for (int index = 0; index < download.Held.Table.Count; ++index)
      EXPECT_EQ(download.Held.Table.Row(index).Subbands, names.Records[static_cast<std::size_t>(index)].first);
  }
}

TEST(Query_Chanplans, ReadsNamesFromTheirFixedField) {
  struct Case {
    std::string Field;
    const char* Name;
  };
  const Case cases[] = {
      {"ABCDEFGHIJKLMNOPQRSTUVWX", "ABCDEFGHIJKLMNOPQRSTUVWX"},
      {Bytes({'A', 'B', 'C', 'D', 0, 'F', 'G'}), "ABCD"},
      {Bytes({'A', 1, 'B', 9, 31, 'C'}), "ABC"},
      {Bytes({0, 'A'}), ""},
      {"\xC4 900", "\xC4 900"},
  };
  for (const Case& name : cases) {
    Download download;
    EXPECT_EQ(download.Run({{TableHeader(1, 1) + RecordBytes(0, 0, name.Field), 5}}), LinkTrue);
    EXPECT_EQ(download.Held.Table.Row(0).Name, name.Name);
  }
}

TEST(Query_Chanplans, TakesAFullTable) {
  std::string reply = TableHeader(1, 200);
  for (int index = 0; index < 200; ++index) reply += RecordBytes(1, 0, std::to_string(index));
  Download download;
  EXPECT_EQ(download.Run({{reply, 5}}), LinkTrue);
  EXPECT_EQ(download.Held.Table.Count, 200);
  EXPECT_EQ(download.Held.Table.Row(199).Name, "199");
}

TEST(Query_Chanplans, KeepsTheFirst200OfMoreRecordsAndSaysSo) {
  for (const int announced : {201, 255, 256, 300}) {
    SCOPED_TRACE(announced);
    std::string reply = TableHeader(77, announced);
    for (int index = 0; index < announced; ++index) reply += RecordBytes(1, 0, std::to_string(index));
    Download download;
    EXPECT_EQ(download.Run({{reply, 5}}), LinkFalse);
    EXPECT_EQ(download.Held.Table.Count, 200);
    EXPECT_EQ(download.Held.Table.Row(0).Name, "0");
    EXPECT_EQ(download.Held.Table.Row(199).Name, "199");
    EXPECT_EQ(download.Held.UnitTableTag, 77);
  }
}

TEST(Query_Chanplans, IsCompleteWhenTheListEndsBehindRecord200) {
  std::string reply = TableHeader(1, 202);
  for (int index = 0; index < 202; ++index) reply += RecordBytes(index == 200 ? 0xFF : 1, 0, "GSM");
  Download download;
  EXPECT_EQ(download.Run({{reply, 5}}), LinkTrue);
  EXPECT_EQ(download.Held.Table.Count, 200);
}

TEST(Query_Chanplans, WaitsForTheLastByteOfTheLastRecord) {
  const std::string reply = TableHeader(1, 2) + RecordBytes(1, 0, "A") + RecordBytes(1, 0, "B", {.Step = 0x0102});
  // 48 bytes a record are in before the last ones, four bytes of header included.
  for (std::size_t missing = 1; missing <= 5; ++missing) {
    SCOPED_TRACE(missing);
    const std::size_t first = reply.size() - missing;
    Download download;
    EXPECT_EQ(download.Run({{reply.substr(0, first), 5}, {reply.substr(first), 2000}}), LinkTrue);
    EXPECT_EQ(download.Held.Table.Count, 2);
    EXPECT_EQ(download.Held.Table.Row(1).Step, 0x0102);
  }
}

TEST(Query_Chanplans, PutsTheReplyTogetherFromPiecesOfAnySize) {
  const std::string reply = TableHeader(0x0101, 3) + RecordBytes(1, 1, "A") + RecordBytes(0, 0, "x") +
                            RecordBytes(3, 0, "B", {.UplinkHertz = 900000000, .Step = 1});
  for (std::size_t piece : {1u, 2u, 3u, 5u, 47u, 48u, 49u, 147u}) {
    SCOPED_TRACE(piece);
    std::vector<DelayedBytes> pieces;
    for (std::size_t begin = 0; begin < reply.size(); begin += piece)
      pieces.push_back({reply.substr(begin, piece), 10 + static_cast<int>(begin)});
    Download download;
    EXPECT_EQ(download.Run(pieces), LinkTrue);
    EXPECT_EQ(RowNames(download.Held.Table), (Names{"A", "A", "B"}));
    EXPECT_EQ(download.Held.Table.Row(2).UplinkStartFreq, 900);
    EXPECT_EQ(download.Held.UnitTableTag, 0x0101);
  }
}

// A byte that was doubled, lost, or is another answer's, moves all behind it.
TEST(Query_Chanplans, TakesNoTableThatIsLongerThanAnnounced) {
  const std::string table = TableHeader(0x0100, 1) + RecordBytes(1, 0, "A");
  struct Case {
    const char* Description;
    std::vector<DelayedBytes> Replies;
  };
  const Case cases[] = {
      {"a record more", {{table + RecordBytes(1, 0, "B"), 5}}},
      {"a byte more", {{table + "x", 5}}},
      {"a byte that comes later", {{table, 5}, {"x", 30}}},
      {"an echo in front, which makes the tag's zero the count's", {{Bytes({0xFF}) + table, 5}}},
      {"the same, bytes one by one", {{Bytes({0xFF}) + table.substr(0, 3), 5}, {table.substr(3), 30}}},
      {"a doubled byte of the tag", {{Bytes({0x01, 0x00}) + table.substr(1), 5}}},
      {"a lost byte of the count, before a State of 0", {{TableHeader(1, 1).substr(0, 3) + RecordBytes(0, 0, "A"), 5}}},
  };
  for (const Case& tooLong : cases) {
    SCOPED_TRACE(tooLong.Description);
    Download download;
    EXPECT_EQ(download.Run(tooLong.Replies), LinkUnrest);
    ExpectUnchanged(download);
  }
}

TEST(Query_Chanplans, IsNotAnsweredByWhatWaitedBefore) {
  Download download;
  download.Open();
  download.Port.Arrive(TableHeader(1, 1) + RecordBytes(1, 0, "stale"));
  download.Port.Script = AnswerTo(SendTable, {{TableHeader(2, 1) + RecordBytes(1, 0, "fresh"), 5}});
  EXPECT_EQ(Query_Chanplans(download.Link, download.Held, download.Progress), LinkTrue);
  EXPECT_EQ(RowNames(download.Held.Table), Names{"fresh"});
}

TEST(Query_Chanplans, LeavesTheTableAsItWasWhenTheReplyIsNotCompleteInTime) {
  const std::string reply = TableHeader(1, 2) + RecordBytes(1, 0, "A") + RecordBytes(1, 0, "B");
  for (const std::size_t arrived : {0u, 1u, 3u, 4u, 5u, 52u, 97u, 99u}) {
    SCOPED_TRACE(arrived);
    Download download;
    EXPECT_EQ(download.Run({{reply.substr(0, arrived), 5}}), LinkTimeout);
    EXPECT_GT(download.Lasted(), 30000ms);
    EXPECT_LT(download.Lasted(), 30005ms);
    ExpectUnchanged(download);
  }
}

TEST(Query_Chanplans, GivesTheWholeReplyThirtySeconds) {
  const std::string reply = TableHeader(1, 1) + RecordBytes(1, 0, "A");
  struct Case {
    int LastByteMs;
    LinkResult Result;
  };
  for (const Case& last : {Case{29995, LinkTrue}, Case{30005, LinkTimeout}}) {
    SCOPED_TRACE(last.LastByteMs);
    Download download;
    EXPECT_EQ(download.Run({{reply.substr(0, 20), 15000}, {reply.substr(20), last.LastByteMs}}), last.Result);
  }
}

TEST(Query_Chanplans, EndsSoonAfterThePortBreaks) {
  Download download;
  download.Port.BreaksAt = 500ms;
  EXPECT_EQ(download.Run({{TableHeader(1, 1), 5}, {RecordBytes(1, 0, "A"), 1000}}), LinkTimeout);
  EXPECT_LT(download.Clock.Time, 505ms);
  ExpectUnchanged(download);
}

TEST(Query_Chanplans, KeepsACompleteReplyWhenThePortBreaksBehindIt) {
  Download download;
  download.Open();
  download.Port.Script = [&](std::string_view) {
    download.Port.BreaksAt = download.Clock.Time + 5ms;
    return std::vector<DelayedBytes>{{TableHeader(1, 1) + RecordBytes(1, 0, "A"), 5}};
  };
  EXPECT_EQ(Query_Chanplans(download.Link, download.Held, download.Progress), LinkTrue);
  EXPECT_EQ(RowNames(download.Held.Table), Names{"A"});
}

TEST(Query_Chanplans, ShowsHowManyOfTheBytesAreIn) {
  const std::string reply = TableHeader(1, 2) + RecordBytes(1, 0, "A") + RecordBytes(1, 0, "B");
  Download download;
  EXPECT_EQ(download.Run({{reply.substr(0, 3), 10}, {reply.substr(3, 17), 20}, {reply.substr(20), 30}}), LinkTrue);
  EXPECT_EQ(download.Progress.Texts, (Texts{"range 0 100", "range 0 96"}));
  std::vector<int> values = download.Progress.Values;
  values.erase(std::unique(values.begin(), values.end()), values.end());
  EXPECT_EQ(values, (std::vector<int>{20, 100}));
}

TEST(Query_Chanplans, LetsEventsRunWhileItWaits) {
  Download download;
  download.Run({});
  EXPECT_LE(download.Clock.LongestPause, 20ms) << "a click must not wait longer";
  EXPECT_GE(download.Clock.GivenAway, 27s) << "others get most of thirty seconds";
}

}  // namespace
}  // namespace chanplan::testing
