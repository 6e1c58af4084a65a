// What must hold for every table, tried on thousands of random ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "core/lenient_number.h"
#include "core/number_picture.h"
#include "core/sig_file.h"
#include "core/table_difference.h"
#include "core/table_merge.h"
#include "core/validation.h"
#include "tests/core/random_table.h"
#include "tests/core/table_of.h"

namespace chanplan {
namespace {

using testing::Between;
using testing::NamedRow;
using testing::OneIn;
using testing::RandomTable;
using testing::RandomTableOptions;

constexpr RandomTableOptions Wire{.FitsTheWire = true};
constexpr RandomTableOptions Named{.NamedRows = true};

ReadOutcome Read(const std::string& bytes) {
  std::istringstream input(bytes);
  return ReadSigTable(input);
}

// Calls `check` with a random table, and with the generator for more, until one fails.
template <typename Check>
void ForRandomTables(unsigned tables, const RandomTableOptions& options, const Check& check) {
  for (unsigned seed = 1; seed <= tables && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const SignalStandardTable table = RandomTable(random, options);
    check(table, random);
  }
}

TEST(RandomTable, HasTheRowsThatItsOptionsPromise) {
  bool full = false;
  bool empty = false;
  ForRandomTables(1000, Wire, [&](const SignalStandardTable& table, std::mt19937&) {
    full = full || table.Count == MaxRecords;
    empty = empty || table.Count == 0;
    int standards = 0;
    for (int index = 0; index < table.Count; index += table.Row(index).Subbands + 1, ++standards) {
      const SignalStandardRecord& standard = table.Row(index);
      ASSERT_GE(standard.Subbands, 0);
      ASSERT_LE(index + standard.Subbands, table.Count - 1);
      for (int number = 1; number <= standard.Subbands; ++number) {
        ASSERT_EQ(table.Row(index + number).Subbands, 0);
        ASSERT_EQ(table.Row(index + number).Name, standard.Name);
      }
    }
    ASSERT_EQ(StandardIndices(table).size(), static_cast<std::size_t>(standards));
    for (int index = 0; index < table.Count; ++index) {
      const SignalStandardRecord& row = table.Row(index);
      ASSERT_TRUE(StateValue(row) >= 0 && StateValue(row) <= 254) << row.State;
      ASSERT_LE(row.Name.size(), 24u);
      for (const char c : row.Name) ASSERT_GE(static_cast<unsigned char>(c), 32);
      for (const std::int32_t number : {row.StartChannel, row.StopChannel, row.Step})
        ASSERT_TRUE(number >= 0 && number <= 65535) << number;
      for (const double megahertz : {row.UplinkStartFreq, row.DownlinkStartFreq, row.Bandwidth, row.Spacing})
        ASSERT_TRUE(megahertz >= 0 && megahertz < 4294.967296) << megahertz;
    }
  });
  EXPECT_TRUE(full);
  EXPECT_TRUE(empty);
}

TEST(RandomTable, HasNamesInAllRowsWhereAsked) {
  ForRandomTables(300, Named, [](const SignalStandardTable& table, std::mt19937&) {
    for (const std::string& name : testing::RowNames(table)) ASSERT_NE(name, "");
  });
}

TEST(AnyTable, IsReadAsItWasWritten) {
  for (const RandomTableOptions& options : {RandomTableOptions(), Wire})
    ForRandomTables(1000, options, [](const SignalStandardTable& table, std::mt19937&) {
      const ReadOutcome outcome = Read(WriteSigTable(table));
      ASSERT_TRUE(outcome.Ok()) << outcome.Reason;
      ASSERT_EQ(outcome.Table, table);
      ASSERT_EQ(outcome.Truncated, table.Count == MaxRecords);
    });
}

TEST(AnyTable, IsWrittenTheSameOnceItWasRead) {
  ForRandomTables(500, {}, [](const SignalStandardTable& original, std::mt19937& random) {
    // Numbers of more digits than a file keeps, and integers where the separator is a comma.
    SignalStandardTable table = original;
    for (int index = 0; index < table.Count; ++index) {
      table.Row(index).UplinkStartFreq = static_cast<double>(Between(random, 1, 1'000'000)) / 7;
      table.Row(index).Spacing = static_cast<double>(Between(random, 1, 1'000'000)) / 3e300;
    }
    const std::string once = WriteSigTable(table);
    ASSERT_EQ(WriteSigTable(Read(once).Table), once);
    const SignalStandardTable cut = Read(WriteSigTable(table, ',')).Table;
    ASSERT_EQ(WriteSigTable(Read(WriteSigTable(cut)).Table), WriteSigTable(cut));
  });
}

TEST(AnyTable, IsWrittenInLinesOfTenFields) {
  ForRandomTables(500, {}, [](const SignalStandardTable& table, std::mt19937&) {
    const std::string bytes = WriteSigTable(table);
    ASSERT_EQ(std::ranges::count(bytes, '\n'), table.Count + 1);
    ASSERT_EQ(std::ranges::count(bytes, '\t'), (table.Count + 1) * 9);
    ASSERT_TRUE(bytes.ends_with("\r\n"));
  });
}

TEST(AnyTable, IsInLineAfterOneAlignmentAndHasTheSameWarningsBefore) {
  ForRandomTables(1000, {}, [](const SignalStandardTable& table, std::mt19937&) {
    const std::vector<std::string> listNames = ListNames(table);
    SignalStandardTable once = table;
    AlignSubbands(once);
    SignalStandardTable twice = once;
    AlignSubbands(twice);
    ASSERT_EQ(twice, once);
    ASSERT_EQ(FindWarnings(table, listNames), FindWarnings(once, listNames));
  });
}

TEST(AnyTable, HasOnlyFourFieldsOfSubbandsAligned) {
  ForRandomTables(1000, Wire, [](const SignalStandardTable& table, std::mt19937&) {
    SignalStandardTable expected = table;
    for (int head = 0; head < table.Count; head += table.Row(head).Subbands + 1)
      for (int number = 1; number <= table.Row(head).Subbands; ++number) {
        SignalStandardRecord& subband = expected.Row(head + number);
        const int code = 'A' + (number - 1) % 191;
        subband.Name = table.Row(head).Name + "(" + static_cast<char>(code) + ")";
        subband.Bandwidth = table.Row(head).Bandwidth;
        subband.Spacing = table.Row(head).Spacing;
        subband.Step = table.Row(head).Step;
      }
    SignalStandardTable validated = table;
    AlignSubbands(validated);
    ASSERT_EQ(validated, expected);
    for (const Warning& warning : FindWarnings(table, {})) {
      ASSERT_EQ(warning.Name, validated.Row(warning.Row).Name);
      const std::string text = WarningText(warning);
      ASSERT_TRUE(text.starts_with("Warning:\t")) << text;
      ASSERT_EQ(std::ranges::count(text, '\t'), 2) << text;
    }
  });
}

TEST(AnyTable, HasNoDifferencesFromItself) {
  ForRandomTables(500, {}, [](const SignalStandardTable& table, std::mt19937&) {
    ASSERT_EQ(TableDifferences(table, table), std::vector<std::string>());
    ASSERT_EQ(RowDifferences(table, table), std::vector<std::string>());
  });
}

TEST(AnyTable, DiffersFromATableWithOneFieldChanged) {
  ForRandomTables(500, {}, [](const SignalStandardTable& table, std::mt19937& random) {
    if (table.Count == 0) return;
    SignalStandardTable changed = table;
    SignalStandardRecord& row = changed.Row(static_cast<int>(Between(random, 0, table.Count - 1)));
    row.StopChannel = row.StopChannel == 5 ? 6 : 5;
    ASSERT_EQ(RowDifferences(table, changed).size(), 1u);
    ASSERT_FALSE(TableDifferences(table, changed).empty());
  });
}

// A table of few base names, so that many match. The steps number the rows from `firstStep` on.
SignalStandardTable TableToMerge(std::mt19937& random, std::int32_t firstStep) {
  SignalStandardTable table = RandomTable(random, Named);
  const std::int64_t names = Between(random, 1, 60);
  std::string name;
  for (int index = 0; index < table.Count; ++index) {
    if (index == 0 || OneIn(random, 2)) name = "N" + std::to_string(Between(random, 1, names));
    table.Row(index).Name = OneIn(random, 2) ? name : name + "(A)";
    table.Row(index).Step = firstStep + index;
  }
  return table;
}

constexpr std::int32_t BaseSteps = 1000;
constexpr std::int32_t SourceSteps = 2000;

std::set<std::string, std::less<>> BaseNames(const SignalStandardTable& table) {
  std::set<std::string, std::less<>> names;
  for (const std::string& name : testing::RowNames(table)) names.emplace(BaseName(name));
  return names;
}

TEST(AnyMerge, KeepsTheBaseAndAppendsWhatItHasNotGot) {
  for (unsigned seed = 1; seed <= 1000; ++seed) {
    std::mt19937 random(seed);
    const SignalStandardTable base = TableToMerge(random, BaseSteps);
    const SignalStandardTable source = TableToMerge(random, SourceSteps);
    SignalStandardTable expected = base;
    const auto baseNames = BaseNames(base);
    for (int index = 0; index < source.Count && expected.Count < MaxRecords; ++index)
      if (!baseNames.contains(BaseName(source.Row(index).Name))) expected.Append(source.Row(index));
    const bool full = expected.Count == MaxRecords;
    if (expected.Count == 0) expected.Append({});

    const MergeOutcome outcome = MergeTables(base, source, false);
    ASSERT_EQ(outcome.Table, expected) << "seed " << seed;
    ASSERT_EQ(outcome.Truncated, full) << "seed " << seed;
  }
}

TEST(AnyMerge, InReplacingKeepsTheSourceAndTheOrderOfTheBase) {
  for (unsigned seed = 1; seed <= 1000; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const SignalStandardTable base = TableToMerge(random, BaseSteps);
    const SignalStandardTable source = TableToMerge(random, SourceSteps);
    const MergeOutcome outcome = MergeTables(base, source, true);
    ASSERT_LE(outcome.Table.Count, MaxRecords);
    if (base.Count + source.Count == 0) continue;

    std::vector<std::int32_t> baseSteps;
    std::set<std::int32_t> sourceSteps;
    for (int index = 0; index < outcome.Table.Count; ++index) {
      const SignalStandardRecord& row = outcome.Table.Row(index);
      if (row.Step < SourceSteps) {
        ASSERT_EQ(row, base.Row(row.Step - BaseSteps));
        baseSteps.push_back(row.Step);
      } else {
        ASSERT_EQ(row, source.Row(row.Step - SourceSteps));
        ASSERT_TRUE(sourceSteps.insert(row.Step).second) << "row copied twice: " << row.Name;
      }
    }
    ASSERT_TRUE(std::ranges::is_sorted(baseSteps, std::less_equal<>())) << "base order lost, or a row copied twice";
    ASSERT_EQ(outcome.Truncated, outcome.Table.Count == MaxRecords);
    if (outcome.Truncated) continue;

    ASSERT_EQ(sourceSteps.size(), static_cast<std::size_t>(source.Count));
    const auto sourceNames = BaseNames(source);
    for (int index = 0; index < base.Count; ++index) {
      const SignalStandardRecord& row = base.Row(index);
      const bool kept = std::ranges::binary_search(baseSteps, row.Step);
      ASSERT_TRUE(kept || sourceNames.contains(BaseName(row.Name))) << row.Name;
    }
  }
}

TEST(AnyNumber, IsTheSameAfterItsShortestDecimal) {
  std::mt19937 random(1);
  for (int round = 0; round < 100'000; ++round) {
    const double value = testing::RandomDecimal(random);
    ASSERT_EQ(LeadingNumber(ShortestDecimal(value)), value);
    ASSERT_LE(ToDecimalDigits(value).Digits.size(), 15u);
  }
}

TEST(AnyNumber, HasThePictureOfItsDigits) {
  std::mt19937 random(1);
  for (int round = 0; round < 50'000; ++round) {
    const std::int64_t thousandths = Between(random, 0, 999'999'999'999);
    const std::string digits = std::to_string(thousandths / 1000);
    std::string expected;
    for (std::size_t place = 0; place < digits.size(); ++place) {
      if (place > 0 && (digits.size() - place) % 3 == 0) expected += ',';
      expected += digits[place];
    }
    expected += "." + std::to_string(1000 + thousandths % 1000).substr(1);
    ASSERT_EQ(FormatNumber(static_cast<double>(thousandths) / 1000, "#,##0.000"), expected);
  }
}

}  // namespace
}  // namespace chanplan
