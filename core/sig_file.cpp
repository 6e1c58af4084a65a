#include "core/sig_file.h"

#include <algorithm>
#include <fstream>
#include <optional>
#include <span>

#include "core/file_system.h"
#include "core/lenient_number.h"
#include "core/number_picture.h"

namespace chanplan {
namespace {

struct Failure {
  ReadFailure Kind;
  std::string Reason;
};

class LineReader {
 public:
  explicit LineReader(std::istream& input) : bytes(*input.rdbuf()) {}

  // The next line without its end, which stays valid until the next call; nothing at the end.
  std::optional<std::string_view> Next() {
    using Traits = std::char_traits<char>;
    line.clear();
    ++number;
    bool ended = false;
    int byte = 0;
    // One more than the limit is let in, for the CR of the line's end.
    while (!ended && line.size() <= MaxLineLength + 1 && (byte = bytes.sbumpc()) != Traits::eof()) {
      ended = byte == '\n';
      if (!ended) line += Traits::to_char_type(byte);
    }
    if (ended && line.ends_with('\r')) line.pop_back();
    if (line.size() > MaxLineLength) Fail(ReadFailure::LineTooLong, " is longer than 64 KiB");
    if (!ended && line.empty()) return std::nullopt;
    return line;
  }

  int Number() const { return number; }

  [[noreturn]] void Fail(ReadFailure kind, std::string_view problem) const {
    throw Failure{kind, "line " + std::to_string(number).append(problem)};
  }

 private:
  std::streambuf& bytes;
  std::string line;
  int number = 0;
};

std::size_t SplitFields(std::string_view line, std::span<std::string_view, FieldCount> fields) {
  std::size_t count = 0;
  while (count < FieldCount) {
    const std::size_t tab = line.find('\t');
    fields[count++] = line.substr(0, tab);
    if (tab == std::string_view::npos) break;
    line.remove_prefix(tab + 1);
  }
  return count;
}

SignalStandardRecord ParseRecord(std::string_view line, const LineReader& reader) {
  std::array<std::string_view, FieldCount> fields;
  const std::size_t count = SplitFields(line, fields);
  if (count < FieldCount)
    reader.Fail(ReadFailure::TooFewFields, " has " + std::to_string(count) + " fields where 10 are needed");

  const auto integer = [&](std::size_t column) {
    const auto value = RoundToInteger(LeadingNumber(fields[column]));
    if (!value)
      reader.Fail(ReadFailure::IntegerOutOfRange,
                  ": the value of \"" + std::string(HeaderNames[column]) + "\" is out of range");
    return *value;
  };

  SignalStandardRecord record;
  record.State = ShortestDecimal(LeadingNumber(fields[0]));
  record.Subbands = integer(1);
  record.Name = fields[2];
  record.UplinkStartFreq = LeadingNumber(fields[3]);
  record.DownlinkStartFreq = LeadingNumber(fields[4]);
  record.StartChannel = integer(5);
  record.StopChannel = integer(6);
  record.Bandwidth = LeadingNumber(fields[7]);
  record.Spacing = LeadingNumber(fields[8]);
  record.Step = integer(9);
  return record;
}

ReadOutcome Failed(ReadFailure failure, int line, std::string reason) {
  ReadOutcome outcome;
  outcome.Failure = failure;
  outcome.Line = line;
  outcome.Reason = std::move(reason);
  return outcome;
}

}  // namespace

ReadOutcome ReadSigTable(std::istream& input) {
  LineReader reader(input);
  try {
    if (!reader.Next()) return Failed(ReadFailure::Empty, 0, "the file is empty, not even a header line is there");
    ReadOutcome outcome;
    while (const auto line = reader.Next()) {
      outcome.Table.Append(ParseRecord(*line, reader));
      outcome.Truncated = outcome.Table.Count == MaxRecords;
      if (outcome.Truncated) break;
    }
    return outcome;
  } catch (const Failure& failure) {
    return Failed(failure.Kind, reader.Number(), failure.Reason);
  } catch (const std::ios_base::failure& failure) {  // a directory, a bad disk
    return Failed(ReadFailure::CannotRead, 0, failure.code().message());
  }
}

ReadOutcome LoadSigFile(const std::filesystem::path& path) {
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) return Failed(ReadFailure::CannotOpen, 0, std::generic_category().message(errno));
  return ReadSigTable(file);
}

std::array<std::string, FieldCount> FieldTexts(const SignalStandardRecord& record, char decimalSeparator) {
  const auto decimal = [&](double value) { return ShortestDecimal(value, decimalSeparator); };
  return {record.State,
          std::to_string(record.Subbands),
          record.Name,
          decimal(record.UplinkStartFreq),
          decimal(record.DownlinkStartFreq),
          std::to_string(record.StartChannel),
          std::to_string(record.StopChannel),
          decimal(record.Bandwidth),
          decimal(record.Spacing),
          std::to_string(record.Step)};
}

std::string WriteSigTable(const SignalStandardTable& table, char decimalSeparator) {
  std::string bytes;
  const auto writeLine = [&](const auto& fields) {
    for (const auto& field : fields) bytes.append(field) += '\t';
    bytes.pop_back();
    bytes += "\r\n";
  };
  writeLine(HeaderNames);
  for (int index = 0; index < table.Count; ++index) writeLine(FieldTexts(table.Row(index), decimalSeparator));
  return bytes;
}

std::error_code SaveSigFile(const std::filesystem::path& path, const SignalStandardTable& table,
                            char decimalSeparator) {
  const std::string bytes = WriteSigTable(table, decimalSeparator);
  // Numbers may come out longer than they went in: a line that could not be read again is not written.
  for (std::size_t start = 0, end; (end = bytes.find("\r\n", start)) != std::string::npos; start = end + 2)
    if (end - start > MaxLineLength) return std::make_error_code(std::errc::value_too_large);
  return ReplaceFile(path, bytes);
}

std::string CaptionOfFile(const std::filesystem::path& path) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  const std::u8string bytes = path.u8string();
  std::string caption(bytes.begin(), bytes.end());
  const auto found = std::ranges::search(caption, FactoryFileName, {}, lower, lower);
  return found.empty() ? caption : std::string(FactoryCaption);
}

std::string LoadErrorText(std::string_view path, int count) {
  std::string text = "Error loading " + std::string(path);
  if (count >= MaxRecords) text += "\r\n\r\nMaximum count (200) exceeded.";
  return text;
}

}  // namespace chanplan
