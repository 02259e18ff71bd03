#include "system/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <limits>
#include <system_error>
#include <utility>

extern "C" {
#include <sys/pidfd.h>  // up to glibc 2.36 without a C++ linkage of its own
}

namespace sys {

namespace {

using Clock = std::chrono::steady_clock;

void Check(int error) {
  if (error != 0) ThrowSystemError(error);
}

/// The child's descriptors: empty input, output to `output`, errors to `errors` or, where that is negative,
/// dropped.
class SpawnActions {
 public:
  SpawnActions() { Check(posix_spawn_file_actions_init(&fActions)); }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { posix_spawn_file_actions_destroy(&fActions); }

  void Redirect(int output, int errors) {
    // The output first: where this process lacks a standard stream, `output` may have its number.
    Check(posix_spawn_file_actions_adddup2(&fActions, output, STDOUT_FILENO));
    Check(posix_spawn_file_actions_addopen(&fActions, STDIN_FILENO, "/dev/null", O_RDONLY, 0));
    if (errors < 0) {
      Check(posix_spawn_file_actions_addopen(&fActions, STDERR_FILENO, "/dev/null", O_WRONLY, 0));
    } else {
      Check(posix_spawn_file_actions_adddup2(&fActions, errors, STDERR_FILENO));
    }
  }
  const posix_spawn_file_actions_t* Get() const { return &fActions; }

 private:
  posix_spawn_file_actions_t fActions;
};

/// The child's attributes: leader of its own process group, default signal handling.
class SpawnAttributes {
 public:
  SpawnAttributes() { Check(posix_spawnattr_init(&fAttributes)); }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  ~SpawnAttributes() { posix_spawnattr_destroy(&fAttributes); }

  void SetGroupAndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    Check(posix_spawnattr_setsigmask(&fAttributes, &signals));
    sigaddset(&signals, SIGPIPE);
    sigaddset(&signals, SIGXFSZ);
    Check(posix_spawnattr_setsigdefault(&fAttributes, &signals));
    Check(posix_spawnattr_setpgroup(&fAttributes, 0));
    Check(posix_spawnattr_setflags(&fAttributes,
                                   POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
  }
  const posix_spawnattr_t* Get() const { return &fAttributes; }

 private:
  posix_spawnattr_t fAttributes;
};

/// Waits until `fd` can be read; throws with ETIMEDOUT when `deadline` passes first.
void AwaitReadable(int fd, Clock::time_point deadline) {
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (left <= 0) ThrowSystemError(ETIMEDOUT);
    pollfd watched = {fd, POLLIN, 0};
    const auto wait = std::min<long long>(left, std::numeric_limits<int>::max());
    const int ready = ::poll(&watched, 1, static_cast<int>(wait));
    if (ready > 0) return;
    if (ready < 0 && errno != EINTR) ThrowSystemError(errno);
  }
}

struct Pipe {
  FileDescriptor reading;
  FileDescriptor writing;
};

Pipe MakePipe() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) ThrowSystemError(errno);
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  pointers.reserve(texts.size() + 1);
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// Waits for one of both, of which closed ones are -1.
void AwaitOneReadable(std::array<pollfd, 2>& watched) {
  while (::poll(watched.data(), watched.size(), -1) < 0) {
    if (errno != EINTR) ThrowSystemError(errno);
  }
}

}  // namespace

ChildProcess::ChildProcess(const std::string& command) {
  Pipe output = MakePipe();
  fOutput = std::move(output.reading);
  std::vector<std::string> arguments = {"sh", "-c", command};
  Start("/bin/sh", arguments, output.writing.Get(), -1);
}

ChildProcess::ChildProcess(std::vector<std::string> arguments) {
  Pipe output = MakePipe();
  Pipe errors = MakePipe();
  fOutput = std::move(output.reading);
  fErrors = std::move(errors.reading);
  const std::string program = arguments.front();
  Start(program.c_str(), arguments, output.writing.Get(), errors.writing.Get());
}

void ChildProcess::Start(const char* program, std::vector<std::string>& arguments, int output, int errors) {
  SpawnActions actions;
  actions.Redirect(output, errors);
  SpawnAttributes attributes;
  attributes.SetGroupAndSignals();
  Check(posix_spawnp(&fPid, program, actions.Get(), attributes.Get(), Pointers(arguments).data(), environ));
  fGuard.Watch(fPid);
}

ChildProcess::~ChildProcess() {
  if (fGone) return;
  KillGroup(fPid);
  fGuard.Forget();
  while (::waitpid(fPid, nullptr, 0) < 0 && errno == EINTR) {
  }
}

std::string ChildProcess::Collect(std::chrono::milliseconds limit, std::size_t maxBytes) {
  constexpr std::size_t kChunk = 65536;
  const Clock::time_point deadline = Clock::now() + limit;
  std::string text;
  std::array<char, kChunk> chunk;
  for (;;) {
    AwaitReadable(fOutput.Get(), deadline);
    const ssize_t got = ::read(fOutput.Get(), chunk.data(), chunk.size());
    if (got == 0) break;
    if (got > 0) {
      if (static_cast<std::size_t>(got) > maxBytes - text.size()) ThrowSystemError(EFBIG);
      text.append(chunk.data(), static_cast<std::size_t>(got));
    } else if (errno != EINTR) {
      ThrowSystemError(errno);
    }
  }
  AwaitEnd(deadline);
  return text;
}

int ChildProcess::Follow(const std::function<void(Stream, std::string_view)>& take) {
  constexpr std::size_t kChunk = 65536;
  std::array<char, kChunk> chunk;
  std::array<pollfd, 2> watched = {{{fOutput.Get(), POLLIN, 0}, {fErrors.Get(), POLLIN, 0}}};
  while (watched[0].fd >= 0 || watched[1].fd >= 0) {
    AwaitOneReadable(watched);
    for (pollfd& each : watched) {
      if (each.fd < 0 || each.revents == 0) continue;
      const ssize_t got = ::read(each.fd, chunk.data(), chunk.size());
      if (got < 0 && errno != EINTR) ThrowSystemError(errno);
      if (got > 0) {
        take(each.fd == fOutput.Get() ? Stream::kOutput : Stream::kErrors,
             {chunk.data(), static_cast<std::size_t>(got)});
      }
      if (got == 0) each.fd = -1;
    }
  }
  AwaitEnd(Clock::time_point::max());
  return fExitStatus;
}

void ChildProcess::AwaitEnd(Clock::time_point deadline) {
  const FileDescriptor process(::pidfd_open(fPid, 0));
  if (process.IsOpen()) {
    AwaitReadable(process.Get(), deadline);
  } else if (errno != ESRCH) {
    ThrowSystemError(errno);
  }
  // Where this process ignores SIGCHLD, the system has reaped the child already.
  constexpr int kSignalled = 128;
  siginfo_t end;
  fGone = ::waitid(P_PID, static_cast<id_t>(fPid), &end, WEXITED | WNOHANG | WNOWAIT) != 0;
  if (fGone) {
    fGuard.Forget();
  } else {
    fExitStatus = end.si_code == CLD_EXITED ? end.si_status : kSignalled + end.si_status;
  }
}

}  // namespace sys
