// Calls to the C library that a test watches or has fail: openat for a new file, write, fchown, fchmod,
// fsync, renameat, posix_spawnp (when the process is started) and nanosleep. A program that links
// SystemCalls.cpp has them replaced by ones that ask the test first.
#pragma once

#include <functional>
#include <string>

namespace usbinfo_test {

struct SystemCall {
  std::string name;
  /// The file that openat creates or that renameat renames; else empty.
  std::string file;
  /// The process that posix_spawnp has started.
  int process = -1;
};

/// While it lives, `onCall` is called with each of these calls. Gives the error number that the call fails
/// with; 0 for the call itself. Calls that `onCall` makes are not watched.
class SystemCallHook {
 public:
  using OnCall = std::function<int(const SystemCall& call)>;

  explicit SystemCallHook(OnCall onCall);
  SystemCallHook(const SystemCallHook&) = delete;
  SystemCallHook& operator=(const SystemCallHook&) = delete;
  ~SystemCallHook();
};

}  // namespace usbinfo_test
