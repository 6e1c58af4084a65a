// Random tables for tests of what must hold for every table.
#pragma once

#include <charconv>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "core/signal_standard_table.h"

namespace chanplan::testing {

struct RandomTableOptions {
  /// Every value survives the way to a handheld unit and back: `State` 0 to 254, `Subbands` that
  /// match the rows, channels and steps of 16 bits, frequencies in whole hertz below 2^32 Hz, names
  /// of at most 24 printable characters, sub-bands named as their standard. Otherwise the values
  /// are any that survive a file, and some tables are damaged.
  bool FitsTheWire = false;
  /// No row is without a name.
  bool NamedRows = false;
  int MaxRows = MaxRecords;
};

/// A whole number from `low` to `high`, the same on every platform for the same generator.
inline std::int64_t Between(std::mt19937& random, std::int64_t low, std::int64_t high) {
  const std::uint64_t bits = (std::uint64_t{random()} << 32) | random();
  return low + static_cast<std::int64_t>(bits % static_cast<std::uint64_t>(high - low + 1));
}

inline bool OneIn(std::mt19937& random, int chances) { return Between(random, 1, chances) == 1; }

/// A name of bytes that a line of a file can hold, or of printable Windows-1252 characters.
inline std::string RandomName(std::mt19937& random, const RandomTableOptions& options) {
  const std::int64_t longest = options.FitsTheWire ? 24 : 40;
  std::string name(static_cast<std::size_t>(Between(random, options.NamedRows ? 1 : 0, longest)), ' ');
  for (char& c : name) {
    std::int64_t code = OneIn(random, 4) ? Between(random, 0xA0, 0xFF) : Between(random, ' ', '~');
    if (!options.FitsTheWire && OneIn(random, 20)) code = Between(random, 0, 255);
    c = code == '\t' || code == '\n' ? '?' : static_cast<char>(code);
  }
  return name;
}

inline double RandomMegahertz(std::mt19937& random) {
  const std::int64_t hertz = OneIn(random, 3) ? Between(random, 0, 100000) : Between(random, 0, 0xFFFFFFFF);
  return static_cast<double>(hertz) / 1e6;
}

/// A number of at most 15 significant digits, which is what a file keeps of a number.
inline double RandomDecimal(std::mt19937& random) {
  constexpr std::int64_t largest = 999'999'999'999'999;
  const std::int64_t digits = OneIn(random, 2) ? Between(random, -99999, 99999) : Between(random, -largest, largest);
  const std::int64_t exponent = OneIn(random, 8) ? Between(random, -300, 290) : Between(random, -8, 0);
  const std::string text = std::to_string(digits) + "e" + std::to_string(exponent);
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

inline std::int32_t RandomInteger(std::mt19937& random) {
  using Limits = std::numeric_limits<std::int32_t>;
  return static_cast<std::int32_t>(OneIn(random, 5) ? Between(random, Limits::min(), Limits::max())
                                                    : Between(random, -10, 70000));
}

inline SignalStandardRecord RandomRecord(std::mt19937& random, const RandomTableOptions& options) {
  const bool wire = options.FitsTheWire;
  const auto decimal = [&] { return wire ? RandomMegahertz(random) : RandomDecimal(random); };
  const auto integer = [&] {
    return wire ? static_cast<std::int32_t>(Between(random, 0, 65535)) : RandomInteger(random);
  };
  SignalStandardRecord record;
  record.State = std::to_string(wire || !OneIn(random, 10) ? Between(random, 0, 254) : RandomInteger(random));
  record.Name = RandomName(random, options);
  record.UplinkStartFreq = decimal();
  record.DownlinkStartFreq = decimal();
  record.StartChannel = integer();
  record.StopChannel = integer();
  record.Bandwidth = decimal();
  record.Spacing = decimal();
  record.Step = integer();
  return record;
}

/// A table of 0 to `options.MaxRows` rows; small ones and full ones come up often.
inline SignalStandardTable RandomTable(std::mt19937& random, const RandomTableOptions& options = {}) {
  std::int64_t rows = Between(random, 0, options.MaxRows);
  if (!OneIn(random, 4)) rows %= 20;
  if (OneIn(random, 20)) rows = options.MaxRows;
  const bool damaged = !options.FitsTheWire && OneIn(random, 4);

  SignalStandardTable table;
  while (table.Count < rows) {
    SignalStandardRecord standard = RandomRecord(random, options);
    const std::int64_t room = rows - table.Count - 1;
    std::int64_t subbands = OneIn(random, 2) ? 0 : Between(random, 0, room);
    if (!OneIn(random, 10)) subbands %= 6;
    standard.Subbands = damaged && OneIn(random, 3) ? RandomInteger(random) : static_cast<std::int32_t>(subbands);
    table.Append(standard);
    for (; subbands > 0; --subbands) {
      SignalStandardRecord subband = RandomRecord(random, options);
      if (options.FitsTheWire) subband.Name = standard.Name;
      table.Append(subband);
    }
  }
  return table;
}

}  // namespace chanplan::testing
