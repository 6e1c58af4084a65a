#include "core/number_picture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

namespace chanplan {
namespace {

constexpr double Largest = std::numeric_limits<double>::max();

TEST(ShortestDecimal, HasNoTrailingZerosAndNoSeparators) {
  struct Case {
    double Value;
    const char* Text;
  };
  for (const auto& [value, text] : std::vector<Case>{{0, "0"},
                                                     {-0.0, "0"},
                                                     {200, "200"},
                                                     {1850.2, "1850.2"},
                                                     {-1850.2, "-1850.2"},
                                                     {0.03, "0.03"},
                                                     {0.5, "0.5"},
                                                     {1234567, "1234567"},
                                                     {0.0001, "0.0001"},
                                                     {1e14, "100000000000000"},
                                                     {999999999999999, "999999999999999"}})
    EXPECT_EQ(ShortestDecimal(value), text);
}

TEST(ShortestDecimal, TakesAnExponentOnlyWhereTheMagnitudeNeedsOne) {
  EXPECT_EQ(ShortestDecimal(0.00001), "1E-05");
  EXPECT_EQ(ShortestDecimal(-0.000012345), "-1.2345E-05");
  EXPECT_EQ(ShortestDecimal(1e15), "1E+15");
  EXPECT_EQ(ShortestDecimal(-2.5e100), "-2.5E+100");
  EXPECT_EQ(ShortestDecimal(1e-300), "1E-300");
  EXPECT_EQ(ShortestDecimal(Largest), "1.79769313486232E+308");
}

TEST(ShortestDecimal, HasFifteenSignificantDigitsAtMost) {
  EXPECT_EQ(ShortestDecimal(1.0 / 3), "0.333333333333333");
  EXPECT_EQ(ShortestDecimal(2.0 / 3), "0.666666666666667");
  EXPECT_EQ(ShortestDecimal(0.1 + 0.2), "0.3");
  EXPECT_EQ(ShortestDecimal(1234567890123456), "1.23456789012346E+15");
}

TEST(ShortestDecimal, PutsTheGivenSeparatorIn) {
  EXPECT_EQ(ShortestDecimal(1850.2, ','), "1850,2");
  EXPECT_EQ(ShortestDecimal(1.25e-7, ','), "1,25E-07");
  EXPECT_EQ(ShortestDecimal(200, ','), "200");
}

TEST(ToDecimalDigits, TakesANumberApart) {
  struct Case {
    double Value;
    bool Negative;
    const char* Digits;
    int Exponent;
  };
  for (const auto& [value, negative, digits, exponent] : std::vector<Case>{{0, false, "", 0},
                                                                           {-0.0, false, "", 0},
                                                                           {1850.2, false, "18502", -1},
                                                                           {-1850.2, true, "18502", -1},
                                                                           {200, false, "2", 2},
                                                                           {0.03, false, "3", -2},
                                                                           {1e-300, false, "1", -300},
                                                                           {123456, false, "123456", 0}}) {
    const DecimalDigits decimal = ToDecimalDigits(value);
    EXPECT_EQ(decimal.Negative, negative) << value;
    EXPECT_EQ(decimal.Digits, digits);
    EXPECT_EQ(decimal.Exponent, exponent) << value;
  }
}

struct PictureCase {
  double Value;
  const char* Picture;
  const char* Text;
};

void ExpectPictures(const std::vector<PictureCase>& cases) {
  for (const auto& [value, picture, text] : cases) EXPECT_EQ(FormatNumber(value, picture), text) << picture;
}

TEST(FormatNumber, FillsThePlacesOfEachPicture) {
  ExpectPictures({{0, "#0", "0"},
                  {7, "#0", "7"},
                  {1234567, "#0", "1234567"},
                  {0, "#,##0", "0"},
                  {999, "#,##0", "999"},
                  {1000, "#,##0", "1,000"},
                  {98765, "#,##0", "98,765"},
                  {1234567, "#,##0", "1,234,567"},
                  {1850.2, "#,##0.000", "1,850.200"},
                  {0.5, "#,##0.000", "0.500"},
                  {1850.2, "#,##0.000000", "1,850.200000"},
                  {0.000001, "#,##0.000000", "0.000001"},
                  {1234.5678, "#0.0000", "1234.5678"},
                  {0, "#0.0000", "0.0000"},
                  {5, "00", "05"},
                  {33, "0000", "0033"},
                  {123, "00", "123"}});
}

TEST(FormatNumber, RoundsHalvesOfTheShortestDecimalAwayFromZero) {
  // As doubles some of these lie a little below the half, others a little above it.
  ExpectPictures({{0.0125, "#,##0.000", "0.013"},
                  {-0.0125, "#,##0.000", "-0.013"},
                  {0.00625, "#0.0000", "0.0063"},
                  {1.0005, "#,##0.000", "1.001"},
                  {2.0015, "#,##0.000", "2.002"},
                  {0.5, "#0", "1"},
                  {1.5, "#0", "2"},
                  {2.5, "#0", "3"},
                  {-2.5, "#0", "-3"},
                  {0.0005, "#,##0.000", "0.001"},
                  {0.00049, "#,##0.000", "0.000"},
                  {0.49, "#0", "0"},
                  {0.0000005, "#,##0.000000", "0.000001"}});
}

TEST(FormatNumber, EveryHalfOfAThousandthGoesUp) {
  for (int odd = 1; odd < 40000; odd += 2) {
    const int thousandths = (odd + 1) / 2;
    std::string text = std::to_string(thousandths + 1000);  // keeps the leading zeros
    const std::string places = text.substr(text.size() - 3);
    ASSERT_EQ(FormatNumber(odd / 2000.0, "#0.000"), std::to_string(thousandths / 1000) + "." + places) << odd;
  }
}

TEST(FormatNumber, CarriesARoundedNineThroughAllPlaces) {
  ExpectPictures({{0.9996, "#,##0.000", "1.000"},
                  {999.9995, "#,##0.000", "1,000.000"},
                  {999999.5, "#,##0", "1,000,000"},
                  {9.99995, "#0.0000", "10.0000"},
                  {0.99, "#0", "1"},
                  {1.0996, "#,##0.000", "1.100"}});
}

TEST(FormatNumber, ShowsNoSignOnWhatRoundsToZero) {
  ExpectPictures({{-0.0, "#0", "0"},
                  {-0.4, "#0", "0"},
                  {-0.0004, "#,##0.000", "0.000"},
                  {-0.00004, "#0.0000", "0.0000"},
                  {-1e-300, "#,##0.000000", "0.000000"},
                  {-0.5, "#0", "-1"},
                  {-0.0005, "#,##0.000", "-0.001"}});
}

TEST(FormatNumber, KeepsTheSignOutsideTheGroups) {
  ExpectPictures({{-100, "#,##0", "-100"}, {-1000, "#,##0", "-1,000"}, {-123456.5, "#,##0.000", "-123,456.500"}});
}

TEST(FormatNumber, PutsTheGivenSeparatorsIn) {
  constexpr NumberSeparators german{',', '.'};
  EXPECT_EQ(FormatNumber(1234567.25, "#,##0.000", german), "1.234.567,250");
  EXPECT_EQ(FormatNumber(-0.5, "#0.0000", german), "-0,5000");
  EXPECT_EQ(FormatNumber(1234567, "#,##0", {'.', ' '}), "1 234 567");
}

TEST(FormatNumber, StandsNumbersOfAnyMagnitude) {
  EXPECT_EQ(FormatNumber(123456789.123456789, "#,##0.000000"), "123,456,789.123457");
  EXPECT_EQ(FormatNumber(1e15, "#,##0"), "1,000,000,000,000,000");
  EXPECT_EQ(FormatNumber(std::numeric_limits<double>::denorm_min(), "#,##0.000"), "0.000");
  const std::string largest = FormatNumber(-Largest, "#,##0.000");
  EXPECT_EQ(largest.substr(0, 25), "-179,769,313,486,232,000,");
  EXPECT_EQ(std::ranges::count_if(largest, [](char c) { return c >= '0' && c <= '9'; }), 309 + 3);
  EXPECT_EQ(std::ranges::count(largest, ','), 102);
}

}  // namespace
}  // namespace chanplan
