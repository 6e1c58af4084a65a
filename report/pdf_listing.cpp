#include "report/pdf_listing.h"

#include <QBuffer>
#include <QPdfWriter>

#include "report/listing.h"
#include "report/qt_print_surface.h"

namespace chanplan {
namespace {

QPageLayout PageLayout(PaperSize paper) {
  const QPageSize size(paper == PaperSize::A4 ? QPageSize::A4 : QPageSize::Letter);
  return {size, QPageLayout::Portrait, ListingMargins({}), QPageLayout::Inch};
}

}  // namespace

std::string PdfListing(const SignalStandardTable& table, std::string_view caption, PaperSize paper) {
  QBuffer file;
  file.open(QIODevice::WriteOnly);
  QPdfWriter writer(&file);
  writer.setResolution(DotsPerInch);
  writer.setPageLayout(PageLayout(paper));
  writer.setTitle(QString::fromUtf8(caption));
  writer.setCreator("Chanplan Editor");
  QtPrintSurface surface(writer);
  PrintListing(surface, table, caption);
  return file.data().toStdString();
}

}  // namespace chanplan
