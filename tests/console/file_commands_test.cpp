// The commands that work on table files: what they print, write and return.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <regex>
#include <string>
#include <vector>

#include "tests/console/program.h"
#include "tests/console/sig_text.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

using Rows = std::vector<std::string>;
using Arguments = std::vector<std::string>;

constexpr std::string_view TruncationNote = "There are too many records in the file, truncating at 200.";

std::string Repeated(std::string_view text, int times) {
  std::string repeated;
  while (times-- > 0) repeated += text;
  return repeated;
}

// check

struct CheckCase {
  const char* Description;
  Rows Table;
  int ExitStatus;
  const char* Output;
};

TEST(Check, PrintsALineForEveryFinding) {
  // Rows without sub-bands are judged by the step, spacing and bandwidth of the group before them.
  const std::string group = "2|1|PCS|1850.2|1930.2|512|810|0.2|0.2|1";
  const std::string band = "0|0|any|1850.2|1930.2|512|810|0|0|0";
  const std::array cases = {
      CheckCase{"a table without rows", {}, 0, ""},
      CheckCase{"a group in order", {group, band}, 0, ""},
      CheckCase{"frequencies at the bounds", {group, band, "2|0|Bound|0|9000|1|1|0.2|0.2|1"}, 0, ""},
      CheckCase{"frequencies beyond the bounds",
                {group, band, "2|0|Far|9000.0001|-0.5|1|2|0.2|0.2|1"},
                1,
                "Warning:\tFar\tStart frequency appears out of range.\n"
                "Warning:\tFar\tStop frequency appears out of range.\n"},
      CheckCase{"channels the wrong way round",
                {group, band, "2|0|Back|890|935|10|5|0.2|0.2|1"},
                1,
                "Warning:\tBack\tStop channel is less than start channel.\n"},
      CheckCase{"channels below zero",
                {group, band, "2|0|Minus|890|935|-1|-2|0.2|0.2|1"},
                1,
                "Warning:\tMinus\tStop channel is less than start channel.\n"
                "Warning:\tMinus\tStart channel is less than zero.\n"
                "Warning:\tMinus\tStop channel is less than zero.\n"},
      CheckCase{"a group without step, spacing and bandwidth",
                {"2|1|DCS|1710.2|1805.2|512|885|0|-0.2|0", band},
                1,
                "Warning:\tDCS\tStep size may be out of range.\n"
                "Warning:\tDCS\tSpacing may be out of range.\n"
                "Warning:\tDCS\tBandwidth may be out of range.\n"
                "Warning:\tDCS(A)\tStep size may be out of range.\n"
                "Warning:\tDCS(A)\tSpacing may be out of range.\n"
                "Warning:\tDCS(A)\tBandwidth may be out of range.\n"},
      CheckCase{"no group at all",
                {"2|0|Alone|890|935|1|2|0.2|0.2|1"},
                1,
                "Warning:\tAlone\tStep size may be out of range.\n"
                "Warning:\tAlone\tSpacing may be out of range.\n"
                "Warning:\tAlone\tBandwidth may be out of range.\n"},
      CheckCase{"the same group as second row, where it is not judged",
                {"2|0|First|890|935|1|2|0.2|0.2|1", "2|1|DCS|1710.2|1805.2|512|885|0|-0.2|0", band},
                1,
                "Warning:\tFirst\tStep size may be out of range.\n"
                "Warning:\tFirst\tSpacing may be out of range.\n"
                "Warning:\tFirst\tBandwidth may be out of range.\n"},
      CheckCase{"a name that three standards have",
                {group, band, "2|0|GSM 900|890|935|1|2|0|0|0", "2|0|gsm 900|890|935|1|2|0|0|0",
                 "2|0|GSM 900|890|935|1|2|0|0|0", "2|0|GSM 900|890|935|1|2|0|0|0"},
                1,
                "Warning:\tGSM 900\tDuplicate Signal Standard name.\n"
                "Warning:\tGSM 900\tDuplicate Signal Standard name.\n"},
      CheckCase{"a standard named like a sub-band, which the list does not show",
                {group, band, "2|0|PCS(A)|890|935|1|2|0|0|0"},
                0,
                ""},
      CheckCase{"characters beyond ASCII",
                {group, band, "2|0|Z\xFCrich \x80|890|935|2|1|0|0|0"},
                1,
                "Warning:\tZ\u00FCrich \u20AC\tStop channel is less than start channel.\n"},
  };
  for (const CheckCase& check : cases) {
    SCOPED_TRACE(check.Description);
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "table.sig", SigText(check.Table));
    const ProgramRun run = chanplan.Run({"check", "table.sig"});
    EXPECT_EQ(run.Output, check.Output);
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, check.ExitStatus);
    EXPECT_EQ(ReadFile(chanplan.Folder / "table.sig"), SigText(check.Table)) << "checking changes nothing";
  }
}

class CheckSeveral : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteFile(chanplan.Folder / "good.sig",
              SigText({"2|1|PCS|1850.2|1930.2|512|810|0.2|0.2|1", "0|0||1850.2|1930.2|512|810|0|0|0"}));
    WriteFile(chanplan.Folder / "bad.sig",
              SigText({"2|1|PCS|1850.2|1930.2|512|810|0.2|0.2|1", "0|0||1850.2|1930.2|512|8|0|0|0"}));
  }

  Chanplan chanplan;
};

TEST_F(CheckSeveral, FilesAreNamedBeforeTheirFindings) {
  const ProgramRun run = chanplan.Run({"check", "good.sig", "bad.sig", "bad.sig"});
  EXPECT_EQ(run.Output, Repeated("bad.sig: Warning:\tPCS(A)\tStop channel is less than start channel.\n", 2));
  EXPECT_EQ(run.ExitStatus, 1);
}

TEST_F(CheckSeveral, FilesAreAllReadAlthoughOneCannotBe) {
  const ProgramRun run = chanplan.Run({"check", "missing.sig", "bad.sig", "good.sig"});
  EXPECT_EQ(run.Output, "bad.sig: Warning:\tPCS(A)\tStop channel is less than start channel.\n");
  EXPECT_EQ(run.Errors, "chanplan: Error loading missing.sig: No such file or directory\n");
  EXPECT_EQ(run.ExitStatus, 2);
}

TEST_F(CheckSeveral, FilesWithoutFindingsPrintNothing) {
  const ProgramRun run = chanplan.Run({"check", "good.sig", "good.sig"});
  EXPECT_EQ(run.Output, "");
  EXPECT_EQ(run.Errors, "");
  EXPECT_EQ(run.ExitStatus, 0);
}

// save-as

TEST(SaveAs, WritesTheTableAsItStandsOnceOpenedAndValidated) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig",
            "any first line\n"
            "007\t2.5\t DCS \t1 710.20\t1805,2\t512.5\t885\t2E-1\t.2\t1.5\tan eleventh field\n"
            "abc\t\tB\x80nd\t1710.2\t1805.2\t512\t600\t9\t9\t9\r\n"
            "5\t0\tother\t1750.2\t1845.2\t601\t885\t9\t9\t9");
  const ProgramRun run = chanplan.Run({"save-as", "table.sig", "out.sig"});
  EXPECT_EQ(run.Output, "");
  EXPECT_EQ(std::ranges::count(run.Errors, '\n'), 5) << run.Errors;  // what was not read as it stands
  EXPECT_EQ(run.ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText({
                                                       "7|2| DCS |1710.2|1805|512|885|0.2|0.2|2",
                                                       "0|0| DCS (A)|1710.2|1805.2|512|600|0.2|0.2|2",
                                                       "5|0| DCS (B)|1750.2|1845.2|601|885|0.2|0.2|2",
                                                   }));
}

TEST(SaveAs, KeepsEveryByteOfNames) {
  std::string name;
  for (int value = 1; value < 256; ++value)
    if (std::string_view("\t\n").find(static_cast<char>(value)) == std::string_view::npos)
      name += static_cast<char>(value);
  const Chanplan chanplan;
  const std::string text = std::string(SigHeader) + "2\t0\t" + name + "\t890\t935\t1\t2\t0.2\t0.2\t1\r\n";
  WriteFile(chanplan.Folder / "table.sig", text);
  EXPECT_EQ(chanplan.Run({"save-as", "table.sig", "out.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), text);
}

TEST(SaveAs, KeepsOtherBitsOfTheStateAndFifteenDigits) {
  const Chanplan chanplan;
  const std::string text = SigText({"131|0|A|1850.20000000001|-1E-05|-2147483648|2147483647|0.03125|1E+15|1",
                                    "12345|0|B|123456789.012345|0|0|0|0|0|0", "-4|-1|C|0|0|0|0|0|0|0"});
  WriteFile(chanplan.Folder / "table.sig", text);
  EXPECT_EQ(chanplan.Run({"save-as", "table.sig", "out.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), text);
}

TEST(SaveAs, MayOverwriteTheFileItself) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText({"2|1|X|890|935|1|2|0.2|0.2|1", "0|0||900|945|1|2|0|0|0"}));
  EXPECT_EQ(chanplan.Run({"save-as", "table.sig", "table.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "table.sig"),
            SigText({"2|1|X|890|935|1|2|0.2|0.2|1", "0|0|X(A)|900|945|1|2|0.2|0.2|1"}));
  EXPECT_EQ(NamesIn(chanplan.Folder.Path()), std::set<std::string>{"table.sig"});
}

TEST(SaveAs, KeepsAHeaderAlone) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", "x\n");
  EXPECT_EQ(chanplan.Run({"save-as", "table.sig", "out.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigHeader);
}

struct LongTable {
  int Rows;
  bool Noted;
};

TEST(SaveAs, KeepsTwoHundredRowsAndSaysSo) {
  for (const LongTable& table : {LongTable{199, false}, LongTable{200, true}, LongTable{250, true}}) {
    SCOPED_TRACE(table.Rows);
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "long.sig", SigText(NumberedRows(table.Rows)));
    const ProgramRun run = chanplan.Run({"save-as", "long.sig", "out.sig"});
    const int lost = table.Rows - std::min(table.Rows, 200);
    const std::string lostNote = "chanplan: " + std::to_string(lost) + " rows were lost: a table holds 200\n";
    const std::string leftOut =
        "chanplan: long.sig: " + std::to_string(lost) + " rows beyond the 200th were left out\n";
    EXPECT_EQ(run.Errors, (table.Noted ? "chanplan: long.sig: " + std::string(TruncationNote) + "\n" : "") +
                              (lost > 0 ? leftOut + lostNote : ""));
    EXPECT_EQ(run.ExitStatus, lost > 0 ? 3 : 0);
    EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText(NumberedRows(std::min(table.Rows, 200))));
  }
}

// merge

struct MergeCase {
  const char* Description;
  Rows Base;
  Rows Source;
  bool ReplaceMatching;
  Rows Out;
  int Nameless = 0;
};

TEST(Merge, TakesEveryStandardOnce) {
  const std::string baseA = "2|1|A|1|2|1|2|0.1|0.1|1";
  const std::string baseA1 = "0|0|A(A)|1|2|1|2|0.1|0.1|1";
  const std::string baseB = "2|0|B|3|4|1|2|0.1|0.1|1";
  const std::string sourceA = "3|2|A|5|6|7|8|0.5|0.5|2";
  const std::string sourceA1 = "0|0|A(A)|5|6|7|8|0.5|0.5|2";
  const std::string sourceA2 = "0|0|A(B)|6|7|7|8|0.5|0.5|2";
  const std::string sourceC = "3|0|C|7|8|7|8|0.5|0.5|2";
  const std::array cases = {
      MergeCase{"what matches stays as it is in the base",
                {baseA, baseA1, baseB},
                {sourceA, sourceA1, sourceA2, sourceC},
                false,
                {baseA, baseA1, baseB, sourceC}},
      MergeCase{"what matches is replaced, sub-bands and all",
                {baseA, baseA1, baseB},
                {sourceC, sourceA, sourceA1, sourceA2},
                true,
                {sourceA, sourceA1, sourceA2, baseB, sourceC}},
      MergeCase{"names match with their case only",
                {"2|0|a|1|2|1|2|0.1|0.1|1"},
                {"2|0|A|5|6|7|8|0.5|0.5|2"},
                true,
                {"2|0|a|1|2|1|2|0.1|0.1|1", "2|0|A|5|6|7|8|0.5|0.5|2"}},
      MergeCase{"rows without a name are left out",
                {"2|0||1|2|1|2|0.1|0.1|1", baseB},
                {"2|0||5|6|7|8|0.5|0.5|2"},
                false,
                {baseB},
                2},
      MergeCase{"a base without rows gives the source", {}, {sourceC}, false, {sourceC}},
      MergeCase{"a source without rows gives the base", {baseB}, {}, true, {baseB}},
      MergeCase{"sub-bands without names get theirs when the tables are opened",
                {"2|1|A|1|2|1|2|0.1|0.1|1", "0|0||1|2|1|2|0|0|0"},
                {"3|1|C|7|8|7|8|0.5|0.5|2", "0|0||7|8|7|8|0|0|0"},
                false,
                {baseA, baseA1, "3|1|C|7|8|7|8|0.5|0.5|2", "0|0|C(A)|7|8|7|8|0.5|0.5|2"}},
      MergeCase{"names keep their bytes",
                {"2|0|\xDC|1|2|1|2|0.1|0.1|1"},
                {"2|0|\x80|5|6|7|8|0.5|0.5|2"},
                false,
                {"2|0|\xDC|1|2|1|2|0.1|0.1|1", "2|0|\x80|5|6|7|8|0.5|0.5|2"}},
      MergeCase{"a count of sub-bands beyond the base's end does not take in what follows",
                {"2|2|X|1|2|1|2|0.1|0.1|1", "0|0|X(A)|1|2|1|2|0.1|0.1|1"},
                {"2|0|C|7|8|7|8|0.5|0.5|2"},
                false,
                {"2|1|X|1|2|1|2|0.1|0.1|1", "0|0|X(A)|1|2|1|2|0.1|0.1|1", "2|0|C|7|8|7|8|0.5|0.5|2"}},
      MergeCase{"nothing and nothing give one row without a name", {}, {}, false, {"|0||0|0|0|0|0|0|0"}},
  };
  for (const MergeCase& merge : cases) {
    SCOPED_TRACE(merge.Description);
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "base.sig", SigText(merge.Base));
    WriteFile(chanplan.Folder / "source.sig", SigText(merge.Source));
    Arguments arguments = {"merge", "base.sig", "source.sig", "out.sig"};
    if (merge.ReplaceMatching) arguments.push_back("--replace-matching");
    const ProgramRun run = chanplan.Run(arguments);
    EXPECT_EQ(run.Errors, merge.Nameless == 0 ? "" : "chanplan: 2 rows without a name had to be left out\n");
    EXPECT_EQ(run.ExitStatus, merge.Nameless == 0 ? 0 : 3);
    EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText(merge.Out));
    EXPECT_EQ(ReadFile(chanplan.Folder / "base.sig"), SigText(merge.Base));
    EXPECT_EQ(ReadFile(chanplan.Folder / "source.sig"), SigText(merge.Source));
  }
}

TEST(Merge, SaysWhenTheTableIsFull) {
  struct Full {
    int BaseRows;
    int SourceRows;
    bool Noted;
  };
  for (const Full& full : {Full{150, 49, false}, Full{150, 50, true}, Full{150, 60, true}}) {
    SCOPED_TRACE(full.SourceRows);
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "base.sig", SigText(NumberedRows(full.BaseRows)));
    WriteFile(chanplan.Folder / "source.sig", SigText(NumberedRows(full.SourceRows, full.BaseRows + 1)));
    const ProgramRun run = chanplan.Run({"merge", "base.sig", "source.sig", "out.sig"});
    const bool lost = full.BaseRows + full.SourceRows > 200;
    EXPECT_EQ(run.Errors, std::string(full.Noted ? "chanplan: There were too many records to merge tables.\n"
                                                   "The Merged table has been truncated at 200 records.\n"
                                                 : "") +
                              (lost ? "chanplan: 10 rows were lost: a table holds 200\n" : ""));
    EXPECT_EQ(run.ExitStatus, lost ? 3 : 0);
    EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"),
              SigText(NumberedRows(std::min(full.BaseRows + full.SourceRows, 200))));
  }
}

TEST(Merge, TellsWhatBecameOfEachStandard) {
  struct Fates {
    std::vector<std::string> Options;
    const char* Output;
  };
  for (const Fates& fates : {Fates{{}, "kept\tS1\nkept\tS2\ndropped\tS2\nadded\tS3\n"},
                             Fates{{"--replace-matching"}, "kept\tS1\nreplaced\tS2\nadded\tS3\n"}})
    for (const bool dry : {false, true}) {
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "base.sig", SigText(NumberedRows(2)));
      WriteFile(chanplan.Folder / "source.sig", SigText(NumberedRows(2, 2)));
      Arguments arguments = {"merge", "base.sig", "source.sig", "out.sig"};
      arguments.insert(arguments.end(), fates.Options.begin(), fates.Options.end());
      if (dry) arguments.emplace_back("--dry-run");
      const ProgramRun run = chanplan.Run(arguments);
      EXPECT_EQ(run.Output, fates.Output);
      EXPECT_EQ(run.ExitStatus, 0);
      EXPECT_EQ(fs::exists(chanplan.Folder / "out.sig"), !dry);
    }
}

// what readers of damaged tables are told

TEST(Damage, IsNotedByEveryCommandThatReadsATable) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "plan.sig", SigText({"2|0|A|880,2|925.2|1|2.5|0.2|0.2|1"}));
  WriteFile(chanplan.Folder / "empty.sig", SigText({}));
  for (const Arguments& arguments :
       {Arguments{"check", "plan.sig"}, Arguments{"list", "plan.sig"}, Arguments{"properties", "plan.sig"},
        Arguments{"save-as", "plan.sig", "out.sig"}, Arguments{"merge", "empty.sig", "plan.sig", "out.sig"},
        Arguments{"diff", "plan.sig", "empty.sig"}, Arguments{"report", "plan.sig", "out.htm"},
        Arguments{"print", "plan.sig", "out.pdf"}, Arguments{"chart", "plan.sig", "out.svg"}})
    EXPECT_EQ(chanplan.Run(arguments).Errors,
              "chanplan: plan.sig: line 2: \"880,2\" was read as 880\n"
              "chanplan: plan.sig: line 2: \"2.5\" was read as 2\n")
        << arguments[0];
}

TEST(Diff, DoesNotCallAlikeWhatItHasNotSeen) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "a.sig", SigText(NumberedRows(201)));
  WriteFile(chanplan.Folder / "b.sig", SigText(NumberedRows(200)));
  EXPECT_EQ(chanplan.Run({"diff", "b.sig", "b.sig"}).ExitStatus, 0);
  const ProgramRun run = chanplan.Run({"diff", "a.sig", "b.sig"});
  EXPECT_EQ(run.ExitStatus, 3);
  EXPECT_TRUE(run.Errors.ends_with("chanplan: rows beyond the 200th were not compared\n")) << run.Errors;
  EXPECT_EQ(chanplan.Run({"diff", "--format", "json", "a.sig", "b.sig"}).Output,
            "{\"alike\": false, \"differences\": []}\n");
}

// JSON

TEST(Json, IsPrintedByCheckAndDiff) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "a\"b.sig",
            SigText({"2|1|PCS|1850.2|1930.2|512|810|0.2|0.2|1", "0|0|any|1850.2|1930.2|512|810|0|0|0",
                     "2|0|\xDC|890,5|935|10|5|0|0|0"}));
  WriteFile(chanplan.Folder / "plain.sig", SigText({}));
  const ProgramRun check = chanplan.Run({"check", "--format", "json", "a\"b.sig", "plain.sig"});
  EXPECT_EQ(check.Output,
            "[{\"file\": \"a\\\"b.sig\", \"notes\": [\"line 4: \\\"890,5\\\" was read as 890\"], \"warnings\": "
            "[{\"name\": \"\xC3\x9C\", \"message\": \"Stop channel is less than start channel.\"}]},\n"
            " {\"file\": \"plain.sig\", \"notes\": [], \"warnings\": []}]\n");
  EXPECT_EQ(check.Errors, "");
  EXPECT_EQ(check.ExitStatus, 1);
  const ProgramRun diff = chanplan.Run({"diff", "--format", "json", "plain.sig", "plain.sig"});
  EXPECT_EQ(diff.Output, "{\"alike\": true, \"differences\": []}\n");
}

TEST(Json, IsUtf8WhateverAFileIsCalled) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "bad\xFF.sig", SigText({}));
  EXPECT_EQ(chanplan.Run({"check", "--format", "json", "bad\xFF.sig"}).Output,
            "[{\"file\": \"bad\xEF\xBF\xBD.sig\", \"notes\": [], \"warnings\": []}]\n");
}

TEST(Json, EscapesWhatItsTextsMayNotHold) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "a\\b\x1F\".sig", SigText({}));
  EXPECT_EQ(chanplan.Run({"check", "--format", "json", "a\\b\x1F\".sig"}).Output,
            "[{\"file\": \"a\\\\b\\u001f\\\".sig\", \"notes\": [], \"warnings\": []}]\n");
}

// names and arguments

TEST(Names, ReachNoTerminalAsTheyStand) {
  const Chanplan chanplan;
  const std::string row = "2|0|A\x1B[31m|1|2|5|1|1|1|1";
  WriteFile(chanplan.Folder / "a\x1B.sig", SigText({row}));
  WriteFile(chanplan.Folder / "b.sig", SigText({"2|0|B\x1B|1|2|3|4|1|1|1"}));
  for (const Arguments& arguments :
       {Arguments{"check", "a\x1B.sig", "b.sig"}, Arguments{"merge", "a\x1B.sig", "b.sig", "out.sig"},
        Arguments{"list", "a\x1B.sig"}, Arguments{"diff", "a\x1B.sig", "b.sig"}, Arguments{"properties", "a\x1B.sig"},
        Arguments{"check", "missing\x1B.sig"}}) {
    const ProgramRun run = chanplan.Run(arguments);
    EXPECT_EQ((run.Output + run.Errors).find('\x1B'), std::string::npos) << arguments[0] << run.Output << run.Errors;
    EXPECT_NE((run.Output + run.Errors).find('?'), std::string::npos) << arguments[0];
  }
}

TEST(Names, InBracketsAreFilesAndNoLists) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "[a,b]", SigText({}));
  const ProgramRun run = chanplan.Run({"check", "[a,b]"});
  EXPECT_EQ(run.Errors, "");
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(Names, InBracketsArePrintedAsTheyWereGiven) {
  const Chanplan chanplan;
  for (const char* name : {"[x]", "./[x]", "././[x]", "[]"}) {
    const ProgramRun missing = chanplan.Run({"properties", name});
    EXPECT_TRUE(missing.Errors.starts_with("chanplan: Error loading " + std::string(name) + ":")) << missing.Errors;
  }
  WriteFile(chanplan.Folder / "[x]", SigText({}));
  EXPECT_EQ(chanplan.Run({"check", "--format", "json", "[x]", "./[x]"}).Output,
            "[{\"file\": \"[x]\", \"notes\": [], \"warnings\": []},\n"
            " {\"file\": \"./[x]\", \"notes\": [], \"warnings\": []}]\n");
  EXPECT_EQ(chanplan.Run({"[x]"}).Errors, "chanplan: there is no command \"[x]\"; chanplan --help names them all\n");
  EXPECT_EQ(chanplan.Run({"report", "[x]", "[report]"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "[report]").find("File: ./"), std::string::npos);
}

TEST(Names, OfTwoPlusSignsAreFilesAndEndNoCommand) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "a", SigText({}));
  for (const char* name : {"++", "./++"}) {
    const ProgramRun missing = chanplan.Run({"check", "a", name});
    EXPECT_TRUE(missing.Errors.starts_with("chanplan: Error loading " + std::string(name) + ":")) << missing.Errors;
    EXPECT_EQ(missing.ExitStatus, 2);
  }
  EXPECT_EQ(chanplan.Run({"save-as", "a", "++"}).ExitStatus, 0);
  EXPECT_EQ(chanplan.Run({"check", "++"}).ExitStatus, 0);
}

TEST(Version, IsToldByTheProgramAndItsCommands) {
  const Chanplan chanplan;
  for (const Arguments& arguments : {Arguments{"--version"}, Arguments{"check", "--version"}}) {
    const ProgramRun run = chanplan.Run(arguments);
    EXPECT_TRUE(run.Output.starts_with("Chanplan Editor ")) << run.Output;
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

// properties

TEST(Properties, TellFileAndCounts) {
  const Chanplan chanplan;
  Rows rows = {"2|3|A|1|2|1|2|0.1|0.1|1"};
  rows.insert(rows.end(), 3, "0|0||1|2|1|2|0|0|0");
  rows.push_back("2|2|B|1|2|1|2|0.1|0.1|1");
  rows.insert(rows.end(), 2, "0|0||1|2|1|2|0|0|0");
  rows.push_back("2|0|" + std::string(98765 - SigText(rows).size() - 28, 'C').substr(0, 60000) + "|1|2|1|2|0.1|0.1|1");
  rows.push_back("2|0|" + std::string(98765 - SigText(rows).size() - 28 + 4, 'D') + "|1|2|1|2|0.1|0.1|1");
  const std::string text = SigText(rows);
  WriteFile(chanplan.Folder / "table.sig", text);
  ASSERT_EQ(text.size(), 98765u);
  constexpr time_t modified = 1078517229;  // 2004-03-05 20:07:09 UTC
  const std::array<timespec, 2> times = {timespec{0, UTIME_OMIT}, timespec{modified, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, (chanplan.Folder / "table.sig").c_str(), times.data(), 0), 0);

  const ProgramRun run = chanplan.Run({"properties", "table.sig"});
  const std::string time = R"([A-Z][a-z]+ \d\d, \d{4}  \d\d:\d\d:\d\d [AP]M\n)";
  EXPECT_TRUE(std::regex_match(run.Output, std::regex("table\\.sig\n\n"
                                                      "File size:      \t98,765 bytes\n"
                                                      "Created:    \t" +
                                                      time +
                                                      "Modified:   \tMarch 05, 2004  02:07:09 PM\n"
                                                      "Accessed:   \t" +
                                                      time +
                                                      "\n"
                                                      "Record count:     \t9 of 200\n"
                                                      "Signal Standards: \t4\n"
                                                      "Sub-bands:        \t5\n")))
      << run.Output;
  EXPECT_EQ(run.Errors, "");
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(Properties, OfTheFactoryTableShowNoFile) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "my MATRIVIM.DGC.bak", SigText({"2|0|A|1|2|1|2|0.1|0.1|1"}));
  const ProgramRun run = chanplan.Run({"properties", "my MATRIVIM.DGC.bak"});
  EXPECT_EQ(run.Output,
            "Factory Default Signal Standards\n\n"
            "Record count:     \t1 of 200\n"
            "Signal Standards: \t1\n"
            "Sub-bands:        \t0\n");
  EXPECT_EQ(run.ExitStatus, 0);
}

// diff

struct DiffCase {
  const char* Description;
  Rows Left;
  Rows Right;
  const char* Output;
};

TEST(Diff, NamesEveryStandardAndFieldThatDiffers) {
  const std::string a = "2|0|A|1|2|1|2|0.1|0.1|1";
  const std::string b = "2|0|B|1|2|1|2|0.1|0.1|1";
  const std::string group = "2|1|G|1|2|1|2|0.1|0.1|1";
  const std::string band = "0|0|any|1|2|1|2|0|0|0";
  const std::array cases = {
      DiffCase{"the same", {a, b}, {a, b}, ""},
      DiffCase{"nothing and nothing", {}, {}, ""},
      DiffCase{"the same values written otherwise", {"2|0|A|1|2|1|2|0.1|0.1|1"}, {"002|0|A|1.0|2E0|1|2|.1|0.10|1"}, ""},
      DiffCase{
          "sub-band names, which follow from the standard's", {group, band}, {group, "0|0|G(A)|1|2|1|2|7|7|7"}, ""},
      DiffCase{"a standard less", {a, b}, {b}, "- A\n"},
      DiffCase{"a standard more", {a}, {a, b}, "+ B\n"},
      DiffCase{"a standard renamed", {a}, {b}, "- A\n+ B\n"},
      DiffCase{"another order", {a, b}, {b, a}, "= order differs\n"},
      DiffCase{"every field",
               {"2|0|A|1|2|1|2|0.1|0.1|1"},
               {"131|0|A|1.5|2.5|3|4|0.2|0.3|5"},
               "~ A: State: 2 -> 131\n"
               "~ A: Uplink Start Frequency: 1 -> 1.5\n"
               "~ A: Downlink Start Frequency: 2 -> 2.5\n"
               "~ A: Start Channel: 1 -> 3\n"
               "~ A: Stop Channel: 2 -> 4\n"
               "~ A: Bandwidth: 0.1 -> 0.2\n"
               "~ A: Spacing: 0.1 -> 0.3\n"
               "~ A: Step: 1 -> 5\n"},
      DiffCase{"a sub-band more",
               {"2|0|G|1|2|1|2|0.1|0.1|1"},
               {group, band},
               "~ G: Sub-bands: 0 -> 1\n"
               "+ sub-band A of G\n"},
      DiffCase{"a sub-band less",
               {"2|2|G|1|2|1|2|0.1|0.1|1", band, band},
               {group, band},
               "~ G: Sub-bands: 2 -> 1\n"
               "- sub-band B of G\n"},
      DiffCase{"a sub-band's channel",
               {group, band},
               {group, "0|0|any|1|2|1|99|0|0|0"},
               "~ sub-band A of G: Stop Channel: 2 -> 99\n"},
      DiffCase{"a group's bandwidth, which its sub-bands take over",
               {group, band},
               {"2|1|G|1|2|1|2|0.5|0.1|1", band},
               "~ G: Bandwidth: 0.1 -> 0.5\n"
               "~ sub-band A of G: Bandwidth: 0.1 -> 0.5\n"},
      DiffCase{"characters beyond ASCII",
               {"2|0|\xC4|1|2|1|2|0.1|0.1|1"},
               {"2|0|\x80|1|2|1|2|0.1|0.1|1"},
               "- \u00C4\n+ \u20AC\n"},
  };
  for (const DiffCase& diff : cases) {
    SCOPED_TRACE(diff.Description);
    const Chanplan chanplan;
    WriteFile(chanplan.Folder / "left.sig", SigText(diff.Left));
    WriteFile(chanplan.Folder / "right.sig", SigText(diff.Right));
    const ProgramRun run = chanplan.Run({"diff", "left.sig", "right.sig"});
    EXPECT_EQ(run.Output, diff.Output);
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, *diff.Output == '\0' ? 0 : 1);
  }
}

// Input that cannot be read

struct Command {
  Arguments Words;
  bool WritesOut;
};

// Every command that reads a table, with the bad one in each place.
const std::vector<Command> ReadingCommands = {
    {{"check", "bad.sig"}, false},
    {{"properties", "bad.sig"}, false},
    {{"save-as", "bad.sig", "out.sig"}, true},
    {{"merge", "bad.sig", "good.sig", "out.sig"}, true},
    {{"merge", "good.sig", "bad.sig", "out.sig"}, true},
    {{"diff", "bad.sig", "good.sig"}, false},
    {{"diff", "good.sig", "bad.sig"}, false},
    {{"report", "bad.sig", "out.sig"}, true},
    {{"print", "bad.sig", "out.sig"}, true},
    {{"chart", "bad.sig", "out.sig"}, true},
};

struct BadFile {
  const char* Description;
  std::string Content;
  const char* Reason;
};

TEST(UnreadableTable, FailsWithOneLineThatSaysWhy) {
  std::string garbage;
  for (int value = 0; value < 4096; ++value) garbage += static_cast<char>(value);
  const std::string good = SigText({"2|0|A|1|2|1|2|0.1|0.1|1"});
  const std::array files = {
      BadFile{"no byte", "", "the file is empty, not even a header line is there"},
      BadFile{"binary", garbage, "line 2 has 2 fields where 10 are needed"},
      BadFile{"nine fields", good + "2\t0\tB\t1\t2\t1\t2\t0.1\t0.1\r\n", "line 3 has 9 fields where 10 are needed"},
      BadFile{"a blank line", good + "\r\n" + good, "line 3 has 1 field where 10 are needed"},
      BadFile{"an integer out of range", good + "2\t0\tB\t1\t2\t2147483648\t2\t0.1\t0.1\t1\r\n",
              "line 3: the value of \"Start Channel\" is out of range"},
      BadFile{"an endless line", good + std::string(100000, 'x'), "line 3 is longer than 64 KiB"},
  };
  for (const BadFile& file : files) {
    for (const Command& command : ReadingCommands) {
      SCOPED_TRACE(file.Description + (" " + ::testing::PrintToString(command.Words)));
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "good.sig", good);
      WriteFile(chanplan.Folder / "bad.sig", file.Content);
      if (command.WritesOut) WriteFile(chanplan.Folder / "out.sig", "former");
      const ProgramRun run = chanplan.Run(command.Words);
      EXPECT_EQ(run.Output, "");
      EXPECT_EQ(run.Errors, std::string("chanplan: Error loading bad.sig: ") + file.Reason + "\n");
      EXPECT_EQ(run.ExitStatus, 2);
      if (command.WritesOut) {
        EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), "former");
      }
    }
  }
}

TEST(UnreadableTable, MayBeMissingAFolderOrLocked) {
  struct Obstacle {
    const char* Reason;
    void (*Make)(const fs::path& file);
  };
  constexpr std::array obstacles = {
      Obstacle{"No such file or directory", [](const fs::path&) {}},
      Obstacle{"Is a directory", [](const fs::path& file) { fs::create_directory(file); }},
      Obstacle{"Permission denied",
               [](const fs::path& file) {
                 WriteFile(file, SigHeader);
                 TempFolder::Allow(file, fs::perms::none);
               }},
  };
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  for (const Obstacle& obstacle : obstacles) {
    for (const Command& command : ReadingCommands) {
      SCOPED_TRACE(obstacle.Reason + (" " + ::testing::PrintToString(command.Words)));
      const Chanplan chanplan;
      WriteFile(chanplan.Folder / "good.sig", SigHeader);
      obstacle.Make(chanplan.Folder / "bad.sig");
      const ProgramRun run = chanplan.Run(command.Words, {.Unprivileged = true});
      EXPECT_EQ(run.Output, "");
      EXPECT_EQ(run.Errors, std::string("chanplan: Error loading bad.sig: ") + obstacle.Reason + "\n");
      EXPECT_EQ(run.ExitStatus, 2);
      EXPECT_FALSE(fs::exists(chanplan.Folder / "out.sig"));
    }
  }
}

// Output that cannot be written

struct BadTarget {
  std::string Out;
  const char* Reason;
};

TEST(UnwritableTable, FailsWithOneLineThatSaysWhy) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "good.sig", SigHeader);
  // The folder itself is root's or, when this is not root, locked below.
  fs::create_directory(chanplan.Folder / "locked");
  WriteFile(chanplan.Folder / "locked" / "former.sig", "former");
  fs::create_directory(chanplan.Folder / "folder.sig");
  fs::create_directory(chanplan.Folder / "open");
  TempFolder::Allow(chanplan.Folder / "open", fs::perms::all);
  WriteFile(chanplan.Folder / "open" / "protected.sig", "former");
  TempFolder::Allow(chanplan.Folder / "open" / "protected.sig", fs::perms::owner_read | fs::perms::others_read);
  TempFolder::Allow(chanplan.Folder / "locked",
                    fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec);
  for (const BadTarget& target : {
           BadTarget{"locked/new.sig", "Permission denied"},
           BadTarget{"locked/former.sig", "Permission denied"},
           BadTarget{"open/protected.sig", "Permission denied"},
           BadTarget{"folder.sig", "Is a directory"},
           BadTarget{"missing/out.sig", "No such file or directory"},
           BadTarget{"/dev/full", "No space left on device"},
       }) {
    for (const Arguments& command :
         {Arguments{"save-as", "good.sig"}, Arguments{"merge", "good.sig", "good.sig"}, Arguments{"report", "good.sig"},
          Arguments{"print", "good.sig"}, Arguments{"chart", "good.sig"}}) {
      SCOPED_TRACE(command.front() + " " + target.Out);
      Arguments arguments = command;
      arguments.push_back(target.Out);
      const ProgramRun run = chanplan.Run(arguments, {.Unprivileged = true});
      EXPECT_EQ(run.Output, "");
      EXPECT_EQ(run.Errors, "chanplan: Error Saving File " + target.Out + ": " + target.Reason + "\n");
      EXPECT_EQ(run.ExitStatus, 2);
    }
  }
  EXPECT_EQ(ReadFile(chanplan.Folder / "locked" / "former.sig"), "former");
  EXPECT_EQ(ReadFile(chanplan.Folder / "open" / "protected.sig"), "former");
  EXPECT_EQ(NamesIn(chanplan.Folder / "open"), std::set<std::string>{"protected.sig"});
  EXPECT_EQ(NamesIn(chanplan.Folder / "locked"), std::set<std::string>{"former.sig"});
}

TEST(FullDisk, BehindStandardOutputIsAFailure) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "a.sig", SigText({"2|0|A|1|2|1|2|0.1|0.1|1"}));
  WriteFile(chanplan.Folder / "b.sig", SigText({"2|0|B|1|2|1|2|0.1|0.1|1"}));
  for (const Arguments& arguments :
       {Arguments{"check", "a.sig"}, Arguments{"check", "a.sig", "b.sig"}, Arguments{"diff", "a.sig", "b.sig"},
        Arguments{"properties", "a.sig"}, Arguments{"--help"}, Arguments{"check", "--help"}}) {
    SCOPED_TRACE(::testing::PrintToString(arguments));
    const ProgramRun run = chanplan.Run(arguments, {.OutputTo = "/dev/full"});
    EXPECT_EQ(run.Errors, "chanplan: standard output could not be written\n");
    EXPECT_EQ(run.ExitStatus, 2);
  }
}

// Arguments

struct WrongArguments {
  Arguments Words;
  const char* FirstLine;
};

TEST(Arguments, ThatAreWrongFailWithAReason) {
  const std::array cases = {
      WrongArguments{{}, "A subcommand is required\n"},
      WrongArguments{{"frobnicate"}, "chanplan: there is no command \"frobnicate\"; chanplan --help names them all\n"},
      WrongArguments{{"--loud"}, "chanplan: there is no option \"--loud\"; chanplan --help names them all\n"},
      WrongArguments{{"check"}, "FILE is required\n"},
      WrongArguments{{"save-as", "a.sig"}, "OUT is required\n"},
      WrongArguments{{"merge", "a.sig", "b.sig"}, "OUT is required\n"},
      WrongArguments{{"properties"}, "FILE is required\n"},
      WrongArguments{{"diff", "a.sig"}, "B is required\n"},
      WrongArguments{{"report", "a.sig"}, "OUT is required\n"},
      WrongArguments{{"print", "a.sig"}, "OUT is required\n"},
      WrongArguments{{"chart"}, "FILE is required\n"},
      WrongArguments{{"identify"}, "PORT is required\n"},
      WrongArguments{{"download", "1"}, "OUT is required\n"},
      WrongArguments{{"upload", "1"}, "FILE is required\n"},
      WrongArguments{{"upload", "1", "a.sig", "--replace-matching"}, "--replace-matching requires --append\n"},
      WrongArguments{{"check", "a.sig", "--loud"}, "The following argument was not expected: --loud\n"},
      WrongArguments{{"\x1B[31mfoo"}, "chanplan: there is no command \"?[31mfoo\"; chanplan --help names them all\n"},
      // Newer CLI11 takes "--" for the start of an option only where a printable character follows.
      WrongArguments{{"check", "a.sig", "--loud\x1B[31mfoo"},
                     "The following argument was not expected: --loud?[31mfoo\n"},
      WrongArguments{{"diff", "a.sig", "b.sig", "\x1B]0;foo\x07"},
                     "The following argument was not expected: ?]0;foo?\n"},
      WrongArguments{{"check", "a.sig", "--format",
                      "\xC2\x9B"
                      "foo"},
                     "--format: ?foo not in {text,json}\n"},
      WrongArguments{{"diff", "a.sig", "b.sig", "c.sig"}, "The following argument was not expected: c.sig\n"},
  };
  const Chanplan chanplan;
  for (const WrongArguments& wrong : cases) {
    SCOPED_TRACE(::testing::PrintToString(wrong.Words));
    const ProgramRun run = chanplan.Run(wrong.Words);
    EXPECT_EQ(run.Output, "");
    EXPECT_TRUE(run.Errors.starts_with(wrong.FirstLine)) << run.Errors;
    EXPECT_EQ(run.ExitStatus, 2);
  }
}

TEST(Help, NamesEveryCommandAndItsArguments) {
  struct CommandHelp {
    std::string Command;
    const char* Usage;
  };
  const std::array commands = {
      CommandHelp{"check", "Usage: chanplan check [OPTIONS] FILE..."},
      CommandHelp{"save-as", "Usage: chanplan save-as [OPTIONS] FILE OUT"},
      CommandHelp{"merge", "Usage: chanplan merge [OPTIONS] BASE SOURCE OUT"},
      CommandHelp{"properties", "Usage: chanplan properties [OPTIONS] FILE"},
      CommandHelp{"diff", "Usage: chanplan diff [OPTIONS] A B"},
      CommandHelp{"report", "Usage: chanplan report [OPTIONS] FILE OUT"},
      CommandHelp{"print", "Usage: chanplan print [OPTIONS] FILE OUT"},
      CommandHelp{"chart", "Usage: chanplan chart [OPTIONS] FILE OUT"},
      CommandHelp{"identify", "Usage: chanplan identify [OPTIONS] PORT"},
      CommandHelp{"download", "Usage: chanplan download [OPTIONS] PORT OUT"},
      CommandHelp{"upload", "Usage: chanplan upload [OPTIONS] PORT FILE"},
      CommandHelp{"units", "Usage: chanplan units [OPTIONS]"},
  };
  const Chanplan chanplan;
  const ProgramRun all = chanplan.Run({"--help"});
  EXPECT_EQ(all.ExitStatus, 0);
  EXPECT_EQ(all.Errors, "");
  for (const CommandHelp& help : commands) {
    SCOPED_TRACE(help.Command);
    EXPECT_NE(all.Output.find("\n  " + help.Command + " "), std::string::npos);
    const ProgramRun run = chanplan.Run({help.Command, "--help"});
    EXPECT_NE(run.Output.find(std::string(help.Usage) + "\n"), std::string::npos) << run.Output;
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

}  // namespace
}  // namespace chanplan::testing
