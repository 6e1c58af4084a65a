#include "report/qt_print_surface.h"

#include <QFontInfo>
#include <algorithm>

namespace chanplan {

QMarginsF ListingMargins(const QPageLayout& page) {
  constexpr double usual = 0.25;
  QPageLayout inInches = page;
  inInches.setUnits(QPageLayout::Inch);
  const QMarginsF least = inInches.minimumMargins();
  return {std::max(usual, least.left()), std::max(usual, least.top()), std::max(usual, least.right()),
          std::max(usual, least.bottom())};
}

QtPrintSurface::QtPrintSurface(QPagedPaintDevice& paintDevice) : device(paintDevice) {
  // Without fonts the painter would draw no letter, and not say so. A document that has begun is printed.
  if (QFontInfo(QFont()).family().isEmpty()) throw PrintFailure("no font is installed to print with");
  if (!painter.begin(&device)) throw PrintFailure("the printer does not take a document");
}

void QtPrintSurface::SetFont(std::string_view name, double points) {
  QFont font(QString::fromUtf8(name));
  font.setPointSizeF(points);
  font.setKerning(false);  // digits stand below each other
  painter.setFont(font);
}

double QtPrintSurface::TextWidth(std::string_view text) const {
  return Metrics().horizontalAdvance(QString::fromUtf8(text)) / device.logicalDpiX();
}

double QtPrintSurface::PrintableHeight() const { return static_cast<double>(device.height()) / device.logicalDpiY(); }

void QtPrintSurface::DrawLine(double x1, double y1, double x2, double y2, int penWidth) {
  painter.setPen(QPen(Qt::black, penWidth, Qt::SolidLine, Qt::FlatCap));
  const QPointF halfAPen(0, penWidth / 2.0);
  painter.drawLine(Dots(x1, y1) + halfAPen, Dots(x2, y2) + halfAPen);
}

void QtPrintSurface::EndDocument() {
  if (!painter.end()) throw PrintFailure("the printer did not take the whole document");
}

void QtPrintSurface::DrawText(double x, double y, std::string_view text) {
  painter.drawText(Dots(x, y) + QPointF(0, Metrics().ascent()), QString::fromUtf8(text));
}

double QtPrintSurface::LineHeight() const { return Metrics().height() / device.logicalDpiY(); }

void QtPrintSurface::StartPage() {
  if (!device.newPage()) throw PrintFailure("the printer does not take another page");
}

// The printer's own metrics: a screen's would set right edges where the screen's letters end.
QFontMetricsF QtPrintSurface::Metrics() const { return {painter.font(), &device}; }

QPointF QtPrintSurface::Dots(double x, double y) const { return {x * device.logicalDpiX(), y * device.logicalDpiY()}; }

}  // namespace chanplan
