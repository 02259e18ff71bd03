#include "system/SignalGuard.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <mutex>

#include "system/FileDescriptor.h"

namespace sys {

namespace {

constexpr std::array kEndingSignals = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

// The signal handler reads these, whichever thread it runs on.
std::atomic<int> guardedFolder = -1;
std::array<char, NAME_MAX + 1> guardedName;
std::atomic<pid_t> guardedGroup = 0;
std::atomic<bool> isStarting = false;
std::atomic<bool> isEnding = false;

static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

void WaitAMoment() {
  constexpr timespec kMoment = {0, 1000000};
  ::nanosleep(&kMoment, nullptr);
}

/// Another thread is starting a command, with its own signals blocked; it will store the group's id shortly.
void AwaitStart() {
  while (isStarting) WaitAMoment();
}

/// Calls nothing but async-signal-safe functions.
void CleanUpAndEnd(int signal) {
  AwaitStart();
  isEnding = true;
  const int folder = guardedFolder;
  if (folder >= 0) ::unlinkat(folder, guardedName.data(), 0);
  const pid_t group = guardedGroup;
  if (group > 0) KillGroup(group);
  EndBySignal(signal);
}

sigset_t SetOfEndingSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kEndingSignals) sigaddset(&set, signal);
  return set;
}

/// Replaces the handler of `signal` by `to` if it is `from`.
void ReplaceHandler(int signal, void (*from)(int), void (*to)(int)) {
  if (!HasHandler(signal, from)) return;
  struct sigaction action = {};
  action.sa_handler = to;
  action.sa_mask = SetOfEndingSignals();
  ::sigaction(signal, &action, nullptr);
}

std::mutex installation;
int users = 0;

}  // namespace

bool HasHandler(int signal, void (*handler)(int)) {
  struct sigaction action = {};
  return ::sigaction(signal, nullptr, &action) == 0 && (action.sa_flags & SA_SIGINFO) == 0 &&
         action.sa_handler == handler;
}

EndingSignals::EndingSignals() {
  const std::lock_guard<std::mutex> lock(installation);
  if (users++ > 0) return;
  for (const int signal : kEndingSignals) ReplaceHandler(signal, SIG_DFL, CleanUpAndEnd);
}

EndingSignals::~EndingSignals() {
  const std::lock_guard<std::mutex> lock(installation);
  if (--users > 0) return;
  for (const int signal : kEndingSignals) ReplaceHandler(signal, CleanUpAndEnd, SIG_DFL);
}

FileGuard::FileGuard(int folder, const std::string& name) {
  if (name.size() >= guardedName.size()) ThrowSystemError(ENAMETOOLONG);
  std::memcpy(guardedName.data(), name.c_str(), name.size() + 1);
  guardedFolder = folder;
}

FileGuard::~FileGuard() {
  guardedFolder = -1;
}

ProcessGroupGuard::ProcessGroupGuard() {
  const sigset_t signals = SetOfEndingSignals();
  ::pthread_sigmask(SIG_BLOCK, &signals, &fMaskBefore);
  isStarting = true;
}

ProcessGroupGuard::~ProcessGroupGuard() {
  Forget();
  Release();
}

void ProcessGroupGuard::Watch(pid_t group) {
  guardedGroup = group;
  Release();
}

void ProcessGroupGuard::Forget() {
  guardedGroup = 0;
  while (isEnding) WaitAMoment();
}

void ProcessGroupGuard::Release() {
  if (!fHoldsBack) return;
  fHoldsBack = false;
  isStarting = false;
  ::pthread_sigmask(SIG_SETMASK, &fMaskBefore, nullptr);
}

void KillGroup(pid_t leader) {
  // Where the system emulates posix_spawn by a fork, the child may not have made its group yet.
  if (::kill(-leader, SIGKILL) != 0) ::kill(leader, SIGKILL);
}

void EndBySignal(int signal) {
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  ::sigaction(signal, &action, nullptr);
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  static_cast<void>(::raise(signal));
  constexpr int kShellAddsToSignals = 128;
  ::_exit(kShellAddsToSignals + signal);
}

}  // namespace sys
