// Transfers of 200 records through a real serial path, against the floors that the protocol sets:
// 1 ms a byte for an upload, 9600 baud for the unit's reply. The link alone, then the whole editor
// with its progress dialog, and the longest time in which no event was handled.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <QApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <chrono>
#include <stdexcept>

#include "app/app_main.h"
#include "app/frm_main.h"
#include "core/sig_file.h"
#include "editor/frm_document.h"
#include "unit/serial_port.h"
#include "unit/system_timing.h"
#include "unit/transfer.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

using Clock = std::chrono::steady_clock;

constexpr double TableBytes = 4 + 48.0 * MaxRecords;             // header and records
constexpr double UploadFloorSeconds = 0.001 * (1 + TableBytes);  // with the command
constexpr double DownloadFloorSeconds = TableBytes * 10 / 9600;  // with start and stop bit

SignalStandardTable FullTable() {
  SignalStandardTable table;
  for (int index = 0; index < MaxRecords; ++index)
    table.Append({"2", 0, "Standard " + std::to_string(index), 890.2, 935.2, index, index + 124, 0.2, 0.2, 1});
  return table;
}

// A unit with a full table, in a process of its own, so that its work is not counted.
class UnitProcess {
 public:
  UnitProcess() {
    if (SaveSigFile(TableFile().toStdString(), FullTable())) throw std::runtime_error("no table for the unit");
    process.start(SIMULATOR_PROGRAM, {"--link", Path(), "--baud", "9600", "--table", TableFile()});
    if (!process.waitForReadyRead(10000)) throw std::runtime_error("the simulated unit does not start");
  }
  ~UnitProcess() {
    process.terminate();
    process.waitForFinished();
  }
  QString Path() const { return folder.filePath("unit"); }
  QString TableFile() const { return folder.filePath("table.sig"); }

 private:
  QTemporaryDir folder;
  QProcess process;
};

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The longest time between two events that were due at once.
class EventGap {
 public:
  EventGap() {
    QObject::connect(&timer, &QTimer::timeout, [this] {
      const auto now = Clock::now();
      longest = std::max(longest, now - last);
      last = now;
    });
    timer.start(0);
  }
  double Milliseconds() const { return std::chrono::duration<double, std::milli>(longest).count(); }

 private:
  QTimer timer;
  Clock::time_point last = Clock::now();
  Clock::duration longest{};
};

template <typename Transfer>
void Measure(benchmark::State& state, double floorSeconds, const Transfer& transfer) {
  double processorSeconds = 0;
  double seconds = 0;
  EventGap gap;
  for ([[maybe_unused]] auto _ : state) {
    const double processorStart = ProcessorSeconds();
    const auto start = Clock::now();
    if (!transfer()) state.SkipWithError("the transfer failed");
    seconds += std::chrono::duration<double>(Clock::now() - start).count();
    processorSeconds += ProcessorSeconds() - processorStart;
  }
  state.counters["times_the_floor"] = seconds / (floorSeconds * static_cast<double>(state.iterations()));
  state.counters["share_of_a_core"] = processorSeconds / seconds;
  state.counters["longest_gap_ms"] = gap.Milliseconds();
}

void LinkUpload(benchmark::State& state) {
  const UnitProcess unit;
  SerialPort port(unit.Path().toStdString());
  UnitLink link(port, SystemTiming());
  const std::string message = EncodeTable(FullTable(), 1);
  TransferProgress progress;
  if (link.OpenCommPort(1) != 1) state.SkipWithError("the port cannot be opened");
  Measure(state, UploadFloorSeconds, [&] { return UploadChanplans(link, message, progress) == LinkTrue; });
  link.CloseCommPort();
}

// The editor with a full table.
class Editor {
 public:
  Editor() : app(std::make_unique<SerialPort>(unit.Path().toStdString()), SystemTiming(), frmDocument::Make) {
    app.Main();
    app.Registry.Document(1)->ShowUnitTable(FullTable());
  }
  // Or the next one would ask whether to restore the table.
  ~Editor() { app.Registry.Document(1)->State().Changed = false; }
  bool Transfer(bool download) {
    DocumentWindow& document = *app.Registry.Document(1);
    TransferCommand command(*app.Frame, app.Link, app.Transfers, app.Shared);
    return (download ? command.Receive(document)
                     : command.Send(document, EncodeTable(document.Table(), document.UnitTableTag)))
               .Result == LinkTrue;
  }

 private:
  UnitProcess unit;
  AppMain app;
};

void EditorUpload(benchmark::State& state) {
  Editor editor;
  Measure(state, UploadFloorSeconds, [&] { return editor.Transfer(false); });
}

void EditorDownload(benchmark::State& state) {
  Editor editor;
  Measure(state, DownloadFloorSeconds, [&] { return editor.Transfer(true); });
}

void Once(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();
}
BENCHMARK(LinkUpload)->Apply(Once);
BENCHMARK(EditorUpload)->Apply(Once);
BENCHMARK(EditorDownload)->Apply(Once);

}  // namespace
}  // namespace chanplan

int main(int argc, char** argv) {
  const QTemporaryDir configuration;  // the user's settings are left alone
  for (const char* variable : {"XDG_CONFIG_HOME", "XDG_STATE_HOME"}) qputenv(variable, configuration.path().toUtf8());
  const QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
