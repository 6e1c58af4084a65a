// handheld-simulator as a program: its options, its files and its end.
#include <gtest/gtest.h>

#include <array>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "simulator/simulated_unit.h"
#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;

ProgramRun RunSimulator(Arguments arguments, const TempFolder& folder) {
  arguments.insert(arguments.begin(), SIMULATOR_PROGRAM);
  return RunProgram(arguments, {.Environment = {"LC_ALL=C.UTF-8"}, .WorkingFolder = folder.Path(), .Longest = 10s});
}

TEST(SimulatorProgram, RemovesItsLinkWhenItIsEnded) {
  RunningSimulator simulator;
  ASSERT_TRUE(fs::is_symlink(simulator.Link()));
  EXPECT_TRUE(simulator.WaitForOutput("an empty table\n"));
  EXPECT_EQ(simulator.Output(), "unit ready on " + simulator.Device() + "\nholds an empty table\n");
  EXPECT_EQ(simulator.Stop(), 0);
  EXPECT_FALSE(fs::is_symlink(simulator.Link()));
}

TEST(SimulatorProgram, EndsWhereItsAnswerOrItsTerminalsNameReachesNobody) {
  for (const Arguments& arguments : {Arguments{SIMULATOR_PROGRAM, "--help"}, Arguments{SIMULATOR_PROGRAM}})
    EXPECT_EQ(RunProgram(arguments, {.OutputTo = "/dev/full", .Longest = 10s}).ExitStatus, 2);
}

struct WrongOptions {
  Arguments Options;
  const char* Error;
};

TEST(SimulatorProgram, DoesNotStartWithOptionsThatAreWrong) {
  const std::array cases = {
      WrongOptions{{"--fault", "bad-mood"}, "--fault: "},
      WrongOptions{{"--fault", "slow@0"}, "--fault: "},
      WrongOptions{{"--fault", "slow@x"}, "--fault: "},
      WrongOptions{{"--fault", "slow@"}, "--fault: "},
      WrongOptions{{"--fault", "@2"}, "--fault: "},
      WrongOptions{{"--model", "LONGMODEL"}, "--model: \"LONGMODEL\" is longer than 7 characters"},
      WrongOptions{{"--firmware", "12.34"}, "--firmware: "},
      WrongOptions{{"--fault", "none@2"}, "--fault: \"none\" is no misbehaviour that could begin with a command\n"},
      WrongOptions{{"--fault", "\x1B[31m"}, "--fault: there is no \"?[31m\", see --help\n"},
      WrongOptions{{"--tag", "65536"}, "--tag: 65536 is out of its range, 0 to 65535\n"},
      WrongOptions{{"--tag", "-1"}, "--tag: -1 is out of its range, 0 to 65535\n"},
      WrongOptions{{"--nth", "2"}, "--nth: is for the fault drop-every-nth-byte"},
      WrongOptions{{"--nth", "2", "--fault", "slow"}, "--nth: "},
      WrongOptions{{"--nth", "0"}, "--nth: "},
      WrongOptions{{"--nth", "often"}, "Could not convert: --nth"},
      WrongOptions{{"--baud", "-1"}, "--baud: -1 is out of its range, 0 to 1000000\n"},
      WrongOptions{{"--baud", "1000001"}, "--baud: 1000001 is out of its range, 0 to 1000000\n"},
      WrongOptions{{"--loud"}, "The following argument was not expected: --loud"},
      WrongOptions{{"--\x1B[31mloud"}, "The following argument was not expected: --?[31mloud\n"},
      WrongOptions{{"--fault", ""}, "--fault: is given without a value\n"},
      WrongOptions{{"--table", "missing.sig"}, "handheld-simulator: missing.sig: No such file or directory\n"},
      WrongOptions{{"--table", "short.sig"},
                   "handheld-simulator: short.sig: line 2 has 2 fields where 10 are needed\n"},
      WrongOptions{{"--table", "misfit.sig"},
                   "handheld-simulator: row 1 (\u00DC): State 300 does not fit, it must be 0 to 255\n"},
      WrongOptions{{"--link", "short.sig"}, "handheld-simulator: short.sig: File exists\n"},
      WrongOptions{{"--link", "missing/unit"}, "handheld-simulator: missing/unit: No such file or directory\n"},
      WrongOptions{{"--save", "missing/held.sig"},
                   "handheld-simulator: missing/held.sig cannot be written: No such file or directory\n"},
  };
  const TempFolder folder;
  WriteFile(folder / "short.sig", "header\n2\t0\n");
  WriteFile(folder / "misfit.sig", SigText({"300|0|\xDC|1|2|1|2|0.1|0.1|1"}));
  for (const WrongOptions& wrong : cases) {
    SCOPED_TRACE(::testing::PrintToString(wrong.Options));
    const ProgramRun run = RunSimulator(wrong.Options, folder);
    EXPECT_EQ(run.Output, "");
    EXPECT_TRUE(run.Errors.starts_with(wrong.Error)) << run.Errors;
    EXPECT_EQ(run.ExitStatus, 2);
  }
  EXPECT_EQ(ReadFile(folder / "short.sig"), "header\n2\t0\n");
}

TEST(SimulatorProgram, TellsItsVersion) {
  const ProgramRun run = RunSimulator({"--version"}, TempFolder());
  EXPECT_TRUE(std::regex_match(run.Output, std::regex("Chanplan Editor \\d+\\.\\d+\n"))) << run.Output;
  EXPECT_EQ(run.Errors, "");
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(SimulatorProgram, TellsItsFaultsInItsHelp) {
  const ProgramRun run = RunSimulator({"--help"}, TempFolder());
  for (const FaultName& fault : FaultNames) {
    const std::size_t line = run.Output.find("\n  " + std::string(fault.Name) + "  ");
    ASSERT_NE(line, std::string::npos) << fault.Name;
    EXPECT_NE(run.Output.substr(line, run.Output.find('\n', line + 1) - line).find(fault.Words), std::string::npos);
  }
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(SimulatorProgram, TellsTheTableThatItHolds) {
  const TempFolder folder;
  WriteFile(folder / "small.sig", SigText(NumberedRows(3)));
  WriteFile(folder / "full.sig", SigText(NumberedRows(200)));
  WriteFile(folder / "large.sig", SigText(NumberedRows(201)));
  for (const auto& [file, told] : {std::pair{"small.sig", "\nholds 3 records of "},
                                   {"full.sig", "\nholds 200 records of "},
                                   {"large.sig", "\nholds the first 200 records of "}}) {
    const RunningSimulator simulator({"--table", folder / file});
    EXPECT_TRUE(simulator.WaitForOutput(told)) << simulator.Output();
    EXPECT_EQ(simulator.Output().find("which has more") != std::string::npos, file == std::string("large.sig"));
  }
}

// A line of the trace without its time.
std::string WithoutTime(const std::string& line) {
  static const std::regex form(R"( *\d+\.\d{3}  (.*))");
  std::smatch match;
  return std::regex_match(line, match, form) ? match[1].str() : "no time: " + line;
}

TEST(SimulatorProgram, TracesBothDirectionsWithTheirTimes) {
  RunningSimulator simulator({"--trace"});
  ASSERT_EQ(Chanplan().Run({"identify", simulator.Link()}).ExitStatus, 0);
  simulator.Stop();
  std::istringstream output(simulator.Output());
  std::vector<std::string> lines;
  for (std::string line; std::getline(output, line);) lines.push_back(lines.size() < 2 ? line : WithoutTime(line));
  lines.erase(lines.begin(), lines.begin() + 2);
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "received 45  |E|",
                       "identifies itself as QX4471C with firmware 3.00",
                       "sent 00 00 51 58 34 34 37 31 43 33 2E 30 30  |..QX4471C3.00|",
                       "received FF  |.|",
                       "echoes the sync byte",
                       "sent FF  |.|",
                       "hangs up",
                   }));
}

TEST(SimulatorProgram, SendsNoFasterThanItsLine) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "unit.sig", SigText(NumberedRows(10)));
  const RunningSimulator simulator({"--table", chanplan.Folder / "unit.sig"});
  const ProgramRun run = chanplan.Run({"download", simulator.Link(), "out.sig"});
  EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText(NumberedRows(10)));
  EXPECT_GE(run.Elapsed, 504ms) << "the 484 bytes of the table at 960 a second";
}

TEST(SimulatorProgram, SavesItsTableOnlyAfterAnUpload) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "unit.sig", SigText(NumberedRows(3)));
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(1)));
  RunningSimulator simulator(
      {"--baud", "0", "--table", chanplan.Folder / "unit.sig", "--save", chanplan.Folder / "held.sig"});
  ASSERT_EQ(chanplan.Run({"identify", simulator.Link()}).ExitStatus, 0);
  EXPECT_FALSE(fs::exists(chanplan.Folder / "held.sig"));
  ASSERT_EQ(chanplan.Run({"upload", simulator.Link(), "table.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "held.sig"), SigText(NumberedRows(1)));
  EXPECT_EQ(ReadFile(chanplan.Folder / "unit.sig"), SigText(NumberedRows(3)));
}

TEST(SimulatorProgram, SaysWhenItsTableCannotBeSavedAndGoesOn) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(1)));
  fs::create_directory(chanplan.Folder / "missing");
  const RunningSimulator simulator({"--baud", "0", "--save", chanplan.Folder / "missing" / "held.sig"});
  fs::remove(chanplan.Folder / "missing");
  ASSERT_EQ(chanplan.Run({"upload", simulator.Link(), "table.sig"}).ExitStatus, 0);
  EXPECT_TRUE(simulator.WaitForOutput("/missing/held.sig: No such file or directory\n")) << simulator.Output();
  EXPECT_EQ(chanplan.Run({"identify", simulator.Link()}).ExitStatus, 0);
}

TEST(SimulatorProgram, TakesOverTheLinkOfAnEarlierOne) {
  const TempFolder folder;
  RunningSimulator first({"--baud", "0", "--model", "FIRSTD"}, folder / "unit");
  const RunningSimulator second({"--baud", "0", "--model", "SECONDD"}, folder / "unit");
  EXPECT_EQ(first.Stop(), 0);
  EXPECT_EQ(Chanplan().Run({"identify", folder / "unit"}).Output, "Model:    SECONDD\nFirmware: 3.00\nAccepted: yes\n");
}

}  // namespace
}  // namespace chanplan::testing
