// The system's default printer.
#pragma once

#include <QString>
#include <functional>
#include <string>

#include "report/print_surface.h"

namespace chanplan {

/// Its device name; empty when there is none.
QString DefaultPrinterName();

/// Why there is none just now, in UTF-8, without a capital letter and a full stop.
std::string WhyNoDefaultPrinter();

/// Prints what `draw` draws, as a document named `title`. Throws PrintFailure when there is no
/// default printer or when its server refuses the document, with its reason.
void PrintOnDefaultPrinter(const QString& title, const std::function<void(PrintSurface&)>& draw);

}  // namespace chanplan
