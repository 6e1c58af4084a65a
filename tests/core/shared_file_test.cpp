// Saving files that belong to others too: who may read and write them stays as it was.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "core/file_descriptor.h"
#include "core/file_system.h"
#include "core/sig_file.h"
#include "core/unfinished_mark.h"
#include "tests/core/other_user.h"
#include "tests/core/run_in_child.h"
#include "tests/core/small_disk.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"

namespace chanplan {
namespace {

namespace fs = std::filesystem;
using testing::BecomeUser;
using testing::Impossible;
using testing::NamedRow;
using testing::NamesIn;
using testing::ReadFile;
using testing::RunInChild;
using testing::TempFolder;
using testing::WriteFile;

using Names = std::set<std::string>;

constexpr uid_t Alice = 61001;
constexpr uid_t Bob = 61002;
constexpr gid_t AliceAlone = 61001;
constexpr gid_t Team = 61100;

constexpr char AccessList[] = "system.posix_acl_access";
constexpr char DefaultList[] = "system.posix_acl_default";

// Owner rw, user `guest` as `rights` says, group r, others nothing: an access list in the system's own bytes.
std::string ListFor(uid_t guest, unsigned rights) {
  std::string bytes;
  const auto append = [&bytes](auto value) {
    for (std::size_t byte = 0; byte < sizeof value; ++byte) bytes += static_cast<char>(value >> (8 * byte) & 0xFF);
  };
  struct Entry {
    std::uint16_t Tag;
    unsigned Rights;
    std::uint32_t Id;
  };
  constexpr std::uint32_t nobody = 0xFFFFFFFF;
  append(std::uint32_t{2});
  for (const auto& [tag, allowed, id] : {Entry{1, 6, nobody}, Entry{2, rights, guest}, Entry{4, 4, nobody},
                                         Entry{16, 6, nobody}, Entry{32, 0, nobody}}) {
    append(tag);
    append(static_cast<std::uint16_t>(allowed));
    append(id);
  }
  return bytes;
}

std::string Attribute(const fs::path& file, const char* name) {
  char value[4096];
  const ssize_t size = getxattr(file.c_str(), name, value, sizeof value);
  return size < 0 ? "none" : std::string(value, static_cast<std::size_t>(size));
}

bool SetAttribute(const fs::path& file, const char* name, const std::string& value) {
  return setxattr(file.c_str(), name, value.data(), value.size(), 0) == 0;
}

struct stat FactsOf(const fs::path& file) {
  struct stat facts {};
  stat(file.c_str(), &facts);
  return facts;
}

// What of a file concerns others, in words.
std::string IdentityOf(const fs::path& file) {
  const struct stat facts = FactsOf(file);
  std::ostringstream text;
  text << facts.st_uid << ':' << facts.st_gid << ' ' << std::oct << (facts.st_mode & 07777);
  return text.str();
}

// A folder with a table in it, and the state folder of those who save it.
class SharedFile : public ::testing::Test {
 protected:
  explicit SharedFile(const fs::path& parent = fs::temp_directory_path()) : folder(parent) {
    setenv("XDG_STATE_HOME", (folder / "state").c_str(), 1);
    fs::create_directory(folder / "state");
    fs::create_directory(folder / "plans");
    WriteFile(table, "former");
    TempFolder::Allow(folder / "state", fs::perms::all);
  }
  ~SharedFile() override { unsetenv("XDG_STATE_HOME"); }

  // The child's complaint about saving; the file is looked at by the test itself.
  std::string SaveAs(uid_t user, gid_t group) {
    return RunInChild([&] {
      BecomeUser(user, group);
      const std::error_code error = ReplaceFile(table, "new content");
      return error ? error.message() : std::string();
    });
  }
  Names CopiesLeft() {
    const fs::path saves = folder / "state" / "chanplans" / "saves";
    return fs::exists(saves) ? NamesIn(saves) : Names();
  }

  TempFolder folder;
  fs::path table = folder / "plans" / "table.sig";
};

TEST_F(SharedFile, KeepsItsAccessListAndItsAttributes) {
  if (!SetAttribute(table, AccessList, ListFor(Bob, 6))) GTEST_SKIP() << "no access lists here";
  const std::string list = Attribute(table, AccessList);
  const bool attributes = SetAttribute(table, "user.origin", "lab 3");
  const std::string identity = IdentityOf(table);
  const ino_t former = FactsOf(table).st_ino;
  ASSERT_FALSE(ReplaceFile(table, "new content"));
  EXPECT_NE(FactsOf(table).st_ino, former);
  EXPECT_EQ(Attribute(table, AccessList), list);
  EXPECT_EQ(Attribute(table, "user.origin"), attributes ? "lab 3" : "none");
  EXPECT_EQ(IdentityOf(table), identity);
}

TEST_F(SharedFile, IsNotOpenedToThoseWhomItsFolderWouldLetIn) {
  TempFolder::Allow(table, static_cast<fs::perms>(0660));
  if (!SetAttribute(folder / "plans", DefaultList, ListFor(Bob, 6))) GTEST_SKIP() << "no access lists here";
  ASSERT_FALSE(ReplaceFile(table, "new content"));
  EXPECT_EQ(Attribute(table, AccessList), "none");
  EXPECT_EQ(IdentityOf(table).substr(IdentityOf(table).find(' ')), " 660");
}

TEST_F(SharedFile, StaysItsOwnersWhenSomebodyOfTheTeamSavesIt) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be two other users";
  if (chown(table.c_str(), Bob, Team) != 0 || chown((folder / "plans").c_str(), Bob, Team) != 0)
    GTEST_SKIP() << "files cannot be given away here";
  TempFolder::Allow(folder / "plans", static_cast<fs::perms>(0775));
  TempFolder::Allow(table, static_cast<fs::perms>(0664));
  const ino_t former = FactsOf(table).st_ino;
  ASSERT_EQ(SaveAs(Alice, Team), "");
  EXPECT_EQ(ReadFile(table), "new content");
  EXPECT_EQ(IdentityOf(table), "61002:61100 664");
  EXPECT_EQ(FactsOf(table).st_ino, former) << "it could only be kept in place";
  EXPECT_EQ(NamesIn(folder / "plans"), Names{"table.sig"});
  EXPECT_EQ(CopiesLeft(), Names());
}

TEST_F(SharedFile, IsReplacedByItsOwnerForTheTeam) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  if (chown(table.c_str(), Bob, Team) != 0 || chown((folder / "plans").c_str(), Bob, Team) != 0)
    GTEST_SKIP() << "files cannot be given away here";
  const ino_t former = FactsOf(table).st_ino;
  ASSERT_EQ(SaveAs(Bob, Team), "");
  EXPECT_EQ(IdentityOf(table).substr(0, 11), "61002:61100");
  EXPECT_NE(FactsOf(table).st_ino, former);
}

TEST_F(SharedFile, IsSavedInAFolderThatTakesNoNewFile) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  struct Case {
    const char* Fact;
    uid_t FolderOwner;
    mode_t FolderMode;
  };
  for (const auto& [fact, owner, mode] : {Case{"read-only", 0, 0555}, Case{"sticky", 0, 01777}}) {
    SCOPED_TRACE(fact);
    WriteFile(table, "former");
    TempFolder::Allow(table, static_cast<fs::perms>(0666));
    ASSERT_EQ(chmod((folder / "plans").c_str(), mode), 0);
    ASSERT_EQ(SaveAs(Alice, AliceAlone), "");
    EXPECT_EQ(ReadFile(table), "new content");
    EXPECT_EQ(IdentityOf(table), "0:0 666");
    EXPECT_EQ(NamesIn(folder / "plans"), Names{"table.sig"});
    EXPECT_EQ(CopiesLeft(), Names());
  }
}

TEST_F(SharedFile, IsSavedWhereItAloneIsMounted) {
  WriteFile(folder / "elsewhere.sig", "former");
  const std::string problem = RunInChild([&]() -> std::string {
    testing::MakeOwnMounts();
    if (mount((folder / "elsewhere.sig").c_str(), table.c_str(), nullptr, MS_BIND, nullptr) != 0)
      return Impossible + "no mount";
    const std::error_code error = ReplaceFile(table, "new content");
    return error ? error.message() : ReadFile(table);
  });
  if (problem.starts_with(Impossible)) GTEST_SKIP() << problem;
  EXPECT_EQ(problem, "new content");
  EXPECT_EQ(ReadFile(folder / "elsewhere.sig"), "new content");
  EXPECT_EQ(NamesIn(folder / "plans"), Names{"table.sig"});
}

TEST_F(SharedFile, GetsItsFormerContentBackWhenItsDiskIsFull) {
  const std::string problem = RunInChild([&]() -> std::string {
    fs::create_directory(folder / "disk");
    testing::MountSmallDisk(folder / "disk");
    WriteFile(folder / "disk" / "small.sig", "former");
    if (mount((folder / "disk" / "small.sig").c_str(), table.c_str(), nullptr, MS_BIND, nullptr) != 0)
      return Impossible + "no mount";
    const std::error_code error = ReplaceFile(table, std::string(100'000, 'x'));
    return error == std::errc::no_space_on_device ? ReadFile(table) : "saving came to: " + error.message();
  });
  if (problem.starts_with(Impossible)) GTEST_SKIP() << problem;
  EXPECT_EQ(problem, "former");
  EXPECT_EQ(CopiesLeft(), Names());
}

TEST_F(SharedFile, IsNotChangedInPlaceWithoutACopy) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  TempFolder::Allow(table, static_cast<fs::perms>(0666));
  TempFolder::Allow(folder / "plans", static_cast<fs::perms>(0555));
  TempFolder::Allow(folder / "state", static_cast<fs::perms>(0555));
  // The file itself could be written: what could not be is named.
  EXPECT_EQ(SaveAs(Alice, AliceAlone), "no copy of the former content could be kept in " +
                                           (folder / "state" / "chanplans" / "saves").string() + " (" +
                                           std::generic_category().message(EACCES) + ")");
  EXPECT_EQ(ReadFile(table), "former");
}

// ---- killed while it is changed in place ---------------------------------------------------------

// Memory that a child process shares with its parent.
std::atomic<int>& SharedCounter() {
  void* memory = mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return *new (memory) std::atomic<int>(0);
}

SignalStandardTable BigTable(char letter) {
  SignalStandardTable table;
  while (table.Count < MaxRecords) table.Append(NamedRow(std::string(1000, letter)));
  return table;
}

class SharedFileInMemory : public SharedFile {
 protected:
  SharedFileInMemory() : SharedFile(testing::FolderInMemory()) {}
};

TEST_F(SharedFileInMemory, IsWholeAgainWhereverAChangeInPlaceWasKilled) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  using Clock = std::chrono::steady_clock;
  constexpr int rounds = 200;
  TempFolder::Allow(table, static_cast<fs::perms>(0666));
  TempFolder::Allow(folder / "plans", static_cast<fs::perms>(0555));
  const SignalStandardTable tables[] = {BigTable('a'), BigTable('b')};
  const std::string contents[] = {WriteSigTable(tables[0]), WriteSigTable(tables[1])};
  WriteFile(table, contents[0]);

  std::atomic<int>& saves = SharedCounter();
  const auto startSaving = [&](int round) {
    saves = 0;
    const pid_t child = fork();
    if (child == 0) {
      BecomeUser(Alice, AliceAlone);
      for (int save = round;; ++save) {
        if (SaveSigFile(table, tables[save % 2])) _exit(1);
        ++saves;
      }
    }
    while (saves < 1 && waitpid(child, nullptr, WNOHANG) == 0)
      std::this_thread::sleep_for(std::chrono::microseconds(50));
    return child;
  };
  const pid_t measured = startSaving(0);
  const auto start = Clock::now();
  const int first = saves;
  while (saves < first + 4) ASSERT_EQ(waitpid(measured, nullptr, WNOHANG), 0) << "saving failed";
  const auto oneSave = (Clock::now() - start) / 4;
  kill(measured, SIGKILL);
  waitpid(measured, nullptr, 0);

  int torn = 0;
  for (int round = 0; round < rounds; ++round) {
    const pid_t child = startSaving(round);
    std::this_thread::sleep_for(oneSave * 2 * round / rounds);
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    const std::string left = ReadFile(table);
    torn += left == contents[0] || left == contents[1] ? 0 : 1;
    ASSERT_TRUE(LoadSigFile(table).Ok());  // the next look at it
    const std::string healed = ReadFile(table);
    ASSERT_TRUE(healed == contents[0] || healed == contents[1]) << "round " << round << ", " << healed.size();
    ASSERT_EQ(CopiesLeft(), Names());
  }
  RecordProperty("torn before they were healed", torn);
  std::cout << torn << " of " << rounds << " kills had torn the file before it was healed\n";
}

// Two users whose folder takes no new file: one saves again and again, the other reads.
TEST_F(SharedFileInMemory, IsNeverReadHalfChanged) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  TempFolder::Allow(table, static_cast<fs::perms>(0666));
  TempFolder::Allow(folder / "plans", static_cast<fs::perms>(0555));
  const SignalStandardTable tables[] = {BigTable('a'), BigTable('b')};
  WriteFile(table, WriteSigTable(tables[0]));
  std::atomic<int>& saves = SharedCounter();
  const pid_t child = fork();
  if (child == 0) {
    BecomeUser(Alice, AliceAlone);
    for (int save = 0;; ++save) {
      if (SaveSigFile(table, tables[save % 2])) _exit(1);
      ++saves;
    }
  }
  int reads = 0;
  for (; !HasFailure() && (reads < 100 || saves < 50); ++reads) {
    const ReadOutcome outcome = LoadSigFile(table);
    EXPECT_TRUE(outcome.Ok()) << outcome.Reason;
    EXPECT_TRUE(outcome.Table == tables[0] || outcome.Table == tables[1]) << "read " << reads;
    ASSERT_EQ(waitpid(child, nullptr, WNOHANG), 0) << "saving failed";
    // Whoever reads without a pause never lets a save begin.
    std::this_thread::sleep_for(std::chrono::microseconds(200 * (reads % 5)));
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
}

// What a crash in the middle of a change in place leaves: the copy, and the file as it then is.
class CutShort : public SharedFile {
 protected:
  void LeaveCopy(const std::string& former) {
    const struct stat facts = FactsOf(table);
    const fs::path saves = folder / "state" / "chanplans" / "saves";
    fs::create_directories(saves);
    std::ostringstream copy;
    copy << facts.st_dev << ' ' << facts.st_ino << ' ' << FormerTime << " 0 " << table.string().size() << ' '
         << former.size() << '\n'
         << table.string() << former;
    WriteFile(saves / "999999999-0.former", copy.str());
  }
  static constexpr time_t FormerTime = 1'600'000'000;
};

TEST_F(CutShort, ChangeGivesTheFormerContentBack) {
  using namespace std::string_literals;
  for (const std::string& left : Names{"\0"s, "\0ormer"s, "\0 newer"s, "\0 n\0\0"s, "\0 new content"s}) {
    WriteFile(table, left);
    LeaveCopy("former");
    HealInterruptedSaves();
    EXPECT_EQ(ReadFile(table), "former") << left;
    EXPECT_EQ(FactsOf(table).st_mtim.tv_sec, FormerTime);
    EXPECT_EQ(CopiesLeft(), Names());
  }
}

TEST_F(CutShort, ChangeIsUndoneBeforeTheTableIsRead) {
  const SignalStandardTable former = BigTable('a');
  const std::string fresh = WriteSigTable(BigTable('b'));
  WriteFile(table, UnfinishedMark + fresh.substr(1, fresh.size() / 2));
  LeaveCopy(WriteSigTable(former));
  EXPECT_EQ(LoadSigFile(table).Table, former);
}

TEST_F(CutShort, ChangeIsNotUndoneOnceItIsWholeOrSomebodyElseHasSaved) {
  for (const std::string& left :
       Names{"a new content", "former", "what somebody else wrote", "a new content and more", "", "a new", "for"}) {
    WriteFile(table, left);
    LeaveCopy("former");
    HealInterruptedSaves();
    EXPECT_EQ(ReadFile(table), left);
    EXPECT_EQ(CopiesLeft(), Names());
  }
}

TEST_F(CutShort, ChangeOfAnotherFileUnderThisNameIsNoAffairOfThisOne) {
  LeaveCopy("former");
  fs::rename(table, folder / "moved.sig");
  const std::string other = UnfinishedMark + std::string("nother");
  WriteFile(table, other);
  HealInterruptedSaves();
  EXPECT_EQ(ReadFile(table), other);
}

TEST_F(CutShort, CopyThatWasNotFinishedIsSweptAway) {
  LeaveCopy("former");
  const fs::path saves = folder / "state" / "chanplans" / "saves";
  fs::rename(saves / "999999999-0.former", saves / "999999999-0");
  const std::string other = UnfinishedMark + std::string("nother");
  WriteFile(table, other);
  HealInterruptedSaves();
  EXPECT_EQ(ReadFile(table), other);
  EXPECT_EQ(CopiesLeft(), Names());
}

TEST_F(CutShort, ChangeThatCannotBeUndoneIsToldByWhoeverReadsTheTable) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  const SignalStandardTable former = BigTable('a');
  const std::string fresh = WriteSigTable(BigTable('b'));
  const auto toldTo = [&](uid_t user) {
    return RunInChild([&] {
      BecomeUser(user, Team);
      const ReadOutcome outcome = LoadSigFile(table);
      return outcome.Failure == ReadFailure::CutShort ? outcome.Reason : "read: " + outcome.Reason;
    });
  };
  for (const std::size_t written : {std::size_t{1}, std::size_t{20}, fresh.size() / 2, fresh.size()}) {
    WriteFile(table, UnfinishedMark + fresh.substr(1, written - 1));
    TempFolder::Allow(table, static_cast<fs::perms>(0644));
    EXPECT_EQ(toldTo(Alice), "saving it was cut short; its former content is with the user who saved it");
  }
  LeaveCopy(WriteSigTable(former));
  TempFolder::Allow(folder / "state", fs::perms::all);
  EXPECT_EQ(toldTo(Alice), "saving it was cut short; its former content could not be put back from " +
                               (folder / "state" / "chanplans" / "saves" / "999999999-0.former").string() + " (" +
                               std::generic_category().message(EACCES) + ")");
  EXPECT_EQ(LoadSigFile(table).Table, former);
}

// ---- names that stand for open descriptors -------------------------------------------------------

TEST(ReplaceFile, WritesToAnOpenDescriptorWhereItStands) {
  const TempFolder folder;
  const fs::path file = folder / "out.htm";
  for (const std::string name : {"/dev/fd/", "/proc/self/fd/"}) {
    WriteFile(file, "head, ");
    const ino_t former = FactsOf(file).st_ino;
    const int descriptor = open(file.c_str(), O_WRONLY);
    ASSERT_EQ(lseek(descriptor, 0, SEEK_END), 6);
    EXPECT_FALSE(ReplaceFile(name + std::to_string(descriptor), "body"));
    close(descriptor);
    EXPECT_EQ(ReadFile(file), "head, body") << name;
    EXPECT_EQ(FactsOf(file).st_ino, former) << name;
    EXPECT_EQ(NamesIn(folder.Path()), Names{"out.htm"});
  }
}

TEST(ReplaceFile, WritesToADescriptorWhoseFileHasNoName) {
  const TempFolder folder;
  const int descriptor = open((folder / "gone").c_str(), O_RDWR | O_CREAT, 0600);
  fs::remove(folder / "gone");
  EXPECT_FALSE(ReplaceFile("/dev/fd/" + std::to_string(descriptor), "body"));
  char bytes[8]{};
  EXPECT_EQ(pread(descriptor, bytes, sizeof bytes, 0), 4);
  EXPECT_STREQ(bytes, "body");
  close(descriptor);
  EXPECT_EQ(NamesIn(folder.Path()), Names());
}

// ---- what killed saves leave ---------------------------------------------------------------------

TEST(ReplaceFile, SweepsWhatDeadProcessesLeftInTheFolder) {
  const TempFolder folder;
  const std::string own = ".chanplan-" + std::to_string(getpid()) + "-7";
  const Names others = {own, ".chanplan-notes", ".chanplan-999999999-x", ".chanplan-999999999"};
  for (const std::string& name : others) WriteFile(folder / name, "left");
  WriteFile(folder / ".chanplan-999999999-0", "left");
  ASSERT_EQ(mkfifo((folder / ".chanplan-999999999-1").c_str(), 0600), 0);  // nothing that a save makes
  EXPECT_FALSE(ReplaceFile(folder / "table.sig", "new"));
  Names kept = others;
  kept.insert({".chanplan-999999999-1", "table.sig"});
  EXPECT_EQ(NamesIn(folder.Path()), kept);
}

// On another machine, say, whose processes are not seen here.
TEST(ReplaceFile, LeavesWhatIsStillBeingWrittenInTheFolder) {
  const TempFolder folder;
  const fs::path unfinished = folder / ".chanplan-999999999-0";
  WriteFile(unfinished, "half");
  FileDescriptor writer(open(unfinished.c_str(), O_WRONLY | O_CLOEXEC));
  ASSERT_TRUE(MarkInUse(writer));
  ASSERT_FALSE(ReplaceFile(folder / "table.sig", "table"));
  EXPECT_TRUE(fs::exists(unfinished));
  writer.Close();
  ASSERT_FALSE(ReplaceFile(folder / "table.sig", "table"));
  EXPECT_FALSE(fs::exists(unfinished));
}

TEST(FileStamp, ChangesWithinASecond) {
  const TempFolder folder;
  const fs::path file = folder / "table.sig";
  WriteFile(file, "one");
  const auto time = std::chrono::floor<std::chrono::seconds>(fs::last_write_time(file));
  fs::last_write_time(file, time);
  const auto stamp = ReadFileStamp(file);
  fs::last_write_time(file, time + std::chrono::milliseconds(1));
  EXPECT_NE(ReadFileStamp(file), stamp);
}

TEST(FileStamp, ChangesWithTheFile) {
  const TempFolder folder;
  WriteFile(folder / "table.sig", "one");
  const auto first = ReadFileStamp(folder / "table.sig");
  EXPECT_EQ(ReadFileStamp(folder / "table.sig"), first);
  WriteFile(folder / "table.sig", "longer");
  const auto second = ReadFileStamp(folder / "table.sig");
  EXPECT_NE(first, second);
  EXPECT_TRUE(first->SameFile(*second));
  WriteFile(folder / "table.sig", "others");
  fs::last_write_time(folder / "table.sig", fs::last_write_time(folder.Path()) - std::chrono::hours(1));
  EXPECT_NE(ReadFileStamp(folder / "table.sig"), second) << "a clock was put back";
  WriteFile(folder / "other.sig", "longer");
  fs::rename(folder / "other.sig", folder / "table.sig");
  EXPECT_FALSE(second->SameFile(*ReadFileStamp(folder / "table.sig")));
  EXPECT_EQ(ReadFileStamp(folder / "missing.sig"), std::nullopt);
}

}  // namespace
}  // namespace chanplan
