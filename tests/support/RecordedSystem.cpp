// The stand-in for `system`; see the header.
#include "tests/support/RecordedSystem.h"

#include <utility>

namespace usbinfo_test {

namespace {

std::function<void(const std::string&)>& Hook() {
  static std::function<void(const std::string&)> hook;
  return hook;
}

}  // namespace

void SetSystemHook(std::function<void(const std::string& command)> hook) {
  Hook() = std::move(hook);
}

}  // namespace usbinfo_test

extern "C" int system(const char* command) {
  constexpr int kCommandFailed = 32512;  // as from a shell that does not find it
  if (usbinfo_test::Hook()) usbinfo_test::Hook()(command);
  return kCommandFailed;
}
