// Takes the place of the C library's `system` in every test program, so that no mount command ever runs: the
// commands are recorded, and a test may do something when one comes.
#pragma once

#include <functional>
#include <string>

namespace usbinfo_test {

/// Called with each command from now on; empty: commands fail and leave no trace.
void SetSystemHook(std::function<void(const std::string& command)> hook);

}  // namespace usbinfo_test
