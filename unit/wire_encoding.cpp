#include "unit/wire_encoding.h"

#include <charconv>
#include <cmath>

#include "core/number_picture.h"
#include "core/table_difference.h"

namespace chanplan {
namespace {

constexpr double HertzPerMegahertz = 1'000'000;
constexpr double FourByteLimit = 4294967296.0;  // 2^32

int ByteValue(char byte) { return static_cast<unsigned char>(byte); }

enum Field {
  State,
  Subbands,
  Name,
  UplinkStartFreq,
  DownlinkStartFreq,
  StartChannel,
  StopChannel,
  Bandwidth,
  Spacing,
  Step
};

std::string RowText(const SignalStandardRecord& record, int rowNumber) {
  return "row " + std::to_string(rowNumber) + " (" + record.Name + "): ";
}

// Appends a record's fields, knowing the row to name when one does not fit.
class RecordEncoder {
 public:
  RecordEncoder(const SignalStandardRecord& encoded, int number) : record(encoded), rowNumber(number) {}

  void AppendByte(Field field, std::int64_t value) {
    Check(field, value, 255);
    bytes += static_cast<char>(value);
  }

  void AppendTwoBytes(Field field, std::int32_t value) {
    Check(field, value, 65535);
    bytes += IntegerToTwoBytes(value);
  }

  void AppendFrequency(Field field, double megahertz) {
    if (!(megahertz >= 0)) Refuse(field, ShortestDecimal(megahertz) + " MHz does not fit, it must not be negative");
    double hertz = HertzOf(megahertz);
    bytes += SingleToFourBytes(hertz);
  }

  std::string bytes;

 private:
  void Check(Field field, std::int64_t value, int highest) const {
    if (value < 0 || value > highest)
      Refuse(field, std::to_string(value) + " does not fit, it must be 0 to " + std::to_string(highest));
  }

  [[noreturn]] void Refuse(Field field, const std::string& problem) const {
    throw WireMisfit(RowText(record, rowNumber) + std::string(FieldNames[field]) + " " + problem);
  }

  const SignalStandardRecord& record;
  int rowNumber;
};

}  // namespace

int TwoBytesToInteger(std::string_view bytes) { return ByteValue(bytes[0]) * 256 + ByteValue(bytes[1]); }

std::string IntegerToTwoBytes(int value) { return {static_cast<char>(value / 256), static_cast<char>(value % 256)}; }

double FourBytesToDouble(std::string_view bytes) {
  return ((ByteValue(bytes[0]) * 256.0 + ByteValue(bytes[1])) * 256 + ByteValue(bytes[2])) * 256 + ByteValue(bytes[3]);
}

std::string SingleToFourBytes(double& value) {
  std::string bytes(4, '\0');
  if (value >= FourByteLimit) return bytes;
  double weight = 16777216;
  for (char& byte : bytes) {
    const auto digit = static_cast<unsigned char>(value / weight);
    byte = static_cast<char>(digit);
    value -= digit * weight;
    weight /= 256;
  }
  return bytes;
}

std::string FixedBytesToText(std::string_view bytes, std::size_t width) {
  std::string text;
  for (const char byte : bytes.substr(0, bytes.find('\0')))
    if (ByteValue(byte) > 31) text += byte;
  return text.size() > width ? std::string(bytes.substr(0, width)) : text;
}

std::string TextToFixedBytes(std::string_view text, std::size_t width) {
  std::string bytes(text.substr(0, width));
  bytes.resize(width, '\0');
  return bytes;
}

double HertzOf(double megahertz) {
  const DecimalDigits decimal = ToDecimalDigits(megahertz);
  const std::string text = (decimal.Negative ? "-" : "") + (decimal.Digits.empty() ? "0" : decimal.Digits) + "e" +
                           std::to_string(decimal.Exponent + 6);
  double hertz = 0;
  if (std::from_chars(text.data(), text.data() + text.size(), hertz).ec != std::errc())
    return megahertz * HertzPerMegahertz;  // beyond a double's range, where no hertz counts
  return hertz;
}

std::string EncodeRecord(const SignalStandardRecord& record, int rowNumber) {
  RecordEncoder encoder(record, rowNumber);
  encoder.AppendByte(State, StateValue(record));
  encoder.AppendByte(Subbands, record.Subbands);
  encoder.bytes += TextToFixedBytes(record.Name, WireNameSize);
  encoder.AppendFrequency(UplinkStartFreq, record.UplinkStartFreq);
  encoder.AppendFrequency(DownlinkStartFreq, record.DownlinkStartFreq);
  encoder.AppendTwoBytes(StartChannel, record.StartChannel);
  encoder.AppendTwoBytes(StopChannel, record.StopChannel);
  encoder.AppendFrequency(Bandwidth, record.Bandwidth);
  encoder.AppendFrequency(Spacing, record.Spacing);
  encoder.AppendTwoBytes(Step, record.Step);
  return encoder.bytes;
}

SignalStandardRecord DecodeRecord(std::string_view bytes) {
  const auto megahertz = [&](std::size_t offset) {
    return FourBytesToDouble(bytes.substr(offset, 4)) / HertzPerMegahertz;
  };
  const auto integer = [&](std::size_t offset) { return TwoBytesToInteger(bytes.substr(offset, 2)); };
  SignalStandardRecord record;
  record.State = std::to_string(ByteValue(bytes[0]));
  record.Subbands = ByteValue(bytes[1]);
  record.Name = FixedBytesToText(bytes.substr(2, WireNameSize), WireNameSize);
  record.UplinkStartFreq = megahertz(26);
  record.DownlinkStartFreq = megahertz(30);
  record.StartChannel = integer(34);
  record.StopChannel = integer(36);
  record.Bandwidth = megahertz(38);
  record.Spacing = megahertz(42);
  record.Step = integer(46);
  return record;
}

std::string EncodeTable(const SignalStandardTable& table, std::uint16_t unitTableTag) {
  std::string bytes = IntegerToTwoBytes(unitTableTag) + IntegerToTwoBytes(table.Count);
  for (int index = 0; index < table.Count; ++index) bytes += EncodeRecord(table.Row(index), index + 1);
  return bytes;
}

std::vector<std::string> WireLosses(const SignalStandardTable& table) {
  std::vector<std::string> losses;
  for (int index = 0; index < table.Count; ++index) {
    const SignalStandardRecord& record = table.Row(index);
    const auto add = [&](Field field, const std::string& loss) {
      losses.push_back(RowText(record, index + 1) + std::string(FieldNames[field]) + " " + loss);
    };
    if (StateValue(record) == ByteValue(EndOfListState)) add(State, "255 ends the list when the unit's table is read");
    if (record.Name.size() > WireNameSize) add(Name, "is longer than 24 characters and is cut off");
    for (const auto& [field, value] : {std::pair{UplinkStartFreq, record.UplinkStartFreq},
                                       {DownlinkStartFreq, record.DownlinkStartFreq},
                                       {Bandwidth, record.Bandwidth},
                                       {Spacing, record.Spacing}})
      if (HertzOf(value) >= FourByteLimit)
        add(field, ShortestDecimal(value) + " MHz is more than a unit can take and goes out as 0");
  }
  return losses;
}

}  // namespace chanplan
