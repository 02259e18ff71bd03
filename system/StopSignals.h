// SIGINT and SIGTERM as something to wait for, for a program that ends its work in good order when it is
// stopped. While the object lives, they do not end the process.
#pragma once

#include <csignal>

#include "system/FileDescriptor.h"

namespace sys {

class StopSignals {
 public:
  /// Blocks them on this thread, and on threads that it starts from now on. One that the process ignores is
  /// left alone. Throws std::system_error.
  StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;
  /// Those that came are forgotten.
  ~StopSignals();

  /// Readable from the first signal on, as poll(2) sees it; not to be read.
  int Get() const { return fDescriptor.Get(); }

 private:
  sigset_t fMaskBefore{};
  FileDescriptor fDescriptor;
};

}  // namespace sys
