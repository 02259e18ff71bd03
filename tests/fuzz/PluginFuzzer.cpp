// The fuzzer's way into the target of the same name.
#include <cstddef>
#include <cstdint>

#include "tests/fuzz/PluginTarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Every port is compared with every hub and device and printed in every format: a few hubs of 255 ports
  // would take most of the fuzzer's time. Other tests cover that many ports.
  constexpr std::size_t kMostItems = 16;
  const std::string text(reinterpret_cast<const char*>(data), size);
  if (usbinfo_test::ItemsIn(text) > kMostItems) return 0;
  usbinfo_test::CheckPlugin(text);
  usbinfo_test::CheckFacts(text);
  return 0;
}
