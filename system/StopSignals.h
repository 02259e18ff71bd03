// SIGINT and SIGTERM as something to wait for, for a program that ends its work in good order when it is
// stopped.
#pragma once

#include <vector>

#include "system/FileDescriptor.h"

namespace sys {

/// While it lives, the first signal of each kind does not end the process. The same signal once more does, so
/// that a process can be ended that waits for something else. One exists at a time.
class StopSignals {
 public:
  /// A signal that the process ignores or handles by itself is left alone. Throws std::system_error.
  StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;
  /// Those that came are forgotten.
  ~StopSignals();

  /// Readable from the first signal on, as poll(2) sees it; not to be read.
  int Get() const { return fDescriptor.Get(); }

 private:
  FileDescriptor fDescriptor;
  std::vector<int> fTaken;
};

}  // namespace sys
