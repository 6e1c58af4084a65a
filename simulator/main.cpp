// handheld-simulator: a handheld unit on a pseudo-terminal.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <climits>
#include <csignal>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <utility>

#include "core/file_system.h"
#include "core/sig_file.h"
#include "core/text_encoding.h"
#include "simulator/pseudo_terminal.h"
#include "simulator/simulated_unit.h"
#include "unit/tracing_port.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr auto QuietLine = 3s;   // an upload that pauses for so long has ended
constexpr auto SlowAnswer = 2s;  // how late a slow unit answers
constexpr auto LateEcho = 1500ms;
constexpr int BitsPerByte = 10;  // with start and stop bit
constexpr int FastestBaud = 1'000'000;

volatile std::sig_atomic_t stopRequested = 0;

struct Settings {
  SimulatedUnitOptions Unit;
  std::string FaultText;
  std::string Link;
  std::string TableFile;
  std::string SaveFile;
  std::int64_t Tag = 100;
  std::int64_t Baud = 9600;
  bool Trace = false;
  bool TableIsCut = false;
};

// Prints what happens with the seconds since the start, and what is sent in lines of 16 bytes.
class TraceLog {
 public:
  explicit TraceLog(bool wanted) : visible(wanted) {}

  void Line(const std::string& text) {
    Flush();
    Print(Clock::now(), text);
  }
  void Sent(std::string_view bytes) {
    for (const char byte : bytes) {
      if (sent.empty()) sentSince = Clock::now();
      sent += byte;
      if (sent.size() == 16) Flush();
    }
  }
  void Flush() {
    if (!sent.empty()) Print(sentSince, "sent " + HexLine(std::exchange(sent, {})));
  }

 private:
  void Print(Clock::time_point time, const std::string& text) const {
    if (visible) std::cout << SecondsText(time - start) << "  " << HarmlessText(text) << std::endl;
  }

  bool visible;
  Clock::time_point start = Clock::now();
  Clock::time_point sentSince;
  std::string sent;
};

// Replies on their way, sent no faster than the line's speed.
class ReplyLine {
 public:
  ReplyLine(PseudoTerminal& terminalUsed, TraceLog& log, std::int64_t baud)
      : terminal(terminalUsed),
        trace(log),
        lineByteTime(baud > 0 ? Clock::duration(1s) * BitsPerByte / baud : Clock::duration::zero()) {}

  void Add(const std::string& reply, bool slow) {
    if (reply.empty()) return;
    byteTime = lineByteTime * (slow ? 2 : 1);
    if (waiting.empty()) nextByte = Clock::now() + (slow ? Clock::duration(SlowAnswer) : Clock::duration()) + byteTime;
    waiting += reply;
  }

  void AddLate(const std::string& echoes) {
    if (!echoes.empty()) late.emplace_back(Clock::now() + LateEcho, echoes);
  }

  void Send() {
    const auto now = Clock::now();
    while (!late.empty() && now >= late.front().first) {  // ahead of what is being sent
      if (waiting.empty()) nextByte = now;
      waiting.insert(0, late.front().second);
      late.pop_front();
    }
    if (waiting.empty() || now < nextByte) return;
    std::size_t due = waiting.size();
    if (byteTime > Clock::duration::zero())
      due = std::min(due, static_cast<std::size_t>((now - nextByte) / byteTime + 1));
    const std::size_t sent = terminal.Write(std::string_view(waiting).substr(0, due));
    trace.Sent(std::string_view(waiting).substr(0, sent));
    waiting.erase(0, sent);
    if (waiting.empty()) trace.Flush();
    nextByte += byteTime * static_cast<int>(sent);
  }

  bool Empty() const { return waiting.empty() && late.empty(); }

 private:
  PseudoTerminal& terminal;
  TraceLog& trace;
  Clock::duration lineByteTime;
  Clock::duration byteTime{};
  Clock::time_point nextByte;
  std::string waiting;
  std::deque<std::pair<Clock::time_point, std::string>> late;
};

// "KIND" or "KIND@N".
void ChooseFault(Settings& settings) {
  const std::size_t at = settings.FaultText.find('@');
  const std::string kind = settings.FaultText.substr(0, at);
  const auto fault = std::ranges::find(FaultNames, kind, &FaultName::Name);
  if (fault == FaultNames.end()) throw CLI::ValidationError("--fault", "there is no \"" + kind + "\", see --help");
  if (fault->Kind == Fault::None && at != std::string::npos)
    throw CLI::ValidationError("--fault", "\"none\" is no misbehaviour that could begin with a command");
  settings.Unit.Misbehaviour = fault->Kind;
  if (at == std::string::npos) return;
  const std::string from = settings.FaultText.substr(at + 1);
  const auto [end, error] = std::from_chars(from.data(), from.data() + from.size(), settings.Unit.FaultFrom);
  if (error != std::errc() || end != from.data() + from.size() || settings.Unit.FaultFrom < 1)
    throw CLI::ValidationError("--fault", "\"" + from + "\" is not the number of a command, which count from 1");
}

void CheckLength(const char* option, const std::string& text, std::size_t longest) {
  if (text.size() > longest)
    throw CLI::ValidationError(option, "\"" + text + "\" is longer than " + std::to_string(longest) + " characters");
}

void CheckRange(const char* option, std::int64_t number, std::int64_t lowest, std::int64_t highest) {
  if (number < lowest || number > highest)
    throw CLI::ValidationError(option, std::to_string(number) + " is out of its range, " + std::to_string(lowest) +
                                           " to " + std::to_string(highest));
}

// A file that cannot be written is found out before the unit is there.
void CheckWritable(const std::string& file) {
  if (file.empty()) return;
  const bool wasThere = std::filesystem::exists(file);
  errno = 0;
  if (!std::ofstream(file, std::ios::app))
    throw std::runtime_error(file + " cannot be written: " + std::generic_category().message(errno));
  if (!wasThere) std::filesystem::remove(file);
}

std::string FaultHelp() {
  std::string help = "Faults:\n";
  for (const FaultName& fault : FaultNames)
    help += "  " + std::string(fault.Name) + std::string(23 - fault.Name.size(), ' ') + std::string(fault.Words) + "\n";
  return help + "KIND@N misbehaves from the Nth command on; identification, table, upload and sync byte count.";
}

Settings ParseArguments(CLI::App& app, int argc, char** argv) {
  Settings settings;
  app.add_option("--link", settings.Link, "make PATH a symbolic link to the unit's terminal")->type_name("PATH");
  app.add_option("--model", settings.Unit.Model, "the unit's model, up to 7 characters")->capture_default_str();
  app.add_option("--firmware", settings.Unit.Firmware, "its firmware version, up to 4 characters")
      ->capture_default_str();
  app.add_option("--table", settings.TableFile, "the table that it holds at start")->type_name("FILE.sig");
  app.add_option("--tag", settings.Tag, "the tag of this table, 0 to 65535")->capture_default_str();
  app.add_option("--save", settings.SaveFile, "write its table here whenever an upload arrived")->type_name("FILE.sig");
  app.add_option("--baud", settings.Baud, "the speed of its replies; 0 = at once")->capture_default_str();
  app.add_option("--fault", settings.FaultText, "how it misbehaves, see below")->type_name("KIND[@N]");
  CLI::Option* nth = app.add_option("--nth", settings.Unit.DropInterval, "which bytes drop-every-nth-byte loses")
                         ->capture_default_str();
  app.set_version_flag("--version", "Chanplan Editor " CHANPLAN_VERSION);
  app.add_flag("--trace", settings.Trace, "print what it receives, does and sends, with the seconds since its start");
  app.footer(FaultHelp());
  app.parse(argc, argv);
  CheckRange("--tag", settings.Tag, 0, 65535);
  CheckRange("--baud", settings.Baud, 0, FastestBaud);
  CheckRange("--nth", settings.Unit.DropInterval, 1, INT_MAX);
  settings.Unit.Tag = static_cast<std::uint16_t>(settings.Tag);
  if (!settings.FaultText.empty()) ChooseFault(settings);
  for (const char* name : {"--link", "--table", "--save", "--fault"})
    for (const std::string& value : app.get_option(name)->results())
      if (value.empty()) throw CLI::ValidationError(name, "is given without a value");
  CheckLength("--model", settings.Unit.Model, SimulatedUnit::ModelSize);
  CheckLength("--firmware", settings.Unit.Firmware, SimulatedUnit::FirmwareSize);
  if (nth->count() > 0 && settings.Unit.Misbehaviour != Fault::DropEveryNthByte)
    throw CLI::ValidationError("--nth", "is for the fault drop-every-nth-byte");
  return settings;
}

void LoadTable(Settings& settings) {
  if (settings.TableFile.empty()) return;
  ReadOutcome outcome = LoadSigFile(settings.TableFile);
  if (!outcome.Ok()) throw std::runtime_error(settings.TableFile + ": " + outcome.Reason);
  settings.Unit.Table = outcome.Table;
  settings.TableIsCut = outcome.RowsLeftOut > 0;
}

std::string HeldText(const Settings& settings) {
  if (settings.TableFile.empty()) return "holds an empty table";
  return "holds " + std::string(settings.TableIsCut ? "the first " : "") + std::to_string(settings.Unit.Table.Count) +
         " records of " + settings.TableFile + (settings.TableIsCut ? ", which has more" : "");
}

// A unit does not wait for a disk: whoever uploaded to it would wait for the echo.
void SaveTable(const Settings& settings, const SimulatedUnit& unit) {
  if (settings.SaveFile.empty()) return;
  if (const auto error = ReplaceFileUnflushed(settings.SaveFile, WriteSigTable(unit.Table())))
    std::cerr << "handheld-simulator: " << settings.SaveFile << ": " << error.message() << std::endl;
}

void Serve(const Settings& settings) {
  TraceLog trace(settings.Trace);
  SimulatedUnit unit(settings.Unit, [&](const std::string& line) { trace.Line(line); });
  PseudoTerminal terminal(settings.Link);
  std::cout << "unit ready on " << terminal.Path() << "\n" << HeldText(settings) << std::endl;
  if (!std::cout && settings.Link.empty()) throw std::runtime_error("nobody can be told the terminal's name");
  ReplyLine replies(terminal, trace, settings.Baud);
  int savedUploads = 0;
  Clock::duration lookedInVain{};  // not the time since the last byte: a busy machine may hold up both ends
  bool inUse = false;
  while (!stopRequested && !(unit.HangsUp() && replies.Empty())) {
    const std::chrono::milliseconds look = !replies.Empty() ? 1ms : unit.ReceivesTable() ? 5ms : 50ms;
    const std::string received = terminal.Read(look);
    if (!received.empty()) {
      const std::string reply = unit.Receive(received);
      replies.Add(reply, unit.Has(Fault::Slow));
      replies.AddLate(unit.TakeLateEchoes());
      lookedInVain = {};
      inUse = true;
    } else if (inUse && terminal.IsUnused()) {
      inUse = false;
      unit.LineIsQuiet();
    } else {
      lookedInVain += look;
      if (lookedInVain > QuietLine) unit.LineIsQuiet();
    }
    replies.Send();
    if (unit.Uploads() != savedUploads) {
      savedUploads = unit.Uploads();
      SaveTable(settings, unit);
    }
  }
  trace.Line("hangs up");
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
    CheckWritable(settings.SaveFile);
    Serve(settings);
    return 0;
  } catch (const CLI::ParseError& error) {
    std::ostringstream wrong;
    const bool failed = app.exit(error, std::cout, wrong) != 0;
    std::cerr << HarmlessText(wrong.str());  // it repeats the arguments
    return failed || !std::cout.flush() ? 2 : 0;
  } catch (const std::exception& error) {
    std::cerr << "handheld-simulator: " << HarmlessText(error.what()) << std::endl;
    return 2;
  }
}
