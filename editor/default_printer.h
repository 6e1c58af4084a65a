// The system's default printer.
#pragma once

#include <QString>
#include <functional>

#include "report/print_surface.h"

namespace chanplan {

/// Its device name; empty when there is none.
QString DefaultPrinterName();

/// Prints what `draw` draws, as a document named `title`. Throws PrintFailure when there is no
/// default printer or when it refuses the document.
void PrintOnDefaultPrinter(const QString& title, const std::function<void(PrintSurface&)>& draw);

}  // namespace chanplan
