// Reading, validating and writing a full table, each against a loop that only splits the same bytes.
#include <benchmark/benchmark.h>

#include <sstream>
#include <string>
#include <string_view>

#include "core/sig_file.h"
#include "core/signal_standard_table.h"
#include "core/validation.h"

namespace chanplan {
namespace {

// 200 rows: groups of a standard with four sub-bands.
SignalStandardTable FullTable() {
  constexpr int groupSize = 5;
  SignalStandardTable table;
  for (int index = 0; index < MaxRecords; ++index) {
    const bool head = index % groupSize == 0;
    table.Append({"2", head ? groupSize - 1 : 0, "Standard " + std::to_string(index / groupSize), 890.2 + index,
                  935.2 + index, index, index + 124, 0.2, 0.00625, 1});
  }
  AlignSubbands(table);
  return table;
}

const std::string& FullFile() {
  static const std::string bytes = WriteSigTable(FullTable());
  return bytes;
}

void SplitLinesAndFields(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t end = bytes.find('\n');
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end + 1);
    for (std::size_t tab; (tab = line.find('\t')) != std::string_view::npos; line.remove_prefix(tab + 1)) {
      std::string field(line.substr(0, tab));
      benchmark::DoNotOptimize(field);
    }
    benchmark::DoNotOptimize(line);
  }
}

void SplitOnly(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) SplitLinesAndFields(FullFile());
}

void Read(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    std::istringstream input(FullFile());
    benchmark::DoNotOptimize(ReadSigTable(input));
  }
}

void Validate(benchmark::State& state) {
  SignalStandardTable table = FullTable();
  const auto names = ListNames(table);
  for ([[maybe_unused]] auto _ : state) {
    AlignSubbands(table);
    benchmark::DoNotOptimize(WarningsText(FindWarnings(table, names)));
  }
}

void Write(benchmark::State& state) {
  const SignalStandardTable table = FullTable();
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(WriteSigTable(table));
}

BENCHMARK(SplitOnly);
BENCHMARK(Read);
BENCHMARK(Validate);
BENCHMARK(Write);

}  // namespace
}  // namespace chanplan

BENCHMARK_MAIN();
