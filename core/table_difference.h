// What differs between two tables, standard by standard and field by field.
#pragma once

#include <string>
#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan {

/// One line (UTF-8) per difference, empty when the tables hold the same groups in the same order:
///   "- NAME"  a standard that only `left` has;  "+ NAME"  one that only `right` has
///   "~ NAME: FIELD: LEFT -> RIGHT"  a field of a standard or ("sub-band A of NAME") sub-band
///   "- sub-band A of NAME" / "+ ..."  a sub-band that only one side has
///   "= order differs"  the same standards in another order
/// Standards are paired by name; of several with one name the first goes with the first.
std::vector<std::string> TableDifferences(const SignalStandardTable& left, const SignalStandardTable& right);

/// One line (UTF-8) per difference between rows of the same index: "row N (NAME): FIELD: LEFT -> RIGHT".
std::vector<std::string> RowDifferences(const SignalStandardTable& left, const SignalStandardTable& right);

}  // namespace chanplan
