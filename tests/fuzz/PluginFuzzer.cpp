// The fuzzer's way into the target of the same name.
#include <cstddef>
#include <cstdint>

#include "tests/fuzz/PluginTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Every port is held against every hub and device and printed in every format: a few claims of 255 ports
  // would take up the fuzzer's time. What so many ports do, other tests tell.
  constexpr std::size_t kMostItems = 16;
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (usbinfo_test::ItemsIn(text) <= kMostItems) usbinfo_test::CheckPlugin(text);
  return 0;
}
