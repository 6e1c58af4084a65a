#include "report/qt_print_surface.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFontInfo>
#include <QGuiApplication>
#include <QPdfWriter>
#include <QPrinter>
#include <map>
#include <regex>
#include <string>

#include "report/listing.h"
#include "report/pdf_listing.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"
#include "tests/report/pdf_picture.h"
#include "tests/report/pdf_reader.h"

namespace chanplan {
namespace {

using testing::BlackRuns;
using testing::FullTableOfNames;
using testing::NamedRow;
using testing::PdfPages;
using testing::PdfPicture;
using testing::TableOf;
using testing::TempFolder;

void SetUpPage(QPagedPaintDevice& device) {
  device.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                   QMarginsF(0.25, 0.25, 0.25, 0.25), QPageLayout::Inch));
}

struct Word {
  double Left, Top, Right;  // points
};

// The places of words, which must not come up twice.
std::map<std::string, Word> WordsOf(const std::string& pdf) {
  const std::string boxes = testing::ReadPdf("pdftotext -bbox file.pdf -", pdf);
  const std::regex word(R"x(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="[\d.]+">([^<]*)</word>)x");
  std::map<std::string, Word> words;
  for (std::sregex_iterator found(boxes.begin(), boxes.end(), word), end; found != end; ++found)
    words[(*found)[4]] = {std::stod((*found)[1]), std::stod((*found)[2]), std::stod((*found)[3])};
  return words;
}

TEST(QtPrintSurface, PlacesTextWhereTheListingWantsIt) {
  if (QFontInfo(QFont("Arial")).family() != "Liberation Sans") GTEST_SKIP() << "no letters of Arial's width";
  const SignalStandardTable table = TableOf({{"129", 0, "Name1", 1850.25, 1930.5, 512, 10810, 0.2, 0.25, 7}});
  const auto words = WordsOf(PdfListing(table, "x", PaperSize::Letter));
  constexpr double margin = 0.25;
  constexpr double dot = 0.15;  // points, with some for rounding
  struct Edge {
    const char* Text;
    double Inches;
  };
  for (const auto& [text, inches] :
       {Edge{"129", 3.0}, Edge{"1,850.250000", 4.0}, Edge{"1,930.500000", 5.0}, Edge{"512", 5.5}, Edge{"10,810", 6.0},
        Edge{"0.200", 6.5}, Edge{"0.2500", 7.25}, Edge{"7", 7.65}}) {
    ASSERT_TRUE(words.contains(text)) << text;
    EXPECT_NEAR(words.at(text).Right, (margin + inches) * 72, dot) << text;
  }
  for (const auto& [text, inches] : {Edge{"Name1", 0.75}, Edge{"Type", 2.75}, Edge{"BW", 6.2}, Edge{"File:", 1.0}}) {
    ASSERT_TRUE(words.contains(text)) << text;
    EXPECT_NEAR(words.at(text).Left, (margin + inches) * 72, dot) << text;
  }
  // A line is 1.117 times its font's size high.
  const double top = (margin + 0.75) * 72;
  EXPECT_NEAR(words.at("File:").Top, top, dot);
  EXPECT_NEAR(words.at("Name").Top, top + 2 * 1.117 * 14, dot);
  EXPECT_NEAR(words.at("Name1").Top, top + 2 * 1.117 * 14 + 1.117 * 10, dot);
}

TEST(QtPrintSurface, MeasuresWithTheDevicesMetrics) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setResolution(600);
  SetUpPage(writer);
  QtPrintSurface surface(writer);
  EXPECT_NEAR(surface.PrintableHeight(), 10.5, 0.002);
  surface.SetFont("Arial", 10);
  const double width = surface.TextWidth("1,234.500000");
  surface.SetFont("Arial", 20);
  EXPECT_NEAR(surface.TextWidth("1,234.500000"), 2 * width, 0.02);
  if (QFontInfo(QFont("Arial")).family() == "Liberation Sans") {
    EXPECT_NEAR(width, (10 * 0.556 + 2 * 0.278) * 10 / 72, 0.01) << "ten digits and two points of Arial's width";
  }
  surface.MoveTo(3, 1);
  surface.EndLine();
  EXPECT_NEAR(surface.CurrentY() - 1, 20 * 1.117 / 72, 0.03);
}

// Fonts that kern digits would bend columns of numbers. This one kerns letters alone: "To" tells.
TEST(QtPrintSurface, DoesNotKern) {
  if (QFontInfo(QFont("Arial")).family() != "Liberation Sans") GTEST_SKIP() << "no font that is known to kern";
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  SetUpPage(writer);
  QtPrintSurface surface(writer);
  surface.SetFont("Arial", 10);
  for (const std::string text : {"To", "AV", "11"})
    EXPECT_DOUBLE_EQ(surface.TextWidth(text), surface.TextWidth(text.substr(0, 1)) + surface.TextWidth(text.substr(1)))
        << text;
}

TEST(QtPrintSurface, DrawsRulesInDots) {
  constexpr int resolution = 100;
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setResolution(resolution);
    SetUpPage(writer);
    QtPrintSurface surface(writer);
    surface.DrawLine(1, 2, 3, 2, 8);
    surface.DrawLine(1, 4, 3, 4, 1);
    surface.EndDocument();
  }
  const testing::Picture page = PdfPicture(bytes.toStdString(), resolution);
  EXPECT_EQ(BlackRuns(page, 225), (std::vector<int>{8, 1})) << "2 inches and the margin from the left edge";
  EXPECT_EQ(BlackRuns(page, 115), std::vector<int>()) << "left of both";
  EXPECT_EQ(BlackRuns(page, 335), std::vector<int>()) << "right of both";
}

TEST(QtPrintSurface, RulesEndFlatAndHangBelowTheirPlace) {
  constexpr int resolution = 100;
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setResolution(resolution);
    SetUpPage(writer);
    QtPrintSurface surface(writer);
    surface.DrawLine(1, 2, 3, 2, 8);
    surface.EndDocument();
  }
  const testing::Picture page = PdfPicture(bytes.toStdString(), resolution);
  const int top = 225;
  EXPECT_FALSE(page.IsBlack(200, top - 1));
  EXPECT_TRUE(page.IsBlack(200, top));
  EXPECT_TRUE(page.IsBlack(200, top + 7));
  EXPECT_FALSE(page.IsBlack(200, top + 8));
  EXPECT_FALSE(page.IsBlack(124, top));
  EXPECT_TRUE(page.IsBlack(125, top));
  EXPECT_TRUE(page.IsBlack(324, top));
  EXPECT_FALSE(page.IsBlack(325, top));
}

TEST(ListingMargins, AreAQuarterOfAnInchWhereThePrinterReachesAsFar) {
  constexpr double millimetre = 1 / 25.4;
  const QPageSize size(QPageSize::A4);
  const QPageLayout reachesAll(size, QPageLayout::Portrait, {});
  EXPECT_EQ(ListingMargins(reachesAll), QMarginsF(0.25, 0.25, 0.25, 0.25));
  const QPageLayout reachesLess(size, QPageLayout::Portrait, {20, 20, 20, 20}, QPageLayout::Millimeter,
                                {3, 5, 7, 12.7});
  const QMarginsF margins = ListingMargins(reachesLess);
  EXPECT_EQ(margins.left(), 0.25);
  EXPECT_EQ(margins.top(), 0.25);
  EXPECT_NEAR(margins.right(), 7 * millimetre, 0.01);
  EXPECT_NEAR(margins.bottom(), 0.5, 0.01);
  const QPageLayout otherEdges(size, QPageLayout::Portrait, {20, 20, 20, 20}, QPageLayout::Millimeter, {7, 12.7, 3, 5});
  EXPECT_NEAR(ListingMargins(otherEdges).left(), 7 * millimetre, 0.01);
  EXPECT_NEAR(ListingMargins(otherEdges).top(), 0.5, 0.01);
  QPageLayout page = reachesLess;
  page.setUnits(QPageLayout::Inch);
  EXPECT_TRUE(page.setMargins(margins)) << "the printer takes them";
}

TEST(QtPrintSurface, FailsOnADeviceThatTakesNoDocument) {
  const TempFolder folder;
  QPdfWriter writer(QString::fromStdString((folder / "missing" / "x.pdf").string()));
  EXPECT_THROW(QtPrintSurface surface(writer), PrintFailure);
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFileName(QString::fromStdString((folder / "missing" / "x.pdf").string()));
  EXPECT_THROW(QtPrintSurface surface(printer), PrintFailure);
}

TEST(QtPrintSurface, FailsWhereTheDeviceTakesNoOtherPage) {
  class OnePage : public QPdfWriter {
   public:
    using QPdfWriter::QPdfWriter;
    bool newPage() override { return false; }
  };
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  OnePage writer(&buffer);
  QtPrintSurface surface(writer);
  EXPECT_THROW(PrintListing(surface, FullTableOfNames(), "x"), PrintFailure);
}

TEST(QtPrintSurface, PrintsOnAPrinter) {
  const TempFolder folder;
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFileName(QString::fromStdString((folder / "x.pdf").string()));
  SetUpPage(printer);
  QtPrintSurface surface(printer);
  PrintListing(surface, FullTableOfNames(), "x");
  EXPECT_EQ(PdfPages(testing::ReadFile(folder / "x.pdf")), 4);
}

}  // namespace
}  // namespace chanplan

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
