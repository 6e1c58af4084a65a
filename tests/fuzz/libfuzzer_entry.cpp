// A fuzz target as libFuzzer calls it.
#include "tests/fuzz/fuzz_target.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  chanplan::fuzzing::FUZZ_TARGET(data, size);
  return 0;
}
