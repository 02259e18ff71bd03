// The names of the six classes that the plug-in serves.
#pragma once

#include <string>
#include <vector>

namespace usbinfo_test {

/// In the order in which a host asks for them.
inline const std::vector<std::string> kAllClasses = {"KALDO_USBController", "KALDO_USBHub",
                                                     "KALDO_USBPort",       "KALDO_USBDevice",
                                                     "KALDO_USBPortOnHub",  "KALDO_USBConnection"};

}  // namespace usbinfo_test
