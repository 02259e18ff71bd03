// A shell command running in a process group of its own, its standard output caught in a pipe. Its owner
// collects the output; a command that has not ended by then is killed by the destructor with its whole group,
// and reaped. What a command that has ended leaves running on purpose is left alone.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <string>

#include "standin/FileDescriptor.h"

namespace standin {

class ChildProcess {
 public:
  /// Starts `/bin/sh -c command`; throws std::system_error when it cannot be started.
  explicit ChildProcess(const std::string& command);
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;
  ~ChildProcess();

  /// What the command writes until the pipe is closed and the command has ended. Throws std::system_error,
  /// with ETIMEDOUT when that takes longer than `limit` and EFBIG beyond `maxBytes`.
  std::string Collect(std::chrono::milliseconds limit, std::size_t maxBytes);

 private:
  void AwaitEnd(std::chrono::steady_clock::time_point deadline);

  pid_t fPid = -1;
  FileDescriptor fOutput;
  bool fReaped = false;
};

}  // namespace standin
