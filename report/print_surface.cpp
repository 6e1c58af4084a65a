#include "report/print_surface.h"

namespace chanplan {

void PrintSurface::MoveTo(double x, double y) {
  currentX = x;
  currentY = y;
}

void PrintSurface::Print(std::string_view text) {
  DrawText(currentX, currentY, text);
  currentX += TextWidth(text);
}

void PrintSurface::EndLine() { MoveTo(0, currentY + LineHeight()); }

void PrintSurface::NewPage() {
  StartPage();
  MoveTo(0, 0);
}

}  // namespace chanplan
