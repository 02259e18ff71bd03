// A shell command running in a process group of its own, its standard output caught in a pipe. Its owner
// collects the output; the destructor kills what still runs of the group and reaps the child, so no process,
// no zombie and no descriptor stays behind. A signal that ends this process kills the group, too.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <string>

#include "system/FileDescriptor.h"
#include "system/SignalGuard.h"

namespace sys {

class ChildProcess {
 public:
  /// Starts `/bin/sh -c command`; throws std::system_error when it cannot be started.
  explicit ChildProcess(const std::string& command);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  /// Everything that the command writes until the pipe is closed and the command has ended. Throws
  /// std::system_error, with ETIMEDOUT when that takes longer than `limit` and EFBIG beyond `maxBytes`.
  std::string Collect(std::chrono::milliseconds limit, std::size_t maxBytes);

 private:
  void AwaitEnd(std::chrono::steady_clock::time_point deadline);

  ProcessGroupGuard fGuard;
  pid_t fPid = -1;
  FileDescriptor fOutput;
  /// The system has reaped the child by itself; its process ID may have been reused.
  bool fGone = false;
};

}  // namespace sys
