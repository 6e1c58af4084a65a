// What must hold on the wire for every table, tried on thousands of random ones.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/signal_standard_table.h"
#include "tests/core/random_table.h"
#include "tests/core/table_of.h"
#include "tests/unit/fake_unit.h"
#include "tests/unit/hand_driven_link.h"
#include "tests/unit/wire_bytes.h"
#include "unit/transfer.h"
#include "unit/wire_encoding.h"

namespace chanplan::testing {
namespace {

constexpr RandomTableOptions Wire{.FitsTheWire = true};
constexpr RandomTableOptions ShortWire{.FitsTheWire = true, .MaxRows = 30};
constexpr RandomTableOptions ShortAny{.MaxRows = 30};

// Calls `check` with a random generator for each seed, until one fails.
template <typename Check>
void ForSeeds(unsigned seeds, const Check& check) {
  for (unsigned seed = 1; seed <= seeds && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    check(random);
  }
}

SignalStandardTable Decoded(std::string_view records) {
  SignalStandardTable table;
  for (; !records.empty(); records.remove_prefix(48)) table.Append(DecodeRecord(records.substr(0, 48)));
  return table;
}

// A unit, and a table that goes to it and comes back. The clock takes wide steps, as nothing
// here is about time.
struct Exchange : HandDrivenLink {
  FakeUnit Unit;
  UnitTable Held;
  TransferProgress Progress;

  Exchange() {
    Clock.Advance = [](std::chrono::nanoseconds) { return 1ms; };
    Port.Script = Unit.Script();
    Open();
  }
  LinkResult Upload() {
    Held.UnitTableTag = UploadTag(Held.UnitTableTag);
    return UploadChanplans(Link, EncodeTable(Held.Table, Held.UnitTableTag), Progress);
  }
  LinkResult Download() { return Query_Chanplans(Link, Held, Progress); }
};

TEST(RandomTables, AreTheSameEncodedAndDecoded) {
  ForSeeds(3000, [](std::mt19937& random) {
    const SignalStandardTable table = RandomTable(random, OneIn(random, 10) ? Wire : ShortWire);
    const auto tag = static_cast<std::uint16_t>(Between(random, 0, 65535));
    const std::string bytes = EncodeTable(table, tag);
    ASSERT_EQ(bytes.size(), 4 + 48 * static_cast<std::size_t>(table.Count));
    EXPECT_EQ(bytes.substr(0, 4), TableHeader(tag, table.Count));
    EXPECT_EQ(Decoded(bytes.substr(4)), table);
    EXPECT_TRUE(WireLosses(table).empty());
  });
}

TEST(RandomTables, AreTheSameBytesDecodedAndEncoded) {
  ForSeeds(3000, [](std::mt19937& random) {
    // Names that the field can hold in one way only; the rest is any bytes.
    std::string record(48, '\0');
    for (char& byte : record) byte = static_cast<char>(Between(random, 0, 255));
    record.replace(2, 24, TextToFixedBytes(RandomName(random, Wire), 24));
    EXPECT_EQ(EncodeRecord(DecodeRecord(record), 1), record);
  });
}

TEST(RandomTables, AreTheSameUploadedAndDownloaded) {
  ForSeeds(150, [](std::mt19937& random) {
    Exchange exchange;
    exchange.Held.Table = RandomTable(random, ShortWire);
    exchange.Held.UnitTableTag = static_cast<std::uint16_t>(Between(random, 1, 65535));
    const UnitTable sent = exchange.Held;
    ASSERT_EQ(exchange.Upload(), LinkTrue);
    exchange.Held = {};
    ASSERT_EQ(exchange.Download(), LinkTrue);
    EXPECT_EQ(exchange.Held.Table, sent.Table);
    EXPECT_EQ(exchange.Held.UnitTableTag, sent.UnitTableTag);
  });
}

TEST(RandomTables, StayTheSameOverManyRounds) {
  ForSeeds(20, [](std::mt19937& random) {
    Exchange exchange;
    exchange.Held.Table = RandomTable(random, ShortWire);
    ASSERT_EQ(exchange.Upload(), LinkTrue);
    const UnitTable first = exchange.Held;
    const std::string bytes = exchange.Unit.TableBytes;
    for (int round = 0; round < 5; ++round) {
      ASSERT_EQ(exchange.Download(), LinkTrue);
      ASSERT_EQ(exchange.Upload(), LinkTrue);
      EXPECT_EQ(exchange.Held.Table, first.Table);
      EXPECT_EQ(exchange.Unit.TableBytes, bytes);
    }
    EXPECT_EQ(exchange.Unit.TablesReceived, 6);
  });
}

// Whatever bytes a unit holds: what was once downloaded is what every later download brings.
TEST(RandomReplies, OnceDownloadedStayTheSame) {
  ForSeeds(150, [](std::mt19937& random) {
    Exchange exchange;
    const std::int64_t records = OneIn(random, 50) ? 203 : Between(random, 0, 30);
    std::string reply = TableHeader(static_cast<int>(Between(random, 1, 65535)), static_cast<int>(records));
    for (std::int64_t byte = 0; byte < 48 * records; ++byte)
      reply += static_cast<char>(OneIn(random, 6) ? Between(random, 0, 3) : Between(random, 0, 255));
    // Subbands are mostly few, or all of the table would be sub-bands of the first row.
    for (std::size_t offset = 4; offset < reply.size(); offset += 48)
      reply[offset + 1] = static_cast<char>(OneIn(random, 10) ? Between(random, 0, 255) : Between(random, 0, 2));
    exchange.Unit.TableBytes = reply;

    const LinkResult result = exchange.Download();
    ASSERT_TRUE(result == LinkTrue || (result == LinkFalse && records > 200 && exchange.Held.Table.Count == 200));
    const UnitTable first = exchange.Held;
    for (int round = 0; round < 2; ++round) {
      ASSERT_EQ(exchange.Upload(), LinkTrue);
      ASSERT_EQ(exchange.Download(), LinkTrue);
      EXPECT_EQ(exchange.Held.Table, first.Table);
      EXPECT_EQ(exchange.Held.UnitTableTag, first.UnitTableTag);
    }
  });
}

// Tables of any values that a file can hold.
TEST(RandomTables, AreSentWholeOrNotAtAll) {
  int sentTables = 0;
  int refusedTables = 0;
  ForSeeds(500, [&](std::mt19937& random) {
    Exchange exchange;
    exchange.Held.Table = RandomTable(random, OneIn(random, 3) ? ShortWire : ShortAny);
    try {
      ASSERT_EQ(exchange.Upload(), LinkTrue);
      ++sentTables;
      EXPECT_EQ(exchange.Port.SentBytes().size(), 5 + 48 * static_cast<std::size_t>(exchange.Held.Table.Count));
    } catch (const WireMisfit&) {
      ++refusedTables;
      EXPECT_EQ(exchange.Port.SentBytes(), "");
    }
  });
  EXPECT_GT(sentTables, 100);
  EXPECT_GT(refusedTables, 100);
}

}  // namespace
}  // namespace chanplan::testing
