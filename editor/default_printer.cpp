#include "editor/default_printer.h"

#include <QPrinter>
#include <QPrinterInfo>

#include "editor/print_queue.h"
#include "report/qt_print_surface.h"

namespace chanplan {

QString DefaultPrinterName() { return QPrinterInfo::defaultPrinterName(); }

std::string WhyNoDefaultPrinter() {
  const std::string server = SilentPrintServer();
  return server.empty() ? "there is no default printer: choose one in the system's settings"
                        : "the print server " + server + " is stopped or cannot be reached";
}

void PrintOnDefaultPrinter(const QString& title, const std::function<void(PrintSurface&)>& draw) {
  const QPrinterInfo info = QPrinterInfo::defaultPrinter();
  if (info.isNull()) throw PrintFailure(WhyNoDefaultPrinter());
  QPrinter printer(info);
  printer.setDocName(title);
  printer.setResolution(DotsPerInch);
  printer.setPageMargins(ListingMargins(printer.pageLayout()), QPageLayout::Inch);
  QtPrintSurface surface(printer);
  draw(surface);
  if (const std::string refusal = DocumentRefusal(); !refusal.empty())
    throw PrintFailure("the printer " + info.printerName().toStdString() + " does not take it: " + refusal);
}

}  // namespace chanplan
