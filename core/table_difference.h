// What differs between two tables, standard by standard and field by field.
#pragma once

#include <string>
#include <vector>

#include "core/record_fields.h"
#include "core/signal_standard_table.h"

namespace chanplan {

enum class DifferenceKind {
  OnlyLeft,   ///< a standard or sub-band that only the left table has
  OnlyRight,  ///< one that only the right table has
  Renamed,    ///< a standard that is the same but for its name
  Field,      ///< a field of a standard or sub-band
  Order,      ///< the same standards in another order
};

struct TableDifference {
  DifferenceKind Kind;
  int Left = -1;             ///< table index of the row in the left table, -1 where there is none
  int Right = -1;            ///< in the right table
  int Subband = 0;           ///< the row's number in its group, 0 = the standard itself
  Field What = Field::Name;  ///< of a field or a new name

  bool operator==(const TableDifference&) const = default;
};

/// What differs, in the order of `left`, then what only `right` has; nothing when the tables hold the
/// same groups in the same order. Standards are paired by name, of several with one name the first with
/// the first; then those that are left over with others whose fields and sub-bands are the same.
std::vector<TableDifference> FindDifferences(const SignalStandardTable& left, const SignalStandardTable& right);

/// One line (UTF-8) per difference, empty when the tables hold the same groups in the same order:
///   "- NAME"  a standard that only `left` has;  "+ NAME"  one that only `right` has
///   "~ NAME: FIELD: LEFT -> RIGHT"  a field of a standard or ("sub-band A of NAME") sub-band
///   "- sub-band A of NAME" / "+ ..."  a sub-band that only one side has
///   "= order differs"  the same standards in another order
/// Standards are paired by name alone.
std::vector<std::string> TableDifferences(const SignalStandardTable& left, const SignalStandardTable& right);

/// One line (UTF-8) per difference between rows of the same index: "row N (NAME): FIELD: LEFT -> RIGHT".
std::vector<std::string> RowDifferences(const SignalStandardTable& left, const SignalStandardTable& right);

}  // namespace chanplan
