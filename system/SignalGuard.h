// Cleans up when a signal ends the process: removes a temporary file and kills a command that is running.
// While a guard lives, SIGHUP, SIGINT, SIGQUIT and SIGTERM first remove the file or kill the command, then
// end the process as they would have without the guard, so that its parent sees the signal. A signal that the
// process ignores or handles by itself is left alone. One file and one command are guarded at a time.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <string>

namespace sys {

/// The signals are handled while at least one of these exists. The other guards have their own.
class EndingSignals {
 public:
  EndingSignals();
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;
  ~EndingSignals();
};

/// Has the signals remove the file `name` in the open folder `folder`, if it exists.
class FileGuard {
 public:
  /// `folder` must stay open as long as the guard lives. Throws std::system_error, with ENAMETOOLONG for a
  /// name that no file can have.
  FileGuard(int folder, const std::string& name);
  FileGuard(const FileGuard&) = delete;
  FileGuard& operator=(const FileGuard&) = delete;
  ~FileGuard();

 private:
  EndingSignals fSignals;
};

/// Has the signals kill a process group. They are blocked from construction until Watch, so that none arrives
/// between the start of the command and the moment when its group is known.
class ProcessGroupGuard {
 public:
  ProcessGroupGuard();
  ProcessGroupGuard(const ProcessGroupGuard&) = delete;
  ProcessGroupGuard& operator=(const ProcessGroupGuard&) = delete;
  ~ProcessGroupGuard();

  void Watch(pid_t group);
  /// To be called before the group's leader is reaped, since its id may then be reused. Does not return where
  /// a signal is ending the process on another thread, so that nobody goes on as if the command had ended by
  /// itself.
  void Forget();

 private:
  void Release();

  EndingSignals fSignals;
  sigset_t fMaskBefore{};
  bool fHoldsBack = true;
};

/// Whether the process handles `signal` so; `handler` may be SIG_DFL or SIG_IGN.
bool HasHandler(int signal, void (*handler)(int));

/// Kills a process group by its leader, which must not have been reaped. Async-signal-safe.
void KillGroup(pid_t leader);

/// Ends the process by `signal` at once, as if it were neither ignored, blocked nor handled.
[[noreturn]] void EndBySignal(int signal);

}  // namespace sys
