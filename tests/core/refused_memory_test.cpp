// What happens to tables and files when the system has no memory left.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <limits>
#include <new>
#include <string>

#include "core/sig_file.h"
#include "core/table_difference.h"
#include "core/table_history.h"
#include "core/table_merge.h"
#include "core/validation.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace {

constexpr std::size_t Plenty = std::numeric_limits<std::size_t>::max();

// How many pieces of memory this thread still gets.
thread_local std::size_t left = Plenty;

}  // namespace

// In the place of the system's own.
void* operator new(std::size_t size) {
  if (left == 0) throw std::bad_alloc();
  if (left != Plenty) --left;
  if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::NamesIn;
using testing::ReadFile;
using testing::TempFolder;
using testing::WriteFile;

SignalStandardTable LongNames() {
  SignalStandardTable table;
  for (int index = 0; index < 5; ++index)
    table.Append(NamedRow("a name that needs memory of its own " + std::to_string(index)));
  return table;
}

// Runs `work` with memory for one piece, two pieces and so on until there is enough of it; `check` looks at what
// each of these left. Returns how many pieces it needs.
std::size_t RefuseInTurn(const std::function<void()>& work, const std::function<void(bool done)>& check) {
  for (std::size_t pieces = 0;; ++pieces) {
    bool refused = false;
    left = pieces;
    try {
      work();
    } catch (const std::bad_alloc&) {
      refused = true;
    }
    left = Plenty;
    check(!refused);
    if (!refused || ::testing::Test::HasFailure()) return pieces;
  }
}

TEST(RefusedMemory, LeavesTheFileOfASaveWhole) {
  const TempFolder folder;
  const SignalStandardTable table = LongNames();
  const std::string fresh = WriteSigTable(table);
  const auto needed = RefuseInTurn(
      [&] {
        if (const auto error = SaveSigFile(folder / "table.sig", table)) throw std::bad_alloc();
      },
      [&](bool done) {
        const std::string content =
            NamesIn(folder.Path()).count("table.sig") == 0 ? "" : ReadFile(folder / "table.sig");
        EXPECT_TRUE(content == fresh || (!done && content.empty())) << content;
      });
  EXPECT_GT(needed, 5u) << "names need memory";
}

TEST(RefusedMemory, ReadsATableWhollyOrNotAtAll) {
  const TempFolder folder;
  const SignalStandardTable table = LongNames();
  WriteFile(folder / "table.sig", WriteSigTable(table));
  ReadOutcome outcome;
  const auto needed = RefuseInTurn([&] { outcome = LoadSigFile(folder / "table.sig"); },
                                   [&](bool done) {
                                     if (done) {
                                       EXPECT_TRUE(outcome.Ok());
                                       EXPECT_EQ(outcome.Table, table);
                                     }
                                     EXPECT_EQ(ReadFile(folder / "table.sig"), WriteSigTable(table));
                                   });
  EXPECT_GT(needed, 5u);
}

TEST(RefusedMemory, LeavesTheTablesOfAMergeAsTheyWere) {
  const SignalStandardTable base = LongNames();
  const SignalStandardTable source = LongNames();
  MergeOutcome merged;
  EXPECT_GT(RefuseInTurn([&] { merged = MergeTables(base, source, true); },
                         [&](bool /*done*/) {
                           EXPECT_EQ(base, LongNames());
                           EXPECT_EQ(source, LongNames());
                         }),
            5u);
  EXPECT_EQ(merged.Table.Count, 5);
}

TEST(RefusedMemory, LeavesAHistoryWithTheStepsThatItHad) {
  SignalStandardTable table = LongNames();
  TableHistory history(table);
  table.Records[0].Name = "first";
  history.Record("first", 0, table, 0);
  table.Records[0].Name = "second";
  const auto needed = RefuseInTurn([&] { history.Record("second step with a long name", 0, table, 0); },
                                   [&](bool done) {
                                     EXPECT_EQ(history.UndoName(), done ? "second step with a long name" : "first");
                                     EXPECT_FALSE(history.CanRedo());
                                   });
  EXPECT_GT(needed, 5u);
  history.Undo();
  EXPECT_EQ(history.Undo()->Table, LongNames());
}

}  // namespace
}  // namespace chanplan
