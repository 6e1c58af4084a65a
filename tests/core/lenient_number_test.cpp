#include "core/lenient_number.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace chanplan {
namespace {

using namespace std::string_literals;

constexpr double Largest = std::numeric_limits<double>::max();
constexpr std::int32_t Lowest32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Highest32 = std::numeric_limits<std::int32_t>::max();

struct TextCase {
  std::string Text;
  double Value;
};

void ExpectValues(const std::vector<TextCase>& cases) {
  for (const auto& [text, value] : cases) EXPECT_EQ(LeadingNumber(text), value) << '"' << text << '"';
}

TEST(LeadingNumber, ReadsSignDigitsAndPoint) {
  ExpectValues({{"0", 0},
                {"7", 7},
                {"007", 7},
                {"1850.2", 1850.2},
                {"+1850.2", 1850.2},
                {"-1850.2", -1850.2},
                {".5", 0.5},
                {"-.5", -0.5},
                {"5.", 5},
                {"0.03", 0.03},
                {"123456789012345", 123456789012345}});
}

TEST(LeadingNumber, ReadsWhatIsNoNumberAsZero) {
  ExpectValues({{"", 0},
                {" ", 0},
                {"abc", 0},
                {"-", 0},
                {"+", 0},
                {".", 0},
                {"-.", 0},
                {"..5", 0},
                {"--5", 0},
                {"+-5", 0},
                {"e5", 0},
                {".e5", 0},
                {",5", 0},
                {"$5", 0},
                {"inf", 0},
                {"nan", 0},
                {"\2405", 0},
                {"\0005"s, 0}});
}

TEST(LeadingNumber, EndsAtTheFirstCharacterThatIsNotPartOfTheNumber) {
  ExpectValues({{"1850,2", 1850},
                {"1,850.2", 1},
                {"12 MHz", 12},
                {"1.2.3", 1.2},
                {"1-2", 1},
                {"0x10", 0},
                {"3/4", 3},
                {"5%", 5},
                {"9\r", 9},
                {"8\0005"s, 8}});
}

TEST(LeadingNumber, SkipsBlanksWhereverTheyStand) {
  ExpectValues(
      {{"  7", 7}, {"7  ", 7}, {"1 850.2", 1850.2}, {"- 5", -5}, {"1 . 5", 1.5}, {"1 E - 2", 0.01}, {"& H F F", 255}});
}

TEST(LeadingNumber, ReadsExponentsOfEitherLetterAndCase) {
  ExpectValues({{"1e3", 1000},
                {"1E3", 1000},
                {"1d3", 1000},
                {"1D3", 1000},
                {"1E+3", 1000},
                {"25D-1", 2.5},
                {"1E-05", 1e-05},
                {"-1.5e2", -150},
                {".5e1", 5},
                {"5.e1", 50},
                {"1e2.5", 100},
                {"1e2e3", 100}});
}

TEST(LeadingNumber, LeavesAnExponentWithoutDigitsAlone) {
  ExpectValues({{"12e", 12}, {"12E+", 12}, {"12d-", 12}, {"12e+x", 12}, {"12 Europe", 12}, {"12 D", 12}});
}

TEST(LeadingNumber, ReadsHexadecimalAndOctal) {
  ExpectValues({{"&HFF", 255},
                {"&hff", 255},
                {"&H1g", 1},
                {"&HFFFF", 65535},
                {"&HFFFFFFFF", 4294967295},
                {"&O17", 15},
                {"&o17", 15},
                {"&O18", 1},
                {"&H1.5", 1},
                {"&H", 0},
                {"&O", 0},
                {"&HG", 0},
                {"&O8", 0},
                {"&", 0},
                {"&5", 0},
                {"&H-5", 0}});
}

TEST(LeadingNumber, BeyondADoublesRangeGivesTheLargestDouble) {
  const std::string hundreds(400, '9');
  ExpectValues({{"1e400", Largest},
                {"-1e400", -Largest},
                {"1e309", Largest},
                {"1.79769313486232E+308", Largest},
                {"-1.79769313486232E+308", -Largest},
                {"1e99999999999999999999", Largest},
                {hundreds, Largest},
                {"-" + hundreds, -Largest},
                {hundreds + "e-50", Largest},
                {"0." + std::string(400, '0') + "1e800", Largest},
                {"&H" + std::string(300, 'F'), Largest},
                {"&O" + std::string(400, '7'), Largest}});
}

TEST(LeadingNumber, TooSmallForADoubleGivesZero) {
  ExpectValues({{"1e-400", 0},
                {"-1e-400", 0},
                {"1e-99999999999999999999", 0},
                {"0." + std::string(400, '0') + "1", 0},
                {"0." + std::string(400, '0') + "1 Europe", 0},
                {std::string(400, '9') + "e-900", 0}});
}

TEST(LeadingNumber, ZeroStaysZeroWhateverItsExponent) {
  ExpectValues({{"0e400", 0}, {"-0e400", 0}, {"0.000e99999999999999999999", 0}, {std::string(500, '0') + "e9999", 0}});
}

TEST(LeadingNumber, TakesTheWholeNumberIntoAccountHoweverLong) {
  ExpectValues({{"0." + std::string(400, '0') + "1e401", 1},
                {std::string(1000, '0') + "12", 12},
                {"1" + std::string(400, '0') + "e-400", 1},
                {"2." + std::string(5000, '0') + "1", 2}});
}

TEST(LeadingNumber, IsAlwaysFinite) {
  for (const char* text : {"1e400", "-1e400", "nan", "inf", "-inf", "infinity", "&HFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"})
    EXPECT_TRUE(std::isfinite(LeadingNumber(text))) << text;
}

TEST(LeadingNumber, IsAllOfATextWhereNothingStandsBehindIt) {
  for (const char* text : {"", " ", "1", "-1 850.2", "1E5", "1d-2", "&H1F"})
    EXPECT_FALSE(HasMoreThanNumber(text)) << text;
  for (const char* text : {"a", "1 MHz", "890,2", "1E", "1E+", "1D-", "0.2.1", "&H", "&O8"})
    EXPECT_TRUE(HasMoreThanNumber(text)) << text;
}

TEST(RoundToInteger, TakesHalvesToTheEvenNeighbour) {
  struct Case {
    double Value;
    std::int32_t Rounded;
  };
  for (const auto& [value, rounded] : {Case{0.5, 0}, Case{1.5, 2}, Case{2.5, 2}, Case{3.5, 4}, Case{-0.5, 0},
                                       Case{-1.5, -2}, Case{-2.5, -2}, Case{2.4999, 2}, Case{2.5001, 3}, Case{-7, -7}})
    EXPECT_EQ(RoundToInteger(value), rounded) << value;
}

TEST(RoundToInteger, KnowsTheEndsOfItsRange) {
  EXPECT_EQ(RoundToInteger(2147483647), Highest32);
  EXPECT_EQ(RoundToInteger(2147483647.49), Highest32);
  EXPECT_EQ(RoundToInteger(2147483647.5), std::nullopt);
  EXPECT_EQ(RoundToInteger(2147483648), std::nullopt);
  EXPECT_EQ(RoundToInteger(-2147483648.0), Lowest32);
  EXPECT_EQ(RoundToInteger(-2147483648.5), Lowest32);
  EXPECT_EQ(RoundToInteger(-2147483648.51), std::nullopt);
  EXPECT_EQ(RoundToInteger(Largest), std::nullopt);
  EXPECT_EQ(RoundToInteger(-Largest), std::nullopt);
  EXPECT_EQ(RoundToInteger(std::numeric_limits<double>::quiet_NaN()), std::nullopt);
}

}  // namespace
}  // namespace chanplan
