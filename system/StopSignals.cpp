#include "system/StopSignals.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

#include "system/SignalGuard.h"

namespace sys {

namespace {

// The signal handler writes to it, whichever thread it runs on.
std::atomic<int> stopEvent = -1;

void NoteStop(int /*signal*/) {
  const int errorBefore = errno;
  constexpr std::uint64_t kOne = 1;
  if (::write(stopEvent, &kOne, sizeof kOne) < 0) errno = errorBefore;
}

}  // namespace

StopSignals::StopSignals() : fDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (!fDescriptor.IsOpen()) ThrowSystemError(errno);
  stopEvent = fDescriptor.Get();
  for (const int signal : {SIGINT, SIGTERM}) {
    if (!HasHandler(signal, SIG_DFL)) continue;
    struct sigaction action = {};
    action.sa_handler = NoteStop;
    action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
    fTaken.push_back(signal);
  }
}

StopSignals::~StopSignals() {
  for (const int signal : fTaken) static_cast<void>(std::signal(signal, SIG_DFL));
  stopEvent = -1;
}

}  // namespace sys
