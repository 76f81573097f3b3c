// The libFuzzer program of the one target that TARNEL_FUZZ_TARGET names.
#include "fuzz/targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tarnel::fuzz::TARNEL_FUZZ_TARGET({data, size});
  return 0;
}
