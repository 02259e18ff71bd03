// A forked copy of the test program, to be ended by a signal, and how it ended.
#pragma once

#include <sys/types.h>

#include <functional>

namespace usbinfo_test {

/// Starts a copy that runs `body` and exits with what it returns. Signals end it, whatever the test runner
/// ignores; it leaves no core file.
pid_t StartChild(const std::function<int()>& body);

/// Waits for the child; gives its exit status, or the signal that ended it as its negative number.
int EndOfChild(pid_t child);

}  // namespace usbinfo_test
