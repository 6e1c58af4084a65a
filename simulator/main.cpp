// handheld-simulator: a handheld unit on a pseudo-terminal.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <map>

#include "core/sig_file.h"
#include "simulator/pseudo_terminal.h"
#include "simulator/simulated_unit.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto QuietLine = 3s;   // an upload that pauses for so long has ended; a busy machine may stall for less
constexpr auto SlowAnswer = 2s;  // how late a slow unit answers
constexpr int BitsPerByte = 10;  // with start and stop bit

volatile std::sig_atomic_t stopRequested = 0;

struct Settings {
  SimulatedUnitOptions Unit;
  std::string Link;
  std::string TableFile;
  std::string SaveFile;
  int Baud = 9600;
  bool Trace = false;
};

// Replies on their way, sent no faster than the line's speed.
class ReplyLine {
 public:
  ReplyLine(PseudoTerminal& terminalUsed, int baud, bool slow)
      : terminal(terminalUsed),
        byteTime(baud > 0 ? Clock::duration(1s) * BitsPerByte / baud * (slow ? 2 : 1) : Clock::duration::zero()),
        answerDelay(slow ? Clock::duration(SlowAnswer) : Clock::duration::zero()) {}

  void Add(const std::string& reply) {
    if (reply.empty()) return;
    if (Empty()) nextByte = Clock::now() + answerDelay + byteTime;
    waiting += reply;
  }

  void Send() {
    const auto now = Clock::now();
    if (Empty() || now < nextByte) return;
    std::size_t due = waiting.size();
    if (byteTime > Clock::duration::zero())
      due = std::min(due, static_cast<std::size_t>((now - nextByte) / byteTime + 1));
    const std::size_t sent = terminal.Write(std::string_view(waiting).substr(0, due));
    waiting.erase(0, sent);
    nextByte += byteTime * static_cast<int>(sent);
  }

  bool Empty() const { return waiting.empty(); }

 private:
  PseudoTerminal& terminal;
  Clock::duration byteTime;
  Clock::duration answerDelay;
  Clock::time_point nextByte;
  std::string waiting;
};

Settings ParseArguments(CLI::App& app, int argc, char** argv) {
  Settings settings;
  std::map<std::string, Fault> faults;
  for (const auto& [name, kind] : FaultNames) faults.emplace(name, kind);
  app.add_option("--link", settings.Link, "make PATH a symbolic link to the unit's terminal")->type_name("PATH");
  app.add_option("--model", settings.Unit.Model, "the unit's model, up to 7 characters")->capture_default_str();
  app.add_option("--firmware", settings.Unit.Firmware, "its firmware version, up to 4 characters")
      ->capture_default_str();
  app.add_option("--table", settings.TableFile, "the table that it holds at start")->type_name("FILE.sig");
  app.add_option("--save", settings.SaveFile, "write its table here whenever an upload arrived")->type_name("FILE.sig");
  app.add_option("--baud", settings.Baud, "the speed of its replies; 0 = at once")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  app.add_option("--fault", settings.Unit.Misbehaviour, "how it misbehaves")
      ->transform(CLI::CheckedTransformer(faults))
      ->type_name("KIND");
  app.add_option("--nth", settings.Unit.DropInterval, "which bytes drop-every-nth-byte loses")
      ->capture_default_str()
      ->check(CLI::PositiveNumber);
  app.add_flag("--trace", settings.Trace, "print what it receives and does");
  app.parse(argc, argv);
  return settings;
}

void LoadTable(Settings& settings) {
  if (settings.TableFile.empty()) return;
  ReadOutcome outcome = LoadSigFile(settings.TableFile);
  if (!outcome.Ok()) throw std::runtime_error(settings.TableFile + ": " + outcome.Reason);
  settings.Unit.Table = outcome.Table;
}

void SaveTable(const Settings& settings, const SimulatedUnit& unit) {
  if (settings.SaveFile.empty()) return;
  if (const auto error = SaveSigFile(settings.SaveFile, unit.Table()))
    std::cerr << "handheld-simulator: " << settings.SaveFile << ": " << error.message() << std::endl;
}

void Serve(const Settings& settings) {
  SimulatedUnit unit(settings.Unit, [&](const std::string& line) {
    if (settings.Trace) std::cout << line << std::endl;
  });
  PseudoTerminal terminal(settings.Link);
  std::cout << "unit ready on " << terminal.Path() << std::endl;
  ReplyLine replies(terminal, settings.Baud, settings.Unit.Misbehaviour == Fault::Slow);
  int savedUploads = 0;
  auto lastByte = Clock::now();
  while (!stopRequested && !(unit.HangsUp() && replies.Empty())) {
    const std::string received = terminal.Read(replies.Empty() ? 50ms : 1ms);
    if (!received.empty()) {
      replies.Add(unit.Receive(received));
      lastByte = Clock::now();
    } else if (Clock::now() - lastByte > QuietLine) {
      unit.LineIsQuiet();
    }
    replies.Send();
    if (unit.Uploads() != savedUploads) {
      savedUploads = unit.Uploads();
      SaveTable(settings, unit);
    }
  }
  if (settings.Trace) std::cout << "hangs up" << std::endl;
}

}  // namespace
}  // namespace chanplan

int main(int argc, char** argv) {
  using namespace chanplan;
  std::signal(SIGINT, [](int) { stopRequested = 1; });
  std::signal(SIGTERM, [](int) { stopRequested = 1; });
  CLI::App app("A handheld unit on a pseudo-terminal, to try the editor and the console with.", "handheld-simulator");
  try {
    Settings settings = ParseArguments(app, argc, argv);
    LoadTable(settings);
    Serve(settings);
    return 0;
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : 2;
  } catch (const std::exception& error) {
    std::cerr << "handheld-simulator: " << error.what() << std::endl;
    return 2;
  }
}
