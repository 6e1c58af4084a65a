// A progress dialog that writes down what it would show.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "unit/transfer.h"

namespace chanplan::testing {

class RecordedProgress : public TransferProgress {
 public:
  std::vector<std::string> Texts;  ///< captions, labels and ranges, such as "range 0 100"
  std::vector<int> Values;         ///< since the last range
  void SetLabel(std::string_view text) override { Texts.push_back("label " + std::string(text)); }
  void SetCaption(std::string_view text) override { Texts.push_back("caption " + std::string(text)); }
  void SetRange(int low, int high) override {
    Texts.push_back("range " + std::to_string(low) + " " + std::to_string(high));
    Values.clear();
  }
  void SetValue(int value) override { Values.push_back(value); }
};

}  // namespace chanplan::testing
