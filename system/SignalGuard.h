// What a signal that ends the process must not leave behind: a temporary file, or a command that runs on.
// While a guard lives, SIGHUP, SIGINT, SIGQUIT and SIGTERM first remove the file or kill the command, then
// end the process as they would have without the guard, so that its parent sees the signal. A signal that the
// process ignores or handles by itself is left alone. One file and one command are guarded at a time.
#pragma once

#include <sys/types.h>

#include <csignal>
#include <string>

namespace sys {

/// Has the signals handled while at least one of these lives. The other guards bring their own.
class EndingSignals {
 public:
  EndingSignals();
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;
  ~EndingSignals();
};

/// The file `name` in the open folder `folder` is removed by the signals, if it is there.
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

/// A process group is killed by the signals. They are held back from the construction until Watch, so that
/// none comes between the start of the command and the moment when its group is known.
class ProcessGroupGuard {
 public:
  ProcessGroupGuard();
  ProcessGroupGuard(const ProcessGroupGuard&) = delete;
  ProcessGroupGuard& operator=(const ProcessGroupGuard&) = delete;
  ~ProcessGroupGuard();

  void Watch(pid_t group);
  /// To be called before the group's leader is reaped: its id may then become another's.
  void Forget();

 private:
  void Release();

  EndingSignals fSignals;
  sigset_t fMaskBefore{};
  bool fHoldsBack = true;
};

/// Ends the process by `signal` at once, as if it were neither ignored, blocked nor handled.
[[noreturn]] void EndBySignal(int signal);

}  // namespace sys
