// How far a transfer is, as a line on standard error that is drawn over and over.
#pragma once

#include <string>

#include "unit/transfer.h"

namespace chanplan {

/// Draws only when it is `wanted` and standard error is a terminal.
class ProgressBar : public TransferProgress {
 public:
  explicit ProgressBar(bool wanted);

  void SetLabel(std::string_view text) override;
  void SetRange(int low, int high) override;
  void SetValue(int value) override;

  /// Leaves the line, so that what follows stands below it.
  void Finish();

 private:
  void Draw();

  bool visible;
  std::string label;
  int lowest = 0;
  int highest = 100;
  int percent = 0;
  std::string drawn;
};

}  // namespace chanplan
