// What the rows of GridDetails and the columns of GridBands are.
#pragma once

#include <array>

#include "core/signal_standard_table.h"
#include "editor/entry_box.h"

namespace chanplan {

/// A value of a record that is shown as a number: one of the two members is set.
struct NumberField {
  double SignalStandardRecord::*Decimal = nullptr;
  std::int32_t SignalStandardRecord::*Integer = nullptr;
};

struct DetailRow {
  const char* Title;
  EntryMode Mode;
  qint16 MaxLength;
  NumberField Field;  // of the rows that are plain numbers
};

enum DetailRowNumber {
  NameRow = 0,
  SubbandsRow = 1,
  DisplayModeRow = 2,
  ModulationRow = 3,
  FirstNumberRow = 4,
};

using Record = SignalStandardRecord;

inline constexpr std::array<DetailRow, 11> DetailRows = {{
    {"Signal Standard", FreeText, 24, {}},
    {"Sub-bands", WholeNumber, 7, {}},
    {"Active Display Mode", FreeText, 0, {}},
    {"Modulation Type", FreeText, 0, {}},
    {"Uplink Start Frequency (MHz)", DecimalNumber, 9, {&Record::UplinkStartFreq, nullptr}},
    {"Downlink Start Frequency (MHz)", DecimalNumber, 9, {&Record::DownlinkStartFreq, nullptr}},
    {"Start Channel", WholeNumber, 7, {nullptr, &Record::StartChannel}},
    {"Stop Channel", WholeNumber, 7, {nullptr, &Record::StopChannel}},
    {"Occupied Bandwidth (MHz)", DecimalNumber, 9, {&Record::Bandwidth, nullptr}},
    {"Channel Spacing (MHz)", DecimalNumber, 9, {&Record::Spacing, nullptr}},
    {"Channel Step", WholeNumber, 7, {nullptr, &Record::Step}},
}};

struct BandColumn {
  const char* Title;
  int WidthInDigits;
  EntryMode Mode;
  qint16 MaxLength;
  NumberField Field;
};

inline constexpr std::array<BandColumn, 5> BandColumns = {{
    {"Sub-bands", 0, FreeText, 0, {}},
    {"Uplink Freq. (MHz)", 14, DecimalNumber, 9, {&Record::UplinkStartFreq, nullptr}},
    {"Downlink Freq. (MHz)", 14, DecimalNumber, 9, {&Record::DownlinkStartFreq, nullptr}},
    {"Start Channel", 10, WholeNumber, 7, {nullptr, &Record::StartChannel}},
    {"Stop Channel", 10, WholeNumber, 7, {nullptr, &Record::StopChannel}},
}};

inline constexpr const char* FrequencyPicture = "#0.0000";
inline constexpr const char* IntegerPicture = "#0";

}  // namespace chanplan
