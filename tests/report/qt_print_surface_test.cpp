// The listing on the platform library's own devices, and the two surfaces held against each other.
#include "report/qt_print_surface.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QFontInfo>
#include <QGuiApplication>
#include <QImage>
#include <QPdfWriter>
#include <QPrinter>
#include <cmath>
#include <map>
#include <regex>
#include <string>

#include "core/text_encoding.h"
#include "report/listing.h"
#include "report/pdf_surface.h"
#include "tests/core/table_of.h"
#include "tests/core/temp_folder.h"
#include "tests/report/pdf_reader.h"

namespace chanplan {
namespace {

using testing::NamedRow;
using testing::PdfPages;
using testing::PdfText;
using testing::TableOf;
using testing::TableOfNames;
using testing::TempFolder;

SignalStandardTable FullTable() {
  SignalStandardTable table;
  while (table.Count < MaxRecords) table.Append(NamedRow("S" + std::to_string(table.Count)));
  return table;
}

void SetUpPage(QPagedPaintDevice& device) {
  device.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                   QMarginsF(0.25, 0.25, 0.25, 0.25), QPageLayout::Inch));
}

std::string QtListing(const SignalStandardTable& table, std::string_view caption = "x") {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  {
    QPdfWriter writer(&buffer);
    writer.setResolution(600);
    SetUpPage(writer);
    QtPrintSurface surface(writer);
    PrintListing(surface, table, caption);
  }
  return bytes.toStdString();
}

std::string PlainListing(const SignalStandardTable& table) {
  PdfSurface surface(LetterPaper);
  PrintListing(surface, table, "x");
  return surface.Bytes();
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

TEST(QtPrintSurface, PrintsEveryRecord) {
  const auto* caption = reinterpret_cast<const char*>(u8"/home/ŁΩ/plan.sig");
  const std::string pdf = QtListing(FullTable(), caption);
  EXPECT_EQ(PdfPages(pdf), PdfPages(PlainListing(FullTable())));
  const std::string text = PdfText(pdf);
  EXPECT_NE(text.find("File: /home/ŁΩ/plan.sig"), std::string::npos);
  for (int index = 0; index < MaxRecords; ++index)
    EXPECT_TRUE(std::regex_search(text, std::regex("S" + std::to_string(index) + " +2 +1,850\\.200000"))) << index;
}

TEST(QtPrintSurface, PlacesTextAsThePlainPdfDoes) {
  if (QFontInfo(QFont("Arial")).family() != "Liberation Sans") GTEST_SKIP() << "no letters of Arial's width";
  const SignalStandardTable table = TableOf({{"129", 0, "Name1", 1850.25, 1930.5, 512, 10810, 0.2, 0.25, 7}});
  const auto words = WordsOf(QtListing(table));
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
  const auto plainWords = WordsOf(PlainListing(table));
  for (const auto& [text, place] : words) {
    ASSERT_TRUE(plainWords.contains(text)) << text;
    EXPECT_NEAR(place.Right, plainWords.at(text).Right, 0.5) << text;
  }
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
  surface.MoveTo(3, 1);
  surface.EndLine();
  EXPECT_NEAR(surface.CurrentY() - 1, 20 * 1.117 / 72, 0.03);
}

TEST(PdfSurface, MeasuresLettersAsWideAsArials) {
  if (QFontInfo(QFont("Arial")).family() != "Liberation Sans") GTEST_SKIP() << "no letters of Arial's width";
  QFont font("Arial");
  font.setPixelSize(1000);
  font.setHintingPreference(QFont::PreferNoHinting);
  const QFontMetricsF metrics(font);
  PdfSurface surface(LetterPaper);
  surface.SetFont("Arial", 72);
  // The two faces differ in the macron, three signs and the soft hyphen; the page's open places have no letter.
  const std::string different = "\x7F\x81\x8D\x8F\x90\x9D\xAD\xAF\xB1\xB5\xF7";
  for (int code = 32; code < 256; ++code) {
    const std::string byte(1, static_cast<char>(code));
    if (different.find(byte) != std::string::npos) continue;
    const std::string letter = Utf8FromWindows1252(byte);
    EXPECT_NEAR(surface.TextWidth(letter), metrics.horizontalAdvance(QString::fromStdString(letter)) / 1000, 0.001)
        << code << " " << letter;
  }
}

TEST(QtPrintSurface, DrawsRulesInDots) {
  constexpr int resolution = 100;
  QImage page(850, 1100, QImage::Format_RGB32);
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
  // Poppler's picture has a pixel for each dot.
  const std::string picture = testing::ReadPdf("pdftoppm -r 100 -mono -singlefile file.pdf", bytes.toStdString());
  ASSERT_TRUE(page.loadFromData(QByteArray::fromStdString(picture), "PBM"));
  const auto blackRows = [&](int x, int from, int to) {
    int black = 0;
    for (int y = from; y < to; ++y) black += qGray(page.pixel(x, y)) < 128 ? 1 : 0;
    return black;
  };
  EXPECT_EQ(blackRows(225, 200, 250), 8) << "2 inches and the margin from the left edge";
  EXPECT_EQ(blackRows(225, 400, 450), 1);
  EXPECT_EQ(blackRows(115, 200, 450), 0) << "left of both";
  EXPECT_EQ(blackRows(335, 200, 450), 0) << "right of both";
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
  EXPECT_THROW(PrintListing(surface, FullTable(), "x"), PrintFailure);
}

TEST(QtPrintSurface, PrintsOnAPrinter) {
  const TempFolder folder;
  QPrinter printer(QPrinter::HighResolution);
  printer.setOutputFileName(QString::fromStdString((folder / "x.pdf").string()));
  SetUpPage(printer);
  QtPrintSurface surface(printer);
  PrintListing(surface, FullTable(), "x");
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
