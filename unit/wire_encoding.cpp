#include "unit/wire_encoding.h"

#include <charconv>
#include <cmath>

#include "core/number_picture.h"
#include "core/record_fields.h"
#include "core/text_encoding.h"

namespace chanplan {
namespace {

constexpr double HertzPerMegahertz = 1'000'000;
constexpr double FourByteLimit = 4294967296.0;  // 2^32

int ByteValue(char byte) { return static_cast<unsigned char>(byte); }

std::string RowText(const SignalStandardRecord& record, int rowNumber) {
  return "row " + std::to_string(rowNumber) + " (" + Utf8FromWindows1252(record.Name) + "): ";
}

// The bytes of a record's field; knows what to name when the value does not fit.
struct FieldEncoder {
  const SignalStandardRecord& Record;
  int RowNumber;
  const RecordField& Encoded;

  std::string Bytes() const { return VisitField(Record, Encoded, *this); }

  std::string operator()(const std::string& text) const {
    return Encoded.Id == Field::State ? Whole(StateValue(Record)) : TextToFixedBytes(text, Encoded.WireSize);
  }

  std::string operator()(std::int32_t value) const { return Whole(value); }

  std::string operator()(double megahertz) const {
    if (!(megahertz >= 0)) Refuse(ShortestDecimal(megahertz) + " MHz does not fit, it must not be negative");
    double hertz = HertzOf(megahertz);
    return SingleToFourBytes(hertz);
  }

 private:
  std::string Whole(std::int64_t value) const {
    const int highest = Encoded.WireSize == 1 ? 255 : 65535;
    if (value < 0 || value > highest)
      Refuse(std::to_string(value) + " does not fit, it must be 0 to " + std::to_string(highest));
    return IntegerToTwoBytes(static_cast<int>(value)).substr(2 - Encoded.WireSize);
  }

  [[noreturn]] void Refuse(const std::string& problem) const {
    throw WireMisfit(RowText(Record, RowNumber) + std::string(Encoded.Name) + " " + problem);
  }
};

// In what form a value reaches a unit, if in another one than it has here.
struct WireLoss {
  const SignalStandardRecord& Record;
  const RecordField& Lost;
  bool IsSubband;  ///< its name is not looked at: it takes its standard's

  std::string operator()(const std::string& text) const {
    if (Lost.Id == Field::State)
      return StateValue(Record) == ByteValue(EndOfListState) ? "255 ends the list when the unit's table is read" : "";
    if (IsSubband) return {};
    if (text.size() > Lost.WireSize) return "is longer than 24 characters and is cut off";
    if (FixedBytesToText(TextToFixedBytes(text, Lost.WireSize), Lost.WireSize) != text)
      return "has control characters, which are lost";
    return {};
  }

  std::string operator()(double megahertz) const {
    const double hertz = HertzOf(megahertz);
    if (hertz >= FourByteLimit)
      return ShortestDecimal(megahertz) + " MHz is more than a unit can take and goes out as 0";
    if (hertz != std::floor(hertz)) return ShortestDecimal(megahertz) + " MHz is cut to whole hertz";
    return {};
  }

  std::string operator()(std::int32_t /*value*/) const { return {}; }
};

int WholeNumber(std::string_view bytes) { return bytes.size() == 1 ? ByteValue(bytes[0]) : TwoBytesToInteger(bytes); }

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
  std::string bytes;
  bytes.reserve(WireRecordSize);
  for (const RecordField& field : RecordFields) bytes += FieldEncoder{record, rowNumber, field}.Bytes();
  return bytes;
}

SignalStandardRecord DecodeRecord(std::string_view bytes) {
  SignalStandardRecord record;
  for (const RecordField& field : RecordFields) {
    const std::string_view part = bytes.substr(0, field.WireSize);
    VisitField(record, field,
               ByType{[&](std::string& text) { text = FixedBytesToText(part, field.WireSize); },
                      [&](std::int32_t& value) { value = WholeNumber(part); },
                      [&](double& megahertz) { megahertz = FourBytesToDouble(part) / HertzPerMegahertz; }});
    if (field.Id == Field::State) record.State = std::to_string(WholeNumber(part));
    bytes.remove_prefix(field.WireSize);
  }
  return record;
}

std::string EncodeTable(const SignalStandardTable& table, std::uint16_t unitTableTag) {
  std::string bytes = IntegerToTwoBytes(unitTableTag) + IntegerToTwoBytes(table.Count);
  for (int index = 0; index < table.Count; ++index) bytes += EncodeRecord(table.Row(index), index + 1);
  return bytes;
}

std::vector<std::string> WireLosses(const SignalStandardTable& table) {
  std::vector<std::string> losses;
  SubbandCounter subbands;
  for (int index = 0; index < table.Count; ++index) {
    const SignalStandardRecord& record = table.Row(index);
    const bool isSubband = subbands.Takes(record);
    for (const RecordField& field : RecordFields)
      if (const std::string loss = VisitField(record, field, WireLoss{record, field, isSubband}); !loss.empty())
        losses.push_back(RowText(record, index + 1) + std::string(field.Name) + " " + loss);
    if (StateValue(record) != ByteValue(EndOfListState)) continue;
    // Whatever else becomes of those, they are not seen again.
    for (int behind = index + 1; behind < table.Count; ++behind)
      losses.push_back(RowText(table.Row(behind), behind + 1) + "is not read, as it stands behind the end of the list");
    break;
  }
  return losses;
}

bool SubbandCounter::Takes(const SignalStandardRecord& record) {
  if (record.Subbands > 0) {
    expected = record.Subbands;
    return false;
  }
  return expected > 0 && expected-- > 0;
}

}  // namespace chanplan
