#include "core/sig_file.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <optional>
#include <span>

#include "core/file_system.h"
#include "core/lenient_number.h"
#include "core/number_picture.h"
#include "core/text_encoding.h"
#include "core/unfinished_mark.h"

namespace chanplan {
namespace {

struct Failure {
  ReadFailure Kind;
  std::string Reason;
};

class LineReader {
 public:
  LineReader(std::istream& input, std::size_t longestLine) : bytes(*input.rdbuf()), longest(longestLine) {}

  // The next line without its end, which stays valid until the next call; nothing at the end.
  std::optional<std::string_view> Next() {
    using Traits = std::char_traits<char>;
    line.clear();
    ++number;
    bool ended = false;
    int byte = 0;
    // One more than the limit is let in, for the CR of the line's end.
    while (!ended && line.size() <= longest + 1 && (byte = bytes.sbumpc()) != Traits::eof()) {
      ended = byte == '\n';
      if (!ended) line += Traits::to_char_type(byte);
    }
    while (ended && line.ends_with('\r')) line.pop_back();  // more than one where line ends were converted twice
    if (line.size() > longest) Fail(ReadFailure::LineTooLong, " is longer than 64 KiB");
    if (!ended && line.empty()) return std::nullopt;
    return line;
  }

  int Number() const { return number; }

  // Lines with anything in them in what is left, up to a limit that bounds the time.
  int CountRest() {
    constexpr int most = 1 << 28;
    int lines = 0, byte = 0;
    bool blank = true;
    for (int count = 0; count < most && (byte = bytes.sbumpc()) != std::char_traits<char>::eof(); ++count) {
      if (blank && byte != '\n' && byte != '\r') ++lines;
      blank = byte == '\n' || (blank && byte == '\r');
    }
    return lines;
  }

  [[noreturn]] void Fail(ReadFailure kind, std::string_view problem) const {
    throw Failure{kind, "line " + std::to_string(number).append(problem)};
  }

 private:
  std::streambuf& bytes;
  std::size_t longest;
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

// A file that is mostly wrong is wrong in one way, which the first lines tell.
constexpr std::size_t MostNotes = 100;

void NoteUnlessWhole(std::string_view text, double value, const LineReader& reader, std::vector<std::string>& notes) {
  if (notes.size() >= MostNotes || text.empty()) return;
  const bool isHeld = std::abs(value) < std::numeric_limits<double>::max();  // what no number can hold comes as that
  if (!HasMoreThanNumber(text) && LeadingNumber(text) == value && isHeld) return;
  notes.push_back("line " + std::to_string(reader.Number()) + ": \"" + Utf8FromWindows1252(text) + "\" was read as " +
                  ShortestDecimal(value));
}

// Whether a lone CR in `line` stands where a row begins. A name may have one; nothing behind it has.
bool HidesARow(std::string_view line, const LineReader& reader) {
  constexpr std::ptrdiff_t tabs = FieldCount - 1;
  std::size_t start = 0;
  for (std::size_t cr; (cr = line.find('\r', start)) != std::string_view::npos; start = cr + 1) {
    const std::string_view before = line.substr(start, cr - start), after = line.substr(cr + 1);
    const std::string_view next = after.substr(0, after.find('\r'));
    const bool isHeader = reader.Number() == 1;  // which may be anything
    if (isHeader ? std::ranges::count(next, '\t') >= tabs
                 : std::ranges::count(before, '\t') >= tabs && next.find('\t') != std::string_view::npos)
      return true;
  }
  return false;
}

// Two-byte characters, by their mark or by the zeros in a header's first letters.
bool LooksLikeUtf16(std::string_view line) {
  if (line.starts_with("\xFF\xFE") || line.starts_with("\xFE\xFF")) return true;
  if (line.size() < 4) return false;
  const auto zeros = [&line](std::size_t at) { return line[at] == 0 && line[at + 2] == 0; };
  const auto letters = [&line](std::size_t at) { return line[at] > ' ' && line[at + 2] > ' '; };
  return (letters(0) && zeros(1)) || (zeros(0) && letters(1));
}

// A row where the header belongs: both frequencies are numbers.
bool LooksLikeARow(std::string_view line) {
  std::array<std::string_view, FieldCount> fields;
  if (SplitFields(line, fields) < FieldCount) return false;
  return std::ranges::all_of(std::span(fields).subspan(3, 2),
                             [](std::string_view text) { return !text.empty() && LeadingNumber(text) != 0; });
}

bool IsText(std::string_view line) {
  return std::ranges::none_of(line, [](char c) { return static_cast<unsigned char>(c) < ' ' && c != '\t'; });
}

std::string HeaderLine() {
  std::string line;
  for (const RecordField& field : RecordFields) line.append(field.Header) += '\t';
  line.pop_back();
  return line;
}

void LookAtHeader(std::string_view line, const LineReader& reader, std::vector<std::string>& notes) {
  if (line.starts_with(UnfinishedMark) && HeaderLine().substr(1).starts_with(line.substr(1)))
    throw Failure{ReadFailure::CutShort, "saving it was cut short"};
  if (LooksLikeUtf16(line)) reader.Fail(ReadFailure::Utf16, " is text of 16-bit characters (UTF-16), not of bytes");
  if (LooksLikeARow(line)) notes.emplace_back("line 1 looks like a row, and was left out as the header");
  if (!IsText(line)) notes.emplace_back("line 1 is no text, so that this may be no table but a signature");
}

SignalStandardRecord ParseRecord(std::string_view line, const LineReader& reader, std::vector<std::string>& notes) {
  std::array<std::string_view, FieldCount> fields;
  const std::size_t count = SplitFields(line, fields);
  if (count < FieldCount)
    reader.Fail(ReadFailure::TooFewFields,
                " has " + std::to_string(count) + (count == 1 ? " field" : " fields") + " where 10 are needed");

  SignalStandardRecord record;
  for (std::size_t column = 0; column < FieldCount; ++column) {
    const std::string_view text = fields[column];
    const auto readInteger = [&](std::int32_t& value) {
      const auto integer = RoundToInteger(LeadingNumber(text));
      if (!integer)
        reader.Fail(ReadFailure::IntegerOutOfRange,
                    ": the value of \"" + std::string(RecordFields[column].Header) + "\" is out of range");
      value = *integer;
      NoteUnlessWhole(text, value, reader, notes);
    };
    const auto readNumber = [&](double& value) {
      value = LeadingNumber(text);
      NoteUnlessWhole(text, value, reader, notes);
    };
    VisitField(record, RecordFields[column],
               ByType{[&](std::string& value) { value = text; }, readNumber, readInteger});
  }
  NoteUnlessWhole(record.State, LeadingNumber(record.State), reader, notes);
  record.State = ShortestDecimal(LeadingNumber(record.State));
  return record;
}

void AppendField(std::string& bytes, const SignalStandardRecord& record, const RecordField& field,
                 char decimalSeparator) {
  VisitField(record, field,
             ByType{[&](const std::string& value) { bytes += value; },
                    [&](std::int32_t value) { bytes += std::to_string(value); },
                    [&](double value) { bytes += ShortestDecimal(value, decimalSeparator); }});
}

ReadOutcome Failed(ReadFailure failure, int line, std::string reason) {
  ReadOutcome outcome;
  outcome.Failure = failure;
  outcome.Line = line;
  outcome.Reason = std::move(reason);
  return outcome;
}

}  // namespace

ReadOutcome ReadSigTable(std::istream& input, std::size_t longestLine) {
  LineReader reader(input, longestLine);
  try {
    const auto header = reader.Next();
    if (!header) return Failed(ReadFailure::Empty, 0, "the file is empty, not even a header line is there");
    ReadOutcome outcome;
    LookAtHeader(*header, reader, outcome.Notes);
    const std::size_t cr = header->find('\r');
    const bool hasLoneCr = cr != std::string_view::npos && cr + 1 < header->size();
    const auto refuseLoneCrs = [&reader] {
      reader.Fail(ReadFailure::LoneCarriageReturns, ": lines end in a lone CR, not in CR LF or LF");
    };
    if (HidesARow(*header, reader)) refuseLoneCrs();
    while (const auto line = reader.Next()) {
      if (HidesARow(*line, reader)) refuseLoneCrs();
      outcome.Table.Append(ParseRecord(*line, reader, outcome.Notes));
      outcome.Truncated = outcome.Table.Count == MaxRecords;
      if (outcome.Truncated) break;
    }
    if (hasLoneCr && outcome.Table.Count == 0) refuseLoneCrs();
    if (outcome.Truncated) outcome.RowsLeftOut = reader.CountRest();
    if (const int left = outcome.RowsLeftOut; left > 0)
      outcome.Notes.push_back(std::to_string(left) + (left == 1 ? " row beyond the 200th was left out"
                                                                : " rows beyond the 200th were left out"));
    return outcome;
  } catch (const Failure& failure) {
    return Failed(failure.Kind, reader.Number(), failure.Reason);
  } catch (const std::ios_base::failure& failure) {  // a directory, a bad disk
    return Failed(ReadFailure::CannotRead, 0, failure.code().message());
  }
}

ReadOutcome LoadSigFile(const std::filesystem::path& path) {
  HealInterruptedSaves();
  auto still = HoldStill(path);
  errno = 0;
  std::ifstream file(UnlimitedPath(path), std::ios::binary);
  if (!file) return Failed(ReadFailure::CannotOpen, 0, std::generic_category().message(errno));
  ReadOutcome outcome = ReadSigTable(file);
  still.reset();
  if (outcome.Failure == ReadFailure::CutShort) outcome.Reason += "; " + WhyNotHealed(path);
  return outcome;
}

std::array<std::string, FieldCount> FieldTexts(const SignalStandardRecord& record, char decimalSeparator) {
  std::array<std::string, FieldCount> texts;
  for (std::size_t column = 0; column < FieldCount; ++column)
    AppendField(texts[column], record, RecordFields[column], decimalSeparator);
  return texts;
}

std::string WriteSigTable(const SignalStandardTable& table, char decimalSeparator) {
  std::string bytes = HeaderLine() + "\r\n";
  for (int index = 0; index < table.Count; ++index) {
    for (const RecordField& field : RecordFields) {
      AppendField(bytes, table.Row(index), field, decimalSeparator);
      bytes += '\t';
    }
    bytes.replace(bytes.size() - 1, 1, "\r\n");  // in place of a TAB
  }
  return bytes;
}

bool HasTooLongLine(std::string_view bytes) {
  for (std::size_t start = 0, end; (end = bytes.find("\r\n", start)) != std::string_view::npos; start = end + 2)
    if (end - start > MaxLineLength) return true;
  return false;
}

std::error_code SaveSigFile(const std::filesystem::path& path, const SignalStandardTable& table,
                            char decimalSeparator) {
  const std::string bytes = WriteSigTable(table, decimalSeparator);
  if (HasTooLongLine(bytes)) return std::make_error_code(std::errc::value_too_large);
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
