// Files that cannot be read or written, and saves that are cut short.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <functional>
#include <ios>
#include <new>
#include <sstream>
#include <streambuf>
#include <string>
#include <thread>
#include <vector>

#include "core/sig_file.h"
#include "tests/core/run_in_child.h"
#include "tests/core/small_disk.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;
using testing::Impossible;
using testing::MountSmallDisk;
using testing::NamedRow;
using testing::NamesIn;
using testing::ReadFile;
using testing::RunInChild;
using testing::TableOf;
using testing::TableOfNames;
using testing::TempFolder;
using testing::WriteFile;

using Names = std::set<std::string>;

constexpr auto Mode = [](unsigned bits) { return static_cast<fs::perms>(bits); };

const std::string Header = WriteSigTable({});
const std::string Row = "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\n";

std::string Rows(int count) {
  std::string rows;
  for (int row = 0; row < count; ++row) rows += Row;
  return rows;
}

ReadOutcome Read(const std::string& bytes) {
  std::istringstream input(bytes);
  return ReadSigTable(input);
}

SignalStandardTable SmallTable() { return TableOfNames({"small"}); }

// 200 rows of long names: writing them takes some time and room.
SignalStandardTable BigTable(char letter) {
  SignalStandardTable table;
  while (table.Count < MaxRecords) table.Append(NamedRow(std::string(1000, letter)));
  return table;
}

unsigned PermissionsOf(const fs::path& file) { return static_cast<unsigned>(fs::status(file).permissions()); }

// Gives up root's rights for as long as it lives; an ordinary user stays who he is.
class OrdinaryUser {
 public:
  OrdinaryUser() : root(geteuid() == 0) {
    constexpr gid_t nobody = 65534;
    if (root) given = setegid(nobody) == 0 && seteuid(nobody) == 0;
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() {
    if (root && (seteuid(0) != 0 || setegid(0) != 0)) std::abort();
  }
  bool Given() const { return given; }

 private:
  bool root;
  bool given = true;
};

// Makes a folder the current one for as long as it lives.
class CurrentFolder {
 public:
  explicit CurrentFolder(const fs::path& folder) { fs::current_path(folder); }
  CurrentFolder(const CurrentFolder&) = delete;
  CurrentFolder& operator=(const CurrentFolder&) = delete;
  ~CurrentFolder() { fs::current_path(former); }

 private:
  fs::path former = fs::current_path();
};

// ---- reading ----------------------------------------------------------------------------------

struct BadFile {
  const char* Fact;
  std::string Bytes;
  ReadFailure Failure;
  int Line;
  const char* Reason;  // a part of it
};

TEST(ReadSigTable, FailsAsAWholeAndTellsTheLine) {
  using namespace std::string_literals;
  constexpr auto fewFields = ReadFailure::TooFewFields;
  constexpr auto outOfRange = ReadFailure::IntegerOutOfRange;
  const std::vector<BadFile> files = {
      {"empty file", "", ReadFailure::Empty, 0, "the file is empty"},
      {"UTF-16 with its mark", "\xFF\xFES\0t\0\r\0\n\0"s, ReadFailure::Utf16, 1, "line 1 is text of 16-bit characters"},
      {"UTF-16 without it", "S\0t\0a\0\r\0\n\0"s, ReadFailure::Utf16, 1, "line 1 is text of 16-bit characters"},
      {"UTF-16, the other way round", "\0S\0t\0a\0\r\0\n"s, ReadFailure::Utf16, 1, "line 1 is text of"},
      {"lines that end in a lone CR", "header\r2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r",
       ReadFailure::LoneCarriageReturns, 1, "lines end in a lone CR"},
      {"a header and rows that end in a lone CR, then in CR LF",
       "header\r2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\n" + Row, ReadFailure::LoneCarriageReturns, 1,
       "line 1: lines end in a lone CR"},
      {"one row of several that ends in a lone CR",
       Header + Row + "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r" + Row, ReadFailure::LoneCarriageReturns, 3,
       "line 3: lines end in a lone CR"},
      {"a row cut short behind a lone CR",
       Header + "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\tnote\r2\t0\tGS\r\n" + Row,
       ReadFailure::LoneCarriageReturns, 2, "line 2: lines end in a lone CR"},
      {"blank line at the end", Header + Row + "\r\n", fewFields, 3, "line 3 has 1 field"},
      {"blank line in the middle", Header + Row + "\r\n" + Row, fewFields, 3, "line 3 has 1 field"},
      {"blank line after the header", Header + "\n", fewFields, 2, "line 2 has 1 field"},
      {"blanks alone", Header + Row + Row + "   ", fewFields, 4, "line 4 has 1 field"},
      {"nine fields", Header + Row + "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\r\n" + Row, fewFields, 3,
       "line 3 has 9 fields where 10 are needed"},
      {"last line cut short", Header + Row + "2\t0\tGS", fewFields, 3, "line 3 has 3 fields where 10 are needed"},
      {"row 200 cut short", Header + Rows(199) + "2", fewFields, 201, "line 201 has 1 field"},
      {"sub-bands beyond 32 bits", Header + "0\t2147483648\tA\t0\t0\t0\t0\t0\t0\t0\r\n", outOfRange, 2,
       "line 2: the value of \"Subbands\" is out of range"},
      {"start channel beyond 32 bits", Header + Row + "0\t0\tA\t0\t0\t-2147483649\t0\t0\t0\t0\r\n", outOfRange, 3,
       "line 3: the value of \"Start Channel\" is out of range"},
      {"stop channel that rounds beyond 32 bits", Header + "0\t0\tA\t0\t0\t0\t2147483647.5\t0\t0\t0\r\n", outOfRange, 2,
       "line 2: the value of \"Stop Channel\" is out of range"},
      {"step beyond a double", Header + "0\t0\tA\t0\t0\t0\t0\t0\t0\t-1E+999\r\n", outOfRange, 2,
       "line 2: the value of \"Step\" is out of range"},
      {"binary garbage", "\177ELF\002\001\001\0\0\0\n\0\003\0>\0\001\n\xFF\xFE"s, fewFields, 2, "line 2 has 1 field"},
      {"ten fields of garbage", Header + "\0\t\377 9\t\0\t\0\t\0\t9e9\t\0\t\0\t\0\t\0\n"s, outOfRange, 2,
       "line 2: the value of \"Start Channel\" is out of range"}};
  for (const auto& [fact, bytes, failure, line, reason] : files) {
    const ReadOutcome outcome = Read(bytes);
    EXPECT_FALSE(outcome.Ok()) << fact;
    EXPECT_EQ(outcome.Failure, failure) << fact;
    EXPECT_EQ(outcome.Line, line) << fact;
    EXPECT_NE(outcome.Reason.find(reason), std::string::npos) << fact << ": " << outcome.Reason;
    EXPECT_EQ(outcome.Table, SignalStandardTable()) << fact;
    EXPECT_FALSE(outcome.Truncated) << fact;
  }
}

TEST(ReadSigTable, NotesWhatItDidNotTakeAsItStands) {
  using Lines = std::vector<std::string>;
  const std::string row = "2\t0\tGSM\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\n";
  EXPECT_EQ(Read(Header + row).Notes, Lines());
  EXPECT_EQ(Read(Header + "\t\tGSM\t \t1 850.2\t\t\t1E-2\t&H1F\t007\r\n").Notes, Lines());
  EXPECT_EQ(Read(Header + row + "abc\t0\tGSM\t890,2\t9x\t1.5\t124\t0.2\t0.2.1\t1\r\n").Notes,
            (Lines{"line 3: \"890,2\" was read as 890", "line 3: \"9x\" was read as 9", "line 3: \"1.5\" was read as 2",
                   "line 3: \"0.2.1\" was read as 0.2", "line 3: \"abc\" was read as 0"}));
  EXPECT_EQ(Read(Header + "0\t0\tA\t1e400\t-1e999\t0\t0\t0\t0\t0\r\n").Notes,
            (Lines{"line 2: \"1e400\" was read as 1.79769313486232E+308",
                   "line 2: \"-1e999\" was read as -1.79769313486232E+308"}));
  EXPECT_EQ(Read(row + row).Notes, Lines{"line 1 looks like a row, and was left out as the header"});
  const Lines noText{"line 1 is no text, so that this may be no table but a signature"};
  EXPECT_EQ(Read(std::string("\x89\x01\x1C\x04\x00\x01\x02\x00\x06", 9)).Notes, noText);
  EXPECT_EQ(Read("Name\tType\xE9\r\n").Notes, Lines());
}

TEST(ReadSigTable, TellsAHundredOfTheValuesThatItDidNotTake) {
  std::string text = Header;
  for (int row = 0; row < 60; ++row) text += "2\t0\tGSM\t890,2\t935,2\t1\t124\t0.2\t0.2\t1\r\n";
  EXPECT_EQ(Read(text).Notes.size(), 100u);
}

TEST(ReadSigTable, TellsTheRowsBeyondTheTwoHundredth) {
  for (const int count : {199, 200, 201, 250}) {
    const ReadOutcome outcome = Read(Header + Rows(count));
    EXPECT_EQ(outcome.Truncated, count >= 200);
    EXPECT_EQ(outcome.RowsLeftOut, std::max(count - 200, 0));
  }
  EXPECT_EQ(Read(Header + Rows(200) + "last, without an end").RowsLeftOut, 1);
  EXPECT_EQ(Read(Header + Rows(200) + "\r\n\n\r\n").RowsLeftOut, 0);
  EXPECT_EQ(Read(Header + Rows(100'200)).RowsLeftOut, 100'000);
  EXPECT_EQ(Read(Header + Rows(201)).Notes, std::vector<std::string>{"1 row beyond the 200th was left out"});
}

TEST(ReadSigTable, TakesLineEndsThatWereConvertedTwice) {
  const ReadOutcome outcome = Read("header\r\r\n2\t0\tA\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\r\n");
  ASSERT_TRUE(outcome.Ok()) << outcome.Reason;
  EXPECT_EQ(outcome.Table.Row(0).Step, 1);
  EXPECT_EQ(outcome.Notes, std::vector<std::string>());
}

TEST(ReadSigTable, KeepsALoneCarriageReturnInAName) {
  const ReadOutcome outcome = Read(Header + "2\t0\tA\rB\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\n");
  ASSERT_TRUE(outcome.Ok()) << outcome.Reason;
  EXPECT_EQ(outcome.Table.Row(0).Name, "A\rB");
}

TEST(ReadSigTable, KeepsNoRowInReachAfterAFailure) {
  const ReadOutcome outcome = Read(Header + Row + "cut");
  EXPECT_EQ(outcome.Table.Row(0), SignalStandardRecord());
}

TEST(ReadSigTable, FailsWhenTheDiskDoesInTheMiddle) {
  struct BadDisk : std::stringbuf {
    using std::stringbuf::stringbuf;
    int_type underflow() override {
      const int_type next = std::stringbuf::underflow();
      if (next != traits_type::eof()) return next;
      throw std::ios_base::failure("bad block", std::error_code(EIO, std::generic_category()));
    }
  };
  BadDisk disk(Header + Row + Row);
  std::istream input(&disk);
  const ReadOutcome outcome = ReadSigTable(input);
  EXPECT_EQ(outcome.Failure, ReadFailure::CannotRead);
  EXPECT_EQ(outcome.Reason, std::generic_category().message(EIO));
  EXPECT_EQ(outcome.Table, SignalStandardTable());
}

TEST(LoadSigFile, FailsOnWhatCannotBeOpened) {
  const TempFolder folder;
  WriteFile(folder / "file", Header);
  struct Case {
    fs::path File;
    int Error;
  };
  for (const auto& [file, error] :
       {Case{folder / "missing.sig", ENOENT}, Case{folder / "no folder" / "table.sig", ENOENT},
        Case{folder / "file" / "table.sig", ENOTDIR}, Case{"", ENOENT}}) {
    const ReadOutcome outcome = LoadSigFile(file);
    EXPECT_EQ(outcome.Failure, ReadFailure::CannotOpen) << file;
    EXPECT_EQ(outcome.Reason, std::generic_category().message(error)) << file;
    EXPECT_EQ(outcome.Line, 0);
    EXPECT_EQ(outcome.Table, SignalStandardTable());
  }
}

TEST(LoadSigFile, FailsOnAFolder) {
  const TempFolder folder;
  const ReadOutcome outcome = LoadSigFile(folder.Path());
  EXPECT_EQ(outcome.Failure, ReadFailure::CannotRead);
  EXPECT_EQ(outcome.Reason, std::generic_category().message(EISDIR));
}

TEST(LoadSigFile, FailsOnAFileThatTheUserMayNotRead) {
  const TempFolder folder;
  WriteFile(folder / "mine.sig", Header);
  WriteFile(folder / "secret.sig", Header);
  TempFolder::Allow(folder / "mine.sig", Mode(0444));
  TempFolder::Allow(folder / "secret.sig", Mode(0));
  const OrdinaryUser user;
  if (!user.Given()) GTEST_SKIP() << "root's rights cannot be given up here";
  ASSERT_TRUE(LoadSigFile(folder / "mine.sig").Ok());
  const ReadOutcome outcome = LoadSigFile(folder / "secret.sig");
  EXPECT_EQ(outcome.Failure, ReadFailure::CannotOpen);
  EXPECT_EQ(outcome.Reason, std::generic_category().message(EACCES));
}

TEST(LoadSigFile, FailsOnAnEmptyFile) {
  const TempFolder folder;
  WriteFile(folder / "empty.sig", "");
  EXPECT_EQ(LoadSigFile(folder / "empty.sig").Failure, ReadFailure::Empty);
  EXPECT_EQ(LoadSigFile("/dev/null").Failure, ReadFailure::Empty);
}

TEST(LoadSigFile, FailsOnALinkThatLeadsNowhere) {
  const TempFolder folder;
  fs::create_symlink("missing.sig", folder / "link.sig");
  EXPECT_EQ(LoadSigFile(folder / "link.sig").Failure, ReadFailure::CannotOpen);
}

long PeakKibibytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

constexpr long ManyKibibytes = 32 * 1024;

TEST(LoadSigFile, EndsOnADeviceWithoutEnd) {
  const long before = PeakKibibytes();
  const ReadOutcome outcome = LoadSigFile("/dev/zero");
  EXPECT_EQ(outcome.Failure, ReadFailure::LineTooLong);
  EXPECT_EQ(outcome.Line, 1);
  EXPECT_EQ(outcome.Reason, "line 1 is longer than 64 KiB");
  EXPECT_LT(PeakKibibytes() - before, ManyKibibytes);
}

TEST(LoadSigFile, EndsOnAHugeFile) {
  const TempFolder folder;
  const fs::path file = folder / "huge.sig";
  struct Case {
    std::string Start;
    ReadFailure Failure;
    int Line;
    int Count;
  };
  for (const auto& [start, failure, line, count] :
       {Case{"", ReadFailure::LineTooLong, 1, 0}, Case{Header, ReadFailure::LineTooLong, 2, 0},
        Case{Header + Rows(2), ReadFailure::LineTooLong, 4, 0}, Case{Header + Rows(200), ReadFailure::None, 0, 200}}) {
    WriteFile(file, start);
    std::error_code error;
    fs::resize_file(file, std::uintmax_t{10} << 30, error);  // a hole, which reads as zeros
    if (error) GTEST_SKIP() << "no file of 10 GiB here: " << error.message();
    const long before = PeakKibibytes();
    const ReadOutcome outcome = LoadSigFile(file);
    EXPECT_EQ(outcome.Failure, failure) << outcome.Reason;
    EXPECT_EQ(outcome.Line, line);
    EXPECT_EQ(outcome.Table.Count, count);
    EXPECT_LT(PeakKibibytes() - before, ManyKibibytes);
  }
}

// ---- writing ----------------------------------------------------------------------------------

TEST(SaveSigFile, MakesANewFileWithTheRightsOfTheUmask) {
  const TempFolder folder;
  const mode_t former = umask(027);
  const std::error_code error = SaveSigFile(folder / "new.sig", SmallTable());
  umask(former);
  EXPECT_FALSE(error);
  EXPECT_EQ(PermissionsOf(folder / "new.sig"), 0640u);
}

TEST(SaveSigFile, KeepsTheRightsOfAFile) {
  const TempFolder folder;
  for (const unsigned rights : {0640u, 0600u, 0666u, 0604u}) {
    WriteFile(folder / "table.sig", "former");
    TempFolder::Allow(folder / "table.sig", Mode(rights));
    EXPECT_FALSE(SaveSigFile(folder / "table.sig", SmallTable()));
    EXPECT_EQ(PermissionsOf(folder / "table.sig"), rights);
    EXPECT_EQ(ReadFile(folder / "table.sig"), WriteSigTable(SmallTable()));
  }
}

TEST(SaveSigFile, KeepsTheOwnerOfAFile) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a file away";
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  if (chown((folder / "table.sig").c_str(), 1234, 2345) != 0) GTEST_SKIP() << "files cannot be given away here";
  EXPECT_FALSE(SaveSigFile(folder / "table.sig", SmallTable()));
  struct stat facts {};
  ASSERT_EQ(stat((folder / "table.sig").c_str(), &facts), 0);
  EXPECT_EQ(facts.st_uid, 1234u);
  EXPECT_EQ(facts.st_gid, 2345u);
}

TEST(SaveSigFile, KnowsAFileByItsNameAlone) {
  const TempFolder folder;
  const CurrentFolder current(folder.Path());
  const std::error_code error = SaveSigFile("table.sig", SmallTable());
  EXPECT_FALSE(error) << error.message();
  EXPECT_EQ(NamesIn(folder.Path()), Names{"table.sig"});
}

TEST(SaveSigFile, LeavesALinkALink) {
  const TempFolder folder;
  fs::create_directory(folder / "real");
  WriteFile(folder / "real" / "table.sig", "former");
  fs::create_directory(folder / "links");
  fs::create_symlink("../real/table.sig", folder / "links" / "first.sig");
  fs::create_symlink(folder / "links" / "first.sig", folder / "second.sig");
  EXPECT_FALSE(SaveSigFile(folder / "second.sig", SmallTable()));
  EXPECT_EQ(ReadFile(folder / "real" / "table.sig"), WriteSigTable(SmallTable()));
  EXPECT_EQ(fs::read_symlink(folder / "links" / "first.sig"), "../real/table.sig");
  EXPECT_EQ(fs::read_symlink(folder / "second.sig"), folder / "links" / "first.sig");
  EXPECT_EQ(NamesIn(folder / "real"), Names{"table.sig"});
}

TEST(SaveSigFile, CreatesTheTargetOfADanglingLink) {
  const TempFolder folder;
  fs::create_directory(folder / "real");
  fs::create_symlink("real/new.sig", folder / "link.sig");
  EXPECT_FALSE(SaveSigFile(folder / "link.sig", SmallTable()));
  EXPECT_TRUE(fs::is_symlink(folder / "link.sig"));
  EXPECT_FALSE(fs::is_symlink(folder / "real" / "new.sig"));
  EXPECT_EQ(LoadSigFile(folder / "link.sig").Table, SmallTable());
}

TEST(SaveSigFile, FailsOnALinkIntoAFolderThatIsNotThere) {
  const TempFolder folder;
  fs::create_symlink("missing/new.sig", folder / "link.sig");
  EXPECT_EQ(SaveSigFile(folder / "link.sig", SmallTable()), std::errc::no_such_file_or_directory);
  EXPECT_TRUE(fs::is_symlink(folder / "link.sig"));
  EXPECT_EQ(NamesIn(folder.Path()), Names{"link.sig"});
}

TEST(SaveSigFile, FailsOnLinksThatGoInACircle) {
  const TempFolder folder;
  fs::create_symlink("b.sig", folder / "a.sig");
  fs::create_symlink("a.sig", folder / "b.sig");
  EXPECT_EQ(SaveSigFile(folder / "a.sig", SmallTable()), std::errc::too_many_symbolic_link_levels);
  EXPECT_TRUE(fs::is_symlink(folder / "a.sig"));
  EXPECT_TRUE(fs::is_symlink(folder / "b.sig"));
  EXPECT_EQ(NamesIn(folder.Path()), (Names{"a.sig", "b.sig"}));
}

TEST(SaveSigFile, FailsWhereThereIsNoFile) {
  const TempFolder folder;
  const CurrentFolder current(folder.Path());
  WriteFile(folder / "file", "former");
  struct Case {
    fs::path File;
    std::errc Error;
  };
  for (const auto& [file, error] : {Case{folder.Path(), std::errc::is_a_directory},
                                    Case{folder / "missing" / "table.sig", std::errc::no_such_file_or_directory},
                                    Case{folder / "file" / "table.sig", std::errc::not_a_directory},
                                    Case{folder / std::string(300, 'n'), std::errc::filename_too_long},
                                    Case{"", std::errc::no_such_file_or_directory}})
    EXPECT_EQ(SaveSigFile(file, SmallTable()), error) << file;
  EXPECT_EQ(ReadFile(folder / "file"), "former");
  EXPECT_EQ(NamesIn(folder.Path()), Names{"file"});
}

TEST(SaveSigFile, DoesNotReplaceAWriteProtectedFile) {
  const TempFolder folder;
  TempFolder::Allow(folder.Path(), Mode(0777));
  std::error_code error;
  bool controlSaved = false;
  {
    const OrdinaryUser user;
    if (!user.Given()) GTEST_SKIP() << "root's rights cannot be given up here";
    WriteFile(folder / "table.sig", "former");
    TempFolder::Allow(folder / "table.sig", Mode(0444));
    error = SaveSigFile(folder / "table.sig", SmallTable());
    controlSaved = !SaveSigFile(folder / "other.sig", SmallTable());
  }
  EXPECT_TRUE(controlSaved) << "the folder itself must be no obstacle";
  EXPECT_EQ(error, std::errc::permission_denied);
  EXPECT_EQ(ReadFile(folder / "table.sig"), "former");
  EXPECT_EQ(PermissionsOf(folder / "table.sig"), 0444u);
  EXPECT_EQ(NamesIn(folder.Path()), (Names{"other.sig", "table.sig"}));
}

TEST(SaveSigFile, FailsInAFolderThatTheUserMayNotWrite) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "former");
  TempFolder::Allow(folder / "table.sig", Mode(0666));
  TempFolder::Allow(folder.Path(), Mode(0555));
  const OrdinaryUser user;
  if (!user.Given()) GTEST_SKIP() << "root's rights cannot be given up here";
  EXPECT_EQ(SaveSigFile(folder / "new.sig", SmallTable()), std::errc::permission_denied);
  // Either way would do for the file that is there; half of it would not.
  const bool saved = !SaveSigFile(folder / "table.sig", SmallTable());
  EXPECT_EQ(ReadFile(folder / "table.sig"), saved ? WriteSigTable(SmallTable()) : "former");
  EXPECT_EQ(NamesIn(folder.Path()), Names{"table.sig"});
}

// Never as root: a save that took a device for a file would replace it for the whole machine.
TEST(SaveSigFile, WritesADeviceDirectly) {
  const OrdinaryUser user;
  if (!user.Given()) GTEST_SKIP() << "root's rights cannot be given up here";
  EXPECT_FALSE(SaveSigFile("/dev/null", BigTable('x')));
}

TEST(SaveSigFile, FailsOnAFullDevice) {
  const OrdinaryUser user;
  if (!user.Given()) GTEST_SKIP() << "root's rights cannot be given up here";
  if (!fs::is_character_file("/dev/full")) GTEST_SKIP() << "there is no /dev/full here";
  EXPECT_EQ(SaveSigFile("/dev/full", SmallTable()), std::errc::no_space_on_device);
}

// Saves a table that is there already and one too big; says what went wrong in that.
std::string SaveSmallThenTooBig(const fs::path& folder, std::errc expected) {
  const fs::path file = folder / "table.sig";
  if (const auto error = SaveSigFile(file, SmallTable())) return "the small table did not fit: " + error.message();
  const std::error_code error = SaveSigFile(file, BigTable('x'));
  if (error != expected) return "saving the big table came to: " + error.message();
  if (ReadFile(file) != WriteSigTable(SmallTable())) return "the former file is not whole";
  if (NamesIn(folder) != Names{"table.sig"}) return "something was left beside the file";
  if (SaveSigFile(folder / "new.sig", BigTable('x')) != expected) return "saving a new file did not fail";
  if (NamesIn(folder) != Names{"table.sig"}) return "something was left of a new file";
  return {};
}

TEST(SaveSigFile, LeavesTheFormerFileWholeWhenAFileMayNotGetSoLarge) {
  const TempFolder folder;
  const std::string problem = RunInChild([&] {
    const rlimit limit{10'000, RLIM_INFINITY};
    signal(SIGXFSZ, SIG_IGN);
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) return std::string(std::strerror(errno));
    return SaveSmallThenTooBig(folder.Path(), std::errc::file_too_large);
  });
  EXPECT_EQ(problem, "");
}

TEST(SaveSigFile, LeavesTheFormerFileWholeWhenTheDiskIsFull) {
  const TempFolder folder;
  const std::string problem = RunInChild([&] {
    MountSmallDisk(folder.Path());
    return SaveSmallThenTooBig(folder.Path(), std::errc::no_space_on_device);
  });
  if (problem.starts_with(Impossible)) GTEST_SKIP() << problem;
  EXPECT_EQ(problem, "");
}

TEST(SaveSigFile, ShowsAWholeFileAtAnyMomentWhileTwoSaveIt) {
  const TempFolder folder;
  const fs::path file = folder / "table.sig";
  const SignalStandardTable tables[] = {BigTable('a'), BigTable('b')};
  const std::string contents[] = {WriteSigTable(tables[0]), WriteSigTable(tables[1])};
  ASSERT_FALSE(SaveSigFile(file, tables[0]));

  constexpr int saves = 40;
  std::atomic<int> saving = 2;
  std::atomic<int> failed = 0;
  const auto saveOften = [&](const SignalStandardTable& table) {
    for (int save = 0; save < saves; ++save) failed += SaveSigFile(file, table) ? 1 : 0;
    --saving;
  };
  int broken = 0;
  {
    const std::jthread first(saveOften, std::cref(tables[0]));
    const std::jthread second(saveOften, std::cref(tables[1]));
    while (saving > 0) {
      const std::string bytes = ReadFile(file);
      broken += bytes == contents[0] || bytes == contents[1] ? 0 : 1;
    }
  }
  EXPECT_EQ(failed, 0);
  EXPECT_EQ(broken, 0);
  EXPECT_EQ(NamesIn(folder.Path()), Names{"table.sig"});
}

// Process numbers come again, so a name beside the file may be taken since an earlier save was killed.
TEST(SaveSigFile, IsNotHinderedByWhatAKilledSaveLeft) {
  const TempFolder folder;
  const std::string left = ".chanplan-" + std::to_string(getpid()) + "-0";
  WriteFile(folder / left, "left behind");
  EXPECT_FALSE(SaveSigFile(folder / "table.sig", SmallTable()));
  EXPECT_EQ(ReadFile(folder / "table.sig"), WriteSigTable(SmallTable()));
  EXPECT_EQ(ReadFile(folder / left), "left behind");
}

// Memory that a child process shares with its parent.
class SharedCounter {
 public:
  SharedCounter() {
    memory = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    new (memory) std::atomic<int>(0);
  }
  SharedCounter(const SharedCounter&) = delete;
  SharedCounter& operator=(const SharedCounter&) = delete;
  ~SharedCounter() { munmap(memory, sizeof(std::atomic<int>)); }
  std::atomic<int>& operator*() { return *static_cast<std::atomic<int>*>(memory); }

 private:
  void* memory;
};

TEST(SaveSigFile, LeavesOneWholeFileWhereverItIsKilled) {
  using Clock = std::chrono::steady_clock;
  constexpr int rounds = 200;
  const TempFolder folder(testing::FolderInMemory());
  const fs::path file = folder / "table.sig";
  const SignalStandardTable tables[] = {BigTable('a'), BigTable('b')};
  const std::string contents[] = {WriteSigTable(tables[0]), WriteSigTable(tables[1])};

  // The quickest of some, since others may have kept the machine busy during the rest.
  auto oneSave = Clock::duration::max();
  for (int save = 0; save < 4; ++save) {
    const auto start = Clock::now();
    ASSERT_FALSE(SaveSigFile(file, tables[save % 2]));
    oneSave = std::min(oneSave, Clock::now() - start);
  }

  SharedCounter saves;
  int seen[2] = {0, 0};
  for (int round = 0; round < rounds; ++round) {
    *saves = 0;
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0)
      for (int save = round;; ++save) {
        ++*saves;
        SaveSigFile(file, tables[save % 2]);
      }
    // One save is done by then, however busy the machine is.
    while (*saves < 2) std::this_thread::sleep_for(std::chrono::microseconds(50));
    // Two saves, cut into as many moments as there are rounds.
    std::this_thread::sleep_for(oneSave * 2 * round / rounds);
    ASSERT_EQ(kill(child, SIGKILL), 0);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);

    const std::string bytes = ReadFile(file);
    ASSERT_TRUE(bytes == contents[0] || bytes == contents[1]) << "round " << round << ", " << bytes.size() << " bytes";
    ++seen[bytes == contents[0] ? 0 : 1];
  }
  // Were the file never replaced in all this time, the test would say nothing.
  EXPECT_GT(seen[0], 0);
  EXPECT_GT(seen[1], 0);
  EXPECT_FALSE(SaveSigFile(file, tables[0])) << "what a killed save leaves behind must be no obstacle";
}

}  // namespace
}  // namespace chanplan
