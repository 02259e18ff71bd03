#include "tests/support/RecordedSystem.h"

extern "C" int system(const char* command) {
  usbinfo_test::CallSystemHook(command);
  return usbinfo_test::kCommandFailed;
}
