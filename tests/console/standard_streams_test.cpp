// Tables that come from standard input, and what goes to standard output.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

const std::string Plan = SigText(NumberedRows(2));

// What a command prints and writes with names, it prints for "-" alike, but for the table's caption.
TEST(Dash, StandsForStandardInputAndOutput) {
  const std::vector<std::vector<std::string>> commands = {{"check", "plan.sig"},
                                                          {"save-as", "plan.sig", "-"},
                                                          {"merge", "plan.sig", "other.sig", "-"},
                                                          {"merge", "other.sig", "plan.sig", "-"},
                                                          {"diff", "plan.sig", "other.sig"},
                                                          {"diff", "other.sig", "plan.sig"},
                                                          {"report", "plan.sig", "-"},
                                                          {"chart", "plan.sig", "-"}};
  for (std::vector<std::string> words : commands) {
    const Chanplan chanplan;
    SCOPED_TRACE(::testing::PrintToString(words));
    WriteFile(chanplan.Folder / "plan.sig", Plan);
    WriteFile(chanplan.Folder / "other.sig", SigText(NumberedRows(1, 7)));
    std::vector<std::string> withNames = words;
    if (withNames.back() == "-") withNames.back() = "out";
    const ProgramRun named = chanplan.Run(withNames);
    const std::string expected = withNames.back() == "out" ? ReadFile(chanplan.Folder / "out") : named.Output;

    std::ranges::replace(words, std::string("plan.sig"), "-");
    RunOptions options;
    options.InputFrom = chanplan.Folder / "plan.sig";
    const ProgramRun streamed = chanplan.Run(words, options);
    // What a merge tells makes room for its table.
    EXPECT_EQ(streamed.Errors, words[0] == "merge" ? named.Output : "");
    EXPECT_EQ(streamed.ExitStatus, named.ExitStatus);
    std::string output = streamed.Output;
    constexpr std::string_view caption = "(standard input)";
    for (std::size_t at = 0; (at = output.find(caption)) != std::string::npos;)
      output.replace(at, caption.size(), "plan.sig");
    EXPECT_EQ(output, expected);
    EXPECT_FALSE(fs::exists(chanplan.Folder / "-"));
  }
}

TEST(Dash, IsNamedAsStandardInputWhenItCannotBeRead) {
  const Chanplan chanplan;
  const ProgramRun run = chanplan.Run({"check", "-"});
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_TRUE(run.Errors.starts_with("chanplan: Error loading (standard input): the file is empty")) << run.Errors;
}

TEST(Dash, IsToldApartFromAnEmptyFileWhereItCannotBeReadAtAll) {
  const Chanplan chanplan;
  const ProgramRun run = chanplan.Run({"check", "-"}, {.InputFrom = chanplan.Folder.Path()});
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_EQ(run.Errors, "chanplan: Error loading (standard input): Is a directory\n");
}

TEST(LimitOfFileSizes, FailsASaveInsteadOfEndingTheProgram) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(200)));
  WriteFile(chanplan.Folder / "out.sig", "former");
  const ProgramRun run =
      RunProgram({"/bin/sh", "-c", "ulimit -f 2; exec '" CHANPLAN_PROGRAM "' save-as table.sig out.sig"},
                 {.WorkingFolder = chanplan.Folder.Path()});
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_NE(run.Errors.find("Error Saving File out.sig: File too large"), std::string::npos) << run.Errors;
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), "former");
  EXPECT_EQ(NamesIn(chanplan.Folder.Path()), (std::set<std::string>{"out.sig", "table.sig"}));
}

// Replaced, the file of a redirection would lose what stands in it, and whoever reads it its end.
TEST(StandardOutput, IsWrittenToByItsOtherNames) {
  for (const char* name : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1"})
    for (const std::string& command : std::vector<std::string>{"save-as", "report", "chart", "print"}) {
      SCOPED_TRACE(command + " " + name);
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "plan.sig", Plan);
      WriteFile(chanplan.Folder / "log", "");
      struct stat before {
      }, after{};
      ASSERT_EQ(stat((chanplan.Folder / "log").c_str(), &before), 0);
      RunOptions options;
      options.OutputTo = chanplan.Folder / "log";
      const ProgramRun run = chanplan.Run({command, "plan.sig", name}, options);
      EXPECT_EQ(run.Errors, "");
      EXPECT_EQ(run.ExitStatus, 0);
      ASSERT_EQ(stat((chanplan.Folder / "log").c_str(), &after), 0);
      EXPECT_EQ(before.st_ino, after.st_ino);
      EXPECT_GT(after.st_size, 50);
    }
}

TEST(Output, IsNeverTheTableThatItIsMadeOf) {
  for (const std::string& command : std::vector<std::string>{"report", "print", "chart"})
    for (const std::string& out : std::vector<std::string>{"plan.sig", "./plan.sig", "hard.sig", "soft.sig"}) {
      SCOPED_TRACE(command + " " + out);
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "plan.sig", Plan);
      fs::create_hard_link(chanplan.Folder / "plan.sig", chanplan.Folder / "hard.sig");
      fs::create_symlink("plan.sig", chanplan.Folder / "soft.sig");
      const ProgramRun run = chanplan.Run({command, "plan.sig", out});
      EXPECT_EQ(run.Errors,
                "chanplan: " + out + " is the table itself, which it would take the place of: nothing was written\n");
      EXPECT_EQ(run.ExitStatus, 2);
      EXPECT_EQ(ReadFile(chanplan.Folder / "plan.sig"), Plan);
    }
}

TEST(Output, IsNotTheTableBehindAStandardStreamEither) {
  const auto shell = [](const Chanplan& chanplan, const std::string& command) {
    RunOptions options;
    options.WorkingFolder = chanplan.Folder.Path();
    return RunProgram({"/bin/sh", "-c", command, CHANPLAN_PROGRAM}, options);
  };
  for (const std::string& command : std::vector<std::string>{"report", "print", "chart"})
    for (const std::string& streams :
         std::vector<std::string>{"- plan.sig < plan.sig", "plan.sig - >> plan.sig", "- - < plan.sig 1<> plan.sig"}) {
      SCOPED_TRACE(command + " " + streams);
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "plan.sig", Plan);
      const ProgramRun run = shell(chanplan, "\"$0\" " + command + " " + streams);
      EXPECT_NE(run.Errors.find("is the table itself"), std::string::npos) << run.Errors;
      EXPECT_EQ(run.ExitStatus, 2);
      EXPECT_EQ(ReadFile(chanplan.Folder / "plan.sig"), Plan);
    }
  // Nor does anything that is printed get into the table that it is about.
  for (const std::string& command : std::vector<std::string>{"list plan.sig", "check plan.sig", "save-as plan.sig -",
                                                             "merge plan.sig plan.sig -", "properties plan.sig"}) {
    SCOPED_TRACE(command);
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "plan.sig", Plan);
    EXPECT_EQ(shell(chanplan, "\"$0\" " + command + " >> plan.sig").ExitStatus, 2);
    EXPECT_EQ(ReadFile(chanplan.Folder / "plan.sig"), Plan);
  }
  // A device may be both.
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", Plan);
  EXPECT_EQ(shell(chanplan, "cat plan.sig | \"$0\" chart - - | grep -c '</svg>'").Output, "1\n");
}

TEST(Output, GetsNoControlCharactersWhereItIsATerminal) {
  for (const std::string name : {"A\x1B[31m",
                                 "A\x9B"
                                 "31m",
                                 "A\x7F"}) {
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "plan.sig", SigText({"2|0|" + name + "|1|2|3|4|5|6|7"}));
    RunOptions terminal;
    terminal.Terminal = TerminalAt::Output;
    for (const std::string& command : std::vector<std::string>{"save-as", "report", "print"}) {
      const ProgramRun run = chanplan.Run({command, "plan.sig", "-"}, terminal);
      EXPECT_EQ(run.Output, "") << command;
      EXPECT_EQ(run.ExitStatus, 2) << command;
    }
    EXPECT_EQ(chanplan.Run({"save-as", "plan.sig", "-"}).ExitStatus, 0) << "a pipe may have anything";
  }
}

TEST(Dash, IsOneOfTwoTablesAtMost) {
  const Chanplan chanplan;
  EXPECT_EQ(chanplan.Run({"diff", "-", "-"}).Errors,
            "chanplan: standard input can be one of the two tables, not both\n");
  EXPECT_EQ(chanplan.Run({"merge", "-", "-", "out.sig"}).ExitStatus, 2);
}

}  // namespace
}  // namespace chanplan::testing
