// The commands that talk to a unit, against the simulated unit in a process of its own.
#include <gtest/gtest.h>

#include <regex>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

using Rows = std::vector<std::string>;

const Rows TwoStandards = {"2|1|A|890.2|935.2|1|124|0.2|0.2|1", "0|0|A(A)|880.2|925.2|975|1023|0.2|0.2|1",
                           "1|0|B|1054.3718|1850|0|1199|1.23|0.05|1"};

// A command folder with `rows` in plan.sig.
struct Plan : Chanplan {
  explicit Plan(const Rows& rows) { WriteFile(Folder / "plan.sig", SigText(rows)); }
};

void ExpectFailure(const ProgramRun& run, const std::string& errors) {
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_EQ(run.Errors, errors);
  EXPECT_EQ(run.Output, "");
}

TEST(Identify, PrintsModelFirmwareAndWhetherTheUnitIsAccepted) {
  const struct {
    std::string Model;
    std::string Firmware;
    std::string Output;
  } cases[] = {
      {"QX4471C", "1.00", "Model:    QX4471C\nFirmware: 1.00\nAccepted: yes\n"},
      {"XY1234D", "3.00", "Model:    XY1234D\nFirmware: 3.00\nAccepted: yes\n"},
      {"XY1234D", "2.99", "Model:    XY1234D\nFirmware: 2.99\nAccepted: no\n"},
  };
  for (const auto& unit : cases) {
    const RunningSimulator simulator({"--baud", "0", "--model", unit.Model, "--firmware", unit.Firmware});
    const ProgramRun run = Chanplan().Run({"identify", simulator.Link()});
    EXPECT_EQ(run.ExitStatus, 0);
    EXPECT_EQ(run.Output, unit.Output);
    EXPECT_EQ(run.Errors, "");
  }
}

TEST(Transfer, TableComesBackAsItWasSent) {
  const Plan chanplan(TwoStandards);
  const RunningSimulator simulator({"--baud", "0", "--save", (chanplan.Folder / "unit.sig").string()});
  const ProgramRun upload = chanplan.Run({"upload", simulator.Link(), "plan.sig", "--verify"});
  EXPECT_EQ(upload.ExitStatus, 0) << upload.Errors;
  EXPECT_EQ(upload.Errors, "");
  EXPECT_EQ(ReadFile(chanplan.Folder / "unit.sig"), SigText(TwoStandards));
  const ProgramRun download = chanplan.Run({"download", simulator.Link(), "held.sig"});
  EXPECT_EQ(download.ExitStatus, 0) << download.Errors;
  EXPECT_EQ(ReadFile(chanplan.Folder / "held.sig"), SigText(TwoStandards));
}

TEST(Transfer, OfAPacedUnitWorks) {
  const Plan chanplan(TwoStandards);
  const RunningSimulator simulator({"--table", (chanplan.Folder / "plan.sig").string()});
  EXPECT_EQ(chanplan.Run({"download", simulator.Link(), "held.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "held.sig"), SigText(TwoStandards));
}

TEST(Append, KeepsTheUnitsStandardsUnlessToldToReplaceThem) {
  const struct {
    std::vector<std::string> Options;
    Rows Result;
  } cases[] = {
      {{"--append"}, {"2|0|A|1|2|1|2|0.1|0.1|1", "2|0|C|5|6|1|2|0.1|0.1|1", "1|0|B|9|9|1|2|0.1|0.1|1"}},
      {{"--append", "--replace-matching"},
       {"1|0|A|7|8|1|2|0.1|0.1|1", "2|0|C|5|6|1|2|0.1|0.1|1", "1|0|B|9|9|1|2|0.1|0.1|1"}},
  };
  for (const auto& append : cases) {
    const Plan chanplan({"1|0|A|7|8|1|2|0.1|0.1|1", "1|0|B|9|9|1|2|0.1|0.1|1"});
    WriteFile(chanplan.Folder / "unit.sig", SigText({"2|0|A|1|2|1|2|0.1|0.1|1", "2|0|C|5|6|1|2|0.1|0.1|1"}));
    const std::string unitFile = (chanplan.Folder / "unit.sig").string();
    const RunningSimulator simulator({"--baud", "0", "--table", unitFile, "--save", unitFile});
    std::vector<std::string> arguments = {"upload", simulator.Link(), "plan.sig", "--verify"};
    arguments.insert(arguments.end(), append.Options.begin(), append.Options.end());
    const ProgramRun run = chanplan.Run(arguments);
    EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
    EXPECT_EQ(ReadFile(unitFile), SigText(append.Result));
  }
}

TEST(Append, SaysWhenTheMergedTableWasTruncated) {
  Rows held;
  for (int number = 0; number < 199; ++number) held.push_back("2|0|H" + std::to_string(number) + "|1|2|1|2|0.1|0.1|1");
  const Plan chanplan({"2|0|First|1|2|1|2|0.1|0.1|1", "2|0|Lost|1|2|1|2|0.1|0.1|1"});
  const std::string unitFile = (chanplan.Folder / "unit.sig").string();
  WriteFile(unitFile, SigText(held));
  const RunningSimulator simulator({"--baud", "0", "--table", unitFile, "--save", unitFile});
  const ProgramRun run = chanplan.Run({"upload", simulator.Link(), "plan.sig", "--append"});
  EXPECT_EQ(run.ExitStatus, 0);
  EXPECT_EQ(run.Errors,
            "chanplan: There were too many records to merge tables.\n"
            "The Merged table has been truncated at 200 records.\n");
  held.push_back("2|0|First|1|2|1|2|0.1|0.1|1");
  EXPECT_EQ(ReadFile(unitFile), SigText(held));
}

TEST(Verify, FindsWhatTheUnitHoldsOtherwise) {
  const Plan chanplan({"2|0|A|5000|935.2|1|124|0.2|0.2|1"});
  const RunningSimulator simulator({"--baud", "0"});
  ExpectFailure(chanplan.Run({"upload", simulator.Link(), "plan.sig", "--verify"}),
                "chanplan: row 1 (A): Uplink Start Frequency 5000 MHz is more than a unit can take and goes out as 0\n"
                "chanplan: row 1 (A): Uplink Start Frequency: 5000 -> 0\n"
                "chanplan: the unit's table is not the one that was sent: upload it again\n");
}

TEST(Upload, RefusesWhatDoesNotFitBeforeAnythingIsSent) {
  const struct {
    std::string Row;
    std::string Problem;
  } cases[] = {
      {"300|0|B|1|2|1|2|0.1|0.1|1", "State 300 does not fit, it must be 0 to 255"},
      {"2|0|B|1|2|70000|80000|0.1|0.1|1", "Start Channel 70000 does not fit, it must be 0 to 65535"},
      {"2|0|B|1|2|1|-2|0.1|0.1|1", "Stop Channel -2 does not fit, it must be 0 to 65535"},
      {"2|0|B|-1.5|2|1|2|0.1|0.1|1", "Uplink Start Frequency -1.5 MHz does not fit, it must not be negative"},
      {"2|300|B|1|2|1|2|0.1|0.1|1", "Sub-bands 300 does not fit, it must be 0 to 255"},
  };
  const RunningSimulator simulator({"--baud", "0", "--trace"});
  for (const auto& misfit : cases) {
    const Plan chanplan({"2|0|A|1|2|1|2|0.1|0.1|1", misfit.Row});
    ExpectFailure(chanplan.Run({"upload", simulator.Link(), "plan.sig"}),
                  "chanplan: row 2 (B): " + misfit.Problem + "; nothing was sent\n");
  }
  EXPECT_EQ(simulator.Output().find("received"), std::string::npos);
}

TEST(Transfer, WithAUnitThatIsNotAcceptedIsRefused) {
  const Plan chanplan(TwoStandards);
  const RunningSimulator simulator({"--baud", "0", "--model", "XY1234d", "--firmware", "3.10"});
  const std::string errors =
      "chanplan: the unit XY1234d with firmware 3.10 is not compatible: it takes a model that ends in D, with firmware "
      "3.00 or later\n";
  ExpectFailure(chanplan.Run({"upload", simulator.Link(), "plan.sig"}), errors);
  ExpectFailure(chanplan.Run({"download", simulator.Link(), "held.sig"}), errors);
  EXPECT_FALSE(std::filesystem::exists(chanplan.Folder / "held.sig"));
}

TEST(Port, FailuresSayWhatToDo) {
  const Plan chanplan(TwoStandards);
  const std::string file = (chanplan.Folder / "plan.sig").string();
  const struct {
    std::string Port;
    std::string Error;
  } cases[] = {
      {"/dev/no-such-port", "there is no port /dev/no-such-port: check the cable and the name"},
      {"plan.sig", file + " is not a serial port"},
      {"/dev/null", "/dev/null is not a serial port, or nothing is connected to it"},
      {"0", "there is no port 0: give a number from 1 to 6, or a device"},
      {"7", "there is no port 7: give a number from 1 to 6, or a device"},
      {"65537", "there is no port 65537: give a number from 1 to 6, or a device"},
  };
  for (const auto& failure : cases)
    ExpectFailure(chanplan.Run({"identify", failure.Port}), "chanplan: " + failure.Error + "\n");
}

TEST(Port, WithoutPermissionNamesTheGroupThatGrantsIt) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const RunningSimulator simulator({"--baud", "0"});
  std::filesystem::permissions(simulator.Device(), std::filesystem::perms::owner_all);
  const ProgramRun run = Chanplan().Run({"identify", simulator.Device()}, {.Unprivileged = true});
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_TRUE(std::regex_match(run.Errors, std::regex("chanplan: no permission to use " + simulator.Device() +
                                                      ": the group \"(\\w+)\" grants it; have your user added "
                                                      "\\(sudo usermod -aG \\1 USER\\) and log in again\n")))
      << run.Errors;
}

TEST(Port, NumberStandsForTheDeviceOfTheSettings) {
  const RunningSimulator simulator({"--baud", "0"});
  const Chanplan chanplan;
  chanplan.SetSettings("[Settings]\nCommDevice3=" + simulator.Link() + "\n");
  EXPECT_EQ(chanplan.Run({"identify", "3"}).ExitStatus, 0);
}

TEST(Units, ListsTheUnitsThatAnswer) {
  const RunningSimulator simulator({"--baud", "0", "--model", "AB12D", "--firmware", "2.00"});
  const Chanplan chanplan;
  chanplan.SetSettings("[Settings]\nCommDevice2=" + simulator.Link() + "\n");
  const ProgramRun run = chanplan.Run({"units"});
  EXPECT_EQ(run.ExitStatus, 0);
  EXPECT_EQ(run.Output, simulator.Link() + "\tAB12D\t2.00\tnot accepted\n");
}

TEST(Trace, PrintsTheConversationWithItsTimes) {
  const RunningSimulator simulator({"--baud", "0"});
  const ProgramRun run = Chanplan().Run({"identify", simulator.Link(), "--trace"});
  EXPECT_TRUE(std::regex_match(run.Errors, std::regex(R"( +\d+\.\d{3} \* settings 9600,N,8,1
 +\d+\.\d{3} \* port opened
 +\d+\.\d{3} > 45  \|E\|
 +\d+\.\d{3} < 00 00 51 58 34 34 37 31 43 33 2E 30 30  \|\.\.QX4471C3\.00\|
 +\d+\.\d{3} > FF  \|\.\|
 +\d+\.\d{3} < FF  \|\.\|
 +\d+\.\d{3} \* port closed
)"))) << run.Errors;
}

TEST(ProgressBar, IsDrawnOnATerminalOnly) {
  const Plan chanplan(TwoStandards);
  const RunningSimulator simulator({"--baud", "0"});
  const std::vector<std::string> upload = {"upload", simulator.Link(), "plan.sig"};
  const ProgramRun onTerminal = chanplan.Run(upload, {.Terminal = TerminalAt::Errors});
  EXPECT_EQ(onTerminal.ExitStatus, 0);
  EXPECT_NE(onTerminal.Errors.find("\rUploading Signal Standards... [####################....................] 50 %"),
            std::string::npos)
      << onTerminal.Errors;
  EXPECT_NE(onTerminal.Errors.find("] 100 %"), std::string::npos);
  EXPECT_EQ(chanplan.Run(upload).Errors, "");
}

}  // namespace
}  // namespace chanplan::testing
