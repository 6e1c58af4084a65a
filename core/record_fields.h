// The ten fields of a record as one table: what files, the wire, comparisons, reports and grids
// know of a field beyond its value.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <variant>

#include "core/signal_standard_table.h"

namespace chanplan {

inline constexpr std::size_t FieldCount = 10;

/// The fields in the order of a file's columns and of the bytes on the wire.
enum class Field : std::size_t {
  State,
  Subbands,
  Name,
  UplinkStartFreq,
  DownlinkStartFreq,
  StartChannel,
  StopChannel,
  Bandwidth,
  Spacing,
  Step,
};

/// Where a field's value stands in a record; which of the three it is, is the field's kind.
using FieldMember = std::variant<std::string SignalStandardRecord::*, std::int32_t SignalStandardRecord::*,
                                 double SignalStandardRecord::*>;

struct RecordField {
  Field Id;
  std::string_view Name;    ///< for people
  std::string_view Header;  ///< in the first line of a file
  FieldMember Member;
  std::size_t WireSize;           ///< bytes
  std::string_view GridPicture;   ///< in the editor's grids; empty where the text stands as it is
  std::string_view PrintPicture;  ///< in reports and listings; empty where they show no number
};

/// Indexed by `Field`. The header of the downlink start frequency says "Stop" all the same.
inline constexpr std::array<RecordField, FieldCount> RecordFields = [] {
  using R = SignalStandardRecord;
  return std::array<RecordField, FieldCount>{{
      {Field::State, "State", "State", &R::State, 1, "", "#0"},
      {Field::Subbands, "Sub-bands", "Subbands", &R::Subbands, 1, "#0", ""},
      {Field::Name, "Name", "Name", &R::Name, 24, "", ""},
      {Field::UplinkStartFreq, "Uplink Start Frequency", "Uplink Start Freq.", &R::UplinkStartFreq, 4, "#0.0000",
       "#,##0.000000"},
      {Field::DownlinkStartFreq, "Downlink Start Frequency", "Downlink Stop Freq.", &R::DownlinkStartFreq, 4, "#0.0000",
       "#,##0.000000"},
      {Field::StartChannel, "Start Channel", "Start Channel", &R::StartChannel, 2, "#0", "#,##0"},
      {Field::StopChannel, "Stop Channel", "Stop Channel", &R::StopChannel, 2, "#0", "#,##0"},
      {Field::Bandwidth, "Bandwidth", "Bandwidth", &R::Bandwidth, 4, "#0.0000", "#,##0.000"},
      {Field::Spacing, "Spacing", "Spacing", &R::Spacing, 4, "#0.0000", "#0.0000"},
      {Field::Step, "Step", "Step", &R::Step, 2, "#0", "#,##0"},
  }};
}();

constexpr const RecordField& FieldOf(Field id) { return RecordFields[static_cast<std::size_t>(id)]; }

static_assert(std::ranges::all_of(RecordFields, [](const RecordField& field) { return &FieldOf(field.Id) == &field; }),
              "a field stands at its own index");

/// Calls `use` with the value that `field` has in `record`: a std::string, std::int32_t or double.
template <typename Record, typename Use>
decltype(auto) VisitField(Record& record, const RecordField& field, Use&& use) {
  return std::visit([&](auto member) -> decltype(auto) { return use(record.*member); }, field.Member);
}

/// What to do with a value of each type, as one thing to call.
template <typename... Uses>
struct ByType : Uses... {
  using Uses::operator()...;
};
template <typename... Uses>
ByType(Uses...) -> ByType<Uses...>;  // as C++20 has it; not every compiler has that of C++20

}  // namespace chanplan
