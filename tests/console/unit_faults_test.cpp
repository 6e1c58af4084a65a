// Units, cables and lines that fail: one clear line, no half-written file, a port that is free again.
#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <regex>
#include <string>
#include <vector>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;

struct FaultCase {
  std::string Fault;
  Arguments Options;      // further ones of the unit
  Arguments Words;        // of the command; PORT stands for the unit's port
  std::string Error;      // PORT in it, too; a regular expression
  bool UnitStays = true;  // at the other end of the line
  int ExitStatus = 2;
};

constexpr const char* NoAnswer =
    "chanplan: PORT: no unit answered within 10 s: check that it is switched on and that the cable sits; after an "
    "upload that was broken off, switch it off and on\n";
constexpr const char* SilentLater = "chanplan: Error establishing communication with Handheld Product!\n";
constexpr const char* NotWhole =
    "chanplan: the unit's table did not arrive whole within 30 s: check the cable and start again\n";
constexpr const char* NotConfirmed =
    "chanplan: the unit did not confirm the end of the upload, its table may be incomplete: check the cable and upload "
    "again\n";
constexpr const char* HungUp = "chanplan: PORT stopped working: was the cable pulled\\? Plug it in and start again\n";
constexpr const char* NoPort = "chanplan: there is no port PORT: check the cable and the name\n";

std::string WithPort(std::string text, const std::string& port) {
  if (const std::size_t place = text.find("PORT"); place != std::string::npos) text.replace(place, 4, port);
  return text;
}

class FaultyUnit {
 public:
  explicit FaultyUnit(const FaultCase& faultCase) : fault(faultCase) {
    WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(2)));
    WriteFile(chanplan.Folder / "out.sig", "former");
    WriteFile(folder / "unit.sig", SigText(NumberedRows(2, 3)));
    Arguments options = {"--fault", fault.Fault, "--table", folder / "unit.sig", "--save", folder / "held.sig"};
    if (std::ranges::find(fault.Options, "--baud") == fault.Options.end())
      options.insert(options.end(), {"--baud", "0"});
    options.insert(options.end(), fault.Options.begin(), fault.Options.end());
    simulator.emplace(options, link);
  }

  ProgramRun Run() const {
    Arguments words = fault.Words;
    for (std::string& word : words) word = WithPort(word, link);
    return chanplan.Run(words);
  }

  // What holds after every failure.
  void ExpectCleanFailure(const ProgramRun& run) {
    EXPECT_EQ(run.Output, "");
    EXPECT_TRUE(std::regex_match(run.Errors, std::regex(WithPort(fault.Error, link)))) << run.Errors;
    EXPECT_EQ(run.ExitStatus, fault.ExitStatus);
    EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), "former");
    EXPECT_EQ(NamesIn(chanplan.Folder.Path()), (std::set<std::string>{"out.sig", "table.sig"}));
    EXPECT_FALSE(fs::exists(folder / "held.sig")) << "the unit keeps its table";
    if (fault.UnitStays) {
      EXPECT_TRUE(simulator->LetsGo());
      EXPECT_FALSE(simulator->WaitForEnd(0ms));
    } else {
      EXPECT_EQ(simulator->WaitForEnd(), 0);
    }
    simulator.reset();
    const RunningSimulator sound({"--baud", "0"}, link);
    const ProgramRun next = chanplan.Run({"identify", link});
    EXPECT_EQ(next.ExitStatus, 0) << next.Errors;
  }

  const TempFolder& UnitFolder() const { return folder; }
  const Chanplan& Command() const { return chanplan; }

 private:
  FaultCase fault;
  Chanplan chanplan;
  TempFolder folder;
  std::string link = folder / "unit";
  std::optional<RunningSimulator> simulator;
};

// All at the same time, each with a unit of its own: what takes long is waiting.
template <typename Check>
void ForEachAtOnce(const std::vector<FaultCase>& cases, const Check& check) {
  std::vector<std::future<void>> running;
  for (const FaultCase& fault : cases)
    running.push_back(std::async(std::launch::async, [&check, fault] {
      SCOPED_TRACE(fault.Fault + " " + ::testing::PrintToString(fault.Words));
      FaultyUnit unit(fault);
      check(unit, unit.Run());
    }));
  for (std::future<void>& each : running) each.get();
}

TEST(UnitFault, ThatLeavesTheUnitSilentEndsTheWaitAfterTenSeconds) {
  const std::vector<FaultCase> cases = {
      {"silent", {}, {"identify", "PORT"}, NoAnswer},
      {"silent", {}, {"download", "PORT", "out.sig"}, NoAnswer},
      {"silent", {}, {"upload", "PORT", "table.sig", "--append", "--verify"}, NoAnswer},
      {"silent-after-identify", {}, {"download", "PORT", "out.sig"}, SilentLater},
      {"silent-after-identify", {}, {"upload", "PORT", "table.sig"}, SilentLater},
      {"drop-every-nth-byte", {"--nth", "1"}, {"download", "PORT", "out.sig"}, NoAnswer},
      {"drop-every-nth-byte", {"--nth", "50"}, {"upload", "PORT", "table.sig"}, NotConfirmed},
  };
  ForEachAtOnce(cases, [](FaultyUnit& unit, const ProgramRun& run) {
    EXPECT_GE(run.Elapsed, 10s);
    EXPECT_LT(run.Elapsed, 25s);
    unit.ExpectCleanFailure(run);
  });
}

TEST(UnitFault, ThatSpoilsTheTableEndsTheDownloadAfterThirtySeconds) {
  const Arguments download = {"download", "PORT", "out.sig"};
  const std::vector<FaultCase> cases = {
      {"truncate-reply", {}, download, NotWhole},
      {"wrong-count", {}, download, NotWhole},
      {"garbage", {}, download, NotWhole},
      {"drop-every-nth-byte", {"--nth", "40"}, download, NotWhole},
      {"truncate-reply", {}, {"upload", "PORT", "table.sig", "--append"}, NotWhole},
  };
  ForEachAtOnce(cases, [](FaultyUnit& unit, const ProgramRun& run) {
    EXPECT_GE(run.Elapsed, 30s);
    EXPECT_LT(run.Elapsed, 50s);
    unit.ExpectCleanFailure(run);
  });
}

TEST(UnitFault, ThatHangsUpEndsTheTransferAtOnce) {
  const std::vector<FaultCase> cases = {
      {"hang-up", {}, {"download", "PORT", "out.sig"}, HungUp, false},
      {"hang-up", {}, {"upload", "PORT", "table.sig"}, HungUp, false},
      {"hang-up", {}, {"upload", "PORT", "table.sig", "--append", "--verify"}, HungUp, false},
  };
  ForEachAtOnce(cases, [](FaultyUnit& unit, const ProgramRun& run) {
    EXPECT_LT(run.Elapsed, 9s) << "no time-out is waited for";
    unit.ExpectCleanFailure(run);
  });
}

TEST(UnitFault, ThatLeavesTheEndOfAnUploadUnconfirmedFailsIt) {
  // Noise where the sync byte's echo is due; a sync byte that is taken for one that was lost.
  for (const FaultCase& fault :
       {FaultCase{"garbage", {}, {"upload", "PORT", "table.sig"}, NotConfirmed},
        FaultCase{"drop-every-nth-byte", {"--nth", "40"}, {"upload", "PORT", "table.sig"}, NotConfirmed}}) {
    FaultyUnit unit(fault);
    const ProgramRun run = unit.Run();
    EXPECT_EQ(run.Errors, NotConfirmed);
    EXPECT_EQ(run.ExitStatus, 2);
  }
}

TEST(UnitFault, ThatOnlyDelaysStillLeadsToTheEnd) {
  const std::vector<FaultCase> cases = {
      {"slow", {}, {"download", "PORT", "out.sig"}, ""},
      {"slow", {}, {"upload", "PORT", "table.sig"}, ""},
  };
  ForEachAtOnce(cases, [](FaultyUnit& unit, const ProgramRun& run) {
    EXPECT_GE(run.Elapsed, 4s) << "the unit identifies itself twice, each time 2 s late";
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
    if (fs::exists(unit.UnitFolder() / "held.sig")) {
      EXPECT_EQ(ReadFile(unit.UnitFolder() / "held.sig"), SigText(NumberedRows(2)));
    } else {
      EXPECT_EQ(ReadFile(unit.Command().Folder / "out.sig"), SigText(NumberedRows(2, 3)));
    }
  });
}

// At the speed of a real line, one program right behind the other. Behind a stale echo, a tag with a low
// byte of 0 makes the table look empty.
TEST(UnitFault, ThatDelaysEchoesOnARealLineCostsNoTable) {
  std::vector<std::future<void>> running;
  for (const char* const fault : {"slow", "late-echo"})
    running.push_back(std::async(std::launch::async, [fault] {
      SCOPED_TRACE(fault);
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "unit.sig", SigText(NumberedRows(2, 3)));
      WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(1)));
      const RunningSimulator unit({"--fault", fault, "--tag", "256", "--table", chanplan.Folder / "unit.sig", "--save",
                                   chanplan.Folder / "held.sig"});
      for (int round = 0; round < 2; ++round) {
        const ProgramRun run = chanplan.Run({"download", unit.Link(), "out.sig"});
        EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
        EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText(NumberedRows(2, 3)));
      }
      const ProgramRun run = chanplan.Run({"upload", unit.Link(), "table.sig", "--append"});
      EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
      std::vector<std::string> merged = NumberedRows(2, 3);
      merged.push_back(NumberedRows(1).front());
      EXPECT_EQ(ReadFile(chanplan.Folder / "held.sig"), SigText(merged));
    }));
  for (std::future<void>& each : running) each.get();
}

TEST(UnitFault, ThatSendsMoreRecordsThanATableHoldsIsNamed) {
  FaultyUnit many({"too-many",
                   {},
                   {"download", "PORT", "out.sig"},
                   "chanplan: The unit announces more than 200 records, which no table can hold: its first 200 are not "
                   "its whole table\n"});
  many.ExpectCleanFailure(many.Run());
}

TEST(UnitFault, ThatSwitchesTheUnitOffInAnUploadFailsIt) {
  FaultyUnit unit({"off-in-upload", {}, {"upload", "PORT", "table.sig"}, NotConfirmed});
  unit.ExpectCleanFailure(unit.Run());
}

TEST(UnitFault, ThatSendsEveryByteBackIsNamed) {
  const std::string named =
      "chanplan: PORT: the line sends back what is sent to it: switch the echo of the adapter off, or take out a plug "
      "that joins its pins\n";
  for (const Arguments& words :
       {Arguments{"identify", "PORT"}, {"download", "PORT", "out.sig"}, {"upload", "PORT", "table.sig", "--append"}})
    for (const char* const baud : {"0", "9600"}) {
      FaultyUnit unit({"echo", {"--baud", baud}, words, named});
      unit.ExpectCleanFailure(unit.Run());
    }
}

// The upload itself was confirmed: nobody is to upload the table again.
TEST(UnitFault, BehindAnUploadIsNoFaultOfTheUpload) {
  // E and its sync byte, E, the table and its two: then E and its sync byte again, E, and the table is asked for.
  const FaultCase fault{"hang-up@8", {}, {"upload", "PORT", "table.sig", "--verify"}, ""};
  const FaultyUnit unit(fault);
  const ProgramRun run = unit.Run();
  EXPECT_TRUE(
      run.Errors.starts_with("chanplan: the unit confirmed the upload, but its table could not be read back "
                             "to compare it: "))
      << run.Errors;
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_EQ(ReadFile(unit.UnitFolder() / "held.sig"), SigText(NumberedRows(2)));
}

TEST(UnitFault, ThatCutsTheIdentityIsSaidWithWhatCame) {
  FaultyUnit unit({"drop-every-nth-byte",
                   {"--nth", "14"},
                   {"identify", "PORT"},
                   "chanplan: PORT: incomplete answer, 12 of 13 bytes: check that the cable sits\n"});
  unit.ExpectCleanFailure(unit.Run());
}

// The unit's end of the line goes while the program waits for the identity, or for the echo of a sync byte.
TEST(UnitFault, ThatHangsUpWhileAnAnswerIsAwaitedEndsTheWaitAtOnce) {
  struct Case {
    const char* Fault;
    const char* Moment;  // of the unit's trace
    Arguments Words;
    std::string Error = HungUp;
  };
  std::vector<std::future<void>> running;
  for (const Case& hangUp :
       {Case{"silent", "keeps silent", {"identify"}}, Case{"silent", "keeps silent", {"download", "out.sig"}},
        Case{"silent@2", "keeps silent", {"identify"}, ""},
        Case{"silent@2", "keeps silent", {"download", "out.sig"}, NoPort},
        Case{"silent@3", "keeps silent", {"download", "out.sig"}},
        Case{"silent@5", "keeps silent", {"download", "out.sig"}, ""},
        Case{"silent@5", "keeps silent", {"upload", "table.sig"}}})
    running.push_back(std::async(std::launch::async, [hangUp] {
      SCOPED_TRACE(std::string(hangUp.Fault) + " " + hangUp.Words.front());
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(2)));
      RunningSimulator unit({"--trace", "--fault", hangUp.Fault, "--table", chanplan.Folder / "table.sig"});
      Arguments arguments = hangUp.Words;
      arguments.insert(arguments.begin() + 1, unit.Link());
      std::chrono::steady_clock::time_point hungUp;
      const ProgramRun run = chanplan.Run(arguments, {.Meanwhile = [&](pid_t) {
                                            EXPECT_TRUE(unit.WaitForOutput(hangUp.Moment)) << unit.Output();
                                            unit.Stop();
                                            hungUp = std::chrono::steady_clock::now();
                                          }});
      EXPECT_EQ(run.ExitStatus, hangUp.Error.empty() ? 0 : 2);
      EXPECT_LT(std::chrono::steady_clock::now() - hungUp, 8s) << "no time-out is waited for";
      EXPECT_TRUE(std::regex_match(run.Errors, std::regex(WithPort(hangUp.Error, unit.Link())))) << run.Errors;
      EXPECT_EQ(fs::exists(chanplan.Folder / "out.sig"), hangUp.Error.empty() && hangUp.Words.front() == "download");
    }));
  for (std::future<void>& each : running) each.get();
}

TEST(UnitFault, ThatFollowsTheIdentificationLetsTheUnitBeIdentified) {
  for (const char* const fault :
       {"silent-after-identify", "truncate-reply", "wrong-count", "garbage", "hang-up", "drop-every-nth-byte"}) {
    const FaultyUnit unit({fault, {}, {"identify", "PORT"}, ""});
    const ProgramRun run = unit.Run();
    EXPECT_EQ(run.Output, "Model:    QX4471C\nFirmware: 3.00\nAccepted: yes\n") << fault;
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

}  // namespace
}  // namespace chanplan::testing
