// Units, cables and lines that fail: one clear line, no half-written file, a port that is free again.
#include <gtest/gtest.h>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

struct FaultyUnit : Chanplan {
  FaultyUnit(const std::string& fault, std::vector<std::string> options = {}) {
    WriteFile(Folder / "plan.sig", SigText({"2|0|A|890.2|935.2|1|124|0.2|0.2|1", "2|0|B|1|2|1|2|0.1|0.1|1"}));
    options.insert(options.end(), {"--baud", "0", "--table", (Folder / "plan.sig").string(), "--fault", fault});
    simulator.emplace(options, Folder / "unit");
  }

  ProgramRun Download() const { return Run({"download", simulator->Link(), "held.sig"}); }
  ProgramRun Upload() const { return Run({"upload", simulator->Link(), "plan.sig"}); }

  // What must hold after every failure.
  void ExpectFailure(const ProgramRun& run, const std::string& error) {
    EXPECT_EQ(run.ExitStatus, 2);
    EXPECT_EQ(run.Errors, "chanplan: " + error + "\n");
    EXPECT_EQ(run.Output, "");
    EXPECT_FALSE(std::filesystem::exists(Folder / "held.sig"));
    simulator.reset();
    const RunningSimulator sound({"--baud", "0"}, Folder / "unit");
    const ProgramRun after = Run({"identify", sound.Link()});
    EXPECT_EQ(after.ExitStatus, 0) << after.Errors;
  }

  std::optional<RunningSimulator> simulator;
};

constexpr const char* NotWhole = "the unit's table did not arrive whole within 30 s: check the cable and start again";
constexpr const char* NotConfirmed =
    "the unit did not confirm the end of the upload, its table may be incomplete: check the cable and upload again";

TEST(Fault, SilentUnitIsGivenUpAfterTenSeconds) {
  FaultyUnit unit("silent");
  const ProgramRun run = unit.Upload();
  EXPECT_GE(run.Elapsed, 10s);
  unit.ExpectFailure(run, "no unit answered on " + unit.simulator->Link() +
                              " within 10 s: check that it is switched on and that the cable sits");
}

TEST(Fault, UnitThatFallsSilentAfterIdentifyingFailsTheTransfer) {
  FaultyUnit unit("silent-after-identify");
  unit.ExpectFailure(unit.Download(), "Error establishing communication with Handheld Product!");
}

TEST(Fault, HalfATableIsNoTable) {
  FaultyUnit unit("truncate-reply");
  unit.ExpectFailure(unit.Download(), NotWhole);
}

TEST(Fault, TableThatIsShorterThanAnnouncedIsNoTable) {
  FaultyUnit unit("wrong-count");
  unit.ExpectFailure(unit.Download(), NotWhole);
}

TEST(Fault, NoiseIsNoTable) {
  FaultyUnit unit("garbage");
  unit.ExpectFailure(unit.Download(), NotWhole);
}

TEST(Fault, LostBytesOfAnUploadAreNoticed) {
  FaultyUnit unit("drop-every-nth-byte", {"--nth", "37"});
  unit.ExpectFailure(unit.Upload(), NotConfirmed);
}

TEST(Fault, SlowUnitIsWaitedFor) {
  FaultyUnit unit("slow");
  const ProgramRun run = unit.Download();
  EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
  EXPECT_GE(run.Elapsed, 4s);
  EXPECT_EQ(ReadFile(unit.Folder / "held.sig"), ReadFile(unit.Folder / "plan.sig"));
}

TEST(Fault, UnitThatHangsUpEndsTheTransferAtOnce) {
  for (const bool download : {true, false}) {
    FaultyUnit unit("hang-up");
    const std::string device = unit.simulator->Link();
    const ProgramRun run = download ? unit.Download() : unit.Upload();
    EXPECT_LT(run.Elapsed, 9s) << "it waited for a time-out";
    EXPECT_NE(run.Errors.find("was the cable pulled? Plug it in and start again"), std::string::npos) << run.Errors;
    EXPECT_EQ(unit.simulator->WaitForEnd(), 0);
    unit.ExpectFailure(run, run.Errors.substr(std::string("chanplan: ").size(),
                                              run.Errors.size() - std::string("chanplan: \n").size()));
    EXPECT_EQ(std::count(run.Errors.begin(), run.Errors.end(), '\n'), 1);
  }
}

}  // namespace
}  // namespace chanplan::testing
