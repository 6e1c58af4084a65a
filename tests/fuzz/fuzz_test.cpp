// Replays what fuzzing has found worth keeping, and feeds the file reader with seeded mutations of a sound file.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

#include "core/sig_file.h"
#include "tests/core/temp_folder.h"
#include "tests/fuzz/fuzz_target.h"

namespace chanplan::fuzzing {
namespace {

void Feed(void (*target)(const std::uint8_t*, std::size_t), const std::string& bytes) {
  target(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

struct Corpus {
  const char* Name;  ///< its folder's
  void (*Target)(const std::uint8_t* data, std::size_t size);
};

constexpr Corpus Corpora[] = {
    {"arguments", FuzzArguments}, {"download", FuzzDownload},
    {"identity", FuzzIdentity},   {"recovery_copy", FuzzRecoveryCopy},
#ifdef __unix__
    {"settings", FuzzSettings},
#endif
    {"sig_file", FuzzSigFile},
};

void PrintTo(const Corpus& corpus, std::ostream* output) { *output << corpus.Name; }

class CorpusFuzz : public ::testing::TestWithParam<Corpus> {};

TEST_P(CorpusFuzz, Stands) {
  const auto folder = std::filesystem::path(CHANPLAN_SOURCE_DIR) / "tests/fuzz/corpus" / GetParam().Name;
  const std::set<std::string> names = testing::NamesIn(folder);
  EXPECT_GT(names.size(), 5U);
  for (const std::string& name : names) Feed(GetParam().Target, testing::ReadFile(folder / name));
}

INSTANTIATE_TEST_SUITE_P(Kept, CorpusFuzz, ::testing::ValuesIn(Corpora),
                         [](const auto& tested) { return std::string(tested.param.Name); });

// Whatever they are: the arguments of a fuzz run must not be obeyed.
TEST(ArgumentsFuzz, RunsNoCommand) {
  const testing::TempFolder folder;
  const std::string table = (folder / "table.sig").string(), out = (folder / "out.sig").string();
  testing::WriteFile(table, WriteSigTable({}));
  for (const char* command : {"save-as", "report", "chart", "print"})
    Feed(FuzzArguments, std::string(command) + '\0' + table + '\0' + out + '\0');
  EXPECT_EQ(testing::NamesIn(folder.Path()), std::set<std::string>{"table.sig"});
}

const std::string SoundFile =
    "State\tSubbands\tName\tUplink Start Freq.\tDownlink Stop Freq.\tStart Channel\tStop Channel\tBandwidth\tSpacing\t"
    "Step\r\n"
    "2\t0\tGSM 900\t890.2\t935.2\t1\t124\t0.2\t0.2\t1\r\n"
    "131\t2\tPCS 1900\t1850.2\t1930.2\t512\t810\t0.2\t0.2\t1\r\n"
    "0\t0\tPCS 1900(A)\t1850.2\t1930.2\t512\t585\t0.2\t0.2\t1\r\n"
    "0\t0\tPCS 1900(B)\t1870.2\t1950.2\t612\t685\t0.2\t0.2\t1\r\n"
    "1\t1\tCellular\t824.04\t869.04\t1\t799\t1.23\t0.03\t1\r\n"
    "0\t0\tCellular(A)\t824.04\t869.04\t1\t333\t1.23\t0.03\t1\r\n";

// What the reader, the number parser and the walks may stumble on.
constexpr std::array<std::string_view, 24> Tokens = {"",           "0",          "-1",
                                                     "2.5",        "2147483647", "-2147483648",
                                                     "2147483648", "1e400",      "-1e400",
                                                     "1e-400",     "&HFF",       "&O17",
                                                     "abc",        "1,5",        "1.7976931348623157e308",
                                                     "4.9e-324",   "\t",         "\r\n",
                                                     "\n",         "\r",         "(",
                                                     "PCS 1900",   "200",        "0.333333333333333333"};

class Mutator {
 public:
  explicit Mutator(unsigned seed) : random(seed) {}

  std::string Mutate() {
    std::string bytes = SoundFile;
    for (std::size_t changes = 1 + Below(6); changes > 0; --changes) ChangeOnce(bytes);
    return bytes;
  }

 private:
  std::size_t Below(std::size_t limit) { return random() % limit; }
  std::size_t Place(const std::string& bytes) { return Below(bytes.size() + 1); }

  // Start and length of the piece between two of `ends` around a random place.
  std::pair<std::size_t, std::size_t> Piece(const std::string& bytes, std::string_view ends) {
    const std::size_t place = Place(bytes);
    const std::size_t before = place == 0 ? std::string::npos : bytes.find_last_of(ends, place - 1);
    const std::size_t start = before == std::string::npos ? 0 : before + 1;
    return {start, std::min(bytes.find_first_of(ends, place), bytes.size()) - start};
  }

  void ChangeOnce(std::string& bytes) {
    switch (Below(8)) {
      case 0:  // one bit
        if (!bytes.empty()) {
          char& byte = bytes[Below(bytes.size())];
          byte = static_cast<char>(byte ^ (1 << Below(8)));
        }
        break;
      case 1:  // one byte more
        bytes.insert(Place(bytes), 1, static_cast<char>(Below(256)));
        break;
      case 2:  // some bytes less
        bytes.erase(Place(bytes), 1 + Below(20));
        break;
      case 3:  // a token anywhere
        bytes.insert(Place(bytes), Tokens[Below(Tokens.size())]);
        break;
      case 4:
      case 5: {  // a token for a field
        const auto [start, length] = Piece(bytes, "\t\r\n");
        bytes.replace(start, length, Tokens[Below(Tokens.size())]);
        break;
      }
      case 6: {  // a line again, at times so often that the table is full
        const auto [start, length] = Piece(bytes, "\n");
        const std::string line = bytes.substr(start, length) + "\n";
        for (std::size_t times = Below(12) == 0 ? 195 + Below(10) : 1 + Below(3); times > 0; --times)
          bytes.insert(start, line);
        break;
      }
      case 7:  // the end cut off
        if (Below(4) == 0) bytes.resize(Place(bytes));
        break;
    }
  }

  std::mt19937 random;
};

TEST(SigFileFuzz, StandsMutationsOfASoundFile) {
  int readable = 0;
  constexpr int rounds = 4000;
  for (unsigned seed = 0; seed < rounds; ++seed) {
    const std::string bytes = Mutator(seed).Mutate();
    std::istringstream input(bytes);
    readable += ReadSigTable(input).Ok() ? 1 : 0;
    Feed(FuzzSigFile, bytes);
  }
  // Inputs that are all refused, or none, would try little.
  EXPECT_GT(readable, rounds / 5);
  EXPECT_LT(readable, rounds * 4 / 5);
}

TEST(SigFileFuzz, StandsRandomBytes) {
  for (unsigned seed = 0; seed < 500; ++seed) {
    std::mt19937 random(seed);
    std::string bytes(random() % 2000, '\0');
    for (char& byte : bytes) byte = random() % 4 == 0 ? '\t' : static_cast<char>(random());
    Feed(FuzzSigFile, bytes);
  }
}

TEST(SigFileFuzz, StandsLinesAroundTheLongest) {
  for (std::size_t length = MaxLineLength - 30; length <= MaxLineLength + 3; ++length)
    Feed(FuzzSigFile, "\r\n\t2\t" + std::string(length - 10, 'x') + "\t\t\t\t\t\t\t\r\n" + std::string(9, '\t'));
}

TEST(SigFileFuzz, StandsTheSoundFileItself) {
  Feed(FuzzSigFile, SoundFile);
  Feed(FuzzSigFile, "");
}

}  // namespace
}  // namespace chanplan::fuzzing
