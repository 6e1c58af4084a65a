#include "unit/wire_encoding.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/unit/wire_bytes.h"

namespace chanplan::testing {
namespace {

using Lines = std::vector<std::string>;

TEST(WireCommands, AreTheLettersThatTheUnitKnows) {
  EXPECT_EQ(SendTableCommand, 'O');
  EXPECT_EQ(ReceiveTableCommand, 'N');
}

struct TwoByteCase {
  int Value;
  int First;
  int Second;
};

constexpr TwoByteCase TwoByteCases[] = {
    {0, 0x00, 0x00},     {1, 0x00, 0x01},     {100, 0x00, 0x64},   {127, 0x00, 0x7F},
    {128, 0x00, 0x80},   {255, 0x00, 0xFF},   {256, 0x01, 0x00},   {1023, 0x03, 0xFF},
    {32767, 0x7F, 0xFF}, {32768, 0x80, 0x00}, {65280, 0xFF, 0x00}, {65535, 0xFF, 0xFF},
};

TEST(TwoBytes, AreUnsignedAndBigEndian) {
  for (const TwoByteCase& number : TwoByteCases) {
    SCOPED_TRACE(number.Value);
    const std::string bytes = Bytes({number.First, number.Second});
    EXPECT_EQ(IntegerToTwoBytes(number.Value), bytes);
    EXPECT_EQ(TwoBytesToInteger(bytes), number.Value);
  }
}

TEST(TwoBytes, SurviveBothWaysWhateverTheyAre) {
  for (int value = 0; value <= 65535; ++value) ASSERT_EQ(TwoBytesToInteger(IntegerToTwoBytes(value)), value);
}

TEST(TwoBytesToInteger, LooksAtNoMoreThanTwoBytes) { EXPECT_EQ(TwoBytesToInteger(Bytes({1, 2, 3, 4})), 258); }

struct FourByteCase {
  double Value;
  std::array<int, 4> Bytes;
};

constexpr FourByteCase FourByteCases[] = {
    {0, {0x00, 0x00, 0x00, 0x00}},          {1, {0x00, 0x00, 0x00, 0x01}},
    {255, {0x00, 0x00, 0x00, 0xFF}},        {256, {0x00, 0x00, 0x01, 0x00}},
    {30000, {0x00, 0x00, 0x75, 0x30}},      {65535, {0x00, 0x00, 0xFF, 0xFF}},
    {65536, {0x00, 0x01, 0x00, 0x00}},      {16777215, {0x00, 0xFF, 0xFF, 0xFF}},
    {16777216, {0x01, 0x00, 0x00, 0x00}},   {900000000, {0x35, 0xA4, 0xE9, 0x00}},
    {1880000000, {0x70, 0x0E, 0x86, 0x00}}, {2147483647, {0x7F, 0xFF, 0xFF, 0xFF}},
    {2147483648, {0x80, 0x00, 0x00, 0x00}}, {4294967295, {0xFF, 0xFF, 0xFF, 0xFF}},
};

std::string BytesOf(const FourByteCase& number) {
  return Bytes({number.Bytes[0], number.Bytes[1], number.Bytes[2], number.Bytes[3]});
}

TEST(FourBytes, AreUnsignedAndBigEndian) {
  for (const FourByteCase& number : FourByteCases) {
    SCOPED_TRACE(number.Value);
    double value = number.Value;
    EXPECT_EQ(SingleToFourBytes(value), BytesOf(number));
    EXPECT_EQ(value, 0) << "nothing is left of a whole number";
    EXPECT_EQ(FourBytesToDouble(BytesOf(number)), number.Value);
  }
}

TEST(SingleToFourBytes, LeavesTheFractionInTheVariable) {
  for (const double whole : {0.0, 1.0, 255.0, 900000000.0, 4294967295.0}) {
    SCOPED_TRACE(whole);
    double value = whole + 0.75;
    const std::string bytes = SingleToFourBytes(value);
    EXPECT_EQ(FourBytesToDouble(bytes), whole);
    EXPECT_EQ(value, 0.75);
  }
}

TEST(SingleToFourBytes, GivesZeroBytesForWhatIsTooLarge) {
  for (const double large : {4294967296.0, 4294967297.0, 1e12, 1e300, std::numeric_limits<double>::infinity()}) {
    SCOPED_TRACE(large);
    double value = large;
    EXPECT_EQ(SingleToFourBytes(value), Bytes({0, 0, 0, 0}));
  }
}

TEST(FixedBytesToText, EndsAtTheFirstZeroByte) {
  EXPECT_EQ(FixedBytesToText("ABCDEFGHIJKLMNOPQRSTUVWX", 24), "ABCDEFGHIJKLMNOPQRSTUVWX");
  EXPECT_EQ(FixedBytesToText(Bytes({'A', 'B', 'C', 'D', 0, 'F', 'G'}), 24), "ABCD");
  EXPECT_EQ(FixedBytesToText(Bytes({0, 'B', 'C'}), 24), "");
  EXPECT_EQ(FixedBytesToText("", 24), "");
}

TEST(FixedBytesToText, DropsExactlyTheBytesBelow32) {
  for (int value = 1; value < 256; ++value) {
    SCOPED_TRACE(value);
    EXPECT_EQ(FixedBytesToText(Bytes({'A', value, 'B'}), 24), value < 32 ? "AB" : Bytes({'A', value, 'B'}));
  }
}

TEST(FixedBytesToText, FallsBackToTheBytesThemselvesWhenTheTextIsTooLong) {
  struct Case {
    std::string Bytes;
    std::size_t Width;
    std::string Text;
  };
  const Case cases[] = {
      {"ABCDE", 5, "ABCDE"},
      {"ABCDE", 4, "ABCD"},
      {"\x01"
       "ABCDE",
       5, "ABCDE"},
      {"\x01"
       "ABCDE",
       4,
       "\x01"
       "ABC"},
      {"AB\x1F"
       "CDE",
       3, "AB\x1F"},
  };
  for (const Case& text : cases) EXPECT_EQ(FixedBytesToText(text.Bytes, text.Width), text.Text) << text.Width;
}

TEST(TextToFixedBytes, FillsUpAndCutsOff) {
  const std::string thirty = "012345678901234567890123456789";
  EXPECT_EQ(TextToFixedBytes("GSM", 24), "GSM" + std::string(21, '\0'));
  EXPECT_EQ(TextToFixedBytes(thirty, 24), "012345678901234567890123");
  EXPECT_EQ(TextToFixedBytes(thirty.substr(0, 24), 24), thirty.substr(0, 24));
  EXPECT_EQ(TextToFixedBytes("", 24), std::string(24, '\0'));
  EXPECT_EQ(TextToFixedBytes("A\xFCz", 4), Bytes({'A', 0xFC, 'z', 0}));
  EXPECT_EQ(TextToFixedBytes("ABC", 0), "");
}

struct HertzCase {
  double Megahertz;
  double Hertz;
};

// Where it says so, a floating product misses the whole number.
constexpr HertzCase HertzCases[] = {
    {0, 0},
    {0.000001, 1},
    {0.03, 30000},
    {0.0125, 12500},
    {1.23, 1230000},
    {900, 900000000},
    {1880, 1880000000},
    {1054.3718, 1054371800},  // one too low
    {2.01, 2010000},          // one too low
    {1.001, 1001000},         // one too low
    {889.9875, 889987500},
    {4294.967295, 4294967295},
    {4294.967296, 4294967296},
    {-1.5, -1500000},
};

TEST(HertzOf, IsTheDecimalNumberTimesAMillion) {
  for (const HertzCase& frequency : HertzCases) EXPECT_EQ(HertzOf(frequency.Megahertz), frequency.Hertz);
}

TEST(HertzOf, KeepsWhatIsLessThanAHertz) {
  EXPECT_EQ(HertzOf(0.0000005), 0.5);
  EXPECT_EQ(HertzOf(900.00000075), 900000000.75);
}

TEST(HertzOf, TakesNumbersOfAnySize) {
  EXPECT_EQ(HertzOf(1e300), 1e306);
  EXPECT_GE(HertzOf(std::numeric_limits<double>::max()), std::numeric_limits<double>::max());
  EXPECT_LE(HertzOf(std::numeric_limits<double>::denorm_min()), 1e-300);
  EXPECT_GE(HertzOf(std::numeric_limits<double>::denorm_min()), 0);
}

TEST(HertzOf, GivesBackEveryHertzThatTravels) {
  std::mt19937 random(20240);
  std::vector<std::uint32_t> frequencies = {0, 1, 999999, 1000000, 1000001, 4294967294, 4294967295};
  for (int count = 0; count < 100000; ++count) frequencies.push_back(static_cast<std::uint32_t>(random()));
  for (const std::uint32_t hertz : frequencies) ASSERT_EQ(HertzOf(hertz / 1000000.0), hertz);
}

// Every field has a value of its own, in every byte.
const SignalStandardRecord FullRecord = {"129",  2,   "GSM 900 \xFC", 900,   945.0000010, 0x0102,
                                         0xFEDC, 0.2, 16.909060,      0x8001};

std::string FullRecordBytes() {
  return Bytes({0x81, 0x02}) + "GSM 900 \xFC" + std::string(15, '\0') + Bytes({0x35, 0xA4, 0xE9, 0x00}) +  // 900
         Bytes({0x38, 0x53, 0x8E, 0x41}) +                                                                 // 945.000001
         Bytes({0x01, 0x02}) + Bytes({0xFE, 0xDC}) + Bytes({0x00, 0x03, 0x0D, 0x40}) +                     // 0.2
         Bytes({0x01, 0x02, 0x03, 0x04}) + Bytes({0x80, 0x01});
}

TEST(EncodeRecord, PutsEveryFieldInItsPlace) {
  EXPECT_EQ(FullRecordBytes().size(), 48u);
  EXPECT_EQ(EncodeRecord(FullRecord, 1), FullRecordBytes());
}

TEST(DecodeRecord, FindsEveryFieldInItsPlace) { EXPECT_EQ(DecodeRecord(FullRecordBytes()), FullRecord); }

TEST(EncodeRecord, OfAnEmptyRecordIsAllZero) { EXPECT_EQ(EncodeRecord({}, 1), std::string(48, '\0')); }

TEST(DecodeRecord, OfZeroBytesHasTheStateZeroAndNoName) {
  SignalStandardRecord zero;
  zero.State = "0";
  EXPECT_EQ(DecodeRecord(std::string(48, '\0')), zero);
}

TEST(DecodeRecord, ReadsTheHighestNumbersAsUnsigned) {
  const SignalStandardRecord highest = {
      "255", 255, std::string(24, '\xFF'), 4294.967295, 4294.967295, 65535, 65535, 4294.967295, 4294.967295, 65535};
  EXPECT_EQ(DecodeRecord(std::string(48, '\xFF')), highest);
  EXPECT_EQ(EncodeRecord(highest, 1), std::string(48, '\xFF'));
}

TEST(EncodeRecord, SendsTheNumberThatTheStateTextStandsFor) {
  struct Case {
    const char* State;
    int Byte;
  };
  constexpr Case cases[] = {{"", 0},      {"0", 0},     {"2", 2},        {"129", 0x81},    {"131", 0x83},
                            {"254", 254}, {"255", 255}, {" 1 2 9", 129}, {"3 of them", 3}, {"none", 0}};
  for (const Case& state : cases) {
    SignalStandardRecord record;
    record.State = state.State;
    EXPECT_EQ(EncodeRecord(record, 1).substr(0, 1), Bytes({state.Byte})) << state.State;
  }
}

TEST(EncodeRecord, SendsTheWholeHertzOfAFrequency) {
  SignalStandardRecord record;
  record.UplinkStartFreq = 1054.3718;
  record.DownlinkStartFreq = 1880.0000009;
  record.Bandwidth = 0.0000009;
  const std::string bytes = EncodeRecord(record, 1);
  EXPECT_EQ(bytes.substr(26, 4), Bytes({0x3E, 0xD8, 0x6F, 0xD8}));
  EXPECT_EQ(bytes.substr(30, 4), Bytes({0x70, 0x0E, 0x86, 0x00}));
  EXPECT_EQ(bytes.substr(38, 4), Bytes({0, 0, 0, 0}));
}

TEST(EncodeRecord, SendsFrequenciesBeyondTheFieldAsZero) {
  for (const double megahertz : {4294.967296, 5000.0, 1e300, std::numeric_limits<double>::infinity()}) {
    SCOPED_TRACE(megahertz);
    const SignalStandardRecord record = {"0", 0, "", megahertz, megahertz, 0, 0, megahertz, megahertz, 0};
    EXPECT_EQ(EncodeRecord(record, 1), std::string(48, '\0'));
  }
}

struct MisfitCase {
  const char* Description;
  Field Misfit;
  void (*Set)(SignalStandardRecord& record);
};

constexpr MisfitCase MisfitCases[] = {
    {"State above a byte", Field::State, [](SignalStandardRecord& record) { record.State = "256"; }},
    {"State below zero", Field::State, [](SignalStandardRecord& record) { record.State = "-1"; }},
    {"State beyond all integers", Field::State, [](SignalStandardRecord& record) { record.State = "1e99"; }},
    {"Subbands above a byte", Field::Subbands, [](SignalStandardRecord& record) { record.Subbands = 256; }},
    {"Subbands below zero", Field::Subbands, [](SignalStandardRecord& record) { record.Subbands = -1; }},
    {"Subbands much above a byte", Field::Subbands, [](SignalStandardRecord& record) { record.Subbands = 0x7FFFFF00; }},
    {"uplink below zero", Field::UplinkStartFreq,
     [](SignalStandardRecord& record) { record.UplinkStartFreq = -0.000001; }},
    {"downlink below zero", Field::DownlinkStartFreq,
     [](SignalStandardRecord& record) { record.DownlinkStartFreq = -900; }},
    {"start channel below zero", Field::StartChannel, [](SignalStandardRecord& record) { record.StartChannel = -1; }},
    {"start channel above two bytes", Field::StartChannel,
     [](SignalStandardRecord& record) { record.StartChannel = 65536; }},
    {"stop channel below zero", Field::StopChannel, [](SignalStandardRecord& record) { record.StopChannel = -1; }},
    {"stop channel above two bytes", Field::StopChannel,
     [](SignalStandardRecord& record) { record.StopChannel = 65536; }},
    {"bandwidth below zero", Field::Bandwidth, [](SignalStandardRecord& record) { record.Bandwidth = -0.2; }},
    {"spacing below zero", Field::Spacing, [](SignalStandardRecord& record) { record.Spacing = -1e300; }},
    {"step below zero", Field::Step, [](SignalStandardRecord& record) { record.Step = -1; }},
    {"step above two bytes", Field::Step, [](SignalStandardRecord& record) { record.Step = 65536; }},
};

std::string MisfitOf(const SignalStandardTable& table) {
  try {
    EncodeTable(table, 1);
  } catch (const WireMisfit& misfit) {
    return misfit.what();
  }
  return "";
}

TEST(WireMisfit, NamesRowAndFieldOfAValueThatDoesNotFit) {
  for (const MisfitCase& misfit : MisfitCases) {
    SCOPED_TRACE(misfit.Description);
    SignalStandardTable table;
    table.Append(FullRecord);
    table.Row(0).Subbands = 0;
    table.Append({"1", 0, "CDMA 800", 825, 870, 1, 799, 1.23, 0.03, 1});
    EXPECT_EQ(MisfitOf(table), "");
    misfit.Set(table.Row(1));
    const std::string text = MisfitOf(table);
    EXPECT_NE(text.find("row 2 (CDMA 800)"), std::string::npos) << text;
    EXPECT_NE(text.find(": " + std::string(FieldOf(misfit.Misfit).Name) + " "), std::string::npos) << text;
  }
}

TEST(WireMisfit, TellsANameInUtf8) {
  SignalStandardTable table;
  table.Append({"256", 0, "\xDC\x80", 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(MisfitOf(table), "row 1 (\u00DC\u20AC): State 256 does not fit, it must be 0 to 255");
}

// No file and no cell can hold such a number; the unit must not get a made-up one all the same.
TEST(WireMisfit, IsAlsoAFrequencyThatIsNoNumber) {
  SignalStandardTable table;
  table.Append(FullRecord);
  table.Row(0).Spacing = std::numeric_limits<double>::quiet_NaN();
  EXPECT_NE(MisfitOf(table), "");
}

TEST(WireMisfit, IsNothingThatJustFits) {
  SignalStandardTable table;
  table.Append({"255", 255, "highest", 4294.967295, 4294.967295, 65535, 65535, 4294.967295, 4294.967295, 65535});
  table.Append({"0", 0, "lowest", 0, 0, 0, 0, 0, 0, 0});
  table.Append({"-0", 0, "negative zero", -0.0, -0.0, 0, 0, -0.0, -0.0, 0});
  EXPECT_EQ(MisfitOf(table), "");
}

TEST(EncodeTable, PutsTagAndCountBeforeTheRecords) {
  SignalStandardTable table;
  EXPECT_EQ(EncodeTable(table, 0xABCD), Bytes({0xAB, 0xCD, 0x00, 0x00}));
  table.Append({"2", 0, "GSM", 0, 0, 0, 0, 0, 0, 0});
  table.Append({"1", 0, "CDMA", 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(EncodeTable(table, 100),
            Bytes({0x00, 0x64, 0x00, 0x02}) + RecordBytes(2, 0, "GSM") + RecordBytes(1, 0, "CDMA"));
}

TEST(EncodeTable, SendsNoRowThatIsNotInUse) {
  SignalStandardTable table;
  table.Append({"2", 3, "damaged: its sub-bands do", 0, 0, 0, 0, 0, 0, 0});
  table.Row(1).Name = "not exist";
  EXPECT_EQ(EncodeTable(table, 1).size(), 4u + 48u);
}

TEST(EncodeTable, TakesAFullTableButNoMore) {
  SignalStandardTable table;
  table.Count = 200;
  EXPECT_EQ(EncodeTable(table, 1).size(), 9604u);
  EXPECT_EQ(EncodeTable(table, 1).substr(2, 2), Bytes({0x00, 0xC8}));
  table.Count = 201;
  EXPECT_THROW(EncodeTable(table, 1), std::out_of_range);
}

TEST(WireLosses, AreNoneInATableThatReachesTheUnitAsItIs) {
  SignalStandardTable table;
  table.Append(FullRecord);
  table.Append({"254", 0, "exactly 24 characters it", 4294.967295, 0, 0, 65535, 4294.967295, 0.000001, 65535});
  EXPECT_EQ(WireLosses(table), Lines{});
  EXPECT_EQ(WireLosses({}), Lines{});
}

struct LossCase {
  const char* Description;
  Field Lost;
  void (*Set)(SignalStandardRecord& record);
};

constexpr LossCase LossCases[] = {
    {"a State that ends the list", Field::State, [](SignalStandardRecord& record) { record.State = "255"; }},
    {"a name of 25 characters", Field::Name,
     [](SignalStandardRecord& record) { record.Name = "exactly 25 characters, it"; }},
    {"uplink too high", Field::UplinkStartFreq,
     [](SignalStandardRecord& record) { record.UplinkStartFreq = 4294.967296; }},
    {"downlink too high", Field::DownlinkStartFreq,
     [](SignalStandardRecord& record) { record.DownlinkStartFreq = 5000; }},
    {"bandwidth too wide", Field::Bandwidth, [](SignalStandardRecord& record) { record.Bandwidth = 4294.967296; }},
    {"spacing too wide", Field::Spacing, [](SignalStandardRecord& record) { record.Spacing = 1e300; }},
    {"a name with an escape", Field::Name, [](SignalStandardRecord& record) { record.Name = "A\x1B"; }},
    {"a fraction of a hertz", Field::Spacing, [](SignalStandardRecord& record) { record.Spacing = 0.0300005; }},
    {"less than a hertz", Field::Bandwidth, [](SignalStandardRecord& record) { record.Bandwidth = 1e-7; }},
};

// What a unit sends back for them is the standard's name.
TEST(WireLosses, AreNoneInTheNamesOfSubbands) {
  SignalStandardTable table;
  table.Append({"1", 1, "exactly 24 characters it", 1, 1, 1, 1, 1, 1, 1});
  table.Append({"0", 0, "exactly 24 characters it(A)", 1, 1, 1, 1, 1, 1, 1});
  EXPECT_EQ(WireLosses(table), Lines{});
  table.Append({"0", 0, "exactly 24 characters it(B)", 1, 1, 1, 1, 1, 1, 1});
  EXPECT_EQ(WireLosses(table).size(), 1u) << "beyond the standard's sub-bands";
}

TEST(WireLosses, NameRowAndFieldOfWhatTheUnitGetsInAnotherForm) {
  for (const LossCase& loss : LossCases) {
    SCOPED_TRACE(loss.Description);
    SignalStandardTable table;
    table.Append(FullRecord);
    table.Row(0).Subbands = 0;
    table.Append({"1", 0, "CDMA 800", 825, 870, 1, 799, 1.23, 0.03, 1});
    loss.Set(table.Row(1));
    const Lines lines = WireLosses(table);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(
        lines[0].starts_with("row 2 (" + table.Row(1).Name + "): " + std::string(FieldOf(loss.Lost).Name) + " "))
        << lines[0];
  }
}

TEST(WireLosses, NameTheRowsBehindTheEndOfTheList) {
  SignalStandardTable table;
  for (const char* const state : {"1", "255", "1", "255"}) table.Append({state, 0, "X", 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(WireLosses(table), (Lines{"row 2 (X): State 255 ends the list when the unit's table is read",
                                      "row 3 (X): is not read, as it stands behind the end of the list",
                                      "row 4 (X): is not read, as it stands behind the end of the list"}));
}

TEST(WireLosses, TellANameInUtf8) {
  SignalStandardTable table;
  table.Append({"255", 0, "\xDC\x80", 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(WireLosses(table), Lines{"row 1 (\u00DC\u20AC): State 255 ends the list when the unit's table is read"});
}

TEST(WireLosses, ListEveryLossOfEveryRow) {
  SignalStandardTable table;
  table.Append({"0", 0, std::string(30, 'x'), 0, 0, 0, 0, 0, 0, 0});
  table.Append({"255", 0, "", 5000, 5000, 0, 0, 5000, 5000, 0});
  table.Records[2].State = "255";  // not in use
  EXPECT_EQ(WireLosses(table).size(), 6u);
}

}  // namespace
}  // namespace chanplan::testing
