// What must hold for the report, the listing and the chart of every table.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "report/html_report.h"
#include "report/listing.h"
#include "report/plan_chart.h"
#include "tests/core/random_table.h"
#include "tests/core/table_of.h"
#include "tests/report/recording_surface.h"
#include "tests/report/svg_reader.h"

namespace chanplan {
namespace {

using testing::RandomTable;
using testing::RecordingSurface;

using Names = std::vector<std::string>;

// Calls `check` with random tables whose names are "<0>", "<1>" and so on.
template <typename Check>
void ForNumberedTables(unsigned tables, const Check& check) {
  for (unsigned seed = 1; seed <= tables && !::testing::Test::HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    SignalStandardTable table = RandomTable(random);
    for (int index = 0; index < table.Count; ++index) table.Row(index).Name = "<" + std::to_string(index) + ">";
    check(table);
  }
}

// The names shown where a standard with k sub-bands takes up `rows(k)` rows, or all that follow when negative.
template <typename RowsOf>
Names NamesEvery(const SignalStandardTable& table, const RowsOf& rows) {
  Names names;
  for (std::int64_t index = 0; index < table.Count;) {
    const SignalStandardRecord& record = table.Row(static_cast<int>(index));
    names.push_back(record.Name);
    const std::int64_t taken = rows(std::int64_t{record.Subbands});
    if (taken < 0) break;
    index += std::max<std::int64_t>(taken, 1);
  }
  return names;
}

TEST(AnyTable, HasARowInTheReportForEveryRecordAndANameForEveryStandard) {
  ForNumberedTables(1000, [](const SignalStandardTable& table) {
    const std::string text = ReportText(table, "x");
    Names names;
    int rows = 0;
    for (std::size_t row = 0; (row = text.find("<tr><td>", row)) != std::string::npos; row += 8) {
      if (text.substr(row + 8, 5) == "<big>") continue;  // the head
      ++rows;
      if (text[row + 8] == '<' && text[row + 9] != '/')
        names.push_back(text.substr(row + 8, text.find('>', row + 8) - row - 7));
    }
    ASSERT_EQ(rows, table.Count);
    ASSERT_EQ(names, NamesEvery(table, [](std::int64_t subbands) { return subbands + 1; }));
  });
}

TEST(AnyTable, HasANameInTheListingForAllButItsFirstSubbands) {
  ForNumberedTables(1000, [](const SignalStandardTable& table) {
    RecordingSurface surface(1000);
    PrintListing(surface, table, "x");
    Names names;
    int thinRules = 0;
    for (const std::string& call : surface.Calls) {
      const std::size_t name = call.find('<');
      if (name != std::string::npos) names.push_back(call.substr(name));
      if (call.starts_with("line") && call.ends_with("pen 1")) ++thinRules;
    }
    const Names expected = NamesEvery(table, [](std::int64_t subbands) { return subbands; });
    ASSERT_EQ(names, expected);
    ASSERT_EQ(thinRules, static_cast<int>(expected.size()));
    ASSERT_EQ(surface.Calls.back(), "end");
  });
}

TEST(AnyTable, IsListedWithEightValuesARecord) {
  ForNumberedTables(300, [](const SignalStandardTable& table) {
    RecordingSurface surface(3);
    PrintListing(surface, table, "x");
    int texts = 0;
    int pages = 1;
    int heads = 0;
    int names = 0;
    for (const std::string& call : surface.Calls) {
      texts += call.starts_with("text") ? 1 : 0;
      pages += call == "page" ? 1 : 0;
      heads += call.ends_with("Uplink Freq.") ? 1 : 0;
      names += call.find('<') != std::string::npos ? 1 : 0;
    }
    ASSERT_EQ(texts, 1 + 9 * heads + names + 8 * table.Count);
    ASSERT_TRUE(heads == pages || heads == pages - 1) << heads << " heads on " << pages << " pages";
  });
}

TEST(AnyTable, HasAChartThatCanBeRead) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    const SignalStandardTable table = RandomTable(random);
    testing::SvgFile file;
    ASSERT_NO_THROW(file = testing::ReadSvg(ChartSvg(table, "x"))) << "seed " << seed;
    ASSERT_EQ(file.Lanes.size(), StandardIndices(table).size()) << "seed " << seed;
    for (const testing::SvgElement& element : file.Elements) {
      ASSERT_LE(element.X + element.Width, 1280 + 2) << "seed " << seed;
      ASSERT_LE(element.Y + element.Height, file.Height) << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace chanplan
