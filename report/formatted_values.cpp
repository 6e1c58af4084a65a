#include "report/formatted_values.h"

#include "core/lenient_number.h"
#include "core/number_picture.h"

namespace chanplan {

std::array<std::string, 8> FormattedValues(const SignalStandardRecord& record) {
  return {FormatNumber(LeadingNumber(record.State), "#0"),
          FormatNumber(record.UplinkStartFreq, "#,##0.000000"),
          FormatNumber(record.DownlinkStartFreq, "#,##0.000000"),
          FormatNumber(record.StartChannel, "#,##0"),
          FormatNumber(record.StopChannel, "#,##0"),
          FormatNumber(record.Bandwidth, "#,##0.000"),
          FormatNumber(record.Spacing, "#0.0000"),
          FormatNumber(record.Step, "#,##0")};
}

}  // namespace chanplan
