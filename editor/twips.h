// Screen layout is kept in twips, 1/1440 inch.
#pragma once

#include <QPaintDevice>

namespace chanplan {

inline constexpr int TwipsPerInch = 1440;

inline int TwipsToPixelsX(double twips, const QPaintDevice& device) {
  return qRound(twips * device.logicalDpiX() / TwipsPerInch);
}
inline int TwipsToPixelsY(double twips, const QPaintDevice& device) {
  return qRound(twips * device.logicalDpiY() / TwipsPerInch);
}
inline double PixelsToTwipsX(int pixels, const QPaintDevice& device) {
  return static_cast<double>(pixels) * TwipsPerInch / device.logicalDpiX();
}
inline double PixelsToTwipsY(int pixels, const QPaintDevice& device) {
  return static_cast<double>(pixels) * TwipsPerInch / device.logicalDpiY();
}

}  // namespace chanplan
