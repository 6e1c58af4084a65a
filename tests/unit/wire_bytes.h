// Bytes as they stand on the wire, put together without the code under test.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace chanplan::testing {

inline std::string Bytes(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) bytes += static_cast<char>(value);
  return bytes;
}

/// A table's first four bytes.
inline std::string TableHeader(int tag, int count) { return Bytes({tag >> 8, tag & 255, count >> 8, count & 255}); }

/// The numbers of a record, in the order of the wire.
struct WireNumbers {
  std::uint32_t UplinkHertz = 0;
  std::uint32_t DownlinkHertz = 0;
  std::uint16_t StartChannel = 0;
  std::uint16_t StopChannel = 0;
  std::uint32_t BandwidthHertz = 0;
  std::uint32_t SpacingHertz = 0;
  std::uint16_t Step = 0;
};

/// The 48 bytes of a record; zero bytes fill up a name shorter than its field.
inline std::string RecordBytes(int state, int subbands, std::string_view name, const WireNumbers& numbers = {}) {
  constexpr std::size_t nameSize = 24;
  std::string bytes = Bytes({state, subbands}).append(name).append(nameSize - name.size(), '\0');
  const auto append = [&](std::uint32_t value, int size) {
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 255);
  };
  append(numbers.UplinkHertz, 4);
  append(numbers.DownlinkHertz, 4);
  append(numbers.StartChannel, 2);
  append(numbers.StopChannel, 2);
  append(numbers.BandwidthHertz, 4);
  append(numbers.SpacingHertz, 4);
  append(numbers.Step, 2);
  return bytes;
}

}  // namespace chanplan::testing
