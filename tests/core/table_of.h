// Tables and records written down in a test, and shown when one fails.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "core/sig_file.h"
#include "core/signal_standard_table.h"

namespace chanplan {

// Found by GoogleTest, which would else show thousands of bytes in hexadecimal.
inline void PrintTo(const SignalStandardRecord& record, std::ostream* output) {
  constexpr std::size_t shown = 60;
  for (const std::string& field : FieldTexts(record)) {
    *output << '[' << field.substr(0, shown) << ']';
    if (field.size() > shown) *output << " (" << field.size() << " bytes) ";
  }
}

inline void PrintTo(const SignalStandardTable& table, std::ostream* output) {
  *output << table.Count << " rows";
  for (int index = 0; index < table.Count; ++index) PrintTo(table.Row(index), &(*output << "\n  "));
}

}  // namespace chanplan

namespace chanplan::testing {

inline SignalStandardTable TableOf(const std::vector<SignalStandardRecord>& rows) {
  SignalStandardTable table;
  for (const SignalStandardRecord& row : rows) table.Append(row);
  return table;
}

/// A row of which nothing but the name and the sub-bands matters; validation has no fault to find.
inline SignalStandardRecord NamedRow(std::string name, int subbands = 0) {
  return {"2", subbands, std::move(name), 1850.2, 1930.2, 512, 810, 0.2, 0.25, 1};
}

/// A table of rows of these names, all of them standards without sub-bands.
inline SignalStandardTable TableOfNames(const std::vector<std::string>& names) {
  SignalStandardTable table;
  for (const std::string& name : names) table.Append(NamedRow(name));
  return table;
}

/// As many standards as a table takes, named "S0" and so on.
inline SignalStandardTable FullTableOfNames() {
  SignalStandardTable table;
  while (table.Count < MaxRecords) table.Append(NamedRow("S" + std::to_string(table.Count)));
  return table;
}

/// The names of all rows in use.
inline std::vector<std::string> RowNames(const SignalStandardTable& table) {
  std::vector<std::string> names;
  for (int index = 0; index < table.Count; ++index) names.push_back(table.Row(index).Name);
  return names;
}

}  // namespace chanplan::testing
