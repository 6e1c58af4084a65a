#include "tests/console/program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <future>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::string_view SetprivProgram = "/usr/bin/setpriv";

[[noreturn]] void Fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int opened) : descriptor(opened) {}
  Descriptor(Descriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor, other.descriptor);
    return *this;
  }
  ~Descriptor() { Close(); }

  int Get() const { return descriptor; }
  bool IsOpen() const { return descriptor >= 0; }
  void Close() {
    if (IsOpen()) close(std::exchange(descriptor, -1));
  }

 private:
  int descriptor = -1;
};

Descriptor Open(const fs::path& file, int flags) {
  Descriptor opened(open(file.c_str(), flags | O_CLOEXEC, 0600));
  if (!opened.IsOpen()) Fail(file.string());
  return opened;
}

// The two ends of a stream: what the program writes to and what the test reads from.
struct Stream {
  Descriptor Program;
  Descriptor Test;
};

Stream MakePipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) Fail("no pipe");
  return {Descriptor(ends[1]), Descriptor(ends[0])};
}

Stream MakeTerminal() {
  termios raw{};
  cfmakeraw(&raw);
  int test = -1;
  int program = -1;
  if (openpty(&test, &program, nullptr, &raw, nullptr) != 0) Fail("no terminal");
  for (const int end : {test, program}) fcntl(end, F_SETFD, FD_CLOEXEC);
  return {Descriptor(program), Descriptor(test)};
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> EnvironmentWith(const std::vector<std::string>& additions) {
  std::vector<std::string> variables = additions;
  const auto isReplaced = [&](std::string_view variable) {
    const std::string_view name = variable.substr(0, variable.find('=') + 1);
    return std::ranges::any_of(additions, [&](const std::string& addition) { return addition.starts_with(name); });
  };
  for (char** variable = environ; *variable != nullptr; ++variable)
    if (!isReplaced(*variable)) variables.emplace_back(*variable);
  return variables;
}

// Between fork and exec only what another thread's locks cannot block.
pid_t Start(std::vector<std::string> command, const RunOptions& options, int output, int errors) {
  const Descriptor input = Open(options.InputFrom, O_RDONLY);
  std::vector<std::string> environment = EnvironmentWith(options.Environment);
  const std::vector<char*> arguments = Pointers(command);
  const std::vector<char*> variables = Pointers(environment);
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child < 0) Fail("no process");
  if (child > 0) return child;
  // A test that is killed takes its programs with it.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  if (!options.WorkingFolder.empty() && chdir(options.WorkingFolder.c_str()) != 0) _exit(127);
  dup2(input.Get(), STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(errors, STDERR_FILENO);
  execve(arguments[0], arguments.data(), variables.data());
  _exit(127);
}

std::optional<int> ExitStatusOf(pid_t process, std::chrono::milliseconds longest) {
  int status = 0;
  if (!WaitFor(longest, [&] { return waitpid(process, &status, WNOHANG) == process; })) return std::nullopt;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

// Adds what has come; closes the stream at its end. A terminal ends with an error.
void ReadSome(Descriptor& stream, std::string& text) {
  std::array<char, 4096> buffer;
  const ssize_t count = read(stream.Get(), buffer.data(), buffer.size());
  if (count > 0)
    text.append(buffer.data(), static_cast<std::size_t>(count));
  else if (count == 0 || errno != EINTR)
    stream.Close();
}

void ReadUntil(Clock::time_point end, Descriptor& output, std::string& outputText, Descriptor& errors,
               std::string& errorsText) {
  while (output.IsOpen() || errors.IsOpen()) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0) return;
    std::array<pollfd, 2> streams = {{{output.Get(), POLLIN, 0}, {errors.Get(), POLLIN, 0}}};
    if (poll(streams.data(), streams.size(), static_cast<int>(left)) <= 0) continue;
    if (streams[0].revents != 0) ReadSome(output, outputText);
    if (streams[1].revents != 0) ReadSome(errors, errorsText);
  }
}

// Root always may open it, so the mark of exclusive use is looked at.
bool IsFree(const std::string& device) {
  const int opened = open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  int exclusive = 0;
  const bool free = opened >= 0 && ioctl(opened, TIOCGEXCL, &exclusive) == 0 && exclusive == 0;
  close(opened);
  return free;
}

}  // namespace

ProgramRun RunProgram(std::vector<std::string> command, const RunOptions& options) {
  if (options.Unprivileged && geteuid() == 0)
    command.insert(command.begin(), {std::string(SetprivProgram), "--reuid=65534", "--regid=65534", "--clear-groups"});
  Stream output = options.Terminal == TerminalAt::Output ? MakeTerminal() : MakePipe();
  Stream errors = options.Terminal == TerminalAt::Errors ? MakeTerminal() : MakePipe();
  if (!options.OutputTo.empty()) output.Program = Open(options.OutputTo, O_WRONLY | O_CREAT);

  ProgramRun run;
  const auto start = Clock::now();
  const pid_t process = Start(std::move(command), options, output.Program.Get(), errors.Program.Get());
  output.Program.Close();
  errors.Program.Close();
  if (!options.OutputTo.empty()) output.Test.Close();
  std::future<void> meanwhile;
  if (options.Meanwhile) meanwhile = std::async(std::launch::async, options.Meanwhile, process);
  ReadUntil(start + options.Longest, output.Test, run.Output, errors.Test, run.Errors);
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(start + options.Longest - Clock::now());
  std::optional<int> status = ExitStatusOf(process, std::max(left, 0ms));
  if (!status) {
    kill(process, SIGKILL);
    status = ExitStatusOf(process, 10s);
  }
  run.Elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
  run.ExitStatus = status.value_or(-SIGKILL);
  return run;
}

std::optional<std::string> WhyNotUnprivileged() {
  if (geteuid() != 0 || fs::exists(SetprivProgram)) return std::nullopt;
  return "this is root, and there is no " + std::string(SetprivProgram) + " to give up root's rights with";
}

ProgramRun Chanplan::Run(std::vector<std::string> arguments, RunOptions options) const {
  const char* const other = std::getenv("CHANPLAN_PROGRAM");  // such as one for another system
  fs::path program = other != nullptr ? other : CHANPLAN_PROGRAM;
  if (options.Unprivileged) {
    // Where it was built, others may not be let in.
    program = configuration / "chanplan";
    fs::copy_file(CHANPLAN_PROGRAM, program, fs::copy_options::skip_existing);
  }
  arguments.insert(arguments.begin(), program.string());
  options.WorkingFolder = Folder.Path();
  // The system's messages are compared, so they have to come in one language.
  for (const std::string& variable : {"XDG_CONFIG_HOME=" + configuration.Path().string(),
                                      "XDG_STATE_HOME=" + configuration.Path().string(), std::string("LC_ALL=C.UTF-8")})
    options.Environment.push_back(variable);
  return RunProgram(std::move(arguments), options);
}

RunningSimulator::RunningSimulator(const std::vector<std::string>& options, const fs::path& linkPath)
    : link((linkPath.empty() ? folder / "unit" : linkPath).string()) {
  std::vector<std::string> command = {SIMULATOR_PROGRAM, "--link", link};
  command.insert(command.end(), options.begin(), options.end());
  const Descriptor output = Open(folder / "output", O_WRONLY | O_CREAT | O_APPEND);
  process = Start(std::move(command), {}, output.Get(), output.Get());
  const auto isReady = [&] {
    return Output().starts_with("unit ready on ") && Output().find('\n') != std::string::npos;
  };
  WaitFor(10s, [&] { return isReady() || WaitForEnd(0ms); });
  if (!isReady() || !fs::is_symlink(link)) {
    Stop();
    throw std::runtime_error("the simulator is not ready: " + Output());
  }
  device = fs::read_symlink(link).string();
}

std::string RunningSimulator::Output() const { return ReadFile(folder / "output"); }

bool RunningSimulator::WaitForOutput(std::string_view text, std::chrono::milliseconds longest) const {
  return WaitFor(longest, [&] { return Output().find(text) != std::string::npos; });
}

std::optional<int> RunningSimulator::WaitForEnd(std::chrono::milliseconds longest) {
  if (!exitStatus) exitStatus = ExitStatusOf(process, longest);
  return exitStatus;
}

long RunningSimulator::Waits() const {
  constexpr std::string_view field = "\nvoluntary_ctxt_switches:";
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  const std::string status(std::istreambuf_iterator<char>(file), {});
  const std::size_t place = status.find(field);
  const bool ended = exitStatus || place == std::string::npos || status.find("\nState:\tZ") != std::string::npos;
  return ended ? Ended : std::stol(status.substr(place + field.size()));
}

bool RunningSimulator::LetsGo() {
  return WaitFor(5s, [this] { return IsFree(device) || WaitForEnd(0ms); });
}

int RunningSimulator::Stop() {
  for (const int signal : {SIGTERM, SIGKILL}) {
    if (!WaitForEnd(0ms)) kill(process, signal);
    if (WaitForEnd()) break;
  }
  return exitStatus.value_or(-SIGKILL);
}

}  // namespace chanplan::testing
