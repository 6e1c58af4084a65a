// A PDF file's first page as Poppler draws it.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/report/pdf_reader.h"

namespace chanplan::testing {

/// In black and white.
struct Picture {
  int Width = 0;
  int Height = 0;
  std::string Pixels;  ///< rows of whole bytes, a bit a pixel, the leftmost highest; 1 is black

  bool IsBlack(int x, int y) const {
    const int byte = y * ((Width + 7) / 8) + x / 8;
    return (static_cast<unsigned char>(Pixels.at(static_cast<std::size_t>(byte))) >> (7 - x % 8) & 1) != 0;
  }
};

inline Picture PdfPicture(std::string_view bytes, int dotsPerInch) {
  const std::string pbm = ReadPdf("pdftoppm -r " + std::to_string(dotsPerInch) + " -mono -singlefile file.pdf", bytes);
  Picture picture;
  int head = 0;
  if (std::sscanf(pbm.c_str(), "P4 %d %d%n", &picture.Width, &picture.Height, &head) != 2)
    throw std::runtime_error("pdftoppm drew no picture");
  picture.Pixels = pbm.substr(static_cast<std::size_t>(head) + 1);
  return picture;
}

/// How thick what is drawn at `x` is, from the top down.
inline std::vector<int> BlackRuns(const Picture& picture, int x) {
  std::vector<int> runs;
  bool wasBlack = false;
  for (int y = 0; y < picture.Height; ++y) {
    const bool black = picture.IsBlack(x, y);
    if (black && !wasBlack) runs.push_back(0);
    if (black) ++runs.back();
    wasBlack = black;
  }
  return runs;
}

}  // namespace chanplan::testing
