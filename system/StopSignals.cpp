#include "system/StopSignals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>

namespace sys {

namespace {

bool IsIgnored(int signal) {
  struct sigaction action = {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t SetOfStopSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGINT, SIGTERM}) {
    if (!IsIgnored(signal)) sigaddset(&set, signal);
  }
  return set;
}

}  // namespace

StopSignals::StopSignals() {
  const sigset_t set = SetOfStopSignals();
  fDescriptor = FileDescriptor(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!fDescriptor.IsOpen()) ThrowSystemError(errno);
  ::pthread_sigmask(SIG_BLOCK, &set, &fMaskBefore);
}

StopSignals::~StopSignals() {
  signalfd_siginfo taken;
  while (::read(fDescriptor.Get(), &taken, sizeof taken) > 0) {
  }
  ::pthread_sigmask(SIG_SETMASK, &fMaskBefore, nullptr);
}

}  // namespace sys
