// What fuzz targets are, and what they have in common.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace chanplan::fuzzing {

// Each takes any bytes for what others wrote, does with them whatever the programs do, and aborts where a fact
// does not hold.
void FuzzArguments(const std::uint8_t* data, std::size_t size);     // of the `chanplan` command
void FuzzDownload(const std::uint8_t* data, std::size_t size);      // the unit's table, and how it comes
void FuzzIdentity(const std::uint8_t* data, std::size_t size);      // who the unit is
void FuzzRecoveryCopy(const std::uint8_t* data, std::size_t size);  // what a former run left behind
void FuzzSettings(const std::uint8_t* data, std::size_t size);      // the user's settings file
void FuzzSigFile(const std::uint8_t* data, std::size_t size);       // a table's file

/// The input under test, shown where a fact does not hold.
inline std::string_view CurrentInput;

/// Makes the bytes at `data` the current input.
inline std::string_view TakeInput(const std::uint8_t* data, std::size_t size) {
  return CurrentInput = {reinterpret_cast<const char*>(data), size};
}

inline void Require(bool holds, const char* fact) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\nfor these bytes: \"", fact);
  for (const char c : CurrentInput)
    std::fprintf(stderr, c >= ' ' && c <= '~' ? "%c" : "\\%03o", static_cast<unsigned char>(c));
  std::fprintf(stderr, "\"\n");
  std::abort();
}

}  // namespace chanplan::fuzzing
