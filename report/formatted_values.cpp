#include "report/formatted_values.h"

#include "core/lenient_number.h"
#include "core/number_picture.h"

namespace chanplan {

std::array<std::string, PrintedValues> FormattedValues(const SignalStandardRecord& record) {
  std::array<std::string, PrintedValues> values;
  auto next = values.begin();
  for (const RecordField& field : RecordFields) {
    if (field.PrintPicture.empty()) continue;
    const double number = VisitField(
        record, field,
        ByType{[](const std::string& text) { return LeadingNumber(text); }, [](double value) { return value; },
               [](std::int32_t value) { return static_cast<double>(value); }});
    *next++ = FormatNumber(number, field.PrintPicture);
  }
  return values;
}

}  // namespace chanplan
