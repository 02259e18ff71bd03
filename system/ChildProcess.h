// A command running in a process group of its own, its standard output caught in a pipe. Its owner
// collects or follows the output; the destructor kills what still runs of the group and reaps the child, so
// no process, no zombie and no descriptor stays behind. A signal that ends this process kills the group, too.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "system/FileDescriptor.h"
#include "system/SignalGuard.h"

namespace sys {

class ChildProcess {
 public:
  /// Starts `/bin/sh -c command`; throws std::system_error when it cannot be started.
  explicit ChildProcess(const std::string& command);
  /// Starts the program that `arguments` begin with, looked for in PATH; its standard error is caught as
  /// well. Throws std::system_error.
  explicit ChildProcess(std::vector<std::string> arguments);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  /// Everything that the command writes until the pipe is closed and the command has ended. Throws
  /// std::system_error, with ETIMEDOUT when that takes longer than `limit` and EFBIG beyond `maxBytes`.
  std::string Collect(std::chrono::milliseconds limit, std::size_t maxBytes);

  enum class Stream { kOutput, kErrors };
  /// Calls `take` with what the program writes, as it comes, until both streams are closed and it has ended.
  /// Gives its exit status; 128 and the number of the signal that ended it. Throws std::system_error, and
  /// whatever `take` throws.
  int Follow(const std::function<void(Stream stream, std::string_view part)>& take);

 private:
  void Start(const char* program, std::vector<std::string>& arguments, int output, int errors);
  void AwaitEnd(std::chrono::steady_clock::time_point deadline);

  ProcessGroupGuard fGuard;
  pid_t fPid = -1;
  FileDescriptor fOutput;
  /// Open if the command's errors are caught.
  FileDescriptor fErrors;
  /// The system has reaped the child by itself; its process ID may have been reused.
  bool fGone = false;
  int fExitStatus = 0;
};

}  // namespace sys
