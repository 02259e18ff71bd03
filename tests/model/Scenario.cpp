#include "tests/model/Scenario.h"

namespace usbinfo_test {

bool Scenario::HasProcFile(bool isMounted) const {
  return place == ListPlace::kProcFile || (place == ListPlace::kMountable && isMounted);
}

std::string Scenario::CommandOutput() const {
  if (place == ListPlace::kNoCommand) return "/usr/lib/command-not-found: usb-devices\n";
  return place == ListPlace::kCommand ? deviceList : std::string();
}

}  // namespace usbinfo_test
