// The factory table against the public radio standards it is taken from: every row has its standard's
// channel formula here as data, in hertz, and the file's decimal texts are compared with it exactly.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/sig_file.h"
#include "core/signal_standard_table.h"
#include "core/validation.h"

using namespace chanplan;

namespace {

using Hertz = std::int64_t;

// The carrier of channel n is Base + Spacing * (n - Offset).
struct ChannelFormula {
  Hertz UplinkBase;
  Hertz DownlinkBase;
  Hertz Spacing;
  int Offset;

  constexpr Hertz Uplink(int channel) const { return UplinkBase + Spacing * (channel - Offset); }
  constexpr Hertz Downlink(int channel) const { return DownlinkBase + Spacing * (channel - Offset); }
};

// The spectrum all carriers of a row lie in: a second fact per row, independent of the formula.
struct BandLimits {
  Hertz UplinkLow;
  Hertz UplinkHigh;
  Hertz DownlinkLow;
  Hertz DownlinkHigh;
};

enum class RowKind { Standard, Subband };

struct RowCase {
  RowKind Kind;
  std::string_view Name;
  ModulationType Modulation;
  int Subbands;
  int StartChannel;
  int StopChannel;
  ChannelFormula Formula;
  Hertz Bandwidth;
  BandLimits Limits;
};

constexpr Hertz Kilohertz = 1'000;
constexpr Hertz Megahertz = 1'000'000;
constexpr Hertz GsmSpacing = 200 * Kilohertz;
constexpr Hertz GsmBandwidth = 200 * Kilohertz;
constexpr Hertz CdmaBandwidth = 1'230 * Kilohertz;
constexpr std::size_t LongestName = 24;

// 3GPP TS 45.005 clause 2 gives Fl(n) of the lower band and the distance Fu(n) - Fl(n).
constexpr ChannelFormula Gsm(Hertz lowerBase, int offset, Hertz duplexDistance) {
  return {lowerBase, lowerBase + duplexDistance, GsmSpacing, offset};
}

// In GSM 750 the mobile transmits in the upper band.
constexpr ChannelFormula GsmMobileTransmitsHigh(Hertz lowerBase, int offset, Hertz duplexDistance) {
  return {lowerBase + duplexDistance, lowerBase, GsmSpacing, offset};
}

constexpr BandLimits Megahertzes(Hertz uplinkLow, Hertz uplinkHigh, Hertz downlinkLow, Hertz downlinkHigh) {
  return {uplinkLow * Megahertz, uplinkHigh * Megahertz, downlinkLow * Megahertz, downlinkHigh * Megahertz};
}

constexpr RowCase GsmStandard(std::string_view name, int start, int stop, ChannelFormula formula, BandLimits limits,
                              int subbands = 0) {
  return {RowKind::Standard, name, ModulationType::Gsm, subbands, start, stop, formula, GsmBandwidth, limits};
}

constexpr RowCase CdmaStandard(std::string_view name, int start, int stop, ChannelFormula formula, BandLimits limits,
                               int subbands = 0) {
  return {RowKind::Standard, name, ModulationType::Cdma, subbands, start, stop, formula, CdmaBandwidth, limits};
}

constexpr RowCase GsmSubband(std::string_view name, int start, int stop, ChannelFormula formula, BandLimits limits) {
  return {RowKind::Subband, name, ModulationType::None, 0, start, stop, formula, GsmBandwidth, limits};
}

constexpr RowCase CdmaSubband(std::string_view name, int start, int stop, ChannelFormula formula, BandLimits limits) {
  return {RowKind::Subband, name, ModulationType::None, 0, start, stop, formula, CdmaBandwidth, limits};
}

// The row of a standard with sub-bands has the formula of its lowest channel.
constexpr ChannelFormula Gsm900 = Gsm(890 * Megahertz, 0, 45 * Megahertz);
constexpr ChannelFormula Gsm900Extension = Gsm(890 * Megahertz, 1024, 45 * Megahertz);
constexpr ChannelFormula Cellular = {825'000'000, 870'000'000, 30'000, 0};
constexpr ChannelFormula Tacs = {889'987'500, 934'987'500, 25'000, 0};
constexpr ChannelFormula Jtacs = {915'000'000, 860'000'000, 12'500, 0};
constexpr ChannelFormula Raster25In450 = {450'000'000, 460'000'000, 25'000, 1};
constexpr ChannelFormula Raster20In450 = {451'010'000, 461'010'000, 20'000, 1024};
constexpr ChannelFormula Secondary800 = {806'000'000, 851'000'000, 25'000, 0};

constexpr std::array Cases = {
    // 3GPP TS 45.005 clause 2.
    GsmStandard("E-GSM 900", 0, 1023, Gsm900, Megahertzes(880, 915, 925, 960), 2),
    GsmSubband("E-GSM 900(A)", 0, 124, Gsm900, Megahertzes(880, 915, 925, 960)),
    GsmSubband("E-GSM 900(B)", 975, 1023, Gsm900Extension, Megahertzes(880, 890, 925, 935)),
    GsmStandard("GSM 450", 259, 293, Gsm(450'600'000, 259, 10 * Megahertz),
                {450'400'000, 457'600'000, 460'400'000, 467'600'000}),
    GsmStandard("GSM 480", 306, 340, Gsm(479'000'000, 306, 10 * Megahertz),
                {478'800'000, 486'000'000, 488'800'000, 496'000'000}),
    GsmStandard("GSM 750", 438, 511, GsmMobileTransmitsHigh(747'200'000, 438, 30 * Megahertz),
                Megahertzes(777, 792, 747, 762)),
    GsmStandard("GSM 850", 128, 251, Gsm(824'200'000, 128, 45 * Megahertz), Megahertzes(824, 849, 869, 894)),
    GsmStandard("P-GSM 900", 1, 124, Gsm900, Megahertzes(890, 915, 935, 960)),
    GsmStandard("R-GSM 900", 0, 1023, Gsm900, Megahertzes(876, 915, 921, 960), 2),
    GsmSubband("R-GSM 900(A)", 0, 124, Gsm900, Megahertzes(876, 915, 921, 960)),
    GsmSubband("R-GSM 900(B)", 955, 1023, Gsm900Extension, Megahertzes(876, 890, 921, 935)),
    GsmStandard("ER-GSM 900", 0, 1023, Gsm900, Megahertzes(873, 915, 918, 960), 2),
    GsmSubband("ER-GSM 900(A)", 0, 124, Gsm900, Megahertzes(873, 915, 918, 960)),
    GsmSubband("ER-GSM 900(B)", 940, 1023, Gsm900Extension, Megahertzes(873, 890, 918, 935)),
    GsmStandard("DCS 1800", 512, 885, Gsm(1'710'200'000, 512, 95 * Megahertz), Megahertzes(1710, 1785, 1805, 1880)),
    GsmStandard("PCS 1900", 512, 810, Gsm(1'850'200'000, 512, 80 * Megahertz), Megahertzes(1850, 1910, 1930, 1990)),

    // 3GPP2 C.S0057.
    CdmaStandard("CDMA BC0 800", 1, 1323, Cellular, Megahertzes(815, 849, 860, 894), 3),
    CdmaSubband("CDMA BC0 800(A)", 1, 799, Cellular, Megahertzes(825, 849, 870, 894)),
    CdmaSubband("CDMA BC0 800(B)", 991, 1023, {825'000'000, 870'000'000, 30'000, 1023},
                Megahertzes(824, 825, 869, 870)),
    CdmaSubband("CDMA BC0 800(C)", 1024, 1323, {815'040'000, 860'040'000, 30'000, 1024},
                {815'040'000, 824'040'000, 860'040'000, 869'040'000}),
    CdmaStandard("CDMA BC1 1900", 0, 1199, {1'850'000'000, 1'930'000'000, 50'000, 0},
                 Megahertzes(1850, 1910, 1930, 1990)),
    CdmaStandard("CDMA BC2 TACS", 0, 2047, Tacs, Megahertzes(872, 915, 917, 960), 2),
    CdmaSubband("CDMA BC2 TACS(A)", 0, 1000, Tacs, {889'987'500, 915'000'000, 934'987'500, 960'000'000}),
    CdmaSubband("CDMA BC2 TACS(B)", 1329, 2047, {889'987'500, 934'987'500, 25'000, 2048},
                Megahertzes(872, 890, 917, 935)),
    CdmaStandard("CDMA BC3 JTACS", 1, 1600, Jtacs, Megahertzes(887, 925, 832, 870), 4),
    CdmaSubband("CDMA BC3 JTACS(A)", 1, 799, Jtacs, Megahertzes(915, 925, 860, 870)),
    CdmaSubband("CDMA BC3 JTACS(B)", 801, 1039, {898'000'000, 843'000'000, 12'500, 800},
                Megahertzes(898, 901, 843, 846)),
    CdmaSubband("CDMA BC3 JTACS(C)", 1041, 1199, {887'000'000, 832'000'000, 12'500, 1040},
                Megahertzes(887, 889, 832, 834)),
    CdmaSubband("CDMA BC3 JTACS(D)", 1201, 1600, {893'000'000, 838'000'000, 12'500, 1200},
                Megahertzes(893, 898, 838, 843)),
    CdmaStandard("CDMA BC4 Korean PCS", 0, 599, {1'750'000'000, 1'840'000'000, 50'000, 0},
                 Megahertzes(1750, 1780, 1840, 1870)),
    CdmaStandard("CDMA BC5 450 25 kHz", 1, 871, Raster25In450, Megahertzes(410, 460, 420, 470), 2),
    CdmaSubband("CDMA BC5 450 25 kHz(A)", 1, 300, Raster25In450, {450'000'000, 457'475'000, 460'000'000, 467'475'000}),
    CdmaSubband("CDMA BC5 450 25 kHz(B)", 539, 871, {410'000'000, 420'000'000, 25'000, 472},
                {411'675'000, 419'975'000, 421'675'000, 429'975'000}),
    CdmaStandard("CDMA BC5 450 20 kHz", 1039, 2016, Raster20In450, Megahertzes(451, 484, 461, 494), 2),
    CdmaSubband("CDMA BC5 450 20 kHz(A)", 1039, 1473, Raster20In450,
                {451'310'000, 459'990'000, 461'310'000, 469'990'000}),
    CdmaSubband("CDMA BC5 450 20 kHz(B)", 1792, 2016, {479'000'000, 489'000'000, 20'000, 1792},
                {479'000'000, 483'480'000, 489'000'000, 493'480'000}),
    CdmaStandard("CDMA BC6 2 GHz", 0, 1199, {1'920'000'000, 2'110'000'000, 50'000, 0},
                 Megahertzes(1920, 1980, 2110, 2170)),
    CdmaStandard("CDMA BC8 1800", 0, 1499, {1'710'000'000, 1'805'000'000, 50'000, 0},
                 Megahertzes(1710, 1785, 1805, 1880)),
    CdmaStandard("CDMA BC9 900", 0, 699, {880'000'000, 925'000'000, 50'000, 0}, Megahertzes(880, 915, 925, 960)),
    CdmaStandard("CDMA BC10 Sec. 800", 0, 919, Secondary800, Megahertzes(806, 901, 851, 940), 2),
    CdmaSubband("CDMA BC10 Sec. 800(A)", 0, 719, Secondary800, Megahertzes(806, 824, 851, 869)),
    CdmaSubband("CDMA BC10 Sec. 800(B)", 720, 919, {896'000'000, 935'000'000, 25'000, 720},
                Megahertzes(896, 901, 935, 940)),
    CdmaStandard("CDMA BC12 PAMR 800", 0, 239, {870'012'500, 915'012'500, 25'000, 0}, Megahertzes(870, 876, 915, 921)),
    CdmaStandard("CDMA BC13 IMT 2500", 0, 1399, {2'500'000'000, 2'620'000'000, 50'000, 0},
                 Megahertzes(2500, 2570, 2620, 2690)),
    CdmaStandard("CDMA BC14 US PCS", 0, 1299, {1'850'000'000, 1'930'000'000, 50'000, 0},
                 Megahertzes(1850, 1915, 1930, 1995)),
    CdmaStandard("CDMA BC15 AWS", 0, 899, {1'710'000'000, 2'110'000'000, 50'000, 0},
                 Megahertzes(1710, 1755, 2110, 2155)),
    CdmaStandard("CDMA BC16 US 2500", 140, 1459, {2'495'000'000, 2'617'000'000, 50'000, 0},
                 Megahertzes(2502, 2568, 2624, 2690)),
};

std::string FileBytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> Split(std::string_view text, std::string_view separator) {
  std::vector<std::string> parts;
  for (std::size_t found; (found = text.find(separator)) != std::string_view::npos;) {
    parts.emplace_back(text.substr(0, found));
    text.remove_prefix(found + separator.size());
  }
  parts.emplace_back(text);
  return parts;
}

bool AllDigits(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

// Megahertz as decimal text in whole hertz, without any binary fraction on the way.
std::optional<Hertz> HertzOf(std::string_view megahertz) {
  constexpr std::size_t places = 6;
  const std::size_t point = megahertz.find('.');
  const std::string_view whole = megahertz.substr(0, point);
  std::string fraction(point == std::string_view::npos ? "0" : megahertz.substr(point + 1));
  if (!AllDigits(whole) || whole.size() > 4 || !AllDigits(fraction) || fraction.size() > places) return std::nullopt;
  fraction.resize(places, '0');
  return std::stoll(std::string(whole) + fraction);
}

std::string ShortestGeneralDecimal(const std::string& text) {
  std::array<char, 32> buffer{};
  std::snprintf(buffer.data(), buffer.size(), "%.15G", std::stod(text));
  return buffer.data();
}

// A quotient of whole numbers is the double nearest to the decimal text, so == is the right comparison.
double ToMegahertz(Hertz frequency) { return static_cast<double>(frequency) / static_cast<double>(Megahertz); }

struct FileRow {
  std::string State, Subbands, Name, Uplink, Downlink, StartChannel, StopChannel, Bandwidth, Spacing, Step;
};

class FactoryTable : public testing::Test {
 protected:
  // Every test walks the cases and the rows in step, so none of them may run on a file without its rows.
  void SetUp() override {
    path = std::filesystem::path(CHANPLAN_SHARE_DIR) / "Matrivim.dgc";
    bytes = FileBytes(path);
    ASSERT_TRUE(bytes.ends_with("\r\n")) << path;
    std::vector<std::string> lines = Split(std::string_view(bytes).substr(0, bytes.size() - 2), "\r\n");
    header = lines.front();
    for (const std::string& line : std::span(lines).subspan(1)) {
      const std::vector<std::string> fields = Split(line, "\t");
      ASSERT_EQ(fields.size(), 10u) << line;
      rows.push_back({fields[0], fields[1], fields[2], fields[3], fields[4], fields[5], fields[6], fields[7], fields[8],
                      fields[9]});
    }
    ASSERT_EQ(rows.size(), Cases.size());
    for (std::size_t index = 0; index < rows.size(); ++index) ASSERT_EQ(rows[index].Name, Cases[index].Name);

    const ReadOutcome outcome = LoadSigFile(path);
    ASSERT_TRUE(outcome.Ok()) << outcome.Reason;
    ASSERT_FALSE(outcome.Truncated);
    table = outcome.Table;
    ASSERT_EQ(static_cast<std::size_t>(table.Count), Cases.size());
  }

  std::filesystem::path path;
  std::string bytes;
  std::string header;
  std::vector<FileRow> rows;
  SignalStandardTable table;
};

TEST(FactoryTableHertz, AreReadFromDecimalTextExactly) {
  EXPECT_EQ(HertzOf("889.9875"), 889'987'500);
  EXPECT_EQ(HertzOf("1850"), 1'850'000'000);
  EXPECT_EQ(HertzOf("0.03"), 30'000);
  for (const std::string_view wrong : {"", ".5", "5.", "1,5", "-1", "1E3", "0.0000001", "12345"})
    EXPECT_EQ(HertzOf(wrong), std::nullopt) << wrong;
}

TEST_F(FactoryTable, HasTheHeaderOfATableFile) {
  EXPECT_EQ(header,
            "State\tSubbands\tName\tUplink Start Freq.\tDownlink Stop Freq.\tStart Channel\tStop Channel\tBandwidth\t"
            "Spacing\tStep");
}

TEST_F(FactoryTable, EndsEveryLineWithCrLfAndIsPlainAscii) {
  const auto lines = std::ranges::count(bytes, '\n');
  EXPECT_EQ(static_cast<std::size_t>(lines), Cases.size() + 1);
  EXPECT_EQ(std::ranges::count(bytes, '\r'), lines);
  for (const char c : bytes) EXPECT_TRUE(c == '\t' || c == '\r' || c == '\n' || (c >= ' ' && c <= '~')) << int{c};
}

TEST_F(FactoryTable, IsTheFileTheProgramWritesForItsRecords) { EXPECT_EQ(WriteSigTable(table), bytes); }

TEST_F(FactoryTable, EveryStartFrequencyFollowsItsStandardsChannelFormula) {
  for (std::size_t index = 0; index < Cases.size(); ++index) {
    const RowCase& fact = Cases[index];
    SCOPED_TRACE(fact.Name);
    EXPECT_EQ(HertzOf(rows[index].Uplink), fact.Formula.Uplink(fact.StartChannel));
    EXPECT_EQ(HertzOf(rows[index].Downlink), fact.Formula.Downlink(fact.StartChannel));
    EXPECT_EQ(table.Records[index].UplinkStartFreq, ToMegahertz(fact.Formula.Uplink(fact.StartChannel)));
    EXPECT_EQ(table.Records[index].DownlinkStartFreq, ToMegahertz(fact.Formula.Downlink(fact.StartChannel)));
  }
}

TEST_F(FactoryTable, EveryRowHasTheChannelsOfItsStandard) {
  for (std::size_t index = 0; index < Cases.size(); ++index) {
    const RowCase& fact = Cases[index];
    SCOPED_TRACE(fact.Name);
    EXPECT_EQ(rows[index].StartChannel, std::to_string(fact.StartChannel));
    EXPECT_EQ(rows[index].StopChannel, std::to_string(fact.StopChannel));
    EXPECT_EQ(rows[index].Step, "1");
    EXPECT_EQ(HertzOf(rows[index].Spacing), fact.Formula.Spacing);
    EXPECT_EQ(HertzOf(rows[index].Bandwidth), fact.Bandwidth);
  }
}

TEST_F(FactoryTable, EveryRowHasTheModulationAndSubbandsOfItsStandard) {
  for (std::size_t index = 0; index < Cases.size(); ++index) {
    const RowCase& fact = Cases[index];
    SCOPED_TRACE(fact.Name);
    EXPECT_EQ(rows[index].State, std::to_string(static_cast<int>(fact.Modulation)));
    EXPECT_EQ(rows[index].Subbands, std::to_string(fact.Subbands));
    EXPECT_EQ(Modulation(table.Records[index]), fact.Modulation);
    EXPECT_FALSE(ActiveDisplayMode(table.Records[index]));
  }
}

TEST_F(FactoryTable, WritesEveryNumberInItsShortestForm) {
  for (const FileRow& row : rows) {
    SCOPED_TRACE(row.Name);
    for (const std::string& number : {row.State, row.Subbands, row.Uplink, row.Downlink, row.StartChannel,
                                      row.StopChannel, row.Bandwidth, row.Spacing, row.Step})
      EXPECT_EQ(number, ShortestGeneralDecimal(number));
  }
}

TEST_F(FactoryTable, FirstAndLastCarrierOfEveryChannelRangeLieInsideTheBand) {
  for (std::size_t index = 0; index < rows.size(); ++index) {
    const RowCase& fact = Cases[index];
    SCOPED_TRACE(fact.Name);
    const std::optional<Hertz> uplink = HertzOf(rows[index].Uplink);
    const std::optional<Hertz> downlink = HertzOf(rows[index].Downlink);
    const std::optional<Hertz> spacing = HertzOf(rows[index].Spacing);
    ASSERT_TRUE(uplink && downlink && spacing);
    EXPECT_GE(*uplink, fact.Limits.UplinkLow);
    EXPECT_LE(*uplink, fact.Limits.UplinkHigh);
    EXPECT_GE(*downlink, fact.Limits.DownlinkLow);
    EXPECT_LE(*downlink, fact.Limits.DownlinkHigh);
    if (fact.Subbands > 0) continue;  // the channels of a split band do not run on from its first one
    const Hertz span = *spacing * (std::stoi(rows[index].StopChannel) - std::stoi(rows[index].StartChannel));
    EXPECT_GE(span, 0);
    EXPECT_LE(*uplink + span, fact.Limits.UplinkHigh);
    EXPECT_LE(*downlink + span, fact.Limits.DownlinkHigh);
  }
}

TEST_F(FactoryTable, EverySplitBandSpansItsSubbandsAndSharesItsRasterWithThem) {
  int splitBands = 0;
  for (const int head : StandardIndices(table)) {
    const SignalStandardRecord& standard = table.Row(head);
    EXPECT_EQ(Cases[static_cast<std::size_t>(head)].Kind, RowKind::Standard) << standard.Name;
    if (standard.Subbands == 0) continue;
    SCOPED_TRACE(standard.Name);
    ++splitBands;
    ASSERT_LE(head + standard.Subbands, table.Count - 1);
    const auto begin = table.Records.begin() + head + 1;
    const std::span<const SignalStandardRecord> subbands(begin, static_cast<std::size_t>(standard.Subbands));
    char letter = 'A';
    for (const SignalStandardRecord& subband : subbands) {
      EXPECT_EQ(subband.Name, standard.Name + "(" + letter++ + ")");
      EXPECT_EQ(subband.Bandwidth, standard.Bandwidth);
      EXPECT_EQ(subband.Spacing, standard.Spacing);
      EXPECT_EQ(subband.Step, standard.Step);
    }
    const auto lowest = std::ranges::min_element(subbands, {}, &SignalStandardRecord::StartChannel);
    EXPECT_EQ(standard.StartChannel, lowest->StartChannel);
    EXPECT_EQ(standard.UplinkStartFreq, lowest->UplinkStartFreq);
    EXPECT_EQ(standard.DownlinkStartFreq, lowest->DownlinkStartFreq);
    EXPECT_EQ(standard.StopChannel, std::ranges::max(subbands, {}, &SignalStandardRecord::StopChannel).StopChannel);
    for (std::size_t next = 1; next < subbands.size(); ++next)
      EXPECT_GT(subbands[next].StartChannel, subbands[next - 1].StopChannel) << "sub-bands must not overlap";
  }
  EXPECT_EQ(splitBands, 9);
}

TEST_F(FactoryTable, HasAtLeastTwentyStandardsEachUnderItsOwnName) {
  const std::vector<std::string> names = ListNames(table);
  EXPECT_GE(names.size(), 20u);
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
  EXPECT_EQ(static_cast<std::ptrdiff_t>(names.size()), std::ranges::count(Cases, RowKind::Standard, &RowCase::Kind));
  for (const std::string& name : names) EXPECT_EQ(name.find('('), std::string::npos) << name;
}

TEST_F(FactoryTable, KeepsEveryNameWithinTwentyFourCharacters) {
  for (const FileRow& row : rows) {
    EXPECT_FALSE(row.Name.empty());
    EXPECT_LE(row.Name.size(), LongestName) << row.Name;
  }
}

TEST_F(FactoryTable, ListsGsmBeforeCdma) {
  std::vector<ModulationType> modulations;
  for (const int index : StandardIndices(table)) modulations.push_back(Modulation(table.Row(index)));
  EXPECT_TRUE(std::ranges::is_sorted(modulations, std::ranges::greater{}));
  EXPECT_EQ(modulations.front(), ModulationType::Gsm);
  EXPECT_EQ(modulations.back(), ModulationType::Cdma);
}

TEST_F(FactoryTable, PassesValidationUnchangedAndWithoutAWarning) {
  SignalStandardTable validated = table;
  AlignSubbands(validated);
  EXPECT_EQ(validated, table);
  EXPECT_EQ(WarningsText(FindWarnings(table, ListNames(table))), "");
}

// Why a standard with sub-bands comes first: before it, the checks of the raster look at zeros.
TEST_F(FactoryTable, StartsWithASplitBandBecauseAPlainStandardThereWouldGetWarnings) {
  ASSERT_GT(table.Row(0).Subbands, 0);
  const auto plain = std::ranges::find(table.Records, "GSM 450", &SignalStandardRecord::Name);
  ASSERT_NE(plain, table.Records.end());
  SignalStandardTable plainFirst;
  plainFirst.Append(*plain);
  plainFirst.Append(table.Row(0));
  EXPECT_EQ(WarningsText(FindWarnings(plainFirst, {})),
            "Warning:\tGSM 450\tStep size may be out of range.\r\n"
            "Warning:\tGSM 450\tSpacing may be out of range.\r\n"
            "Warning:\tGSM 450\tBandwidth may be out of range.\r\n");
}

}  // namespace
