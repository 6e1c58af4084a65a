#include "core/sig_file.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::ReadFile;
using testing::RowNames;
using testing::TableOf;
using testing::TempFolder;
using testing::WriteFile;

const std::string Header =
    "State\tSubbands\tName\tUplink Start Freq.\tDownlink Stop Freq.\tStart Channel\tStop Channel\tBandwidth\tSpacing\t"
    "Step\r\n";

ReadOutcome Read(const std::string& bytes) {
  std::istringstream input(bytes);
  return ReadSigTable(input);
}

// The record that a file of one line holds.
SignalStandardRecord ReadLine(const std::string& line) {
  const ReadOutcome outcome = Read(Header + line + "\r\n");
  EXPECT_TRUE(outcome.Ok()) << outcome.Reason;
  EXPECT_EQ(outcome.Table.Count, 1);
  return outcome.Table.Row(0);
}

std::string Lines(int count, const std::string& line = "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\n") {
  std::string lines;
  for (int index = 0; index < count; ++index) lines += line;
  return lines;
}

TEST(WriteSigTable, WritesAnEmptyTableAsTheHeaderAlone) { EXPECT_EQ(WriteSigTable({}), Header); }

TEST(WriteSigTable, WritesOneLineARowWithTenFields) {
  const SignalStandardTable table = TableOf({{"131", 1, "DCS 1800", 1710.2, 1805.2, 512, 885, 0.2, 0.03, 1},
                                             {"0", 0, "DCS 1800(A)", -0.5, 1e-05, -1, -2147483647 - 1, 200, 0, 0},
                                             {"", 0, "", 0, 0, 0, 0, 0, 0, 2147483647}});
  EXPECT_EQ(WriteSigTable(table), Header +
                                      "131\t1\tDCS 1800\t1710.2\t1805.2\t512\t885\t0.2\t0.03\t1\r\n"
                                      "0\t0\tDCS 1800(A)\t-0.5\t1E-05\t-1\t-2147483648\t200\t0\t0\r\n"
                                      "\t0\t\t0\t0\t0\t0\t0\t0\t2147483647\r\n");
}

TEST(WriteSigTable, LeavesRowsNotInUseOut) {
  SignalStandardTable table = TableOf({NamedRow("A"), NamedRow("B")});
  table.Count = 1;
  EXPECT_EQ(WriteSigTable(table), Header + "2\t0\tA\t1850.2\t1930.2\t512\t810\t0.2\t0.25\t1\r\n");
}

TEST(WriteSigTable, TakesTheDecimalSeparatorOfTheUser) {
  EXPECT_EQ(WriteSigTable(TableOf({NamedRow("A")}), ','),
            Header + "2\t0\tA\t1850,2\t1930,2\t512\t810\t0,2\t0,25\t1\r\n");
}

TEST(WriteSigTable, IsNotChangedByTheProgramsLocale) {
  struct German : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const SignalStandardTable table = TableOf({{"0", 0, "A", 1850.2, 1234567.5, 123456, 0, 0, 0, 0}});
  const std::string expected = WriteSigTable(table);
  const std::locale former = std::locale::global(std::locale(std::locale::classic(), new German));
  const std::string written = WriteSigTable(table);
  const ReadOutcome outcome = Read(written);
  std::locale::global(former);
  EXPECT_EQ(written, expected);
  EXPECT_EQ(outcome.Table, table);
}

TEST(ReadSigTable, ReadsTheTenFieldsInOrder) {
  EXPECT_EQ(ReadLine("131\t0\tDCS 1800\t1710.2\t1805.2\t512\t885\t0.2\t0.03\t7"),
            (SignalStandardRecord{"131", 0, "DCS 1800", 1710.2, 1805.2, 512, 885, 0.2, 0.03, 7}));
}

TEST(ReadSigTable, ReadsTheHeaderAloneAsAnEmptyTable) {
  for (const std::string& bytes : {Header, std::string("State\n"), std::string("no line end"), std::string("\r\n"),
                                   std::string("\n"), std::string("\r")}) {
    const ReadOutcome outcome = Read(bytes);
    EXPECT_TRUE(outcome.Ok()) << outcome.Reason;
    EXPECT_FALSE(outcome.Truncated);
    EXPECT_EQ(outcome.Table.Count, 0);
  }
}

TEST(ReadSigTable, NeverLooksAtTheHeader) {
  for (const char* header : {"", "anything", "1\t2\t3", "\x89PNG", "a\tb\tc\td\te\tf\tg\th\ti\tj\tk\tl"})
    EXPECT_EQ(Read(std::string(header) + "\r\n" + Lines(2)).Table.Count, 2) << header;
}

TEST(ReadSigTable, EndsALineAtLfWithOrWithoutCr) {
  const std::string row = "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1";
  const SignalStandardTable expected = Read(Header + row + "\r\n" + row + "\r\n").Table;
  EXPECT_EQ(expected.Count, 2);
  EXPECT_EQ(Read("State\n" + row + "\n" + row + "\n").Table, expected);
  EXPECT_EQ(Read("State\r\n" + row + "\n" + row + "\r\n").Table, expected);
}

TEST(ReadSigTable, NeedsNoEndOnTheLastLine) {
  const std::string row = "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t19";
  for (const char* end : {"", "\r", "\n", "\r\n"}) {
    const ReadOutcome outcome = Read(Header + Lines(1) + row + end);
    ASSERT_TRUE(outcome.Ok()) << outcome.Reason;
    EXPECT_EQ(outcome.Table.Count, 2);
    EXPECT_EQ(outcome.Table.Row(1).Step, 19);
  }
}

TEST(ReadSigTable, IgnoresFieldsAfterTheTenth) {
  for (const char* more : {"\t", "\televen", "\televen\ttwelve\t"})
    EXPECT_EQ(ReadLine(std::string("2\t0\tA\t1850.2\t1930.2\t512\t810\t0.2\t0.25\t1") + more), NamedRow("A"));
}

TEST(ReadSigTable, ReadsEmptyFieldsAndTextAsZero) {
  EXPECT_EQ(ReadLine("\t\t\t\t\t\t\t\t\t"), (SignalStandardRecord{"0", 0, "", 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(ReadLine("a\tb\tc\td\te\tf\tg\th\ti\tj"), (SignalStandardRecord{"0", 0, "c", 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ReadSigTable, TurnsStateIntoShortestDecimalText) {
  struct Case {
    const char* Field;
    const char* State;
  };
  for (const auto& [field, state] : std::vector<Case>{{"131", "131"},
                                                      {"007", "7"},
                                                      {"abc", "0"},
                                                      {"", "0"},
                                                      {" 12 ", "12"},
                                                      {"&H83", "131"},
                                                      {"-0", "0"},
                                                      {"2.50", "2.5"},
                                                      {"1e3", "1000"},
                                                      {"4.", "4"},
                                                      {"1,5", "1"},
                                                      {"1e30", "1E+30"},
                                                      {"99999999999", "99999999999"}}) {
    const SignalStandardRecord record = ReadLine(std::string(field) + "\t0\tA\t0\t0\t0\t0\t0\t0\t0");
    EXPECT_EQ(record.State, state) << field;
    EXPECT_EQ(WriteSigTable(TableOf({record})), Header + state + "\t0\tA\t0\t0\t0\t0\t0\t0\t0\r\n");
  }
}

TEST(ReadSigTable, RoundsIntegersWithHalvesToTheEvenNeighbour) {
  const SignalStandardRecord record = ReadLine("0\t2.5\tA\t0\t0\t3.5\t-2.5\t0\t0\t0.5");
  EXPECT_EQ(record.Subbands, 2);
  EXPECT_EQ(record.StartChannel, 4);
  EXPECT_EQ(record.StopChannel, -2);
  EXPECT_EQ(record.Step, 0);
  EXPECT_EQ(ReadLine("0\t3.5\tA\t0\t0\t0\t0\t0\t0\t0").Subbands, 4);
}

TEST(ReadSigTable, ReadsIntegersOfTheWhole32BitRange) {
  const SignalStandardRecord record = ReadLine("0\t2147483647\tA\t0\t0\t-2147483648\t2147483647.4\t0\t0\t-2147483648");
  EXPECT_EQ(record.Subbands, 2147483647);
  EXPECT_EQ(record.StartChannel, std::numeric_limits<std::int32_t>::min());
  EXPECT_EQ(record.StopChannel, 2147483647);
  EXPECT_EQ(record.Step, std::numeric_limits<std::int32_t>::min());
}

TEST(ReadSigTable, KeepsTheBlanksOfANameAndNothingButThem) {
  for (const std::string name : {"  GSM 900  ", " ", "", "\"quoted\"", "a,b;c", "GSM(A)", "1E+05"})
    EXPECT_EQ(ReadLine("0\t0\t" + name + "\t0\t0\t0\t0\t0\t0\t0").Name, name);
}

TEST(ReadSigTable, KeepsEveryByteThatANameCanHave) {
  std::string name;
  for (int code = 0; code < 256; ++code)
    if (code != '\t' && code != '\n') name += static_cast<char>(code);
  const std::string bytes = Header + "0\t0\t" + name + "\t0\t0\t0\t0\t0\t0\t0\r\n";
  const ReadOutcome outcome = Read(bytes);
  ASSERT_TRUE(outcome.Ok()) << outcome.Reason;
  EXPECT_EQ(outcome.Table.Row(0).Name, name);
  EXPECT_EQ(WriteSigTable(outcome.Table), bytes);
}

TEST(ReadSigTable, EndsAFrequencyAtAComma) {
  SignalStandardTable table = TableOf({{"0", 0, "A", 1850.2, 0.25, 0, 0, 0, 0, 0}});
  const ReadOutcome outcome = Read(WriteSigTable(table, ','));
  EXPECT_EQ(outcome.Table.Row(0).UplinkStartFreq, 1850);
  EXPECT_EQ(outcome.Table.Row(0).DownlinkStartFreq, 0);
}

TEST(ReadSigTable, KeepsACountOfSubbandsThatPointsPastTheEnd) {
  const std::string bytes = Header + "0\t500\tA\t0\t0\t0\t0\t0\t0\t0\r\n";
  EXPECT_EQ(Read(bytes).Table.Row(0).Subbands, 500);
  EXPECT_EQ(WriteSigTable(Read(bytes).Table), bytes);
}

TEST(ReadSigTable, ChangesNoSubband) {
  const SignalStandardTable table =
      Read(Header + "2\t1\tDCS\t1\t1\t1\t1\t0.2\t0.3\t4\r\n" + "7\t0\tany name\t1\t1\t1\t1\t0.5\t0.6\t7\r\n").Table;
  EXPECT_EQ(table.Row(1), (SignalStandardRecord{"7", 0, "any name", 1, 1, 1, 1, 0.5, 0.6, 7}));
}

TEST(ReadSigTable, SaysTruncatedFromRow200On) {
  struct Case {
    int Lines;
    int Count;
    bool Truncated;
  };
  for (const auto& [lines, count, truncated] :
       {Case{199, 199, false}, Case{200, 200, true}, Case{201, 200, true}, Case{250, 200, true}}) {
    const ReadOutcome outcome = Read(Header + Lines(lines));
    EXPECT_TRUE(outcome.Ok()) << lines;
    EXPECT_EQ(outcome.Table.Count, count) << lines;
    EXPECT_EQ(outcome.Truncated, truncated) << lines;
  }
}

TEST(ReadSigTable, KeepsTheFirst200RowsOfALongerFile) {
  std::string bytes = Header;
  for (int row = 1; row <= 250; ++row) bytes += "0\t0\trow " + std::to_string(row) + "\t0\t0\t0\t0\t0\t0\t0\r\n";
  const ReadOutcome outcome = Read(bytes);
  EXPECT_EQ(outcome.Table.Row(0).Name, "row 1");
  EXPECT_EQ(outcome.Table.Row(199).Name, "row 200");
}

TEST(ReadSigTable, DoesNotLookBeyondRow200) {
  EXPECT_TRUE(Read(Header + Lines(200) + "\r\nnine\tfields").Ok());
  EXPECT_TRUE(Read(Header + Lines(200) + std::string(100'000, 'x')).Ok());
}

// A file without end, of valid lines, that knows how much of it was read.
class EndlessLines : public std::streambuf {
 public:
  std::size_t BytesRead() const { return blocksRead * block.size(); }

 private:
  int_type underflow() override {
    ++blocksRead;
    setg(block.data(), block.data(), block.data() + block.size());
    return traits_type::to_int_type(block[0]);
  }

  std::string block = Lines(1);
  std::size_t blocksRead = 0;
};

TEST(ReadSigTable, StopsReadingAnEndlessFileAtRow200) {
  EndlessLines lines;
  std::istream input(&lines);
  const ReadOutcome outcome = ReadSigTable(input);
  EXPECT_TRUE(outcome.Ok());
  EXPECT_TRUE(outcome.Truncated);
  EXPECT_EQ(outcome.Table.Count, 200);
  // The rows beyond are counted, but not for ever.
  EXPECT_GT(outcome.RowsLeftOut, 1000);
  EXPECT_LT(lines.BytesRead(), std::size_t{257} << 20);
}

TEST(ReadSigTable, TakesLinesOf64KiBAndNoLonger) {
  const std::string fields = "0\t0\t\t0\t0\t0\t0\t0\t0\t0";
  const auto lineOf = [&](std::size_t length) {
    return "0\t0\t" + std::string(length - fields.size(), 'x') + "\t0\t0\t0\t0\t0\t0\t0";
  };
  for (const std::string end : {"\r\n", "\n", ""}) {
    const ReadOutcome longest = Read(Header + lineOf(65536) + end);
    EXPECT_TRUE(longest.Ok()) << longest.Reason;
    EXPECT_EQ(longest.Table.Row(0).Name.size(), 65536 - fields.size());

    const ReadOutcome longer = Read(Header + Lines(1) + lineOf(65537) + end);
    EXPECT_EQ(longer.Failure, ReadFailure::LineTooLong);
    EXPECT_EQ(longer.Line, 3);
    EXPECT_EQ(longer.Table.Count, 0);
  }
  EXPECT_TRUE(Read(std::string(65536, 'h') + "\r\n").Ok());
  EXPECT_EQ(Read(std::string(65537, 'h') + "\r\n").Failure, ReadFailure::LineTooLong);
}

TEST(SigFile, BytesSurviveOpenAndSave) {
  const TempFolder folder;
  const std::string bytes = Header +
                            "131\t2\tDCS \x80\xE9\xFF\t1710.2\t1805.2\t512\t885\t0.2\t0.2\t1\r\n"
                            "0\t0\tany\x1A name\t1710.2\t1805.2\t512\t600\t0.2\t0.2\t1\r\n"
                            "0\t0\t  \r\t1E-05\t-1.5E+20\t-1\t0\t0.333333333333333\t0\t0\r\n";
  WriteFile(folder / "before.sig", bytes);
  const ReadOutcome outcome = LoadSigFile(folder / "before.sig");
  ASSERT_TRUE(outcome.Ok()) << outcome.Reason;
  EXPECT_FALSE(SaveSigFile(folder / "after.sig", outcome.Table));
  EXPECT_EQ(ReadFile(folder / "after.sig"), bytes);
}

TEST(SigFile, TableIsTheSameAfterSavingAndLoading) {
  const TempFolder folder;
  SignalStandardTable table =
      TableOf({NamedRow("DCS", 1), NamedRow("DCS(A)"), {"4", 0, "", -0.5, 9000.0001, -1, -2, 1e-9, 1e300, 0}});
  EXPECT_FALSE(SaveSigFile(folder / "table.sig", table));
  const ReadOutcome outcome = LoadSigFile(folder / "table.sig");
  EXPECT_TRUE(outcome.Ok()) << outcome.Reason;
  EXPECT_EQ(outcome.Table, table);
}

TEST(SigFile, SaveReplacesAllOfALongerFile) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", std::string(100'000, 'x'));
  EXPECT_FALSE(SaveSigFile(folder / "table.sig", {}));
  EXPECT_EQ(ReadFile(folder / "table.sig"), Header);
  EXPECT_EQ(testing::NamesIn(folder.Path()), (std::set<std::string>{"table.sig"}));
}

TEST(SigFile, SaveKnowsTheDecimalSeparator) {
  const TempFolder folder;
  EXPECT_FALSE(SaveSigFile(folder / "table.sig", TableOf({NamedRow("A")}), ','));
  EXPECT_EQ(ReadFile(folder / "table.sig"), WriteSigTable(TableOf({NamedRow("A")}), ','));
}

TEST(SigFile, NamesOfFilesMayHaveAnyLetters) {
  const TempFolder folder;
  const std::filesystem::path file = folder / std::filesystem::path(u8"Größe \u65E5\u672C (1).sig");
  EXPECT_FALSE(SaveSigFile(file, TableOf({NamedRow("A")})));
  EXPECT_EQ(LoadSigFile(file).Table, TableOf({NamedRow("A")}));
}

TEST(SigFile, SavesALineOf64KibibytesAndNoLongerOne) {
  const TempFolder folder;
  const auto tableWithLineOf = [](std::size_t bytes) {
    const std::size_t others = WriteSigTable(TableOf({NamedRow("")})).size() - WriteSigTable({}).size() - 2;
    return TableOf({NamedRow("first"), NamedRow(std::string(bytes - others, 'x'))});
  };
  EXPECT_FALSE(SaveSigFile(folder / "table.sig", tableWithLineOf(65536)));
  EXPECT_EQ(LoadSigFile(folder / "table.sig").Table, tableWithLineOf(65536));
  EXPECT_EQ(SaveSigFile(folder / "table.sig", tableWithLineOf(65537)), std::errc::value_too_large);
  EXPECT_EQ(LoadSigFile(folder / "table.sig").Table, tableWithLineOf(65536)) << "the former file stays";
}

// What is saved must be there to be opened again; to refuse a save is better than to break a file.
TEST(SigFile, SaveNeverWritesALineThatCannotBeReadAgain) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former\r\n");
  // Nine empty fields fit a line of 64 KiB beside this name; nine times "0" do not.
  const ReadOutcome outcome = Read(Header + "\t\t" + std::string(65536 - 9, 'x') + "\t\t\t\t\t\t\t\r\n");
  if (!outcome.Ok()) return;
  if (SaveSigFile(folder / "table.sig", outcome.Table))
    EXPECT_EQ(ReadFile(folder / "table.sig"), "former\r\n");
  else
    EXPECT_EQ(LoadSigFile(folder / "table.sig").Table, outcome.Table);
}

TEST(CaptionOfFile, IsThePathItself) {
  for (const char* path : {"/home/me/table.sig", "table.sig", "C:\\data\\table.sig", "matrivim dgc", "Matrivim.dg"})
    EXPECT_EQ(CaptionOfFile(path), path);
  const std::string letters = "/tmp/Gr\303\266\303\237e.sig";
  EXPECT_EQ(CaptionOfFile(std::filesystem::path(std::u8string(letters.begin(), letters.end()))), letters);
}

TEST(CaptionOfFile, IsReadOnlyWhereverThePathHasTheFactoryFilesName) {
  for (const char* path :
       {"Matrivim.dgc", "/usr/share/chanplan/Matrivim.dgc", "MATRIVIM.DGC", "C:\\data\\MATRIVIM.DGC.bak",
        "/home/me/old matrivim.dgc", "/home/me/mAtRiViM.dGc/table.sig"})
    EXPECT_EQ(CaptionOfFile(path), "Factory Default (Read-Only)") << path;
}

TEST(Messages, HaveTheirExactTexts) {
  EXPECT_EQ(FileTruncatedText, "There are too many records in the file, truncating at 200.");
  EXPECT_EQ(LoadErrorText("/home/me/table.sig", 0), "Error loading /home/me/table.sig");
  EXPECT_EQ(LoadErrorText("t.sig", 199), "Error loading t.sig");
  EXPECT_EQ(LoadErrorText("t.sig", 200), "Error loading t.sig\r\n\r\nMaximum count (200) exceeded.");
}

}  // namespace
}  // namespace chanplan
