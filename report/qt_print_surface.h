// The surface on the platform library's printers and PDF writers.
#pragma once

#include <QMarginsF>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <QPainter>

#include "report/print_surface.h"

namespace chanplan {

/// Ten dots a point: the library takes sizes of letters in whole dots, and would make others of 14 and 10
/// points. The same everywhere, so that lines are as high on every printer as in a PDF file.
inline constexpr int DotsPerInch = 720;

/// The margins of a page like `page`, whose minimum margins count: a quarter of an inch, which printers commonly
/// cannot reach, and more where this one cannot reach more. It leaves the listing's 7.75 inches on every usual
/// paper.
QMarginsF ListingMargins(const QPageLayout& page);

/// Draws on a printer or PDF writer, whose resolution, page size and margins are the caller's: the listing
/// is 7.75 inches wide. A QGuiApplication must live. What the device only finds out once its queue has
/// taken the document, it tells nobody.
class QtPrintSurface : public PrintSurface {
 public:
  /// Starts the document on `device`, which outlives the surface; throws PrintFailure.
  explicit QtPrintSurface(QPagedPaintDevice& device);

  void SetFont(std::string_view name, double points) override;
  double TextWidth(std::string_view text) const override;
  double PrintableHeight() const override;
  void DrawLine(double x1, double y1, double x2, double y2, int penWidth) override;
  void EndDocument() override;

 protected:
  void DrawText(double x, double y, std::string_view text) override;
  double LineHeight() const override;
  void StartPage() override;

 private:
  QFontMetricsF Metrics() const;
  QPointF Dots(double x, double y) const;

  QPagedPaintDevice& device;
  QPainter painter;
};

}  // namespace chanplan
