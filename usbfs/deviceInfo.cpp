#include "usbfs/deviceInfo.h"

namespace {

bool Contains(const std::string& text, const char* word) {
  return text.find(word) != std::string::npos;
}

}  // namespace

void deviceInfo::Initialize(std::string line) {
  if (Contains(line, "Product")) {
    product = getString(line, "product=", "\n");
    setUsbHost(line);
  }
  if (Contains(line, "SerialNumber")) serial = getString(line, "serialnumber=", "\n");
  if (Contains(line, "Manufacturer")) manufacturer = getString(line, "manufacturer=", "\n");
}

void deviceInfo::setUsbHost(std::string line) {
  enum HostType : unsigned short { kUnknown = 1, kUhciHost = 2, kOhciHost = 3, kEhciHost = 4 };
  const std::string lower = ToLowerPosix(line);
  if (Contains(lower, "ohci")) {
    usbHost = kOhciHost;
  } else if (Contains(lower, "uhci")) {
    usbHost = kUhciHost;
  } else if (Contains(lower, "ehci")) {
    usbHost = kEhciHost;
  } else {
    usbHost = kUnknown;
  }
}
