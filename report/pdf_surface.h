// The surface as a PDF file: the same bytes on every machine, whatever fonts or printers it has.
#pragma once

#include <string>
#include <vector>

#include "report/print_surface.h"

namespace chanplan {

/// A page's size in inches.
struct PaperSize {
  double Width;
  double Height;
};
inline constexpr PaperSize LetterPaper = {8.5, 11};
inline constexpr PaperSize A4Paper = {210 / 25.4, 297 / 25.4};

/// Leaves a quarter of an inch unprintable at every edge. Whatever font is asked for, letters are
/// Helvetica's, which every reader of PDF has, and which are as wide as Arial's; what Windows-1252
/// lacks becomes "?". A device dot is 1/600 inch. Never fails.
class PdfSurface : public PrintSurface {
 public:
  explicit PdfSurface(PaperSize paper);

  void SetFont(std::string_view name, double points) override;
  double TextWidth(std::string_view text) const override;
  double PrintableHeight() const override;
  void DrawLine(double x1, double y1, double x2, double y2, int penWidth) override;
  void EndDocument() override;

  /// The whole file, once the document has ended.
  const std::string& Bytes() const { return file; }

 protected:
  void DrawText(double x, double y, std::string_view text) override;
  double LineHeight() const override;
  void StartPage() override;

 private:
  std::string Point(double x, double y) const;

  PaperSize paper;
  double fontPoints = 0;
  std::vector<std::string> pages{1};  // what is drawn on each
  std::string file;
};

}  // namespace chanplan
