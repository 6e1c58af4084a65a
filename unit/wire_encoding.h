// How values, records and whole tables travel: unsigned big-endian numbers, frequencies in hertz.
//
// A table is a header (tag, record count; 2 bytes each) and 48 bytes a record: its fields in their
// order, each in as many bytes as `RecordFields` says.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "core/record_fields.h"
#include "core/signal_standard_table.h"

namespace chanplan {

inline constexpr char IdentifyCommand = 0x45;
inline constexpr char SendTableCommand = 0x4F;
inline constexpr char ReceiveTableCommand = 0x4E;
inline constexpr char SyncByte = '\xFF';  ///< ends an exchange; the unit echoes it
inline constexpr std::size_t WireHeaderSize = 4;
inline constexpr std::size_t WireRecordSize = [] {
  std::size_t size = 0;
  for (const RecordField& field : RecordFields) size += field.WireSize;
  return size;
}();
static_assert(WireRecordSize == 48, "units know no other records");
/// In place of a record's `State`: the list ends here.
inline constexpr char EndOfListState = '\xFF';

int TwoBytesToInteger(std::string_view bytes);     ///< 0..65535
std::string IntegerToTwoBytes(int value);          ///< of 0..65535
double FourBytesToDouble(std::string_view bytes);  ///< 0..4294967295

/// The integer part of `value` (0 or more) as an unsigned 32-bit number, not, as the name may
/// suggest, as floating point. 4294967296 and more give four zero bytes. `value` is reduced to what
/// is left after the last byte was taken off.
std::string SingleToFourBytes(double& value);

/// The text in a fixed field: ends at the first zero byte, leaves other bytes below 32 out.
std::string FixedBytesToText(std::string_view bytes, std::size_t width);
/// Exactly `width` bytes: cut off, or filled up with zero bytes.
std::string TextToFixedBytes(std::string_view text, std::size_t width);

/// Hertz of a frequency in MHz, exactly: the decimal number that `megahertz` stands for, times a
/// million. A floating product would make 1054.3718 MHz one hertz too low.
double HertzOf(double megahertz);

/// A record's value does not fit its field on the wire. The text (UTF-8) names row, field and range.
class WireMisfit : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The 48 bytes of `record`; throws WireMisfit, naming the row `rowNumber` (1 = first).
std::string EncodeRecord(const SignalStandardRecord& record, int rowNumber);
/// The record in 48 bytes, its name as it stands there.
SignalStandardRecord DecodeRecord(std::string_view bytes);

/// Header and records of `table`; throws WireMisfit.
std::string EncodeTable(const SignalStandardTable& table, std::uint16_t unitTableTag);

/// Tells the records, given one after the other, that are sub-bands: those take their standard's name,
/// whatever name bytes they carry.
class SubbandCounter {
 public:
  bool Takes(const SignalStandardRecord& record);

 private:
  int expected = 0;
};

/// What of `table` arrives at a unit as another value, a line (UTF-8) each: names longer than the field
/// or with control characters, frequencies that go out as zero or are cut to whole hertz, a State that
/// ends the list when read back, and the rows behind it.
std::vector<std::string> WireLosses(const SignalStandardTable& table);

}  // namespace chanplan
