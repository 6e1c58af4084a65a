// handheld-simulator as a program: its options, its files and its end.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

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
  EXPECT_EQ(simulator.Output(), "unit ready on " + simulator.Device() + "\n");
  EXPECT_EQ(simulator.Stop(), 0);
  EXPECT_FALSE(fs::is_symlink(simulator.Link()));
}

struct WrongOptions {
  Arguments Options;
  const char* Error;
};

TEST(SimulatorProgram, DoesNotStartWithOptionsThatAreWrong) {
  const std::array cases = {
      WrongOptions{{"--fault", "bad-mood"}, "--fault: "},
      WrongOptions{{"--nth", "0"}, "--nth: "},
      WrongOptions{{"--nth", "often"}, "--nth: "},
      WrongOptions{{"--baud", "-1"}, "--baud: "},
      WrongOptions{{"--loud"}, "The following argument was not expected: --loud"},
      WrongOptions{{"--table", "missing.sig"}, "handheld-simulator: missing.sig: No such file or directory\n"},
      WrongOptions{{"--table", "short.sig"},
                   "handheld-simulator: short.sig: line 2 has 2 fields where 10 are needed\n"},
      WrongOptions{{"--table", "misfit.sig"},
                   "handheld-simulator: row 1 (\u00DC): State 300 does not fit, it must be 0 to 255\n"},
      WrongOptions{{"--link", "short.sig"}, "handheld-simulator: short.sig: File exists\n"},
      WrongOptions{{"--link", "missing/unit"}, "handheld-simulator: "},
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

TEST(SimulatorProgram, NamesItsFaultsInItsHelp) {
  const ProgramRun run = RunSimulator({"--help"}, TempFolder());
  for (const char* const fault : {"silent", "silent-after-identify", "truncate-reply", "garbage", "wrong-count",
                                  "drop-every-nth-byte", "slow", "hang-up"})
    EXPECT_NE(run.Output.find(fault), std::string::npos) << fault;
  EXPECT_EQ(run.ExitStatus, 0);
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
  const RunningSimulator simulator({"--baud", "0", "--save", chanplan.Folder / "missing" / "held.sig"});
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
