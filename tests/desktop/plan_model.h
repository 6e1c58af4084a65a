// What the editor is expected to make of what hands do to a table, worked out once more and in another
// way: standards with their sub-bands in lists, values as whole numbers of a hundred-millionth.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/signal_standard_table.h"

namespace chanplan::testing {

/// A frequency in MHz, exactly: what nine typed characters can say.
using Fixed = std::int64_t;
inline constexpr Fixed FixedOne = 100'000'000;

struct PlanBand {
  Fixed Uplink = 0;
  Fixed Downlink = 0;
  int Start = 0;
  int Stop = 0;
  bool operator==(const PlanBand&) const = default;
};

struct PlanStandard {
  std::string Name;
  int Modulation = 0;
  Fixed Uplink = 0;
  Fixed Downlink = 0;
  int Start = 0;
  int Stop = 0;
  Fixed Bandwidth = 0;
  Fixed Spacing = 0;
  int Step = 0;
  std::vector<PlanBand> Bands;
  bool operator==(const PlanStandard&) const = default;
};

/// The kinds of cells, by what may be typed into them.
enum class CellKind { Text, Whole, Decimal };

/// The box over a cell: what it holds after keys.
class PlanBox {
 public:
  PlanBox(CellKind cellKind, std::string shown);
  void Type(char character);
  void Backspace();
  void Deselect() { allSelected = false; }
  void UndoAll();
  void Paste(const std::string& text);

  const std::string& Text() const { return text; }
  bool Edited() const { return edited; }

 private:
  bool Takes(const std::string& inserted) const;
  std::size_t Most() const;

  CellKind kind;
  std::string text;
  std::string original;
  bool allSelected = true;
  bool edited = false;
};

/// All that a plan was, one after the other, of which one is what it is now. A change brings the row of
/// the list that was current before it, and the one after it.
class PlanPast {
 public:
  using Plan = std::vector<PlanStandard>;

  explicit PlanPast(Plan plan) : moments{{std::move(plan), 0, 0}} {}

  /// The plan is this now. No moment of its own where it was the same before.
  void Note(const Plan& plan, int rowBefore, int rowAfter);
  void Save() { saved = moments[present].Number; }

  /// How often one can go back, and forth.
  int Back() const { return static_cast<int>(present); }
  int Forth() const { return static_cast<int>(moments.size() - present) - 1; }
  /// The row that is current then.
  int GoBack() { return moments[present--].RowBefore; }
  int GoForth() { return moments[++present].RowAfter; }
  const Plan& Present() const { return moments[present].Then; }
  bool IsSaved() const { return moments[present].Number == saved; }

 private:
  static constexpr std::size_t Most = 201;  // the opened plan, and what 200 changes made of it

  struct Moment {
    Plan Then;
    int RowBefore;
    int RowAfter;
    int Number = 0;
  };

  std::vector<Moment> moments;
  std::size_t present = 0;
  int saved = 0;
  int last = 0;
};

class PlanModel {
 public:
  explicit PlanModel(const SignalStandardTable& table);

  std::vector<PlanStandard> Standards;
  std::vector<PlanStandard> Copied;

  int Records() const;
  /// What a cell shows: the details' rows 0, 1, and 4 to 10; a band's columns 1 to 4.
  std::string Shown(int standard, int row) const;
  std::string ShownBand(int standard, int band, int column) const;
  /// What the box held when the cell was left.
  void Store(int standard, int row, const std::string& text);
  void StoreBand(int standard, int band, int column, const std::string& text);
  /// False when the table has no room for all of them.
  bool SetCount(int standard, int count);

  void Copy(int first, int last) { Copied.assign(Standards.begin() + first, Standards.begin() + last + 1); }
  void Delete(int first, int last) { Standards.erase(Standards.begin() + first, Standards.begin() + last + 1); }
  bool Append();

  SignalStandardTable Table() const;

 private:
  Fixed* Decimal(PlanStandard& standard, int row) const;
  int* Whole(PlanStandard& standard, int row) const;
};

}  // namespace chanplan::testing
