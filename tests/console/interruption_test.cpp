// Programs that are asked to end, or killed, in the middle of a conversation at 9600 baud.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <future>
#include <string>
#include <vector>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

// A unit with 60 records, and a command that gets signals when the unit has told `moment`.
struct Interruption {
  Chanplan Command;
  TempFolder Folder;
  std::optional<RunningSimulator> Unit;

  explicit Interruption(std::vector<std::string> options = {}) {
    WriteFile(Command.Folder / "table.sig", SigText(NumberedRows(20)));
    WriteFile(Folder / "unit.sig", SigText(NumberedRows(60)));
    options.insert(options.end(), {"--trace", "--table", Folder / "unit.sig", "--save", Folder / "held.sig"});
    Unit.emplace(options);
  }

  ProgramRun Run(const std::vector<std::string>& words, const std::string& moment, const std::vector<int>& signals) {
    std::vector<std::string> arguments = {words.front(), Unit->Link()};
    arguments.insert(arguments.end(), words.begin() + 1, words.end());
    const auto interrupt = [&](pid_t program) {
      EXPECT_TRUE(Unit->WaitForOutput(moment)) << Unit->Output();
      for (const int signal : signals) {
        std::this_thread::sleep_for(200ms);
        kill(program, signal);
      }
    };
    return Command.Run(arguments, {.Meanwhile = interrupt});
  }
  void ExpectServesTheNextProgram() {
    EXPECT_TRUE(Unit->LetsGo());
    const ProgramRun run = Command.Run({"identify", Unit->Link()});
    EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
  }
};

TEST(Interrupted, WaitForASilentUnitEndsInOrder) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    Interruption interruption({"--fault", "silent"});
    const ProgramRun run = interruption.Run({"identify"}, "received 45", {signal});
    EXPECT_EQ(run.ExitStatus, 128 + signal);
    EXPECT_EQ(run.Errors, "chanplan: interrupted\n");
    EXPECT_LT(run.Elapsed, 9s) << "instead of ten seconds";
    EXPECT_TRUE(interruption.Unit->WaitForOutput("received FF")) << "the end of the exchange";
    EXPECT_TRUE(interruption.Unit->LetsGo());
  }
}

TEST(Interrupted, DownloadSavesNothing) {
  Interruption interruption;
  const ProgramRun run = interruption.Run({"download", "out.sig"}, "sends its table", {SIGINT});
  EXPECT_EQ(run.ExitStatus, 130);
  EXPECT_FALSE(fs::exists(interruption.Command.Folder / "out.sig"));
  interruption.ExpectServesTheNextProgram();
}

TEST(Interrupted, UploadThatHasBegunIsFinished) {
  Interruption interruption;
  const ProgramRun run = interruption.Run({"upload", "table.sig"}, "is to receive a table", {SIGTERM});
  EXPECT_EQ(run.ExitStatus, 143);
  EXPECT_EQ(run.Errors, "chanplan: the upload was finished first\nchanplan: interrupted\n");
  EXPECT_EQ(ReadFile(interruption.Folder / "held.sig"), SigText(NumberedRows(20)));
  interruption.ExpectServesTheNextProgram();
}

TEST(Interrupted, UploadGoesOnWithoutAReaderOfItsTrace) {
  Interruption interruption;
  const auto path = [](const fs::path& file) { return "'" + file.string() + "'"; };
  const ProgramRun run = RunProgram({"/bin/sh", "-c",
                                     path(CHANPLAN_PROGRAM) + " upload --trace " + path(interruption.Unit->Link()) +
                                         " " + path(interruption.Command.Folder / "table.sig") + " 2>&1 | head -n 3"});
  EXPECT_EQ(std::ranges::count(run.Output, '\n'), 3);
  EXPECT_EQ(ReadFile(interruption.Folder / "held.sig"), SigText(NumberedRows(20)));
  interruption.ExpectServesTheNextProgram();
}

TEST(Interrupted, UploadIsBrokenOffWhenAskedTwice) {
  Interruption interruption;
  const ProgramRun run = interruption.Run({"upload", "table.sig"}, "is to receive a table", {SIGINT, SIGINT});
  EXPECT_EQ(run.ExitStatus, 130);
  EXPECT_EQ(
      run.Errors,
      "chanplan: the transfer was broken off: a unit that waits for the rest of an upload needs some seconds, or to be "
      "switched off and on\nchanplan: interrupted\n");
  EXPECT_TRUE(interruption.Unit->WaitForOutput("upload ended early"));
  EXPECT_FALSE(fs::exists(interruption.Folder / "held.sig")) << "the unit keeps its table";
  interruption.ExpectServesTheNextProgram();
}

TEST(Killed, DownloadLeavesNothingThatTheNextTakesForItsAnswer) {
  Interruption interruption;
  const ProgramRun killed = interruption.Run({"download", "out.sig"}, "sends its table", {SIGKILL});
  EXPECT_EQ(killed.ExitStatus, -SIGKILL);
  const ProgramRun next = interruption.Command.Run({"download", interruption.Unit->Link(), "out.sig"});
  EXPECT_EQ(next.ExitStatus, 0) << next.Errors;
  EXPECT_EQ(ReadFile(interruption.Command.Folder / "out.sig"), SigText(NumberedRows(60)));
}

// Of the program that goes, one echo is on its way, which other answers overtake.
TEST(Killed, BeforeALateEchoLeavesNothingThatTheNextTakesForItsAnswer) {
  struct Case {
    int Signal;
    std::vector<std::string> Next;
  };
  std::vector<std::future<void>> running;
  for (const Case& killed :
       {Case{SIGKILL, {"download", "out.sig"}}, Case{SIGINT, {"download", "out.sig"}},
        Case{SIGKILL, {"upload", "table.sig", "--append"}}, Case{SIGKILL, {"upload", "table.sig"}}})
    running.push_back(std::async(std::launch::async, [killed] {
      SCOPED_TRACE(killed.Next.front() + " after signal " + std::to_string(killed.Signal));
      Interruption interruption({"--fault", "late-echo"});
      interruption.Run({"identify"}, "echoes the sync byte", {killed.Signal});
      std::vector<std::string> arguments = killed.Next;
      arguments.insert(arguments.begin() + 1, interruption.Unit->Link());
      const ProgramRun next = interruption.Command.Run(arguments);
      EXPECT_EQ(next.ExitStatus, 0) << next.Errors;
      if (killed.Next.front() == "download") {
        EXPECT_EQ(ReadFile(interruption.Command.Folder / "out.sig"), SigText(NumberedRows(60)));
      } else {
        const int held = killed.Next.back() == "--append" ? 60 : 20;
        EXPECT_EQ(ReadFile(interruption.Folder / "held.sig"), SigText(NumberedRows(held)));
      }
    }));
  for (std::future<void>& each : running) each.get();
}

TEST(Killed, UploadLeavesTheUnitItsTable) {
  Interruption interruption;
  EXPECT_EQ(interruption.Run({"upload", "table.sig"}, "is to receive a table", {SIGKILL}).ExitStatus, -SIGKILL);
  // Until then the unit takes what comes for the rest of the table, on a busy machine from the next program, too.
  EXPECT_TRUE(interruption.Unit->WaitForOutput("upload ended early"));
  EXPECT_FALSE(fs::exists(interruption.Folder / "held.sig"));
  interruption.ExpectServesTheNextProgram();
}

}  // namespace
}  // namespace chanplan::testing
