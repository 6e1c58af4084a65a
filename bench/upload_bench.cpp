// An upload of 200 records over a real serial path, against the floor of 1 ms a byte.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <chrono>
#include <csignal>

#include "simulator/pseudo_terminal.h"
#include "simulator/simulated_unit.h"
#include "unit/qt_serial_port.h"
#include "unit/transfer.h"

namespace chanplan {
namespace {

SignalStandardTable FullTable() {
  SignalStandardTable table;
  for (int index = 0; index < MaxRecords; ++index)
    table.Append({"2", 0, "Standard " + std::to_string(index), 890.2, 935.2, index, index + 124, 0.2, 0.2, 1});
  return table;
}

// A unit in a process of its own, so that its work is not counted.
class UnitProcess {
 public:
  UnitProcess() : terminal({}), child(fork()) {
    if (child != 0) return;
    SimulatedUnit unit({}, [](const std::string&) {});
    while (getppid() != 1) terminal.Write(unit.Receive(terminal.Read(std::chrono::milliseconds(50))));
    _exit(0);
  }
  ~UnitProcess() {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
  const std::string& Path() const { return terminal.Path(); }

 private:
  PseudoTerminal terminal;
  pid_t child;
};

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void Upload200Records(benchmark::State& state) {
  constexpr double floorSecondsPerByte = 0.001;
  constexpr double messageBytes = 1 + 4 + 48.0 * MaxRecords;  // command, header, records
  const UnitProcess unit;
  QtSerialPort port(unit.Path());
  UnitLink link(port, SystemTiming());
  UnitTable document{FullTable(), 1};
  TransferProgress progress;
  if (link.OpenCommPort(1) != 1) state.SkipWithError("the port cannot be opened");
  double processorSeconds = 0;
  double seconds = 0;
  for ([[maybe_unused]] auto _ : state) {
    const double processorStart = ProcessorSeconds();
    const auto start = std::chrono::steady_clock::now();
    if (UploadChanplans(link, document, progress) != LinkTrue) state.SkipWithError("the upload failed");
    seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    processorSeconds += ProcessorSeconds() - processorStart;
  }
  const double bytes = messageBytes * static_cast<double>(state.iterations());
  state.counters["bytes_per_second"] = bytes / seconds;
  state.counters["times_the_floor"] = seconds / (bytes * floorSecondsPerByte);
  state.counters["share_of_a_core"] = processorSeconds / seconds;
  link.CloseCommPort();
}

BENCHMARK(Upload200Records)->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();

}  // namespace
}  // namespace chanplan

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
