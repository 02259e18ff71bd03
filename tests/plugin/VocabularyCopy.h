// Two constants of the vocabulary as another source file holds them, for a test that compares the copies. The
// other file owns them.
#pragma once

#include <string>

namespace usbinfo_test {

const std::string& NameInAnotherFile();
const std::string& ClassUsbPortInAnotherFile();

}  // namespace usbinfo_test
