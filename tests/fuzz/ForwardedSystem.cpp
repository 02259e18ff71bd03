// Takes the place of the tests' recorded `system` in the fuzzers: while the hook is set, which is while the
// plug-in runs, it gets the commands; at other times they are the fuzzer's own, which merges its corpus in
// child processes.
#include <dlfcn.h>

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

}  // namespace usbinfo_test

extern "C" int system(const char* command) {
  constexpr int kCommandFailed = 32512;  // as from a shell that does not find it
  if (usbinfo_test::Hook()) {
    usbinfo_test::Hook()(command);
    return kCommandFailed;
  }
  static const auto real = reinterpret_cast<int (*)(const char*)>(::dlsym(RTLD_NEXT, "system"));
  return real(command);
}
