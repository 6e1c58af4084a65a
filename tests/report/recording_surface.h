// A surface that writes down what is drawn on it.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "report/print_surface.h"

namespace chanplan::testing {

/// `Calls` has a line for each call, in inches with three decimals:
///   "font Arial 14", "text 1.000 0.750 File: x", "line 0.750 1.130 7.750 1.130 pen 8", "page", "end"
/// Every letter is a hundredth of an inch wide and every line a hundredth of its font's points high.
class RecordingSurface : public PrintSurface {
 public:
  explicit RecordingSurface(double printableHeight = 10.5) : height(printableHeight) {}

  std::vector<std::string> Calls;
  std::size_t PagesTaken = 1000;  ///< a page more is refused

  void SetFont(std::string_view name, double points) override {
    fontPoints = points;
    Record("font %s %g", std::string(name).c_str(), points);
  }
  double TextWidth(std::string_view text) const override { return static_cast<double>(text.size()) / 100; }
  double PrintableHeight() const override { return height; }
  void DrawLine(double x1, double y1, double x2, double y2, int penWidth) override {
    Record("line %.3f %.3f %.3f %.3f pen %d", x1, y1, x2, y2, penWidth);
  }
  void EndDocument() override { Calls.emplace_back("end"); }

 protected:
  void DrawText(double x, double y, std::string_view text) override {
    Record("text %.3f %.3f %s", x, y, std::string(text).c_str());
  }
  double LineHeight() const override { return fontPoints / 100; }
  void StartPage() override {
    if (++pages > PagesTaken) throw PrintFailure("out of paper");
    Calls.emplace_back("page");
  }

 private:
  template <typename... Values>
  void Record(const char* format, Values... values) {
    char line[1000];
    std::snprintf(line, sizeof line, format, values...);
    Calls.emplace_back(line);
  }

  double height;
  double fontPoints = 0;
  std::size_t pages = 1;
};

}  // namespace chanplan::testing
