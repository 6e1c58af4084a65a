// Random conversations with a unit that is late, loses and doubles bytes, hangs up, and still has echoes
// to send: a table that is shown is the unit's, and a unit's table changes only by a whole upload.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/unit/fake_unit.h"
#include "tests/unit/hand_driven_link.h"
#include "tests/unit/wire_bytes.h"
#include "unit/transfer.h"
#include "unit/unit_connection.h"
#include "unit/wire_encoding.h"

namespace chanplan::testing {
namespace {

// Ten thousand by default; CHANPLAN_RANDOM_STEPS and CHANPLAN_RANDOM_SEED ask for others.
int Setting(const char* name, int otherwise) {
  const char* const text = std::getenv(name);
  return text != nullptr ? std::atoi(text) : otherwise;
}

// Where a program is killed.
struct Killed {};

// A unit that answers in the order in which it is asked, but for echoes, which other answers may overtake. What goes
// wrong with an answer is drawn anew for each: at most one kind, as a lost and a doubled byte of one answer leave its
// length as it was.
class WildUnit {
 public:
  explicit WildUnit(HandDrivenLink& rigUsed, std::mt19937& source) : rig(rigUsed), random(source) {
    rig.Port.KeepsInputWhileClosed = true;
    rig.Port.Script = [this, script = unit.Script()](std::string_view sent) {
      if (Off()) return std::vector<DelayedBytes>();
      std::vector<DelayedBytes> late;
      for (const DelayedBytes& reply : script(sent))
        if (!reply.Bytes.empty()) Answer(reply.Bytes, late);
      return late;
    };
  }

  FakeUnit unit;
  int Wildness = 0;  // per cent of the answers that something happens to

  void Draw(const std::string& tableBytes) {
    unit = FakeUnit();
    unit.TableBytes = tableBytes;
    unit.Identity = (Chance(20) ? Bytes({0xFF, 0xFF}) : Bytes({0, 1})) + "XY1234D3.00";
    Wildness = Between(0, 3) * 20;
    overtaken = Chance(20);
    cameTooLate = false;
    slowness = Chance(50) ? 0 : Between(0, 1500);
    offAt =
        Chance(10) ? rig.Clock.Time + std::chrono::milliseconds(Between(0, 20000)) : std::chrono::nanoseconds::max();
    lastByte = rig.Clock.Time;
  }
  /// It is off, and an answer came later than any program waits for one: the next program takes it for its own.
  bool SpeaksForAnother() const { return cameTooLate && Off(); }
  bool Chance(int percent) { return Between(1, 100) <= percent; }
  int Between(int low, int high) { return std::uniform_int_distribution(low, high)(random); }

 private:
  bool Off() const { return rig.Clock.Time >= offAt; }

  void Answer(std::string bytes, std::vector<DelayedBytes>& late) {
    if (overtaken && bytes.front() == SyncByte && bytes.size() == 1) {
      late.push_back({bytes, Between(0, 1500)});
      return;
    }
    auto begin = rig.Clock.Time + std::chrono::milliseconds(slowness);
    if (Chance(Wildness)) {
      const auto place = static_cast<std::size_t>(Between(0, static_cast<int>(bytes.size()) - 1));
      const int kind = Between(0, 5);
      const bool losesSome = kind == 1 || kind == 4;
      switch (overtaken && losesSome ? 0 : kind) {  // an echo among an answer's bytes would make up for a lost one
        case 0:
          begin += std::chrono::milliseconds(Between(0, 1500 - slowness));
          break;
        case 1:
          bytes.erase(place, static_cast<std::size_t>(Between(1, 47)));
          break;
        case 2:
          bytes.insert(place, static_cast<std::size_t>(Between(1, 47)), bytes[place]);
          break;
        case 3:
          bytes.clear();
          break;
        case 4:
          bytes.erase(place);
          offAt = begin;  // and nothing more
          break;
        case 5:
          begin += std::chrono::milliseconds(Between(1500, 12000));  // later than any wait for an echo
          cameTooLate = true;
          break;
      }
    }
    // A byte a millisecond, behind all that was answered before.
    begin = std::max(begin, lastByte);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
      lastByte = begin + std::chrono::milliseconds(index + 1);
      const auto delay = std::chrono::ceil<std::chrono::milliseconds>(lastByte - rig.Clock.Time);
      late.push_back({bytes.substr(index, 1), static_cast<int>(delay.count())});
    }
  }

  HandDrivenLink& rig;
  std::mt19937& random;
  bool overtaken = false;
  bool cameTooLate = false;
  int slowness = 0;  // ms
  std::chrono::nanoseconds offAt = std::chrono::nanoseconds::max();
  std::chrono::nanoseconds lastByte{};
};

std::string RandomTable(WildUnit& wild) {
  const int count = wild.Between(0, 4);
  // Tags that look like counts, and records that look like tables, when they are shifted.
  std::string table = TableHeader(wild.Between(0, 3) * 256 + wild.Between(0, 2), count);
  for (int row = 0; row < count; ++row)
    for (int byte = 0; byte < 48; ++byte)
      table += static_cast<char>(wild.Chance(60) ? 0 : wild.Between(byte == 1 ? 0 : 1, byte == 0 ? 254 : 60));
  return table;
}

struct Tally {
  int Downloads = 0;
  int Uploads = 0;
  int Failures = 0;
  int Killed = 0;
};

void DownloadOnce(UnitLink& link, const WildUnit& wild, Tally& tally) {
  const std::string before = wild.unit.TableBytes;
  TransferProgress progress;
  UnitTable held;
  const TransferOutcome outcome = RunDownload(link, held, progress, [] { return false; });
  if (outcome.Done()) {
    UnitTable expected;
    DecodeTable(before, expected);
    EXPECT_EQ(held.Table, expected.Table);
    EXPECT_EQ(held.UnitTableTag, expected.UnitTableTag);
    ++tally.Downloads;
  } else {
    EXPECT_EQ(held.Table.Count, 0);
    ++tally.Failures;
  }
  FinishTransfer(link, outcome);
  EXPECT_EQ(wild.unit.TableBytes, before) << "reading changes nothing";
}

void UploadOnce(UnitLink& link, WildUnit& wild, Tally& tally) {
  const std::string before = wild.unit.TableBytes;
  const std::string message = RandomTable(wild);
  TransferProgress progress;
  TransferOutcome outcome;
  LinkResult sync = LinkTimeout;
  try {
    outcome = RunUpload(link, message, progress, [] { return false; });
    sync = FinishTransfer(link, outcome);
  } catch (const Killed&) {
    EXPECT_TRUE(wild.unit.TableBytes == before || wild.unit.TableBytes == message);
    throw;
  }
  const bool confirmed = outcome.Done() && sync == LinkAck;
  if (confirmed && !wild.SpeaksForAnother()) {
    EXPECT_EQ(wild.unit.TableBytes, message);
  } else if (!outcome.Done()) {
    EXPECT_EQ(wild.unit.TableBytes, before) << "nothing, or not all of it, was sent";
  }
  ++(confirmed ? tally.Uploads : tally.Failures);
}

TEST(RandomConversations, NeitherShowAWrongTableNorLeaveOneInTheUnit) {
  std::mt19937 random(static_cast<unsigned>(Setting("CHANPLAN_RANDOM_SEED", 20261121)));
  const int conversations = Setting("CHANPLAN_RANDOM_STEPS", 10000);
  Tally tally;
  for (int conversation = 0; conversation < conversations && !::testing::Test::HasFailure(); ++conversation) {
    SCOPED_TRACE(conversation);
    HandDrivenLink rig;
    auto killAt = std::chrono::nanoseconds::max();
    // Coarser than in reality, to be done sooner; a byte takes long enough to be told from a pause.
    rig.Clock.Advance = [&](std::chrono::nanoseconds longest) {
      if (rig.Clock.Time >= killAt) throw Killed();
      return longest > 0ns ? std::chrono::nanoseconds(5ms) : std::chrono::nanoseconds(20us);
    };
    WildUnit wild(rig, random);
    wild.Draw(RandomTable(wild));
    std::array<std::optional<UnitLink>, 2> programs;
    for (auto& program : programs) program.emplace(rig.Port, rig.Clock.Timing());
    for (int command = wild.Between(1, 3); command > 0; --command) {
      std::optional<UnitLink>& program = programs[static_cast<std::size_t>(wild.Between(0, 1))];
      UnitLink& link = *program;
      if (wild.Chance(10)) killAt = rig.Clock.Time + std::chrono::milliseconds(wild.Between(0, 3000));
      try {
        if (wild.Chance(50)) ConnectToUnit(link);
        if (wild.Chance(60))
          DownloadOnce(link, wild, tally);
        else
          UploadOnce(link, wild, tally);
      } catch (const Killed&) {
        ++tally.Killed;
        rig.Port.Close();
        wild.unit.ForgetUpload();
        program.emplace(rig.Port, rig.Clock.Timing());
      }
      killAt = std::chrono::nanoseconds::max();
    }
  }
  // All of it is met often enough to tell something.
  EXPECT_GT(tally.Downloads, conversations / 3);
  EXPECT_GT(tally.Uploads, conversations / 4);
  EXPECT_GT(tally.Failures, conversations / 5);
  EXPECT_GT(tally.Killed, conversations / 25);
}

}  // namespace
}  // namespace chanplan::testing
