// Two constants of the vocabulary as another source file holds them, for a test that wants to tell copies
// apart. The other file owns them.
#pragma once

#include <string>

namespace usbinfo_test {

const std::string& NameInAnotherFile();
const std::string& ClassUsbPortInAnotherFile();

}  // namespace usbinfo_test
