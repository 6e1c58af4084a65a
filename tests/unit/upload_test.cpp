#include <gtest/gtest.h>

#include <array>
#include <numeric>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/unit/hand_driven_link.h"
#include "tests/unit/recorded_progress.h"
#include "tests/unit/wire_bytes.h"
#include "unit/transfer.h"
#include "unit/wire_encoding.h"

namespace chanplan::testing {
namespace {

using Texts = std::vector<std::string>;

// An upload of `Sent` over an open link.
struct Upload : HandDrivenLink {
  UnitTable Sent;
  RecordedProgress Progress;

  explicit Upload(const std::vector<SignalStandardRecord>& rows = {}) : Sent{TableOf(rows), 7} { Open(); }
  LinkResult Run() { return UploadChanplans(Link, EncodeTable(Sent.Table, UploadTag(Sent.UnitTableTag)), Progress); }
  // What is sent behind the command and the header.
  std::string Records() const { return Port.SentBytes().substr(1 + 4); }
};

TEST(UploadChanplans, SendsTheCommandTheHeaderAndTheRecords) {
  Upload upload({{"2", 1, "GSM 900", 880.2, 925.2, 975, 1023, 0.2, 0.2, 1},
                 {"0", 0, "GSM 900(A)", 890, 935, 0, 124, 0.2, 0.2, 1},
                 {"129", 0, "CDMA 800", 825.03, 870.03, 1, 799, 1.23, 0.03, 2}});
  upload.Sent.UnitTableTag = 0xABCD;
  EXPECT_EQ(upload.Run(), LinkTrue);
  EXPECT_EQ(upload.Port.SentBytes(),
            Bytes({0x4E, 0xAB, 0xCD, 0x00, 0x03}) +
                RecordBytes(2, 1, "GSM 900", {880200000, 925200000, 975, 1023, 200000, 200000, 1}) +
                RecordBytes(0, 0, "GSM 900(A)", {890000000, 935000000, 0, 124, 200000, 200000, 1}) +
                RecordBytes(0x81, 0, "CDMA 800", {825030000, 870030000, 1, 799, 1230000, 30000, 2}));
}

TEST(UploadChanplans, OfAnEmptyTableSendsTheHeaderOnly) {
  Upload upload;
  EXPECT_EQ(upload.Run(), LinkTrue);
  EXPECT_EQ(upload.Port.SentBytes(), Bytes({0x4E, 0x00, 0x07, 0x00, 0x00}));
}

TEST(UploadChanplans, GivesATableThatNeverCameFromAUnitTheTag100) {
  Upload upload({NamedRow("GSM")});
  upload.Sent.UnitTableTag = 0;
  EXPECT_EQ(upload.Run(), LinkTrue);
  EXPECT_EQ(upload.Port.SentBytes().substr(1, 2), Bytes({0x00, 0x64}));
}

TEST(UploadTag, Is100ForATableThatNeverCameFromAUnitAndItsOwnForOthers) {
  EXPECT_EQ(UploadTag(0), 100);
  for (const std::uint16_t tag : std::initializer_list<std::uint16_t>{1, 100, 0xFFFF}) EXPECT_EQ(UploadTag(tag), tag);
}

TEST(UploadChanplans, SendsTheTagThatADownloadBrought) {
  for (const std::uint16_t tag : std::initializer_list<std::uint16_t>{1, 100, 0x1234, 0xFFFF}) {
    Upload upload;
    upload.Sent.UnitTableTag = tag;
    EXPECT_EQ(upload.Run(), LinkTrue);
    EXPECT_EQ(upload.Port.SentBytes().substr(1, 2), Bytes({tag >> 8, tag & 255}));
  }
}

// By then the unit may take the rest for commands.
TEST(UploadChanplans, IsGivenUpAfterAPauseOfMoreThanTwoSeconds) {
  for (const std::size_t heldUpBehind : {1u, 2u, 50u}) {
    for (const auto& [pause, result] : {std::pair{1900ms, LinkTrue}, {2100ms, LinkFalse}}) {
      Upload upload({NamedRow("GSM")});
      upload.Port.Script = [&, heldUp = pause](std::string_view sent) {
        if (sent.size() == heldUpBehind) upload.Clock.Time += heldUp;
        return std::vector<DelayedBytes>();
      };
      EXPECT_EQ(upload.Run(), result) << heldUpBehind;
      EXPECT_EQ(upload.Port.SentBytes().size(), result == LinkTrue ? 1 + 4 + 48u : heldUpBehind);
    }
  }
}

TEST(UploadChanplans, SendsFrequenciesInHertz) {
  struct Case {
    double Megahertz;
    std::array<int, 4> Bytes;
  };
  constexpr Case cases[] = {
      {1880, {0x70, 0x0E, 0x86, 0x00}},        {900, {0x35, 0xA4, 0xE9, 0x00}},
      {1054.3718, {0x3E, 0xD8, 0x6F, 0xD8}},   {0.03, {0x00, 0x00, 0x75, 0x30}},
      {4294.967295, {0xFF, 0xFF, 0xFF, 0xFF}}, {4294.967296, {0x00, 0x00, 0x00, 0x00}},
      {6000, {0x00, 0x00, 0x00, 0x00}},
  };
  for (const Case& frequency : cases) {
    SCOPED_TRACE(frequency.Megahertz);
    const auto& [b1, b2, b3, b4] = frequency.Bytes;
    Upload upload(
        {{"0", 0, "", frequency.Megahertz, frequency.Megahertz, 0, 0, frequency.Megahertz, frequency.Megahertz, 0}});
    EXPECT_EQ(upload.Run(), LinkTrue);
    for (const std::size_t offset : {26u, 30u, 38u, 42u})
      EXPECT_EQ(upload.Records().substr(offset, 4), Bytes({b1, b2, b3, b4})) << offset;
  }
}

TEST(UploadChanplans, SendsNamesInTheirFixedField) {
  struct Case {
    std::string Name;
    std::string Field;
  };
  const Case cases[] = {
      {"012345678901234567890123456789", "012345678901234567890123"},
      {"GSM", "GSM" + std::string(21, '\0')},
      {"", std::string(24, '\0')},
      {"\xC4", "\xC4" + std::string(23, '\0')},
  };
  for (const Case& name : cases) {
    Upload upload({NamedRow(name.Name)});
    EXPECT_EQ(upload.Run(), LinkTrue);
    EXPECT_EQ(upload.Records().substr(2, 24), name.Field);
  }
}

TEST(UploadChanplans, SendsSubbandsUnderTheirOwnNames) {
  Upload upload({NamedRow("Band", 1), NamedRow("Band(A)")});
  EXPECT_EQ(upload.Run(), LinkTrue);
  EXPECT_EQ(upload.Records().substr(48 + 2, 8), std::string("Band(A)\0", 8));
}

TEST(UploadChanplans, SendsTheStateAsOneByte) {
  struct Case {
    const char* State;
    int Byte;
  };
  for (const Case& state : {Case{"129", 0x81}, Case{"0", 0}, Case{"", 0}, Case{"131", 0x83}, Case{"255", 0xFF}}) {
    Upload upload({{state.State, 0, "", 0, 0, 0, 0, 0, 0, 0}});
    EXPECT_EQ(upload.Run(), LinkTrue);
    EXPECT_EQ(upload.Records().substr(0, 1), Bytes({state.Byte})) << state.State;
  }
}

TEST(UploadChanplans, EndsWithTheLastRecordOfAFullTable) {
  Upload upload(std::vector<SignalStandardRecord>(200, NamedRow("GSM")));
  EXPECT_EQ(upload.Run(), LinkTrue);
  EXPECT_EQ(upload.Port.SentBytes().size(), 1u + 9604u);
  EXPECT_EQ(upload.Port.SentBytes().substr(3, 2), Bytes({0x00, 0xC8}));
  EXPECT_EQ(upload.Port.SentBytes().substr(1 + 4 + 199 * 48), upload.Records().substr(0, 48));
}

TEST(UploadChanplans, SendsNothingBehindTheTableOfADamagedStandard) {
  Upload upload({NamedRow("its sub-bands are gone", 100)});
  upload.Sent.Table.Row(1).Name = "of an earlier table";
  EXPECT_EQ(upload.Run(), LinkTrue);
  EXPECT_EQ(upload.Records().size(), 48u);
}

TEST(UploadChanplans, PausesAtLeastAMillisecondAfterEveryByte) {
  Upload upload(std::vector<SignalStandardRecord>(200, NamedRow("GSM")));
  const auto elapsed = Elapsed(upload.Clock, [&] { upload.Run(); });
  EXPECT_GE(elapsed, 9605ms);
  EXPECT_LT(elapsed, 9605ms * 11 / 10) << "nor much more than that";
  for (std::size_t index = 1; index < upload.Port.Sent.size(); ++index)
    ASSERT_GE(upload.Port.Sent[index].Time - upload.Port.Sent[index - 1].Time, 1ms) << index;
}

TEST(UploadChanplans, ShowsEveryByteThatIsSent) {
  Upload upload({NamedRow("GSM")});
  EXPECT_EQ(upload.Run(), LinkTrue);
  std::vector<int> values(52);
  std::iota(values.begin(), values.end(), 1);
  EXPECT_EQ(upload.Progress.Values, values);
  EXPECT_EQ(upload.Progress.Texts, (Texts{"range 0 52", "caption 52"}));
}

TEST(UploadChanplans, ReadsNoReply) {
  Upload upload({NamedRow("GSM")});
  upload.Port.Script = [](std::string_view) { return std::vector<DelayedBytes>{{"\xFF", 0}}; };
  EXPECT_EQ(upload.Run(), LinkTrue);
  EXPECT_EQ(upload.Port.BytesWaiting(), 1u + 52u);
}

struct MisfitCase {
  const char* Description;
  void (*Set)(SignalStandardRecord& record);
};

constexpr MisfitCase MisfitCases[] = {
    {"State", [](SignalStandardRecord& record) { record.State = "256"; }},
    {"negative State", [](SignalStandardRecord& record) { record.State = "-1"; }},
    {"Subbands", [](SignalStandardRecord& record) { record.Subbands = 256; }},
    {"negative Subbands", [](SignalStandardRecord& record) { record.Subbands = -1; }},
    {"UplinkStartFreq", [](SignalStandardRecord& record) { record.UplinkStartFreq = -1; }},
    {"DownlinkStartFreq", [](SignalStandardRecord& record) { record.DownlinkStartFreq = -1; }},
    {"StartChannel", [](SignalStandardRecord& record) { record.StartChannel = 65536; }},
    {"StopChannel", [](SignalStandardRecord& record) { record.StopChannel = -1; }},
    {"Bandwidth", [](SignalStandardRecord& record) { record.Bandwidth = -1; }},
    {"Spacing", [](SignalStandardRecord& record) { record.Spacing = -1; }},
    {"Step", [](SignalStandardRecord& record) { record.Step = 65536; }},
};

TEST(UploadChanplans, SendsNothingWhenAValueDoesNotFit) {
  for (const MisfitCase& misfit : MisfitCases) {
    SCOPED_TRACE(misfit.Description);
    Upload upload({NamedRow("A"), NamedRow("B"), NamedRow("C")});
    misfit.Set(upload.Sent.Table.Row(2));
    EXPECT_THROW(upload.Run(), WireMisfit);
    EXPECT_EQ(upload.Port.SentBytes(), "");
  }
}

TEST(UploadChanplans, SendsNothingOfMoreThan200Rows) {
  Upload upload;
  upload.Sent.Table.Count = 201;
  EXPECT_THROW(upload.Run(), std::out_of_range);
  EXPECT_EQ(upload.Port.SentBytes(), "");
}

TEST(UploadChanplans, StopsSoonAfterThePortBreaks) {
  for (const std::size_t sent : {1u, 2u, 5u, 30u, 52u}) {
    SCOPED_TRACE(sent);
    Upload upload({NamedRow("A"), NamedRow("B"), NamedRow("C")});
    upload.Port.BreaksAfterBytes = sent;
    const auto elapsed = Elapsed(upload.Clock, [&] { EXPECT_EQ(upload.Run(), LinkFalse); });
    EXPECT_EQ(upload.Port.SentBytes().size(), sent);
    EXPECT_LT(elapsed, std::chrono::milliseconds(sent + 5) + QuietTime);
  }
}

TEST(UploadChanplans, DoesNotCallATableSentWhoseLastByteMayBeLost) {
  Upload upload({NamedRow("A")});
  upload.Port.BreaksAfterBytes = 1 + 52;
  EXPECT_EQ(upload.Run(), LinkFalse);
}

TEST(UploadChanplans, LetsEventsRunBetweenTheBytes) {
  Upload upload({NamedRow("A")});
  upload.Run();
  EXPECT_GE(upload.Clock.Passes, 2 * 53);
  EXPECT_LE(upload.Clock.LongestPause, 1ms);
}

}  // namespace
}  // namespace chanplan::testing
