// Takes the place of the tests' recorded `system` in the fuzzers: while the hook is set, which is while the
// plug-in runs, it gets the commands; at other times they are the fuzzer's own, which merges its corpus in
// child processes.
#include <dlfcn.h>

#include "tests/support/RecordedSystem.h"

extern "C" int system(const char* command) {
  if (usbinfo_test::CallSystemHook(command)) return usbinfo_test::kCommandFailed;
  static const auto real = reinterpret_cast<int (*)(const char*)>(::dlsym(RTLD_NEXT, "system"));
  return real(command);
}
