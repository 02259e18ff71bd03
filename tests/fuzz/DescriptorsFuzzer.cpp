// The fuzzer's way into the target of the same name.
#include <cstddef>
#include <cstdint>

#include "tests/fuzz/DescriptorsTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  usbinfo_test::CheckDescriptors(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
