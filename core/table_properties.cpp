#include "core/table_properties.h"

#include <array>
#include <filesystem>
#include <string_view>

#include "core/file_system.h"
#include "core/number_picture.h"
#include "core/sig_file.h"

namespace chanplan {
namespace {

using namespace std::chrono;

constexpr std::string_view LineEnd = "\r\n";
constexpr hours ShownOffset{-6};

// Where dates count from: what a file shows whose times cannot be read.
constexpr sys_seconds ZeroDate = sys_days(year(1899) / December / 30);

constexpr std::array<std::string_view, 12> MonthNames = {"January",   "February", "March",    "April",
                                                         "May",       "June",     "July",     "August",
                                                         "September", "October",  "November", "December"};

std::string TwoDigits(auto value) { return FormatNumber(static_cast<double>(value), "00"); }

std::string FileHead(const std::string& caption, const std::filesystem::path& file) {
  constexpr FileFacts unknown{0, ZeroDate - ShownOffset, ZeroDate - ShownOffset, ZeroDate - ShownOffset};
  const FileFacts facts = ReadFileFacts(file).value_or(unknown);
  std::string text = caption;
  text.append(LineEnd).append(LineEnd);
  text.append("File size:      \t").append(FormatNumber(facts.Size, "#,##0")).append(" bytes").append(LineEnd);
  text.append("Created:    \t").append(PropertiesTime(facts.Created)).append(LineEnd);
  text.append("Modified:   \t").append(PropertiesTime(facts.Modified)).append(LineEnd);
  text.append("Accessed:   \t").append(PropertiesTime(facts.Accessed)).append(LineEnd).append(LineEnd);
  return text;
}

std::string Head(const std::string& caption) {
  if (caption.find(ReadOnlyMark) != std::string::npos) return "Factory Default Signal Standards\r\n\r\n";
  const std::filesystem::path file(std::u8string(caption.begin(), caption.end()));
  if (IsFile(file)) return FileHead(caption, file);
  return "File:             \tUnsaved\r\n\r\n";
}

}  // namespace

std::string TableProperties(const SignalStandardTable& table, const std::string& caption) {
  const auto standards = static_cast<int>(StandardIndices(table).size());
  std::string text = Head(caption);
  text.append("Record count:     \t").append(FormatNumber(table.Count, "#0")).append(" of 200").append(LineEnd);
  text.append("Signal Standards: \t").append(FormatNumber(standards, "#0")).append(LineEnd);
  text.append("Sub-bands:        \t").append(FormatNumber(table.Count - standards, "#0"));
  return text;
}

std::string PropertiesTime(sys_seconds utc) {
  const sys_seconds shown = utc + ShownOffset;
  const auto day = floor<days>(shown);
  const year_month_day date(day);
  const hh_mm_ss time(shown - day);
  std::string text(MonthNames[static_cast<unsigned>(date.month()) - 1]);
  text.append(" ").append(TwoDigits(static_cast<unsigned>(date.day())));
  text.append(", ").append(FormatNumber(static_cast<int>(date.year()), "0000"));
  text.append("  ").append(TwoDigits(make12(time.hours()).count()));
  text.append(":").append(TwoDigits(time.minutes().count()));
  text.append(":").append(TwoDigits(time.seconds().count()));
  text.append(is_am(time.hours()) ? " AM" : " PM");
  return text;
}

}  // namespace chanplan
