// The commands that talk to a unit, against a simulated one at the other end of a pseudo-terminal.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <future>
#include <regex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "simulator/pseudo_terminal.h"
#include "tests/console/program.h"
#include "tests/console/sig_text.h"
#include "tests/unit/wire_bytes.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;
using Rows = std::vector<std::string>;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

// Whether `text` is one line and ends as one.
bool IsOneLine(const std::string& text) { return text.ends_with('\n') && text.find('\n') == text.size() - 1; }

// The commands that the unit's trace tells of.
std::string CommandsIn(const std::string& trace) {
  std::string commands;
  for (const std::string& line : Lines(trace))
    if (const std::size_t place = line.find("received "); place != std::string::npos)
      commands += line.substr(place + 9, 2) + " ";
  return commands;
}

// A unit with a table in a file, which writes down what it is sent.
class UnitWithTable {
 public:
  explicit UnitWithTable(const Rows& rows, const Arguments& options = {}) : simulator(Options(rows, options)) {}

  RunningSimulator& Simulator() { return simulator; }
  const std::string& Link() const { return simulator.Link(); }
  /// The table as the last upload left it.
  std::string Held() const { return ReadFile(folder / "held.sig"); }
  bool WasUploadedTo() const { return fs::exists(folder / "held.sig"); }

 private:
  Arguments Options(const Rows& rows, const Arguments& options) const {
    WriteFile(folder / "unit.sig", SigText(rows));
    Arguments all = {"--baud", "0", "--trace", "--table", folder / "unit.sig", "--save", folder / "held.sig"};
    all.insert(all.end(), options.begin(), options.end());
    return all;
  }

  TempFolder folder;
  RunningSimulator simulator;
};

// identify

struct IdentifyCase {
  std::string Model;
  std::string Firmware;
  const char* Output;
};

TEST(Identify, PrintsTheUnitAndWhetherItIsAccepted) {
  const std::array cases = {
      IdentifyCase{"QX4471C", "3.00", "Model:    QX4471C\nFirmware: 3.00\nAccepted: yes\n"},
      IdentifyCase{"QX4471C", "1.00", "Model:    QX4471C\nFirmware: 1.00\nAccepted: yes\n"},
      IdentifyCase{"XY1234D", "3.00", "Model:    XY1234D\nFirmware: 3.00\nAccepted: yes\n"},
      IdentifyCase{"XY1234D", "2.99", "Model:    XY1234D\nFirmware: 2.99\nAccepted: no\n"},
      IdentifyCase{"XY1234d", "3.00", "Model:    XY1234d\nFirmware: 3.00\nAccepted: no\n"},
      IdentifyCase{"D", "12.5", "Model:    D\nFirmware: 12.50\nAccepted: yes\n"},
      IdentifyCase{"QX4471", "3.00", "Model:    QX4471\nFirmware: 3.00\nAccepted: no\n"},
      IdentifyCase{"XY1234D", "", "Model:    XY1234D\nFirmware: 0.00\nAccepted: no\n"},
      IdentifyCase{"\xC4\x80", "3.00", "Model:    \u00C4\u20AC\nFirmware: 3.00\nAccepted: no\n"},
  };
  const Chanplan chanplan;
  for (const IdentifyCase& identify : cases) {
    SCOPED_TRACE(identify.Output);
    const RunningSimulator simulator({"--baud", "0", "--model", identify.Model, "--firmware", identify.Firmware});
    const ProgramRun run = chanplan.Run({"identify", simulator.Link()});
    EXPECT_EQ(run.Output, identify.Output);
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

TEST(Identify, PrintsJson) {
  for (const auto& [model, printed] :
       {std::pair{std::string("QX4471C"), "\"model\": \"QX4471C\", \"firmware\": \"3.00\", \"accepted\": true"},
        {"X\"\\\xDC", "\"model\": \"X\\\"\\\\\u00DC\", \"firmware\": \"3.00\", \"accepted\": false"}}) {
    const RunningSimulator simulator({"--baud", "0", "--model", model});
    const ProgramRun run = Chanplan().Run({"identify", "--format", "json", simulator.Link()});
    EXPECT_EQ(run.Output, "{" + std::string(printed) + "}\n");
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

TEST(Identify, FailsWhenItsAnswerCannotBeWritten) {
  const RunningSimulator simulator({"--baud", "0"});
  const ProgramRun run = Chanplan().Run({"identify", simulator.Link()}, {.OutputTo = "/dev/full"});
  EXPECT_EQ(run.Errors, "chanplan: standard output could not be written\n");
  EXPECT_EQ(run.ExitStatus, 2);
}

struct Refused {
  std::string Model;
  std::string Firmware;
  const char* Shown;
};

TEST(IncompatibleUnit, IsNeitherReadNorWritten) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(1)));
  for (const Refused& refused : {
           Refused{"XY1234D", "2.99", "XY1234D with firmware 2.99"},
           Refused{"XY1234d", "3.00", "XY1234d with firmware 3.00"},
           Refused{"\xDC\x80", "3.00", "\u00DC\u20AC with firmware 3.00"},
       }) {
    for (const Arguments& words : {Arguments{"download", "out.sig"}, Arguments{"upload", "table.sig"},
                                   Arguments{"upload", "table.sig", "--append"}}) {
      SCOPED_TRACE(std::string(refused.Shown) + " " + ::testing::PrintToString(words));
      UnitWithTable unit({}, {"--model", refused.Model, "--firmware", refused.Firmware});
      Arguments arguments = words;
      arguments.insert(arguments.begin() + 1, unit.Link());
      const ProgramRun run = chanplan.Run(arguments);
      EXPECT_EQ(run.Output, "");
      EXPECT_EQ(run.Errors, std::string("chanplan: the unit ") + refused.Shown +
                                " is not compatible: it takes a model that ends in D, with firmware 3.00 or later\n");
      EXPECT_EQ(run.ExitStatus, 2);
      unit.Simulator().Stop();
      EXPECT_EQ(CommandsIn(unit.Simulator().Output()), "45 FF ") << unit.Simulator().Output();
    }
  }
  EXPECT_EQ(NamesIn(chanplan.Folder.Path()), std::set<std::string>{"table.sig"});
}

TEST(IncompatibleUnit, IsNamedInOneLineWhateverItsModelHolds) {
  const RunningSimulator simulator({"--baud", "0", "--model", "A\r\nB\x1B[2", "--firmware", "3.00"});
  const ProgramRun run = Chanplan().Run({"download", simulator.Link(), "out.sig"});
  EXPECT_TRUE(IsOneLine(run.Errors)) << run.Errors;
  EXPECT_EQ(run.Errors.find('\x1B'), std::string::npos) << "nothing that a unit sends moves the cursor";
}

// PORT

TEST(PortArgument, MayBeANumberForWhichTheSettingsNameADevice) {
  const RunningSimulator simulator({"--baud", "0"});
  const Chanplan chanplan;
  for (const char* const number : {"1", "2", "3", "4", "5", "6"}) {
    SCOPED_TRACE(number);
    chanplan.SetSettings("[Settings]\nCommDevice" + std::string(number) + "=" + simulator.Link() + "\n");
    EXPECT_EQ(chanplan.Run({"identify", number}).Output, "Model:    QX4471C\nFirmware: 3.00\nAccepted: yes\n");
  }
}

TEST(PortArgument, MayBeAPathRelativeToTheWorkingFolder) {
  const Chanplan chanplan;
  const RunningSimulator simulator({"--baud", "0"}, chanplan.Folder / "unit");
  EXPECT_EQ(chanplan.Run({"identify", "./unit"}).ExitStatus, 0);
  EXPECT_EQ(chanplan.Run({"identify", "unit"}).ExitStatus, 0);
}

struct WrongPort {
  std::string Port;
  std::string Error;
};

TEST(PortArgument, ThatIsNoPortIsRefusedWithOneLine) {
  const Chanplan chanplan;
  chanplan.SetSettings("[Settings]\nCommDevice6=/dev/no-such-port\n");
  WriteFile(chanplan.Folder / "file", "content");
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(1)));
  const std::string file = chanplan.Folder / "file";
  const std::string folder = chanplan.Folder.Path();
  for (const WrongPort& wrong : {
           WrongPort{"0", "there is no port 0: give a number from 1 to 6, or a device"},
           WrongPort{"7", "there is no port 7: give a number from 1 to 6, or a device"},
           WrongPort{"01", "there is no port 01: give a number from 1 to 6, or a device"},
           WrongPort{"99999999999", "there is no port 99999999999: give a number from 1 to 6, or a device"},
           WrongPort{"6", "there is no port /dev/no-such-port: check the cable and the name"},
           WrongPort{"/dev/no-such-port", "there is no port /dev/no-such-port: check the cable and the name"},
           WrongPort{"no-such-port", "there is no port /dev/no-such-port: check the cable and the name"},
           WrongPort{file, file + " is not a serial port"},
           WrongPort{folder, folder + " is not a serial port"},
           WrongPort{"/dev/null", "/dev/null is not a serial port, or nothing is connected to it"},
       }) {
    for (const Arguments& words :
         {Arguments{"identify"}, Arguments{"download", "out.sig"}, Arguments{"upload", "table.sig"}}) {
      SCOPED_TRACE(words.front() + " " + wrong.Port);
      Arguments arguments = words;
      arguments.insert(arguments.begin() + 1, wrong.Port);
      const ProgramRun run = chanplan.Run(arguments);
      EXPECT_EQ(run.Output, "");
      EXPECT_EQ(run.Errors, "chanplan: " + wrong.Error + "\n");
      EXPECT_EQ(run.ExitStatus, 2);
      EXPECT_LT(run.Elapsed, 5s) << "nobody waits for a port that is not there";
    }
  }
  EXPECT_EQ(ReadFile(chanplan.Folder / "file"), "content");
  EXPECT_FALSE(fs::exists(chanplan.Folder / "out.sig"));
}

std::string GroupOf(const fs::path& file) {
  struct stat facts {};
  stat(file.c_str(), &facts);
  const group* const owning = getgrgid(facts.st_gid);
  return owning != nullptr ? owning->gr_name : std::to_string(facts.st_gid);
}

TEST(PortWithoutPermission, IsRefusedWithTheGroupThatGrantsIt) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const RunningSimulator simulator;
  TempFolder::Allow(simulator.Device(), fs::perms::group_read | fs::perms::group_write);
  const ProgramRun run = Chanplan().Run({"identify", simulator.Link()}, {.Unprivileged = true});
  const std::string name = GroupOf(simulator.Device());
  EXPECT_EQ(run.Errors, "chanplan: no permission to use " + simulator.Link() + ": the group \"" + name +
                            "\" grants it; have your user added (sudo usermod -aG " + name +
                            " USER) and log in again\n");
  EXPECT_EQ(run.ExitStatus, 2);
}

TEST(PortWithoutPermission, PromisesNothingOfAGroupThatHasNoneEither) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const RunningSimulator simulator;
  for (const fs::perms rights : {fs::perms::none, fs::perms::group_write}) {
    TempFolder::Allow(simulator.Device(), rights);
    const ProgramRun run = Chanplan().Run({"identify", simulator.Link()}, {.Unprivileged = true});
    EXPECT_TRUE(run.Errors.starts_with("chanplan: no permission to use " + simulator.Link())) << run.Errors;
    EXPECT_TRUE(IsOneLine(run.Errors)) << run.Errors;
    EXPECT_EQ(run.Errors.find("usermod"), std::string::npos) << run.Errors;
    EXPECT_EQ(run.ExitStatus, 2);
  }
}

TEST(PortInUse, IsRefusedAndTheOtherProgramGoesOn) {
  const RunningSimulator simulator({"--baud", "0", "--fault", "slow", "--trace"});
  const Chanplan chanplan;
  auto first = std::async(std::launch::async, [&] { return chanplan.Run({"identify", simulator.Link()}); });
  ASSERT_TRUE(simulator.WaitForOutput("identifies itself"));
  const ProgramRun second = chanplan.Run({"identify", simulator.Link()});
  EXPECT_EQ(second.Errors, "chanplan: " + simulator.Link() + " is in use by another program: close that first\n");
  EXPECT_EQ(second.ExitStatus, 2);
  EXPECT_EQ(first.get().ExitStatus, 0);
}

// download

struct DownloadCase {
  const char* Description;
  Rows Unit;
  Rows Out;
};

TEST(Download, SavesTheTableOfTheUnit) {
  const std::array cases = {
      DownloadCase{"nothing", {}, {}},
      DownloadCase{
          "every field", {"131|0|GSM|890.2|935.2|1|124|0.2|0.25|3"}, {"131|0|GSM|890.2|935.2|1|124|0.2|0.25|3"}},
      DownloadCase{"the largest values",
                   {"254|255|X|4294.967295|4294.967295|65535|65535|4294.967295|4294.967295|65535"},
                   {"254|255|X|4294.967295|4294.967295|65535|65535|4294.967295|4294.967295|65535"}},
      DownloadCase{"sub-bands, which are brought into line with their standard",
                   {"2|2|PCS|1850.2|1930.2|512|810|0.2|0.2|1", "1|0|x|1851|1931|1|2|7|7|7", "0|0|y|1852|1932|3|4|7|7|7",
                    "0|0|Next|1|2|3|4|5|6|7"},
                   {"2|2|PCS|1850.2|1930.2|512|810|0.2|0.2|1", "1|0|PCS(A)|1851|1931|1|2|0.2|0.2|1",
                    "0|0|PCS(B)|1852|1932|3|4|0.2|0.2|1", "0|0|Next|1|2|3|4|5|6|7"}},
      DownloadCase{"bytes beyond ASCII", {"2|0|\x80\xFC|1|2|1|2|0.1|0.1|1"}, {"2|0|\x80\xFC|1|2|1|2|0.1|0.1|1"}},
      DownloadCase{"a State of 255, which ends the list",
                   {"2|0|A|1|2|1|2|0.1|0.1|1", "255|0|B|1|2|1|2|0.1|0.1|1", "2|0|C|1|2|1|2|0.1|0.1|1"},
                   {"2|0|A|1|2|1|2|0.1|0.1|1"}},
  };
  for (const DownloadCase& download : cases) {
    SCOPED_TRACE(download.Description);
    const Chanplan chanplan;
    const UnitWithTable unit(download.Unit);
    WriteFile(chanplan.Folder / "out.sig", download.Out.empty() ? "" : "former");
    const ProgramRun run = chanplan.Run({"download", unit.Link(), "out.sig"});
    EXPECT_EQ(run.Output, "");
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
    EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText(download.Out));
  }
}

TEST(Download, OfTwoHundredRecordsIsWhole) {
  const Chanplan chanplan;
  const UnitWithTable unit(NumberedRows(200));
  EXPECT_EQ(chanplan.Run({"download", unit.Link(), "out.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText(NumberedRows(200)));
  EXPECT_EQ(NamesIn(chanplan.Folder.Path()), std::set<std::string>{"out.sig"});
}

TEST(Download, SaysWhenItsFileCannotBeWrittenBeforeItAsksTheUnit) {
  const Chanplan chanplan;
  const RunningSimulator unit({"--trace"});
  for (const auto& [out, reason] : {std::pair{"missing/out.sig", "No such file or directory"},
                                    {".", "Is a directory"},
                                    {"", "No such file or directory"},
                                    {"missing/", "No such file or directory"}}) {
    const ProgramRun run = chanplan.Run({"download", unit.Link(), out});
    EXPECT_EQ(run.Errors, std::string("chanplan: Error Saving File ") + out + ": " + reason + "\n");
    EXPECT_EQ(run.ExitStatus, 2);
  }
  EXPECT_EQ(CommandsIn(unit.Output()), "");
  EXPECT_EQ(NamesIn(chanplan.Folder.Path()), std::set<std::string>{});
}

TEST(Download, NeverWritesIntoTheUnitsPort) {
  const Chanplan chanplan;
  const RunningSimulator unit({"--trace"});
  for (const std::string& out : {unit.Link(), unit.Device()}) {
    const ProgramRun run = chanplan.Run({"download", unit.Link(), out});
    EXPECT_EQ(run.ExitStatus, 2);
    EXPECT_EQ(run.Errors, "chanplan: " + out + " is the unit's own port, which would take its table for commands\n");
  }
  EXPECT_EQ(unit.Output().find("received"), std::string::npos) << unit.Output();
}

TEST(Download, FindsAFileThatIsProtectedBeforeItAsksTheUnit) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "out.sig", SigText(NumberedRows(1)));
  TempFolder::Allow(chanplan.Folder / "out.sig", fs::perms::owner_read | fs::perms::others_read);
  const ProgramRun run = chanplan.Run({"download", "/dev/no-such-port", "out.sig"}, {.Unprivileged = true});
  EXPECT_EQ(run.Errors, "chanplan: Error Saving File out.sig: Permission denied\n");
}

TEST(Download, ReplacesRecordsByAnEmptyTableOnlyWhenItIsWanted) {
  const Chanplan chanplan;
  const UnitWithTable unit({});
  WriteFile(chanplan.Folder / "out.sig", SigText(NumberedRows(3)));
  const ProgramRun kept = chanplan.Run({"download", unit.Link(), "out.sig"});
  EXPECT_EQ(kept.Errors,
            "chanplan: the unit's table is empty and out.sig holds 3 records: it was not replaced (--force replaces "
            "it)\n");
  EXPECT_EQ(kept.ExitStatus, 2);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText(NumberedRows(3)));
  EXPECT_EQ(chanplan.Run({"download", "--force", unit.Link(), "out.sig"}).ExitStatus, 0);
  EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), SigText({}));
  EXPECT_EQ(chanplan.Run({"download", unit.Link(), "out.sig"}).ExitStatus, 0) << "there is nothing to lose";
}

// Nobody knows what is in a file that is no table, or a damaged one.
TEST(Download, ReplacesNoOtherFileThanAnEmptyTableByAnEmptyTable) {
  const Chanplan chanplan;
  const UnitWithTable unit({});
  const std::string damaged = SigText(NumberedRows(3)) + "2|0|cut";
  for (const std::string& content : {std::string("a line"), std::string("one\ntwo\n"), damaged, std::string(1, '\0')}) {
    WriteFile(chanplan.Folder / "out.sig", content);
    const ProgramRun kept = chanplan.Run({"download", unit.Link(), "out.sig"});
    EXPECT_EQ(kept.Errors,
              "chanplan: the unit's table is empty and out.sig is not: it was not replaced (--force replaces it)\n");
    EXPECT_EQ(kept.ExitStatus, 2);
    EXPECT_EQ(ReadFile(chanplan.Folder / "out.sig"), content);
  }
  EXPECT_EQ(chanplan.Run({"download", "--force", unit.Link(), "out.sig"}).ExitStatus, 0);
  WriteFile(chanplan.Folder / "out.sig", "");
  EXPECT_EQ(chanplan.Run({"download", unit.Link(), "out.sig"}).ExitStatus, 0) << "there is nothing to lose";
}

// A unit that answers the table command with any bytes at all.
class UnitThatSends {
 public:
  explicit UnitThatSends(std::string tableReply) : reply(std::move(tableReply)) {}
  ~UnitThatSends() {
    stop = true;
    server.join();
  }

  const std::string& Port() const { return terminal.Path(); }

 private:
  void Serve() {
    std::string waiting;
    while (!stop) {
      for (const char byte : terminal.Read(5ms)) {
        if (byte == 'E') waiting += Bytes({0, 0}) + "QX4471C3.00";
        if (byte == 'O') waiting += reply;
        if (byte == '\xFF') waiting += byte;
      }
      waiting.erase(0, terminal.Write(waiting));
    }
  }

  std::string reply;
  PseudoTerminal terminal{""};
  std::atomic<bool> stop = false;
  std::thread server{[this] { Serve(); }};
};

TEST(Download, OfMoreThan200RecordsIsRefused) {
  std::string records;
  for (int number = 1; number <= 201; ++number) records += RecordBytes(2, 0, "S" + std::to_string(number));
  const Chanplan chanplan;
  const UnitThatSends unit(TableHeader(100, 201) + records);
  const ProgramRun run = chanplan.Run({"download", unit.Port(), "out.sig"});
  EXPECT_EQ(run.Errors,
            "chanplan: The unit announces more than 200 records, which no table can hold: its first 200 are not its "
            "whole table\n");
  EXPECT_EQ(run.ExitStatus, 2);
  EXPECT_FALSE(fs::exists(chanplan.Folder / "out.sig"));
}

TEST(Download, DoesNotCountRecordsBehindTheEndOfTheList) {
  std::string records;
  for (int number = 1; number <= 201; ++number) records += RecordBytes(number == 201 ? 255 : 2, 0, "S");
  const Chanplan chanplan;
  const UnitThatSends unit(TableHeader(100, 201) + records);
  EXPECT_EQ(chanplan.Run({"download", unit.Port(), "out.sig"}).ExitStatus, 0);
  EXPECT_EQ(Lines(ReadFile(chanplan.Folder / "out.sig")).size(), 201u) << "the header and 200 rows";
}

// upload

struct UploadCase {
  const char* Description;
  Rows Unit;
  Rows File;
  Arguments Options;
  Rows Held;  // names as they travel
  std::string Errors;
};

TEST(Upload, PutsTheTableIntoTheUnit) {
  const std::string unitA = "2|1|A|1|2|1|2|0.1|0.1|1";
  const std::string unitA1 = "0|0|A(A)|1|2|1|2|0.1|0.1|1";
  const std::string unitB = "2|0|B|3|4|1|2|0.1|0.1|1";
  const std::string fileA = "3|0|A|5|6|7|8|0.5|0.5|2";
  const std::string fileC = "3|1|C|7|8|7|8|0.5|0.5|2";
  const std::string fileC1 = "0|0|C(A)|8|9|7|8|0.5|0.5|2";
  const std::string longName = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  const std::array cases = {
      UploadCase{"in place of what it held", {unitA, unitA1, unitB}, {fileC, fileC1}, {}, {fileC, fileC1}, ""},
      UploadCase{"a table without rows", {unitA, unitA1}, {}, {}, {}, ""},
      UploadCase{"sub-bands brought into line",
                 {},
                 {"2|1|A|1|2|1|2|0.1|0.1|1", "0|0||1|2|1|2|9|9|9"},
                 {},
                 {unitA, unitA1},
                 ""},
      UploadCase{"behind what it held, which wins where names match",
                 {unitA, unitA1, unitB},
                 {fileA, fileC, fileC1},
                 {"--append"},
                 // The unit's sub-bands come back with their standard's name.
                 {unitA, "0|0|A|1|2|1|2|0.1|0.1|1", unitB, fileC, fileC1},
                 ""},
      UploadCase{"behind what it held, but in place of what matches",
                 {unitA, unitA1, unitB},
                 {fileC, fileC1, fileA},
                 {"--append", "--replace-matching"},
                 {fileA, unitB, fileC, fileC1},
                 ""},
      UploadCase{"behind nothing", {}, {fileA}, {"--append"}, {fileA}, ""},
      UploadCase{"nothing behind something", {unitB}, {}, {"--append"}, {unitB}, ""},
      UploadCase{
          "bytes beyond ASCII", {}, {"2|0|\x80\xFC|1|2|1|2|0.1|0.1|1"}, {}, {"2|0|\x80\xFC|1|2|1|2|0.1|0.1|1"}, ""},
      UploadCase{"a name that is too long, with a note",
                 {},
                 {"2|0|" + longName + "\xFC|1|2|1|2|0.1|0.1|1"},
                 {},
                 {"2|0|ABCDEFGHIJKLMNOPQRSTUVWX|1|2|1|2|0.1|0.1|1"},
                 "chanplan: row 1 (" + longName + "\u00FC): Name is longer than 24 characters and is cut off\n"},
      UploadCase{"frequencies that are too high, with a note each",
                 {},
                 {unitB, "2|0|X|5000|4294.967295|1|2|4294.967296|0.1|1"},
                 {},
                 {unitB, "2|0|X|0|4294.967295|1|2|0|0.1|1"},
                 "chanplan: row 2 (X): Uplink Start Frequency 5000 MHz is more than a unit can take and goes out as 0\n"
                 "chanplan: row 2 (X): Bandwidth 4294.967296 MHz is more than a unit can take and goes out as 0\n"},
      UploadCase{"a State that ends the list, with a note",
                 {},
                 {"255|0|X|1|2|1|2|0.1|0.1|1"},
                 {},
                 {"255|0|X|1|2|1|2|0.1|0.1|1"},
                 "chanplan: row 1 (X): State 255 ends the list when the unit's table is read\n"},
  };
  for (const UploadCase& upload : cases) {
    SCOPED_TRACE(upload.Description);
    const Chanplan chanplan;
    const UnitWithTable unit(upload.Unit);
    WriteFile(chanplan.Folder / "table.sig", SigText(upload.File));
    Arguments arguments = {"upload", unit.Link(), "table.sig"};
    arguments.insert(arguments.end(), upload.Options.begin(), upload.Options.end());
    const ProgramRun run = chanplan.Run(arguments);
    EXPECT_EQ(run.Output, "");
    EXPECT_EQ(run.Errors, upload.Errors);
    EXPECT_EQ(run.ExitStatus, 0);
    ASSERT_TRUE(unit.WasUploadedTo());
    EXPECT_EQ(unit.Held(), SigText(upload.Held));
    EXPECT_EQ(ReadFile(chanplan.Folder / "table.sig"), SigText(upload.File));
  }
}

constexpr const char* Truncated =
    "chanplan: There were too many records to merge tables.\n"
    "The Merged table has been truncated at 200 records.\n";

TEST(Upload, ThatWouldDropRowsIsRefusedUnlessItIsWanted) {
  const Chanplan chanplan;
  UnitWithTable unit(NumberedRows(199));
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(3, 200)));
  const ProgramRun refused = chanplan.Run({"upload", unit.Link(), "table.sig", "--append"});
  EXPECT_EQ(refused.Errors,
            "chanplan: 2 records find no room in the unit; nothing was sent (--truncate sends the first 200)\n");
  EXPECT_EQ(refused.ExitStatus, 2);
  EXPECT_FALSE(unit.WasUploadedTo());
  const ProgramRun run = chanplan.Run({"upload", unit.Link(), "table.sig", "--append", "--truncate"});
  EXPECT_EQ(run.Errors, std::string(Truncated) + "chanplan: 2 rows were lost: a table holds 200\n");
  EXPECT_EQ(run.ExitStatus, 3);
  EXPECT_EQ(unit.Held(), SigText(NumberedRows(200)));
  EXPECT_GE(run.Elapsed, 9605ms) << "every byte has a pause of a millisecond behind it";
}

TEST(Upload, ThatWouldLeaveOutRowsWithoutANameIsRefusedUnlessItIsWanted) {
  const std::string named = "2|0|A|1|2|1|2|0.1|0.1|1";
  const std::string nameless = "2|0||1|2|1|2|0.1|0.1|1";
  for (const auto& [held, file] :
       {std::pair{Rows{named, nameless}, NumberedRows(1)}, {{named}, {nameless, nameless}}, {{nameless, named}, {}}}) {
    const Chanplan chanplan;
    const UnitWithTable unit(held);
    WriteFile(chanplan.Folder / "table.sig", SigText(file));
    const ProgramRun refused = chanplan.Run({"upload", unit.Link(), "table.sig", "--append"});
    const auto count = std::ranges::count(held, nameless) + std::ranges::count(file, nameless);
    EXPECT_EQ(refused.Errors, "chanplan: " + std::to_string(count) + (count == 1 ? " record has" : " records have") +
                                  " no name and would be left out; nothing was sent (--truncate allows it)\n");
    EXPECT_EQ(refused.ExitStatus, 2);
    EXPECT_FALSE(unit.WasUploadedTo());
    const ProgramRun allowed = chanplan.Run({"upload", unit.Link(), "table.sig", "--append", "--truncate"});
    EXPECT_EQ(allowed.ExitStatus, 3);
    EXPECT_NE(allowed.Errors.find(" without a name had to be left out\n"), std::string::npos) << allowed.Errors;
    EXPECT_TRUE(unit.WasUploadedTo());
    EXPECT_EQ(unit.Held().find("\t\t"), std::string::npos);
  }
}

TEST(Upload, OfAFileWithMoreThan200RowsSaysHowManyAreLost) {
  const Chanplan chanplan;
  UnitWithTable unit(NumberedRows(3));
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(205, 10)));
  const ProgramRun refused = chanplan.Run({"upload", unit.Link(), "table.sig", "--append"});
  EXPECT_NE(refused.Errors.find("chanplan: 8 records find no room in the unit; nothing was sent"), std::string::npos)
      << refused.Errors;
  EXPECT_EQ(refused.ExitStatus, 2);
  EXPECT_FALSE(unit.WasUploadedTo());
  const ProgramRun cut = chanplan.Run({"upload", unit.Link(), "table.sig"});
  EXPECT_TRUE(cut.Errors.ends_with("chanplan: 5 rows were lost: a table holds 200\n")) << cut.Errors;
  EXPECT_EQ(cut.ExitStatus, 3);
  EXPECT_EQ(unit.Held(), SigText(NumberedRows(200, 10)));
}

// The unit has all of the file that can be read, but not all of the file.
TEST(Upload, AppendedFromAFileWithMoreThan200RowsIsRefusedWhateverTheUnitHolds) {
  const Chanplan chanplan;
  const UnitWithTable unit(NumberedRows(2));
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(201)));
  const ProgramRun refused = chanplan.Run({"upload", unit.Link(), "table.sig", "--append"});
  EXPECT_NE(refused.Errors.find("chanplan: 1 record finds no room in the unit; nothing was sent"), std::string::npos)
      << refused.Errors;
  EXPECT_EQ(refused.ExitStatus, 2);
  EXPECT_FALSE(unit.WasUploadedTo());
}

TEST(Upload, AppendedKeepsTheTagOfTheUnitsTable) {
  const Chanplan chanplan;
  const RunningSimulator unit({"--baud", "0", "--tag", "515"});
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(1)));
  const ProgramRun run = chanplan.Run({"upload", "--append", "--trace", unit.Link(), "table.sig"});
  EXPECT_NE(run.Errors.find("> 4E 02 03 00 01 "), std::string::npos) << run.Errors;
}

struct Misfit {
  std::string Row;
  std::string Text;
};

const std::vector<Misfit> Misfits = {
    {"300|0|X|1|2|1|2|0.1|0.1|1", "row 2 (X): State 300 does not fit, it must be 0 to 255"},
    {"-1|0|X|1|2|1|2|0.1|0.1|1", "row 2 (X): State -1 does not fit, it must be 0 to 255"},
    {"2|256|X|1|2|1|2|0.1|0.1|1", "row 2 (X): Sub-bands 256 does not fit, it must be 0 to 255"},
    {"2|-3|X|1|2|1|2|0.1|0.1|1", "row 2 (X): Sub-bands -3 does not fit, it must be 0 to 255"},
    {"2|0|X|-1|2|1|2|0.1|0.1|1", "row 2 (X): Uplink Start Frequency -1 MHz does not fit, it must not be negative"},
    {"2|0|X|1|-1E-05|1|2|0.1|0.1|1",
     "row 2 (X): Downlink Start Frequency -1E-05 MHz does not fit, it must not be negative"},
    {"2|0|X|1|2|70000|2|0.1|0.1|1", "row 2 (X): Start Channel 70000 does not fit, it must be 0 to 65535"},
    {"2|0|X|1|2|1|-1|0.1|0.1|1", "row 2 (X): Stop Channel -1 does not fit, it must be 0 to 65535"},
    {"2|0|X|1|2|1|2|-0.1|0.1|1", "row 2 (X): Bandwidth -0.1 MHz does not fit, it must not be negative"},
    {"2|0|X|1|2|1|2|0.1|-0.1|1", "row 2 (X): Spacing -0.1 MHz does not fit, it must not be negative"},
    {"2|0|\xDC|1|2|1|2|0.1|0.1|65536", "row 2 (\u00DC): Step 65536 does not fit, it must be 0 to 65535"},
};

TEST(Upload, OfAValueThatDoesNotFitIsRefusedBeforeTheUnitHearsAnything) {
  const Chanplan chanplan;
  UnitWithTable unit(NumberedRows(1));
  for (const Misfit& misfit : Misfits) {
    SCOPED_TRACE(misfit.Text);
    WriteFile(chanplan.Folder / "table.sig", SigText({"2|0|A|1|2|1|2|0.1|0.1|1", misfit.Row}));
    const ProgramRun run = chanplan.Run({"upload", unit.Link(), "table.sig", "--verify"});
    EXPECT_EQ(run.Output, "");
    EXPECT_EQ(run.Errors, "chanplan: " + misfit.Text + "; nothing was sent\n");
    EXPECT_EQ(run.ExitStatus, 2);
  }
  // What the unit hears afterwards is the first that it hears.
  EXPECT_EQ(chanplan.Run({"identify", unit.Link()}).ExitStatus, 0);
  unit.Simulator().Stop();
  EXPECT_EQ(CommandsIn(unit.Simulator().Output()), "45 FF ");
}

TEST(Upload, OfAValueThatDoesNotFitIsRefusedWhenItIsToBeAppended) {
  const Chanplan chanplan;
  for (const Misfit& misfit : Misfits) {
    SCOPED_TRACE(misfit.Text);
    UnitWithTable unit({"2|0|A|1|2|1|2|0.1|0.1|1"});
    WriteFile(chanplan.Folder / "table.sig", SigText({"2|0|A|1|2|1|2|0.1|0.1|1", misfit.Row}));
    const ProgramRun run = chanplan.Run({"upload", unit.Link(), "table.sig", "--append"});
    EXPECT_EQ(run.Output, "");
    EXPECT_TRUE(run.Errors.starts_with("chanplan: " + misfit.Text)) << run.Errors;
    EXPECT_TRUE(IsOneLine(run.Errors)) << run.Errors;
    EXPECT_EQ(run.ExitStatus, 2);
    unit.Simulator().Stop();
    EXPECT_EQ(unit.Simulator().Output().find("is to receive a table"), std::string::npos);
    EXPECT_FALSE(unit.WasUploadedTo());
  }
}

TEST(Upload, OfAFileThatCannotBeReadDoesNotOpenThePort) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "bad.sig", "");
  for (const auto& [file, reason] :
       {std::pair{"missing.sig", "No such file or directory"}, std::pair{".", "Is a directory"},
        std::pair{"bad.sig", "the file is empty, not even a header line is there"}}) {
    const ProgramRun run = chanplan.Run({"upload", "/dev/no-such-port", file});
    EXPECT_EQ(run.Errors, std::string("chanplan: Error loading ") + file + ": " + reason + "\n");
    EXPECT_EQ(run.ExitStatus, 2);
  }
}

// upload --verify

TEST(UploadVerified, IsSilentWhenTheUnitHoldsWhatWasSent) {
  const Chanplan chanplan;
  for (const Rows& rows : {
           Rows{},
           Rows{"2|2|PCS 1900|1850.2|1930.2|512|810|0.2|0.2|1", "7|0||1054.3718|1931|1|2|7|7|7",
                "0|0||1852|1932|3|4|7|7|7", "0|0|Next|1|2|3|4|5|6|7"},
           Rows{"254|255|ABCDEFGHIJKLMNOPQRSTUVWX|4294.967295|0|65535|0|0|4294.967295|65535"},
       }) {
    SCOPED_TRACE(::testing::PrintToString(rows));
    for (const Arguments& options : {Arguments{"--verify"}, Arguments{"--verify", "--append"}}) {
      const UnitWithTable unit({"2|0|In the unit|1|2|3|4|5|6|7"});
      WriteFile(chanplan.Folder / "table.sig", SigText(rows));
      Arguments arguments = {"upload", unit.Link(), "table.sig"};
      arguments.insert(arguments.end(), options.begin(), options.end());
      const ProgramRun run = chanplan.Run(arguments);
      EXPECT_EQ(run.Errors, "");
      EXPECT_EQ(run.ExitStatus, 0);
    }
  }
}

TEST(UploadVerified, ReadsTheTableBack) {
  const Chanplan chanplan;
  UnitWithTable unit({});
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(2)));
  ASSERT_EQ(chanplan.Run({"upload", unit.Link(), "table.sig", "--verify"}).ExitStatus, 0);
  unit.Simulator().Stop();
  const std::string output = unit.Simulator().Output();
  EXPECT_GT(output.find("sends its table of 2 records"), output.find("has received a table of 2 records")) << output;
  EXPECT_NE(output.find("sends its table of 2 records"), std::string::npos);
}

struct Loss {
  std::string Row;
  const char* Note;
};

TEST(UploadVerified, DoesNotBlameTheUnitForWhatWasSaidBefore) {
  const std::array losses = {
      Loss{"2|0|X|5000|935|1|2|0.1|0.1|1",
           "row 2 (X): Uplink Start Frequency 5000 MHz is more than a unit can take and goes out as 0"},
      Loss{"2|0|X|900.0000005|935|1|2|0.1|0.1|1",
           "row 2 (X): Uplink Start Frequency 900.0000005 MHz is cut to whole hertz"},
      Loss{"2|0|ABCDEFGHIJKLMNOPQRSTUVWXY\xDC|1|2|1|2|0.1|0.1|1",
           "row 2 (ABCDEFGHIJKLMNOPQRSTUVWXY\u00DC): Name is longer than 24 characters and is cut off"},
      Loss{"2|0|A\x1B[2J|1|2|1|2|0.1|0.1|1", "row 2 (A?[2J): Name has control characters, which are lost"},
      Loss{"255|0|X|1|2|1|2|0.1|0.1|1", "row 2 (X): State 255 ends the list when the unit's table is read"},
  };
  for (const Loss& loss : losses) {
    SCOPED_TRACE(loss.Note);
    const Chanplan chanplan;
    const UnitWithTable unit({});
    WriteFile(chanplan.Folder / "table.sig", SigText({"2|0|A|1|2|1|2|0.1|0.1|1", loss.Row}));
    const ProgramRun run = chanplan.Run({"upload", unit.Link(), "table.sig", "--verify"});
    EXPECT_EQ(run.Errors, "chanplan: " + std::string(loss.Note) + "\n");
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

TEST(UploadVerified, FailsWithEveryDifference) {
  const Chanplan chanplan;
  const UnitThatSends unit(TableHeader(100, 1) + RecordBytes(2, 0, "b", {2000000, 2000000, 1, 2, 100000, 100000, 1}));
  WriteFile(chanplan.Folder / "table.sig", SigText({"2|0|a|1|2|1|2|0.1|0.1|1"}));
  const ProgramRun run = chanplan.Run({"upload", unit.Port(), "table.sig", "--verify"});
  EXPECT_EQ(run.Errors,
            "chanplan: row 1 (a): Name: a -> b\n"
            "chanplan: row 1 (a): Uplink Start Frequency: 1 -> 2\n"
            "chanplan: the unit's table is not the one that was sent: upload it again\n");
  EXPECT_EQ(run.ExitStatus, 2);
}

TEST(UploadVerified, DoesNotBlameTheUploadWhenTheTableIsNotReadBackWhole) {
  const Chanplan chanplan;
  const UnitThatSends unit(TableHeader(100, 1) + RecordBytes(2, 0, "a") + "?");
  WriteFile(chanplan.Folder / "table.sig", SigText({"2|0|a|1|2|1|2|0.1|0.1|1"}));
  const ProgramRun run = chanplan.Run({"upload", unit.Port(), "table.sig", "--verify"});
  EXPECT_EQ(
      run.Errors,
      "chanplan: the unit confirmed the upload, but its table could not be read back to compare it: The unit sent "
      "more than it announced, so its table is not whole: start again\n");
  EXPECT_EQ(run.ExitStatus, 2);
}

// units

TEST(Units, AreListedALineEach) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const RunningSimulator accepted({"--baud", "0"});
  const RunningSimulator refused({"--baud", "0", "--model",
                                  "XY\xDCZ"
                                  "D",
                                  "--firmware", "2.99"});
  const RunningSimulator silent({"--baud", "0", "--fault", "silent"});
  const Chanplan chanplan;
  chanplan.SetSettings("[Settings]\nCommDevice2=" + accepted.Link() + "\nCommDevice3=" + silent.Link() +
                       "\nCommDevice4=" + refused.Link() + "\nCommDevice5=" + accepted.Link() +
                       "\nCommDevice6=/dev/no-such-port\n");
  // Without root's rights the machine's real ports are left alone.
  for (const RunningSimulator* const simulator : {&accepted, &refused, &silent})
    TempFolder::Allow(simulator->Device(), static_cast<fs::perms>(0666));
  const ProgramRun run = chanplan.Run({"units"}, {.Unprivileged = true});
  EXPECT_NE(run.Output.find(accepted.Link() + "\tQX4471C\t3.00\taccepted\n" + refused.Link() +
                            "\tXY\u00DCZD\t2.99\tnot accepted\n"),
            std::string::npos)
      << run.Output;
  EXPECT_EQ(run.Output.find(accepted.Link()), run.Output.rfind(accepted.Link())) << "once, although it has two numbers";
  EXPECT_EQ(run.Output.find(silent.Link()), std::string::npos);
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(Units, AreListedInJson) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const RunningSimulator accepted({"--baud", "0"});
  const RunningSimulator refused({"--baud", "0", "--model", "X\"\xDCZ", "--firmware", "2.99"});
  for (const RunningSimulator* const simulator : {&accepted, &refused})
    TempFolder::Allow(simulator->Device(), static_cast<fs::perms>(0666));
  const Chanplan chanplan;
  chanplan.SetSettings("[Settings]\nCommDevice1=/dev/null\nCommDevice2=" + accepted.Link() +
                       "\nCommDevice3=" + refused.Link() + "\n");
  const ProgramRun run = chanplan.Run({"units", "--format", "json"}, {.Unprivileged = true});
  const std::string units = "{\"device\": \"" + accepted.Link() +
                            "\", \"model\": \"QX4471C\", \"firmware\": \"3.00\", \"accepted\": true},\n"
                            " {\"device\": \"" +
                            refused.Link() +
                            "\", \"model\": \"X\\\"\u00DCZ\", \"firmware\": \"2.99\", \"accepted\": false}";
  EXPECT_NE(run.Output.find(units), std::string::npos) << run.Output;
  EXPECT_TRUE(run.Output.starts_with("[{") && run.Output.ends_with("}]\n")) << run.Output;
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(Units, OfWhichThereAreNoneAreAnEmptyArrayInJson) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const ProgramRun run = Chanplan().Run({"units", "--format", "json"}, {.Unprivileged = true});
  if (run.Output.find('{') != std::string::npos) GTEST_SKIP() << "this machine has a unit: " << run.Output;
  EXPECT_EQ(run.Output, "[]\n");
}

TEST(Units, ThatCannotBeAskedAreNamedWithTheReason) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const RunningSimulator forbidden({"--baud", "0"});
  TempFolder::Allow(forbidden.Device(), fs::perms::none);
  const Chanplan chanplan;
  chanplan.SetSettings("[Settings]\nCommDevice1=" + forbidden.Link() + "\nCommDevice2=/dev/null\n");
  const ProgramRun run = chanplan.Run({"units"}, {.Unprivileged = true});
  for (const std::string& named :
       {"chanplan: no permission to use " + forbidden.Link(), std::string("chanplan: /dev/null is not a serial port")})
    EXPECT_NE(run.Errors.find(named), std::string::npos) << run.Errors;
}

TEST(Units, ThatOnlySendBackWhatTheyAreSentAreNamed) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const RunningSimulator plug({"--baud", "0", "--fault", "echo"});
  const RunningSimulator accepted({"--baud", "0"});
  for (const RunningSimulator* const simulator : {&plug, &accepted})
    TempFolder::Allow(simulator->Device(), static_cast<fs::perms>(0666));
  const Chanplan chanplan;
  chanplan.SetSettings("[Settings]\nCommDevice1=" + plug.Link() + "\nCommDevice2=" + accepted.Link() + "\n");
  const ProgramRun run = chanplan.Run({"units"}, {.Unprivileged = true});
  EXPECT_NE(run.Errors.find("chanplan: " + plug.Link() + ": the line sends back what is sent to it: "),
            std::string::npos)
      << run.Errors;
  EXPECT_EQ(run.Output.find(plug.Link()), std::string::npos) << run.Output;
  EXPECT_NE(run.Output.find(accepted.Link() + "\tQX4471C\t3.00\taccepted\n"), std::string::npos) << run.Output;
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(Units, OfWhichThereAreNoneAreANote) {
  if (const auto reason = WhyNotUnprivileged()) GTEST_SKIP() << *reason;
  const ProgramRun run = Chanplan().Run({"units"}, {.Unprivileged = true});
  if (!run.Output.empty()) GTEST_SKIP() << "this machine has a unit: " << run.Output;
  EXPECT_TRUE(std::regex_match(
      run.Errors, std::regex("(chanplan: [^\n]+\n)*chanplan: no unit answered on (1 serial port|\\d+ serial ports)\n")))
      << run.Errors;
  EXPECT_EQ(run.ExitStatus, 0);
}

// --trace

// The lines of a trace without their times, which have to be there and never go back.
std::vector<std::string> TraceLines(const std::string& trace) {
  const std::regex form(R"(( *\d+\.\d{3}) ([*<>] .*))");
  std::vector<std::string> lines;
  double last = 0;
  for (const std::string& line : Lines(trace)) {
    std::smatch match;
    if (!std::regex_match(line, match, form) || match[1].length() != 7) {
      lines.push_back("not a line of a trace: " + line);
      continue;
    }
    EXPECT_GE(std::stod(match[1]), last);
    last = std::stod(match[1]);
    lines.push_back(match[2]);
  }
  return lines;
}

TEST(Trace, ShowsTheConversationOnStandardError) {
  const RunningSimulator simulator({"--baud", "0"});
  const ProgramRun run = Chanplan().Run({"identify", simulator.Link(), "--trace"});
  EXPECT_EQ(TraceLines(run.Errors), (std::vector<std::string>{
                                        "* settings 9600,N,8,1",
                                        "* port opened",
                                        "> 45  |E|",
                                        "< 00 00 51 58 34 34 37 31 43 33 2E 30 30  |..QX4471C3.00|",
                                        "> FF  |.|",
                                        "< FF  |.|",
                                        "* port closed",
                                    }));
  EXPECT_EQ(run.Output, "Model:    QX4471C\nFirmware: 3.00\nAccepted: yes\n");
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(Trace, ShowsAnUploadByteByByte) {
  const RunningSimulator simulator({"--baud", "0"});
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText({"129|0|GSM|890.2|935.2|1|124|0.2|0.25|1"}));
  const ProgramRun run = chanplan.Run({"upload", "--trace", simulator.Link(), "table.sig"});
  const std::vector<std::string> lines = TraceLines(run.Errors);
  const std::vector<std::string> upload = {
      "> 4E 00 64 00 01 81 00 47 53 4D 00 00 00 00 00 00  |N.d....GSM......|",
      "> 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 35  |...............5|",
      "> 0F 5F C0 37 BE 05 00 00 01 00 7C 00 03 0D 40 00  |._.7......|...@.|",
      "> 03 D0 90 00 01 FF  |......|",
      "< FF  |.|",
  };
  EXPECT_FALSE(std::ranges::search(lines, upload).empty()) << run.Errors;
  EXPECT_EQ(run.ExitStatus, 0);
}

TEST(Trace, EndsWithTheReasonOfAFailure) {
  const ProgramRun run = Chanplan().Run({"identify", "/dev/no-such-port", "--trace"});
  const std::vector<std::string> lines = Lines(run.Errors);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back(), "chanplan: there is no port /dev/no-such-port: check the cable and the name");
  EXPECT_EQ(run.ExitStatus, 2);
}

TEST(Trace, MovesNoCursorWhateverThePortIsCalled) {
  const ProgramRun run = Chanplan().Run({"identify", "/dev/\x1B[31m", "--trace"});
  EXPECT_EQ(run.Errors.find('\x1B'), std::string::npos) << run.Errors;
}

// The progress bar

// What a terminal shows after `text` has been written to it.
std::string ScreenAfter(const std::string& text) {
  std::string screen;
  std::string line;
  std::size_t column = 0;
  for (const char character : text) {
    if (character == '\r') {
      column = 0;
    } else if (character == '\n') {
      screen += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
      line.clear();
      column = 0;
    } else {
      line.resize(std::max(line.size(), column + 1), ' ');
      line[column++] = character;
    }
  }
  return screen + line;
}

std::vector<int> PercentagesIn(const std::string& text, const std::string& label) {
  std::vector<int> percentages;
  const std::regex bar("\\r" + label + R"( \[[#.]{40}\] (\d+) %)");
  for (std::sregex_iterator match(text.begin(), text.end(), bar), end; match != end; ++match)
    percentages.push_back(std::stoi((*match)[1]));
  return percentages;
}

struct Transfer {
  Arguments Words;
  std::string Label;
};

TEST(ProgressBar, FillsUpOnATerminal) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(5)));
  for (const Transfer& transfer : {Transfer{{"upload", "table.sig"}, "Uploading Signal Standards..."},
                                   Transfer{{"download", "out.sig"}, "Downloading Signal Standards..."}}) {
    SCOPED_TRACE(transfer.Label);
    const RunningSimulator simulator({"--baud", "0", "--table", chanplan.Folder / "table.sig"});
    Arguments arguments = transfer.Words;
    arguments.insert(arguments.begin() + 1, simulator.Link());
    const ProgramRun run = chanplan.Run(arguments, {.Terminal = TerminalAt::Errors});
    EXPECT_EQ(ScreenAfter(run.Errors), transfer.Label + " [" + std::string(40, '#') + "] 100 %\n");
    EXPECT_FALSE(PercentagesIn(run.Errors, "Connecting to Handheld Product...").empty());
    const std::vector<int> percentages = PercentagesIn(run.Errors, transfer.Label);
    EXPECT_TRUE(std::ranges::is_sorted(percentages)) << ::testing::PrintToString(percentages);
    ASSERT_FALSE(percentages.empty());
    EXPECT_EQ(percentages.back(), 100);
    EXPECT_EQ(run.Output, "");
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

TEST(ProgressBar, MovesWithTheBytes) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(5)));
  const RunningSimulator simulator({"--baud", "0"});
  const ProgramRun run = chanplan.Run({"upload", simulator.Link(), "table.sig"}, {.Terminal = TerminalAt::Errors});
  EXPECT_EQ(PercentagesIn(run.Errors, "Uploading Signal Standards...").size(), 101u);
  EXPECT_EQ(run.ExitStatus, 0) << run.Errors;
}

TEST(ProgressBar, IsDrawnOnNothingButATerminalAtStandardError) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(2)));
  const RunningSimulator simulator({"--baud", "0"});
  for (const TerminalAt terminal : {TerminalAt::Nowhere, TerminalAt::Output}) {
    const ProgramRun run = chanplan.Run({"upload", simulator.Link(), "table.sig"}, {.Terminal = terminal});
    EXPECT_EQ(run.Output, "");
    EXPECT_EQ(run.Errors, "");
    EXPECT_EQ(run.ExitStatus, 0);
  }
}

TEST(ProgressBar, LeavesItsLineToWhatFollows) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(5)));
  const RunningSimulator simulator({"--baud", "0", "--fault", "hang-up"});
  const ProgramRun run = chanplan.Run({"upload", simulator.Link(), "table.sig"}, {.Terminal = TerminalAt::Errors});
  const std::vector<std::string> lines = Lines(ScreenAfter(run.Errors));
  ASSERT_EQ(lines.size(), 2u) << run.Errors;
  EXPECT_TRUE(lines[0].starts_with("Uploading Signal Standards... [#")) << lines[0];
  EXPECT_TRUE(lines[1].starts_with("chanplan: " + simulator.Link() + " stopped working")) << lines[1];
  EXPECT_EQ(run.ExitStatus, 2);
}

TEST(ProgressBar, GivesWayToATrace) {
  const Chanplan chanplan;
  WriteFile(chanplan.Folder / "table.sig", SigText(NumberedRows(1)));
  const RunningSimulator simulator({"--baud", "0"});
  const ProgramRun run =
      chanplan.Run({"upload", "--trace", simulator.Link(), "table.sig"}, {.Terminal = TerminalAt::Errors});
  EXPECT_EQ(run.Errors.find("Uploading"), std::string::npos) << run.Errors;
  EXPECT_FALSE(TraceLines(run.Errors).empty());
}

}  // namespace
}  // namespace chanplan::testing
