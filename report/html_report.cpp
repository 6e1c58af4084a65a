#include "report/html_report.h"

#include <cstdint>

#include "core/file_system.h"
#include "core/text_encoding.h"
#include "report/formatted_values.h"

namespace chanplan {
namespace {

// Whoever reads reports by program relies on every byte: "<big>" stays open, and the first record
// follows the head on the same line.
constexpr std::string_view Start =
    "<HTML><Table border=1 cellspacing=0 cellpadding=4><tr><td colspan=9 align=center bgcolor=lightgreen>"
    "<big>File: ";
constexpr std::string_view Head =
    "</td></tr>\r\n"
    "<tr><td><big>Name</big></td>"
    "<td align=center><big>Type</big></td>"
    "<td align=center><big>Uplink Start Freq. (MHz)</big></td>"
    "<td align=center><big>Downlink Start Freq. (MHz)</big></td>"
    "<td align=center><big>Start Channel</big></td>"
    "<td align=center><big>Stop Channel</big></td>"
    "<td align=center><big>Occupied Bandwidth</big></td>"
    "<td align=center><big>Channel Spacing</big></td>"
    "<td align=center><big>Channel Step</big></td></tr>";
constexpr std::string_view End = "</table></html>\r\n";

}  // namespace

std::string ReportText(const SignalStandardTable& table, std::string_view caption) {
  std::string text(Start);
  text.append(Windows1252FromUtf8(caption)).append(Head);
  std::int64_t rowsOfStandard = 0;  // still to come; wider than Subbands, to which 1 is added
  for (int index = 0; index < table.Count; ++index) {
    const SignalStandardRecord& record = table.Row(index);
    text += "<tr><td>";
    if (rowsOfStandard == 0) {
      text += record.Name;
      rowsOfStandard = std::int64_t{record.Subbands} + 1;
    }
    text += "</td>";
    if (rowsOfStandard > 0) --rowsOfStandard;
    for (const std::string& value : FormattedValues(record)) text.append("<td>").append(value).append("</td>");
    text += "</tr>\r\n";
  }
  return text.append(End);
}

std::error_code SaveReport(const std::filesystem::path& path, const SignalStandardTable& table,
                           std::string_view caption) {
  return ReplaceFile(path, ReportText(table, caption));
}

std::string ProposedReportName(std::string_view caption) {
  if (caption.find('.') == std::string_view::npos) return "Untitled.htm";
  const std::string_view name = caption.substr(caption.find_last_of("\\/") + 1);
  return std::string(name.substr(0, name.find('.'))) + ".htm";
}

}  // namespace chanplan
