// Reports that do not fit where they are to be written. What console commands write goes the same way.
#include <gtest/gtest.h>

#include <string>

#include "core/file_system.h"
#include "report/html_report.h"
#include "report/listing.h"
#include "report/pdf_surface.h"
#include "report/plan_chart.h"
#include "tests/core/run_in_child.h"
#include "tests/core/small_disk.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;
using testing::Impossible;
using testing::MountSmallDisk;
using testing::NamedRow;
using testing::NamesIn;
using testing::ReadFile;
using testing::RunInChild;
using testing::TempFolder;

// 200 records of long names: more than 64 KiB of anything.
SignalStandardTable BigTable() {
  SignalStandardTable table;
  while (table.Count < MaxRecords) table.Append(NamedRow(std::string(1000, 'x')));
  return table;
}

std::error_code SaveListing(const fs::path& file, const SignalStandardTable& table) {
  PdfSurface surface(LetterPaper);
  PrintListing(surface, table, "x");
  return ReplaceFile(file, surface.Bytes());
}

std::error_code SaveChart(const fs::path& file, const SignalStandardTable& table) {
  return ReplaceFile(file, ChartSvg(table, "x"));
}

std::error_code SaveReportOf(const fs::path& file, const SignalStandardTable& table) {
  return SaveReport(file, table, "x");
}

TEST(FullDisk, LeavesTheFormerFileWhole) {
  for (const auto save : {SaveReportOf, SaveListing, SaveChart}) {
    const TempFolder folder;
    const std::string problem = RunInChild([&]() -> std::string {
      MountSmallDisk(folder.Path());
      const fs::path file = folder / "out";
      if (const auto error = save(file, {})) return "the small one did not fit: " + error.message();
      const std::string former = ReadFile(file);
      if (save(file, BigTable()) != std::errc::no_space_on_device) return "the big one did not fail";
      if (ReadFile(file) != former) return "the former file is not whole";
      if (save(folder / "new", BigTable()) != std::errc::no_space_on_device) return "a new one did not fail";
      if (NamesIn(folder.Path()) != std::set<std::string>{"out"}) return "something was left beside the file";
      return {};
    });
    if (problem.starts_with(Impossible)) GTEST_SKIP() << problem;
    EXPECT_EQ(problem, "");
  }
}

}  // namespace
}  // namespace chanplan
