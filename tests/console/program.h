// Running whole programs: one run with its outcome, and a simulated unit in a process of its own.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/core/temp_folder.h"

namespace chanplan::testing {

using namespace std::chrono_literals;

/// Which of a program's streams is a terminal.
enum class TerminalAt { Nowhere, Output, Errors };

struct RunOptions {
  std::vector<std::string> Environment{};  ///< "NAME=value", on top of the test's own environment
  std::filesystem::path WorkingFolder{};   ///< the test's own when empty
  std::filesystem::path InputFrom = "/dev/null";
  std::filesystem::path OutputTo{};  ///< a file or device in place of `ProgramRun::Output`
  TerminalAt Terminal = TerminalAt::Nowhere;
  bool Unprivileged = false;                    ///< without root's rights; see WhyNotUnprivileged
  std::chrono::milliseconds Longest = 60000ms;  ///< the program is killed after it
  std::function<void(pid_t)> Meanwhile{};       ///< runs beside the program, and is waited for
};

struct ProgramRun {
  int ExitStatus = 0;  ///< -N when signal N ended the program
  std::string Output;
  std::string Errors;
  std::chrono::milliseconds Elapsed{};
};

/// Runs `command`, a program's path and its arguments, with an empty standard input unless another is named.
ProgramRun RunProgram(std::vector<std::string> command, const RunOptions& options = {});

/// Why nothing can be run unprivileged here; nothing when it can.
std::optional<std::string> WhyNotUnprivileged();

/// Whether `enough` says so within `longest`.
template <typename Condition>
bool WaitFor(std::chrono::milliseconds longest, const Condition& enough) {
  const auto end = std::chrono::steady_clock::now() + longest;
  while (!enough()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(2ms);
  }
  return true;
}

/// The `chanplan` command, with a folder to work in and settings that are nobody else's.
class Chanplan {
 public:
  TempFolder Folder;  ///< relative names of the arguments are looked for here

  /// The settings file's content, such as "[Settings]\nCommDevice1=/dev/ttyUSB3\n".
  void SetSettings(std::string_view content) const { WriteFile(configuration / "Chanplans.ini", content); }

  ProgramRun Run(std::vector<std::string> arguments, RunOptions options = {}) const;

 private:
  TempFolder configuration;
};

/// handheld-simulator as its own process. Started by the constructor, which throws
/// std::runtime_error unless the unit is ready within 10 s; ended by the destructor, and with the
/// thread that started it.
class RunningSimulator {
 public:
  /// `link`, unless empty, is the link to the unit's terminal; otherwise one in a folder of its own.
  /// `options` are all other options.
  explicit RunningSimulator(const std::vector<std::string>& options = {}, const std::filesystem::path& link = {});
  RunningSimulator(const RunningSimulator&) = delete;
  RunningSimulator& operator=(const RunningSimulator&) = delete;
  ~RunningSimulator() { Stop(); }

  const std::string& Link() const { return link; }
  /// The terminal that the link pointed to at first.
  const std::string& Device() const { return device; }
  /// What it has printed so far, error messages among it.
  std::string Output() const;
  /// Waits until it has printed `text`.
  bool WaitForOutput(std::string_view text, std::chrono::milliseconds longest = 10s) const;
  /// Waits until it ends by itself; its exit status, or nothing when it does not.
  std::optional<int> WaitForEnd(std::chrono::milliseconds longest = 10s);
  /// How often it has waited for something so far, or Ended. It looks for bytes every 50 ms, less often on a busy
  /// machine.
  long Waits() const;
  static constexpr long Ended = -1;
  /// Waits until the next program may open its device, which no other one has kept for itself, or it has ended. It may
  /// take the mark of one that is gone for some 50 ms more.
  bool LetsGo();
  /// Asks it to end and waits for that; its exit status.
  int Stop();

 private:
  TempFolder folder;
  std::string link;
  std::string device;
  pid_t process = -1;
  std::optional<int> exitStatus;
};

}  // namespace chanplan::testing
