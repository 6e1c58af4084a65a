#include "console/progress_bar.h"

#include <algorithm>
#include <iostream>

#include "console/terminal.h"

namespace chanplan {
namespace {

constexpr int Cells = 40;

}  // namespace

ProgressBar::ProgressBar(bool wanted) : visible(wanted && StandardErrorIsTerminal()) {}

void ProgressBar::SetLabel(std::string_view text) {
  label = text;
  Draw();
}

void ProgressBar::SetRange(int low, int high) {
  lowest = low;
  highest = high;
}

void ProgressBar::SetValue(int value) {
  const int range = std::max(highest - lowest, 1);
  percent = (std::clamp(value, lowest, highest) - lowest) * 100 / range;
  Draw();
}

void ProgressBar::Finish() {
  if (visible && !drawn.empty()) std::cerr << '\n';
  drawn.clear();
}

void ProgressBar::Draw() {
  if (!visible || label.empty()) return;
  const auto filled = static_cast<std::size_t>(percent * Cells / 100);
  std::string line = label + " [" + std::string(filled, '#') + std::string(Cells - filled, '.') + "] " +
                     std::to_string(percent) + " %";
  if (line == drawn) return;
  // Blanks wipe what a longer line left behind.
  const std::size_t wiped = drawn.size() > line.size() ? drawn.size() - line.size() : 0;
  std::cerr << '\r' << line << std::string(wiped, ' ') << std::flush;
  drawn = std::move(line);
}

}  // namespace chanplan
