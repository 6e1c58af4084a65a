// What the rows of GridDetails and the columns of GridBands are.
#pragma once

#include <array>

#include "core/record_fields.h"
#include "editor/entry_box.h"

namespace chanplan {

struct DetailRow {
  const char* Title;
  EntryMode Mode;
  qint16 MaxLength;
  Field Shown;
};

enum DetailRowNumber {
  NameRow = 0,
  SubbandsRow = 1,
  DisplayModeRow = 2,
  ModulationRow = 3,
  FirstNumberRow = 4,
};

inline constexpr std::array<DetailRow, 11> DetailRows = {{
    {"Signal Standard", FreeText, 24, Field::Name},
    {"Sub-bands", WholeNumber, 7, Field::Subbands},
    {"Active Display Mode", FreeText, 0, Field::State},
    {"Modulation Type", FreeText, 0, Field::State},
    {"Uplink Start Frequency (MHz)", DecimalNumber, 9, Field::UplinkStartFreq},
    {"Downlink Start Frequency (MHz)", DecimalNumber, 9, Field::DownlinkStartFreq},
    {"Start Channel", WholeNumber, 7, Field::StartChannel},
    {"Stop Channel", WholeNumber, 7, Field::StopChannel},
    {"Occupied Bandwidth (MHz)", DecimalNumber, 9, Field::Bandwidth},
    {"Channel Spacing (MHz)", DecimalNumber, 9, Field::Spacing},
    {"Channel Step", WholeNumber, 7, Field::Step},
}};

struct BandColumn {
  const char* Title;
  int WidthInDigits;
  EntryMode Mode;
  qint16 MaxLength;
  Field Shown;  // of all but the first column, the band's letter
};

inline constexpr std::array<BandColumn, 5> BandColumns = {{
    {"Sub-bands", 0, FreeText, 0, Field::Name},
    {"Uplink Freq. (MHz)", 14, DecimalNumber, 9, Field::UplinkStartFreq},
    {"Downlink Freq. (MHz)", 14, DecimalNumber, 9, Field::DownlinkStartFreq},
    {"Start Channel", 10, WholeNumber, 7, Field::StartChannel},
    {"Stop Channel", 10, WholeNumber, 7, Field::StopChannel},
}};

}  // namespace chanplan
