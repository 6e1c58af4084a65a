// The unit's end of the line: its link in the file system, and bytes both ways.
#include "simulator/pseudo_terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "tests/core/temp_folder.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

// A program at the other end, which leaves the line's settings as they are.
class Program {
 public:
  explicit Program(const std::string& path) : line(open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  ~Program() { close(line); }

  void Write(std::string_view bytes) {
    ASSERT_EQ(write(line, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  // What comes until `size` bytes are there or nothing more comes for two seconds.
  std::string Read(std::size_t size) {
    std::string bytes;
    char byte = 0;
    pollfd waiting{line, POLLIN, 0};
    while (bytes.size() < size && poll(&waiting, 1, 2000) == 1 && read(line, &byte, 1) == 1) bytes += byte;
    return bytes;
  }

  bool HasHungUp() {
    char byte = 0;
    pollfd waiting{line, POLLIN, 0};
    return poll(&waiting, 1, 2000) == 1 && (waiting.revents & POLLHUP) != 0 && read(line, &byte, 1) <= 0;
  }

 private:
  int line;
};

std::string ReadFrom(PseudoTerminal& terminal, std::size_t size) {
  std::string bytes;
  while (bytes.size() < size) {
    const std::string more = terminal.Read(2s);
    if (more.empty()) break;
    bytes += more;
  }
  return bytes;
}

std::string AllBytes() {
  std::string all;
  for (int value = 0; value < 256; ++value) all += static_cast<char>(value);
  return all;
}

std::ptrdiff_t OpenDescriptors() {
  return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

TEST(PseudoTerminal, LinkPointsToIt) {
  const TempFolder folder;
  const std::string link = folder / "unit";
  const PseudoTerminal terminal(link);
  ASSERT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(fs::read_symlink(link), terminal.Path());
  EXPECT_TRUE(fs::is_character_file(link));
  EXPECT_EQ(NamesIn(folder.Path()), std::set<std::string>{"unit"});
}

TEST(PseudoTerminal, NeedsNoLink) {
  const PseudoTerminal terminal("");
  EXPECT_TRUE(fs::is_character_file(terminal.Path()));
}

TEST(PseudoTerminal, LinkReplacesAnotherLink) {
  const TempFolder folder;
  WriteFile(folder / "file", "content");
  for (const fs::path& target : {folder / "file", folder / "missing", folder.Path()}) {
    SCOPED_TRACE(target);
    fs::create_symlink(target, folder / "unit");
    {
      const PseudoTerminal terminal(folder / "unit");
      EXPECT_EQ(fs::read_symlink(folder / "unit"), terminal.Path());
    }
    EXPECT_FALSE(fs::is_symlink(folder / "unit"));
  }
  EXPECT_EQ(ReadFile(folder / "file"), "content");
}

TEST(PseudoTerminal, LinkNeverReplacesAFileOrAFolder) {
  const TempFolder folder;
  WriteFile(folder / "file", "content");
  fs::create_directory(folder / "folder");
  for (const char* const name : {"file", "folder"}) {
    SCOPED_TRACE(name);
    try {
      const PseudoTerminal terminal(folder / name);
      ADD_FAILURE() << "nothing was thrown";
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code(), std::errc::file_exists);
      EXPECT_NE(std::string(error.what()).find(folder / name), std::string::npos) << error.what();
    }
  }
  EXPECT_EQ(ReadFile(folder / "file"), "content");
  EXPECT_EQ(NamesIn(folder.Path()), (std::set<std::string>{"file", "folder"}));
}

TEST(PseudoTerminal, LinkNeedsItsFolder) {
  const TempFolder folder;
  EXPECT_THROW(PseudoTerminal(folder / "missing" / "unit"), std::system_error);
}

TEST(PseudoTerminal, ThatCannotBeMadeLeavesNothingOpen) {
  const TempFolder folder;
  WriteFile(folder / "file", "");
  const auto before = OpenDescriptors();
  EXPECT_THROW(PseudoTerminal(folder / "file"), std::system_error);
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST(PseudoTerminal, LinkGoesWithIt) {
  const TempFolder folder;
  std::optional<PseudoTerminal> terminal(std::in_place, folder / "unit");
  terminal.reset();
  EXPECT_EQ(NamesIn(folder.Path()), std::set<std::string>{});
}

TEST(PseudoTerminal, LinkStaysWhenItIsAnothersByThen) {
  const TempFolder folder;
  std::optional<PseudoTerminal> first(std::in_place, folder / "unit");
  const PseudoTerminal second(folder / "unit");
  first.reset();
  EXPECT_EQ(fs::read_symlink(folder / "unit"), second.Path());
}

TEST(PseudoTerminal, BytesPassBothWaysUnchanged) {
  PseudoTerminal terminal("");
  Program program(terminal.Path());
  program.Write(AllBytes());
  EXPECT_EQ(ReadFrom(terminal, 256), AllBytes());
  EXPECT_EQ(terminal.Write(AllBytes()), 256u);
  EXPECT_EQ(program.Read(256), AllBytes());
  EXPECT_EQ(terminal.Read(20ms), "") << "nothing is echoed";
}

TEST(PseudoTerminal, LineStaysUpBetweenPrograms) {
  PseudoTerminal terminal("");
  Program(terminal.Path()).Write("one");
  EXPECT_EQ(ReadFrom(terminal, 3), "one");
  Program second(terminal.Path());
  second.Write("two");
  EXPECT_EQ(ReadFrom(terminal, 3), "two");
  EXPECT_EQ(terminal.Write("reply"), 5u);
  EXPECT_EQ(second.Read(5), "reply");
}

TEST(PseudoTerminal, KnowsWhetherAProgramHasItOpen) {
  PseudoTerminal terminal("");
  EXPECT_TRUE(terminal.IsUnused());
  {
    Program program(terminal.Path());
    EXPECT_FALSE(terminal.IsUnused());
    program.Write("last words");
  }
  EXPECT_FALSE(terminal.IsUnused()) << "they are to be heard first";
  EXPECT_EQ(ReadFrom(terminal, 10), "last words");
  EXPECT_TRUE(terminal.IsUnused());
  EXPECT_EQ(terminal.Write("reply"), 5u);
  EXPECT_TRUE(terminal.IsUnused()) << "what was sent before it is opened waits for the next";
  Program next(terminal.Path());
  EXPECT_FALSE(terminal.IsUnused());
  EXPECT_EQ(next.Read(5), "reply");
}

TEST(PseudoTerminal, IsFreeAgainWhenTheProgramThatKeptItIsGone) {
  PseudoTerminal terminal("");
  const auto isKept = [&] {
    const int line = open(terminal.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);  // as root, who is let in
    int kept = 0;
    if (line >= 0) ioctl(line, TIOCGEXCL, &kept);
    close(line);
    return line < 0 || kept != 0;
  };
  const int program = open(terminal.Path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  ASSERT_EQ(ioctl(program, TIOCEXCL), 0);
  EXPECT_FALSE(terminal.IsUnused());
  EXPECT_TRUE(isKept());
  close(program);
  EXPECT_TRUE(isKept()) << "the system keeps the mark as long as the unit's end is open";
  EXPECT_TRUE(terminal.IsUnused());
  EXPECT_FALSE(isKept());
}

TEST(PseudoTerminal, ReadGivesUpAfterItsTime) {
  PseudoTerminal terminal("");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(terminal.Read(0ms), "");
  EXPECT_EQ(terminal.Read(50ms), "");
  EXPECT_GE(std::chrono::steady_clock::now() - start, 50ms);
}

TEST(PseudoTerminal, WriteTakesWhatTheLineHasRoomFor) {
  PseudoTerminal terminal("");
  Program program(terminal.Path());
  std::string sent;
  bool full = false;
  while (!full && sent.size() < 1'000'000) {
    const std::string bytes = AllBytes();
    const std::size_t count = terminal.Write(bytes);
    sent += bytes.substr(0, count);
    full = count < bytes.size();
  }
  EXPECT_TRUE(full) << "a line that nobody reads takes no more some time";
  EXPECT_EQ(terminal.Write("x"), 0u);
  EXPECT_EQ(program.Read(sent.size()), sent);
}

TEST(PseudoTerminal, HangsUpAtTheEnd) {
  std::optional<PseudoTerminal> terminal(std::in_place, "");
  Program program(terminal->Path());
  terminal.reset();
  EXPECT_TRUE(program.HasHungUp());
}

}  // namespace
}  // namespace chanplan::testing
