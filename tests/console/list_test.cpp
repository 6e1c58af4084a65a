// What scripts read of a table, and files that are shown once they are written.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

constexpr char HeaderLine[] =
    "Number\tSub-band\tName\tModulation\tActive Display Mode\tUplink Start Frequency\tDownlink Start Frequency\t"
    "Start Channel\tStop Channel\tBandwidth\tSpacing\tStep\n";

struct List : ::testing::Test {
  ProgramRun Run(const std::vector<std::string>& rows, const std::vector<std::string>& options = {}) {
    WriteFile(chanplan.Folder / "t.sig", SigText(rows));
    std::vector<std::string> arguments = {"list", "t.sig"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return chanplan.Run(arguments);
  }
  Chanplan chanplan;
};

TEST_F(List, HasALineForEachRecordUnderTheirNames) {
  const ProgramRun run =
      Run({"131|1|PCS \xE4|1850.2|1930.2|512|810|0.2|1E-05|2", "0|0|any|1851|1931|5|6|7|8|9", "5|0|Two|1|2|3|4|0|0|0"});
  EXPECT_EQ(run.ExitStatus, 0);
  EXPECT_EQ(run.Output, std::string(HeaderLine) +
                            "1\t\tPCS \xC3\xA4\tCDMA/GSM\tyes\t1850.2\t1930.2\t512\t810\t0.2\t1E-05\t2\n"
                            "1\tA\tPCS \xC3\xA4(A)\t\t\t1851\t1931\t5\t6\t0.2\t1E-05\t2\n"
                            "2\t\tTwo\tCDMA\tno\t1\t2\t3\t4\t0\t0\t0\n");
}

TEST_F(List, IsJsonOnRequest) {
  EXPECT_EQ(Run({}, {"--format", "json"}).Output, "[]\n");
  EXPECT_EQ(Run({"131|1|A \"b\"|1850.2|1930.2|512|810|0.2|1E-05|2", "0|0|any|1851|1931|5|6|7|8|9", NumberedRows(1)[0]},
                {"--format", "json"})
                .Output,
            "[{\"name\": \"A \\\"b\\\"\", \"modulation\": \"CDMA/GSM\", \"activeDisplayMode\": true, \"state\": 131, "
            "\"uplinkStartFreq\": 1850.2, \"downlinkStartFreq\": 1930.2, \"startChannel\": 512, \"stopChannel\": 810, "
            "\"bandwidth\": 0.2, \"spacing\": 1E-05, \"step\": 2, \"subbands\": [{\"uplinkStartFreq\": 1851, "
            "\"downlinkStartFreq\": 1931, \"startChannel\": 5, \"stopChannel\": 6, \"bandwidth\": 0.2, \"spacing\": "
            "1E-05, \"step\": 2}]},\n "
            "{\"name\": \"S1\", \"modulation\": \"GSM\", \"activeDisplayMode\": false, \"state\": 2, "
            "\"uplinkStartFreq\": 890, \"downlinkStartFreq\": 935, \"startChannel\": 1, \"stopChannel\": 124, "
            "\"bandwidth\": 0.2, \"spacing\": 0.2, \"step\": 1, \"subbands\": []}]\n");
}

TEST_F(List, TellsOfRowsThatItCouldNotTake) {
  const ProgramRun exactly = Run(NumberedRows(200));
  EXPECT_EQ(exactly.ExitStatus, 0);
  EXPECT_NE(exactly.Output.find("\n200\t\tS200\t"), std::string::npos);
  const ProgramRun more = Run(NumberedRows(201));
  EXPECT_EQ(more.ExitStatus, 3);
  EXPECT_EQ(more.Output, exactly.Output);
  const ProgramRun comma = Run({"2|0|A|880,2|935|1|124|0.2|0.2|1"});
  EXPECT_EQ(comma.Errors, "chanplan: t.sig: line 2: \"880,2\" was read as 880\n");
  EXPECT_EQ(chanplan.Run({"list", "missing.sig"}).ExitStatus, 2);
}

TEST_F(List, KeepsControlCharactersFromTheTerminal) {
  EXPECT_EQ(Run({"2|0|A\x1b[31m|1|2|3|4|5|6|7"}).Output,
            std::string(HeaderLine) + "1\t\tA?[31m\tGSM\tno\t1\t2\t3\t4\t5\t6\t7\n");
}

// A desktop's opener that writes down what it is given.
struct Open : ::testing::Test {
  Open() {
    const fs::path opener = chanplan.Folder / "bin" / "xdg-open";
    fs::create_directory(opener.parent_path());
    WriteFile(opener, "#!/bin/sh\nprintf %s \"$1\" > '" + (chanplan.Folder / "part").string() + "'\nmv '" +
                          (chanplan.Folder / "part").string() + "' '" + (chanplan.Folder / "shown").string() + "'\n");
    fs::permissions(opener, fs::perms::owner_all);
    options.Environment = {"PATH=" + opener.parent_path().string() + ":/usr/bin:/bin"};
    WriteFile(chanplan.Folder / "t.sig", SigText(NumberedRows(2)));
  }
  Chanplan chanplan;
  RunOptions options;
};

TEST_F(Open, ShowsWhatWasWritten) {
  for (const std::string command : {"report", "chart"}) {
    const fs::path out = chanplan.Folder / (command + ".out");
    const ProgramRun run = chanplan.Run({command, "--open", "t.sig", command + ".out"}, options);
    EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
    ASSERT_TRUE(WaitFor(20s, [&] { return fs::exists(chanplan.Folder / "shown"); }));
    EXPECT_EQ(ReadFile(chanplan.Folder / "shown"), out.string());
    EXPECT_FALSE(ReadFile(out).empty());
    fs::remove(chanplan.Folder / "shown");
  }
}

TEST_F(Open, IsRefusedForStandardOutputAndSaysWhatIsMissing) {
  const ProgramRun stream = chanplan.Run({"chart", "--open", "t.sig", "-"}, options);
  EXPECT_EQ(stream.ExitStatus, 2);
  EXPECT_EQ(stream.Output, "");
  options.Environment = {"PATH=/nowhere"};
  const ProgramRun missing = chanplan.Run({"chart", "--open", "t.sig", "chart.svg"}, options);
  EXPECT_EQ(missing.ExitStatus, 2);
  EXPECT_EQ(missing.Errors, "chanplan: chart.svg was written, but cannot be shown: there is no xdg-open\n");
}

}  // namespace
}  // namespace chanplan::testing
