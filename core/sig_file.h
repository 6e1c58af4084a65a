// The Signal Standard file: reading it with an outcome, writing it as a whole.
//
// 8-bit text, a header line, then one line per record with ten fields between single TABs.
#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "core/record_fields.h"
#include "core/signal_standard_table.h"

namespace chanplan {

/// A line longer than this is a read failure, which bounds the memory any input can take.
inline constexpr std::size_t MaxLineLength = 65536;

enum class ReadFailure {
  None,
  CannotOpen,
  CannotRead,
  Empty,
  CutShort,  ///< while it was saved
  LineTooLong,
  TooFewFields,
  IntegerOutOfRange,
  LoneCarriageReturns,
  Utf16
};

/// What reading a file came to. After a failure the table is empty.
struct ReadOutcome {
  SignalStandardTable Table;
  bool Truncated = false;  ///< 200 rows were read and the rest, if any, was only counted
  /// Rows beyond the 200th, of those in the next 256 MiB; 0 when there were exactly 200. Blank lines are none.
  int RowsLeftOut = 0;
  /// What was not taken as it stands in the file, a line (UTF-8) each, such as
  /// "line 3: \"880,2\" was read as 880".
  std::vector<std::string> Notes;
  ReadFailure Failure = ReadFailure::None;
  int Line = 0;        ///< 1-based line of the failure; 0 when no line is to blame
  std::string Reason;  ///< the failure in words, such as "line 3 has 9 fields where 10 are needed"

  bool Ok() const { return Failure == ReadFailure::None; }
};

/// Reads a table from `input`. CR LF and a bare LF end a line; the last line needs no end. Text of 16-bit
/// characters and lines that end in a lone CR are failures: they would be read as something else. So are lines of more
/// than `longestLine` bytes.
ReadOutcome ReadSigTable(std::istream& input, std::size_t longestLine = MaxLineLength);
ReadOutcome LoadSigFile(const std::filesystem::path& path);

/// A record's ten fields as they are written to a file.
std::array<std::string, FieldCount> FieldTexts(const SignalStandardRecord& record, char decimalSeparator = '.');

/// The whole file's bytes for `table`.
std::string WriteSigTable(const SignalStandardTable& table, char decimalSeparator = '.');

/// Whether a line of `bytes` is too long to be read again: numbers may come out longer than they went in.
bool HasTooLongLine(std::string_view bytes);

/// Writes `table` to `path`, or leaves the file that was there whole and returns the error.
std::error_code SaveSigFile(const std::filesystem::path& path, const SignalStandardTable& table,
                            char decimalSeparator = '.');

/// The caption of a document read from `path`: the path (UTF-8), or the factory table's caption
/// when the path contains the factory file's name in any letter case.
std::string CaptionOfFile(const std::filesystem::path& path);

inline constexpr std::string_view FactoryFileName = "Matrivim.dgc";
inline constexpr std::string_view FactoryCaption = "Factory Default (Read-Only)";
inline constexpr std::string_view ReadOnlyMark = "(Read-Only)";

/// What is said, under the title "File Error", when a file was truncated.
inline constexpr std::string_view FileTruncatedText = "There are too many records in the file, truncating at 200.";

/// What is said when the file called `path` could not be read after `count` records had been.
std::string LoadErrorText(std::string_view path, int count);

}  // namespace chanplan
