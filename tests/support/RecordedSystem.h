// Takes the place of the C library's `system` in every test program, so that no mount command ever runs: the
// commands are recorded, and a test may do something when one comes.
#pragma once

#include <functional>
#include <string>

namespace usbinfo_test {

/// Called with each command from now on; empty: commands fail and are not recorded.
void SetSystemHook(std::function<void(const std::string& command)> hook);

/// For the replacement of `system`: passes the command to the hook; false when there is none.
bool CallSystemHook(const char* command);

/// What `system` answers for a command that the shell does not find.
inline constexpr int kCommandFailed = 32512;

}  // namespace usbinfo_test
