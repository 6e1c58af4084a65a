#include "core/table_merge.h"

#include <algorithm>

#include "core/table_edits.h"

namespace chanplan {
namespace {

// Moves the source rows from `row` on that share its base name into the result.
void MoveGroup(PassedRows& source, PassedRows::iterator row, PassedRows& result) {
  const std::string name(BaseName(row->Name));
  for (; row != source.end() && BaseName(row->Name) == name; ++row) {
    result.push_back(*row);
    row->Name.clear();
  }
}

}  // namespace

std::string_view BaseName(std::string_view name) {
  const std::size_t bracket = name.find('(');
  return bracket == 0 ? name : name.substr(0, bracket);
}

MergeOutcome MergeTables(const SignalStandardTable& base, const SignalStandardTable& source,
                         bool uploadReplaceMatching) {
  PassedRows baseRows;
  PassedRows sourceRows;
  GetTable(base, baseRows);
  GetTable(source, sourceRows);
  const auto nameless = [](const SignalStandardTable& table) {
    int count = 0;
    for (int index = 0; index < table.Count; ++index) count += table.Row(index).Name.empty() ? 1 : 0;
    return count;
  };
  PassedRows result;  // longer than a table, perhaps

  std::string_view currentName;
  bool copyGroup = false;
  for (const SignalStandardRecord& row : baseRows) {
    if (row.Name.empty()) continue;
    if (BaseName(row.Name) != currentName) {
      currentName = BaseName(row.Name);
      copyGroup = true;
      const auto matches = [&](const SignalStandardRecord& other) { return BaseName(other.Name) == currentName; };
      if (uploadReplaceMatching) {
        const auto match = std::ranges::find_if(sourceRows, matches);
        copyGroup = match == sourceRows.end();
        if (!copyGroup) MoveGroup(sourceRows, match, result);
      } else {
        for (SignalStandardRecord& other : sourceRows)
          if (matches(other)) other.Name.clear();
      }
    }
    if (copyGroup) result.push_back(row);
  }

  for (const SignalStandardRecord& row : sourceRows)
    if (!row.Name.empty()) result.push_back(row);

  MergeOutcome outcome{base, result.size() >= MaxRecords, std::max(0, static_cast<int>(result.size()) - MaxRecords),
                       nameless(base) + nameless(source)};
  result.resize(MaxRecords);
  SetTable(result, outcome.Table);
  return outcome;
}

MergeOutcome MergeWholeGroups(SignalStandardTable base, SignalStandardTable source, bool uploadReplaceMatching) {
  PutLastCountRight(base);
  PutLastCountRight(source);
  return MergeTables(base, source, uploadReplaceMatching);
}

}  // namespace chanplan
