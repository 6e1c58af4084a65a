#include "editor/default_printer.h"

#include <QPrinter>
#include <QPrinterInfo>

#include "editor/print_queue.h"
#include "report/qt_print_surface.h"

namespace chanplan {

QString DefaultPrinterName() { return QPrinterInfo::defaultPrinterName(); }

void PrintOnDefaultPrinter(const QString& title, const std::function<void(PrintSurface&)>& draw) {
  const QPrinterInfo info = QPrinterInfo::defaultPrinter();
  if (info.isNull()) throw PrintFailure("there is no default printer: choose one in the system's settings");
  if (!QueueAcceptsJobs(info.printerName().toStdString()))
    throw PrintFailure("the printer " + info.printerName().toStdString() + " does not accept documents");
  QPrinter printer(info, QPrinter::HighResolution);
  printer.setDocName(title);
  printer.setPageMargins({PageMargin, PageMargin, PageMargin, PageMargin}, QPageLayout::Inch);
  QtPrintSurface surface(printer);
  draw(surface);
}

}  // namespace chanplan
