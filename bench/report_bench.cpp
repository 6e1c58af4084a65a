// The report, the listing and the chart of a full table, each against a loop that only formats the
// same numbers; a PDF file against an empty one.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <array>
#include <charconv>
#include <string>

#include "report/html_report.h"
#include "report/listing.h"
#include "report/pdf_listing.h"
#include "report/plan_chart.h"

namespace chanplan {
namespace {

// 200 rows: groups of a standard with four sub-bands.
const SignalStandardTable& FullTable() {
  static const SignalStandardTable full = [] {
    constexpr int groupSize = 5;
    SignalStandardTable table;
    for (int index = 0; index < MaxRecords; ++index)
      table.Append({"2", index % groupSize == 0 ? groupSize - 1 : 0, "Standard " + std::to_string(index / groupSize),
                    890.2 + index, 935.2 + index, index, index + 124, 0.2, 0.00625, 1});
    return table;
  }();
  return full;
}

template <typename... Places>
void AppendNumber(std::string& text, Places... valueAndPlaces) {
  std::array<char, 64> buffer;
  text.append(buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), valueAndPlaces...).ptr);
}

// Takes everything and draws nothing.
class NoSurface : public PrintSurface {
 public:
  void SetFont(std::string_view, double) override {}
  double TextWidth(std::string_view text) const override { return static_cast<double>(text.size()) / 14; }
  double PrintableHeight() const override { return 10.5; }
  void DrawLine(double, double, double, double, int) override {}
  void EndDocument() override {}

 protected:
  void DrawText(double, double, std::string_view text) override { benchmark::DoNotOptimize(text); }
  double LineHeight() const override { return 0.155; }
  void StartPage() override {}
};

void FormatNumbersOnly(benchmark::State& state) {
  constexpr auto fixed = std::chars_format::fixed;
  for ([[maybe_unused]] auto _ : state) {
    std::string text;
    for (int index = 0; index < MaxRecords; ++index) {
      const SignalStandardRecord& record = FullTable().Row(index);
      text += record.State;
      AppendNumber(text, record.UplinkStartFreq, fixed, 6);
      AppendNumber(text, record.DownlinkStartFreq, fixed, 6);
      AppendNumber(text, record.StartChannel);
      AppendNumber(text, record.StopChannel);
      AppendNumber(text, record.Bandwidth, fixed, 3);
      AppendNumber(text, record.Spacing, fixed, 4);
      AppendNumber(text, record.Step);
    }
    benchmark::DoNotOptimize(text);
  }
}

void Report(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(ReportText(FullTable(), "x"));
}

void ListingLayout(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    NoSurface surface;
    PrintListing(surface, FullTable(), "x");
  }
}

void Chart(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(ChartSvg(FullTable(), "x"));
}

void EmptyPdf(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(PdfListing({}, "x", PaperSize::Letter));
}

void FullPdf(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(PdfListing(FullTable(), "x", PaperSize::Letter));
}

BENCHMARK(FormatNumbersOnly)->Unit(benchmark::kMicrosecond);
BENCHMARK(Report)->Unit(benchmark::kMicrosecond);
BENCHMARK(ListingLayout)->Unit(benchmark::kMicrosecond);
BENCHMARK(Chart)->Unit(benchmark::kMicrosecond);
BENCHMARK(EmptyPdf)->Unit(benchmark::kMicrosecond);
BENCHMARK(FullPdf)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace chanplan

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
