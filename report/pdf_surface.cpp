#include "report/pdf_surface.h"

#include <array>
#include <charconv>
#include <numeric>

#include "core/text_encoding.h"

namespace chanplan {
namespace {

constexpr double Margin = 0.25;  // inches; what printers commonly cannot reach
constexpr double PointsPerInch = 72;
constexpr double PointsPerDot = PointsPerInch / 600;

// Arial's, in font sizes: Helvetica's own letters are alike, but readers differ in its line height.
constexpr double Ascent = 0.905;
constexpr double Descent = 0.212;

// Widths of Helvetica's letters in thousandths of the font size, by Windows-1252 code from 32 on.
// Source: Adobe's public font metrics for the standard fonts of PDF.
constexpr std::array<short, 224> LetterWidths = {
    278,  278, 355, 556, 556, 889,  667,  191,  333, 333,  389, 584, 278,  333, 278, 278,   // blank to /
    556,  556, 556, 556, 556, 556,  556,  556,  556, 556,  278, 278, 584,  584, 584, 556,   // 0 to ?
    1015, 667, 667, 722, 722, 667,  611,  778,  722, 278,  500, 667, 556,  833, 722, 778,   // @ to O
    667,  778, 722, 667, 611, 722,  667,  944,  667, 667,  611, 278, 278,  278, 469, 556,   // P to _
    333,  556, 556, 500, 556, 556,  278,  556,  556, 222,  222, 500, 222,  833, 556, 556,   // ` to o
    556,  556, 333, 500, 278, 556,  500,  722,  500, 500,  500, 334, 260,  334, 584, 350,   // p to DEL
    556,  350, 222, 556, 333, 1000, 556,  556,  333, 1000, 667, 333, 1000, 350, 611, 350,   // 0x80
    350,  222, 222, 333, 333, 350,  556,  1000, 333, 1000, 500, 333, 944,  350, 500, 667,   // 0x90
    278,  333, 556, 556, 556, 556,  260,  556,  333, 737,  370, 556, 584,  333, 737, 333,   // 0xA0
    400,  584, 333, 333, 333, 556,  537,  278,  333, 333,  365, 556, 834,  834, 834, 611,   // 0xB0
    667,  667, 667, 667, 667, 667,  1000, 722,  667, 667,  667, 667, 278,  278, 278, 278,   // 0xC0
    722,  722, 778, 778, 778, 778,  778,  584,  778, 722,  722, 722, 722,  667, 667, 611,   // 0xD0
    556,  556, 556, 556, 556, 556,  889,  500,  556, 556,  556, 556, 278,  278, 278, 278,   // 0xE0
    556,  556, 556, 556, 556, 556,  556,  584,  611, 556,  556, 556, 556,  500, 556, 500};  // 0xF0

int LetterWidth(char letter) {
  const auto code = static_cast<unsigned char>(letter);
  return code < 32 ? 0 : LetterWidths[code - std::size_t{32}];
}

std::string Number(double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, 3).ptr;
  return {buffer.data(), end};
}

// A string of the file: in parentheses, with codes beyond ASCII as three octal digits.
std::string Literal(std::string_view bytes) {
  std::string literal = "(";
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    const auto digit = [&](int shift) { return static_cast<char>('0' + ((code >> shift) & 7)); };
    if (code < 32 || code > 126)
      literal.append({'\\', digit(6), digit(3), digit(0)});
    else if (byte == '(' || byte == ')' || byte == '\\')
      literal.append({'\\', byte});
    else
      literal += byte;
  }
  return literal + ")";
}

}  // namespace

PdfSurface::PdfSurface(PaperSize paperSize) : paper(paperSize) {}

void PdfSurface::SetFont(std::string_view /*name*/, double points) { fontPoints = points; }

double PdfSurface::TextWidth(std::string_view text) const {
  const std::string letters = Windows1252FromUtf8(text);
  const int thousandths = std::accumulate(letters.begin(), letters.end(), 0,
                                          [](int width, char letter) { return width + LetterWidth(letter); });
  return thousandths * fontPoints / 1000 / PointsPerInch;
}

double PdfSurface::PrintableHeight() const { return paper.Height - 2 * Margin; }

void PdfSurface::DrawLine(double x1, double y1, double x2, double y2, int penWidth) {
  pages.back() += Number(penWidth * PointsPerDot) + " w " + Point(x1, y1) + " m " + Point(x2, y2) + " l S\n";
}

void PdfSurface::DrawText(double x, double y, std::string_view text) {
  const double baseline = y + Ascent * fontPoints / PointsPerInch;
  pages.back() += "BT /F1 " + Number(fontPoints) + " Tf " + Point(x, baseline) + " Td " +
                  Literal(Windows1252FromUtf8(text)) + " Tj ET\n";
}

double PdfSurface::LineHeight() const { return (Ascent + Descent) * fontPoints / PointsPerInch; }

void PdfSurface::StartPage() { pages.emplace_back(); }

// The file measures in points from the paper's bottom-left corner.
std::string PdfSurface::Point(double x, double y) const {
  return Number((Margin + x) * PointsPerInch) + " " + Number((paper.Height - Margin - y) * PointsPerInch);
}

void PdfSurface::EndDocument() {
  std::vector<std::size_t> offsets;
  const auto addObject = [&](const std::string& content) {
    offsets.push_back(file.size());
    file += std::to_string(offsets.size()) + " 0 obj\n" + content + "\nendobj\n";
  };
  const std::size_t firstPage = 4;  // after catalogue, pages and font; a page is two objects
  std::string kids;
  for (std::size_t page = 0; page < pages.size(); ++page) kids += std::to_string(firstPage + 2 * page) + " 0 R ";

  file = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";  // the codes beyond ASCII keep transfers from taking it for text
  addObject("<< /Type /Catalog /Pages 2 0 R >>");
  addObject("<< /Type /Pages /Kids [ " + kids + "] /Count " + std::to_string(pages.size()) + " /MediaBox [ 0 0 " +
            Number(paper.Width * PointsPerInch) + " " + Number(paper.Height * PointsPerInch) +
            " ] /Resources << /Font << /F1 3 0 R >> >> >>");
  addObject("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
  for (const std::string& page : pages) {
    addObject("<< /Type /Page /Parent 2 0 R /Contents " + std::to_string(offsets.size() + 2) + " 0 R >>");
    addObject("<< /Length " + std::to_string(page.size()) + " >>\nstream\n" + page + "endstream");
  }

  const std::string table = std::to_string(file.size());
  const std::string entries = std::to_string(offsets.size() + 1);
  file += "xref\n0 " + entries + "\n0000000000 65535 f \n";
  for (const std::size_t offset : offsets) {
    const std::string digits = std::to_string(offset);
    file += std::string(10 - digits.size(), '0') + digits + " 00000 n \n";
  }
  file += "trailer\n<< /Size " + entries + " /Root 1 0 R >>\nstartxref\n" + table + "\n%%EOF\n";
}

}  // namespace chanplan
