// The simulated unit as a machine of bytes: what it answers, what it keeps, how it fails.
#include "simulator/simulated_unit.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/core/table_of.h"
#include "tests/unit/wire_bytes.h"
#include "unit/wire_encoding.h"

namespace chanplan::testing {
namespace {

const std::string Sync = "\xFF";

// Two rows, and the same as they travel.
SignalStandardTable SmallTable() {
  SignalStandardTable table;
  table.Append({"131", 1, "GSM", 890.2, 935.2, 1, 124, 0.2, 0.25, 1});
  table.Append({"0", 0, "GSM(A)", 880, 925, 975, 1023, 0.2, 0.25, 1});
  return table;
}
const std::string SmallRecords = RecordBytes(131, 1, "GSM", {890200000, 935200000, 1, 124, 200000, 250000, 1}) +
                                 RecordBytes(0, 0, "GSM(A)", {880000000, 925000000, 975, 1023, 200000, 250000, 1});

// A table as an upload brings it.
std::string UploadedTable(int count) {
  std::string bytes = TableHeader(7, count);
  for (int number = 1; number <= count; ++number) bytes += RecordBytes(2, 0, "S" + std::to_string(number));
  return bytes;
}

struct Unit : SimulatedUnit {
  explicit Unit(const SimulatedUnitOptions& unitOptions = {})
      : SimulatedUnit(unitOptions, [this](const std::string& line) { Traced.push_back(line); }) {}

  std::vector<std::string> Traced;
};

Unit UnitWithSmallTable(Fault fault = Fault::None) { return Unit({.Table = SmallTable(), .Misbehaviour = fault}); }

// Identification

struct Identity {
  std::string Model;
  std::string Firmware;
  std::string Reply;
};

TEST(SimulatedUnit, IdentifiesItselfInThirteenBytes) {
  for (const Identity& identity : {
           Identity{"QX4471C", "3.00", "QX4471C3.00"},
           Identity{"AB12D", "2.9", "AB12D  2.9 "},
           Identity{"", "", "           "},
           Identity{"LONGMODEL", "12.345", "LONGMOD12.3"},
       }) {
    SCOPED_TRACE(identity.Model);
    Unit unit({.Model = identity.Model, .Firmware = identity.Firmware, .Table = {}});
    EXPECT_EQ(unit.Receive("E"), Bytes({0, 0}) + identity.Reply);
    EXPECT_EQ(unit.Receive("E"), Bytes({0, 0}) + identity.Reply) << "any number of times";
  }
}

TEST(SimulatedUnit, EchoesTheSyncByte) {
  Unit unit;
  EXPECT_EQ(unit.Receive(Sync), Sync);
  EXPECT_EQ(unit.Receive(Sync + Sync), Sync + Sync);
}

TEST(SimulatedUnit, IgnoresOtherBytes) {
  for (int value = 0; value < 256; ++value) {
    if (value == 0x45 || value == 0x4F || value == 0x4E || value == 0xFF) continue;
    Unit unit;
    EXPECT_EQ(unit.Receive(Bytes({value})), "") << value;
    EXPECT_EQ(unit.Receive(Sync), Sync) << "and goes on after " << value;
  }
}

// Its table

TEST(SimulatedUnit, SendsItsTableWithTheTag100) {
  Unit unit = UnitWithSmallTable();
  EXPECT_EQ(unit.Receive("O"), TableHeader(100, 2) + SmallRecords);
}

TEST(SimulatedUnit, SendsAHeaderAloneWhenItHoldsNothing) {
  Unit unit;
  EXPECT_EQ(unit.Receive("O"), TableHeader(100, 0));
}

TEST(SimulatedUnit, RefusesToHoldWhatDoesNotFitTheWire) {
  SignalStandardTable table;
  table.Append({"300", 0, "X"});
  EXPECT_THROW(Unit({.Table = table}), WireMisfit);
}

TEST(SimulatedUnit, KeepsWhatIsUploadedByteForByte) {
  Unit unit = UnitWithSmallTable();
  // Names as no editor would send them: they come back as they came.
  const std::string table = TableHeader(0xABCD, 2) +
                            RecordBytes(255, 0, "\x01\xFFodd", {4294967295u, 1, 65535, 0, 1, 2, 65535}) +
                            RecordBytes(0, 9, std::string("a\0b", 3));
  EXPECT_EQ(unit.Receive("N" + table), "");
  EXPECT_EQ(unit.Uploads(), 1);
  EXPECT_EQ(unit.Receive("O"), table);
  EXPECT_EQ(unit.Table().Count, 2);
  EXPECT_EQ(unit.Table().Row(0).UplinkStartFreq, 4294.967295);
}

TEST(SimulatedUnit, TakesAnUploadInPiecesOfAnySize) {
  const std::string table = UploadedTable(3);
  for (const std::size_t size : {1u, 2u, 3u, 47u, 48u, 1000u}) {
    SCOPED_TRACE(size);
    Unit unit = UnitWithSmallTable();
    const std::string bytes = "N" + table + Sync;
    std::string reply;
    for (std::size_t start = 0; start < bytes.size(); start += size) reply += unit.Receive(bytes.substr(start, size));
    EXPECT_EQ(reply, Sync);
    EXPECT_EQ(unit.Uploads(), 1);
    EXPECT_EQ(unit.Receive("O"), table);
  }
}

TEST(SimulatedUnit, TakesCommandBytesInsideAnUploadAsData) {
  const std::string table = TableHeader(7, 1) + RecordBytes(0x4E, 0x4F, "ENO\xFF");
  Unit unit;
  EXPECT_EQ(unit.Receive("N" + table), "");
  EXPECT_EQ(unit.Receive("O"), table);
}

struct SizedUpload {
  int Records;
  bool Kept;
};

TEST(SimulatedUnit, HoldsAtMost200Records) {
  for (const SizedUpload& sized : {SizedUpload{0, true}, {1, true}, {200, true}, {201, false}, {1000, false}}) {
    SCOPED_TRACE(sized.Records);
    Unit unit = UnitWithSmallTable();
    const std::string table = UploadedTable(sized.Records);
    EXPECT_EQ(unit.Receive("N" + table + Sync), Sync) << "all records are taken off the line";
    EXPECT_EQ(unit.Uploads(), sized.Kept ? 1 : 0);
    EXPECT_EQ(unit.Receive("O"), sized.Kept ? table : TableHeader(100, 2) + SmallRecords);
  }
}

TEST(SimulatedUnit, ForgetsAnUploadThatDoesNotBecomeComplete) {
  const std::string table = UploadedTable(3);
  for (const std::size_t size : {std::size_t{0}, std::size_t{3}, std::size_t{4}, table.size() - 1}) {
    SCOPED_TRACE(size);
    Unit unit = UnitWithSmallTable();
    unit.Receive("N" + table.substr(0, size));
    unit.LineIsQuiet();
    EXPECT_EQ(unit.Traced.back(),
              "upload ended early: " + std::to_string(size) + " bytes came; the table stays as it was");
    EXPECT_EQ(unit.Uploads(), 0);
    EXPECT_EQ(unit.Receive("O"), TableHeader(100, 2) + SmallRecords);
    unit.Receive("N" + table);
    EXPECT_EQ(unit.Receive("O"), table) << "the next upload starts anew";
  }
}

TEST(SimulatedUnit, TakesTheSyncByteAsDataWhileATableIsIncomplete) {
  Unit unit = UnitWithSmallTable();
  const std::string table = UploadedTable(1);
  EXPECT_EQ(unit.Receive("N" + table.substr(0, table.size() - 2) + Sync), "");
  EXPECT_EQ(unit.Receive(Sync), "") << "this was the table's last byte";
  EXPECT_EQ(unit.Uploads(), 1);
}

TEST(SimulatedUnit, MindsAQuietLineOnlyDuringAnUpload) {
  Unit unit = UnitWithSmallTable();
  unit.LineIsQuiet();
  unit.Receive("E");
  unit.LineIsQuiet();
  EXPECT_EQ(unit.Traced,
            (std::vector<std::string>{"received 45  |E|", "identifies itself as QX4471C with firmware 3.00"}));
  EXPECT_EQ(unit.Receive("O"), TableHeader(100, 2) + SmallRecords);
}

TEST(SimulatedUnit, TracesWhatItReceivesAndDoes) {
  Unit unit;
  unit.Receive("xE" + Sync + "O");
  unit.Receive("N" + TableHeader(7, 1) + RecordBytes(129, 0, "GSM", {890200000, 935200000, 1, 124, 200000, 250000, 1}));
  EXPECT_EQ(unit.Traced, (std::vector<std::string>{
                             "received 78  |x|",
                             "does not know this command",
                             "received 45  |E|",
                             "identifies itself as QX4471C with firmware 3.00",
                             "received FF  |.|",
                             "echoes the sync byte",
                             "received 4F  |O|",
                             "sends its table of 0 records",
                             "received 4E  |N|",
                             "is to receive a table",
                             "received 00 07 00 01 81 00 47 53 4D 00 00 00 00 00 00 00  |......GSM.......|",
                             "received 00 00 00 00 00 00 00 00 00 00 00 00 00 00 35 0F  |..............5.|",
                             "received 5F C0 37 BE 05 00 00 01 00 7C 00 03 0D 40 00 03  |_.7......|...@..|",
                             "received D0 90 00 01  |....|",
                             "has received a table of 1 records",
                             "  1: 129 | 0 | GSM | 890.2 | 935.2 | 1 | 124 | 0.2 | 0.25 | 1",
                         }));
}

// Faults

TEST(SilentUnit, AnswersNothingAndTakesNothing) {
  Unit unit = UnitWithSmallTable(Fault::Silent);
  EXPECT_EQ(unit.Receive("EO" + Sync + "N" + UploadedTable(1)), "");
  EXPECT_EQ(unit.Uploads(), 0);
  EXPECT_EQ(unit.Table(), SmallTable());
  EXPECT_EQ(unit.Traced[1], "keeps silent");
}

TEST(UnitSilentAfterIdentify, AnswersOnceAndThenNothing) {
  Unit unit = UnitWithSmallTable(Fault::SilentAfterIdentify);
  EXPECT_EQ(unit.Receive(Sync), Sync) << "up to then it works";
  EXPECT_EQ(unit.Receive("E").size(), 13u);
  EXPECT_EQ(unit.Receive("EO" + Sync + "N" + UploadedTable(1)), "");
  EXPECT_EQ(unit.Uploads(), 0);
}

TEST(UnitWithTruncatedReply, SendsTheFirstHalfOfItsTable) {
  Unit unit = UnitWithSmallTable(Fault::TruncateReply);
  EXPECT_EQ(unit.Receive("O"), (TableHeader(100, 2) + SmallRecords).substr(0, 50));
  EXPECT_EQ(unit.Receive("E").size(), 13u);
  EXPECT_EQ(unit.Receive(Sync), Sync);
  EXPECT_FALSE(unit.HangsUp());
}

TEST(UnitWithGarbage, SendsTheSameNoiseEveryTime) {
  Unit unit = UnitWithSmallTable(Fault::Garbage);
  const std::string noise = unit.Receive("O");
  EXPECT_EQ(noise.size(), 100u);
  EXPECT_NE(noise, TableHeader(100, 2) + SmallRecords);
  EXPECT_EQ(UnitWithSmallTable(Fault::Garbage).Receive("O"), noise);
  EXPECT_EQ(unit.Receive(Sync).size(), 1u);
  EXPECT_NE(unit.Receive(Sync), Sync);
  EXPECT_EQ(unit.Receive("E"), Bytes({0, 0}) + "QX4471C3.00");
}

TEST(UnitWithWrongCount, AnnouncesOneRecordMoreThanItSends) {
  Unit unit = UnitWithSmallTable(Fault::WrongCount);
  EXPECT_EQ(unit.Receive("O"), TableHeader(100, 3) + SmallRecords);
  unit.Receive("N" + UploadedTable(1));
  EXPECT_EQ(unit.Receive("O"), TableHeader(7, 2) + RecordBytes(2, 0, "S1"));
}

struct Loss {
  int Interval;
  std::string Reply;  // to "E", whose 13 bytes are the 2nd to 14th on the line
};

TEST(UnitThatDropsBytes, LosesEveryNthInBothDirections) {
  const std::string identity = Bytes({0, 0}) + "QX4471C3.00";
  for (const Loss& loss :
       {Loss{1, ""}, Loss{3, Bytes({0}) + "QX47C300"}, Loss{14, identity.substr(0, 12)}, Loss{15, identity}}) {
    SCOPED_TRACE(loss.Interval);
    Unit unit({.Table = {}, .Misbehaviour = Fault::DropEveryNthByte, .DropInterval = loss.Interval});
    EXPECT_EQ(unit.Receive("E"), loss.Reply);
  }
  Unit unit({.Table = {}, .Misbehaviour = Fault::DropEveryNthByte, .DropInterval = 2});
  EXPECT_EQ(unit.Receive("xE"), "") << "the command itself is lost";
}

TEST(UnitThatDropsBytes, TakesTheSyncByteForALostOne) {
  Unit unit({.Table = {}, .Misbehaviour = Fault::DropEveryNthByte, .DropInterval = 100});
  EXPECT_EQ(unit.Receive("N" + UploadedTable(3) + Sync), "") << "nothing is left to be echoed";
  EXPECT_EQ(unit.Uploads(), 1);
  EXPECT_EQ(unit.Table().Row(2).Step, 255) << "the last record ends in the sync byte";
}

TEST(UnitThatDropsBytes, KeepsItsTableWhenMoreAreLost) {
  Unit unit({.Table = SmallTable(), .Misbehaviour = Fault::DropEveryNthByte, .DropInterval = 50});
  EXPECT_EQ(unit.Receive("N" + UploadedTable(3) + Sync), "");
  unit.LineIsQuiet();
  EXPECT_EQ(unit.Uploads(), 0);
  EXPECT_EQ(unit.Table(), SmallTable());
}

TEST(SlowUnit, AnswersTheSame) {
  Unit unit = UnitWithSmallTable(Fault::Slow);
  EXPECT_EQ(unit.Receive("E"), Bytes({0, 0}) + "QX4471C3.00");
  EXPECT_EQ(unit.Receive("O"), TableHeader(100, 2) + SmallRecords);
}

TEST(UnitThatHangsUp, DoesSoInTheMiddleOfADownload) {
  Unit unit = UnitWithSmallTable(Fault::HangUp);
  unit.Receive("E" + Sync);
  EXPECT_FALSE(unit.HangsUp());
  EXPECT_EQ(unit.Receive("O"), (TableHeader(100, 2) + SmallRecords).substr(0, 50));
  EXPECT_TRUE(unit.HangsUp());
}

TEST(UnitThatHangsUp, DoesSoInTheMiddleOfAnUpload) {
  Unit unit = UnitWithSmallTable(Fault::HangUp);
  const std::string table = UploadedTable(3);
  unit.Receive("N" + table.substr(0, table.size() / 2 - 1));
  EXPECT_FALSE(unit.HangsUp());
  unit.Receive(table.substr(table.size() / 2 - 1));
  EXPECT_TRUE(unit.HangsUp());
  EXPECT_EQ(unit.Table(), SmallTable()) << "what comes behind it is not heard";
}

TEST(UnitWithLateEchoes, KeepsThemForLater) {
  Unit unit = UnitWithSmallTable(Fault::LateEcho);
  EXPECT_EQ(unit.Receive(Sync + "E"), Bytes({0, 0}) + "QX4471C3.00") << "which overtakes the echo";
  EXPECT_EQ(unit.TakeLateEchoes(), Sync);
  EXPECT_EQ(unit.TakeLateEchoes(), "") << "once";
  EXPECT_EQ(UnitWithSmallTable().TakeLateEchoes(), "");
}

TEST(UnitThatEchoes, SendsEveryByteBackBeforeItsAnswer) {
  Unit unit = UnitWithSmallTable(Fault::Echo);
  EXPECT_EQ(unit.Receive("E"), "E" + Bytes({0, 0}) + "QX4471C3.00");
  EXPECT_EQ(unit.Receive("N" + UploadedTable(1)), "N" + UploadedTable(1));
  EXPECT_EQ(unit.Uploads(), 1);
}

TEST(UnitThatIsSwitchedOff, KeepsItsTableAndAnswersNothingAnyMore) {
  Unit unit = UnitWithSmallTable(Fault::OffInUpload);
  EXPECT_EQ(unit.Receive("E").size(), 13u);
  EXPECT_EQ(unit.Receive("N" + UploadedTable(3) + Sync + "E"), "");
  EXPECT_EQ(unit.Uploads(), 0);
  EXPECT_EQ(unit.Table(), SmallTable());
}

TEST(UnitWithTooManyRecords, SendsAllThatItAnnounces) {
  Unit unit = UnitWithSmallTable(Fault::TooMany);
  const std::string reply = unit.Receive("O");
  EXPECT_TRUE(reply.starts_with(TableHeader(100, 201) + SmallRecords));
  EXPECT_EQ(reply.size(), 4u + 201 * 48);
}

TEST(SimulatedUnit, MisbehavesFromTheNthCommandOn) {
  Unit unit({.Table = SmallTable(), .Misbehaviour = Fault::Silent, .FaultFrom = 4});
  EXPECT_EQ(unit.Receive("E").size(), 13u);
  EXPECT_EQ(unit.Receive("N" + UploadedTable(1)), "");
  EXPECT_EQ(unit.Receive(Sync), Sync) << "a table's bytes are no commands";
  EXPECT_EQ(unit.Receive("E"), "");
  Unit losing({.Table = {}, .Misbehaviour = Fault::DropEveryNthByte, .FaultFrom = 2, .DropInterval = 1});
  EXPECT_EQ(losing.Receive("E").size(), 13u);
  EXPECT_EQ(losing.Receive("E"), "");
}

TEST(SimulatedUnit, GivesTheTableOfItsStartTheTagItIsTold) {
  Unit unit({.Table = SmallTable(), .Tag = 0x0100});
  EXPECT_EQ(unit.Receive("O"), TableHeader(0x0100, 2) + SmallRecords);
}

TEST(FaultNames, NameEveryFaultOnce) {
  EXPECT_EQ(FaultNames.size(), static_cast<std::size_t>(Fault::HangUp) + 1);
  for (std::size_t index = 0; index < FaultNames.size(); ++index)
    EXPECT_EQ(static_cast<std::size_t>(FaultNames[index].Kind), index) << FaultNames[index].Name;
}

}  // namespace
}  // namespace chanplan::testing
