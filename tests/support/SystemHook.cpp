#include <utility>

#include "tests/support/RecordedSystem.h"

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

bool CallSystemHook(const char* command) {
  if (!Hook()) return false;
  Hook()(command);
  return true;
}

}  // namespace usbinfo_test
