#include "tests/system/Processes.h"

#include <grp.h>
#include <poll.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <system_error>

#include "system/FileDescriptor.h"

namespace usbinfo_test {

namespace {

void (*tickHandler)(int count) = nullptr;
volatile sig_atomic_t ticks = 0;

void CountTick(int) {
  const int error = errno;
  ticks = ticks + 1;
  if (tickHandler != nullptr) tickHandler(ticks);
  errno = error;
}

void SetTimer(suseconds_t microseconds) {
  const itimerval timer = {{0, microseconds}, {0, microseconds}};
  ASSERT_EQ(::setitimer(ITIMER_REAL, &timer, nullptr), 0);
}

bool DropPrivileges() {
  constexpr uid_t kUnprivileged = 65534;
  return ::setgroups(0, nullptr) == 0 && ::setresgid(kUnprivileged, kUnprivileged, kUnprivileged) == 0 &&
         ::setresuid(kUnprivileged, kUnprivileged, kUnprivileged) == 0;
}

}  // namespace

void ProcessTest::SetUp() {
  fDescriptorsBefore = OpenDescriptors();
  fStart = std::chrono::steady_clock::now();
}

void ProcessTest::TearDown() {
  constexpr std::chrono::seconds kPatience(20);
  EXPECT_LT(std::chrono::steady_clock::now() - fStart, kPatience);
  EXPECT_EQ(OpenDescriptors(), fDescriptorsBefore);
  errno = 0;
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

int ErrorOf(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const std::system_error& error) {
    return error.code().value();
  }
  return 0;
}

std::size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

bool Ends(pid_t process) {
  const sys::FileDescriptor watched(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
  if (!watched.IsOpen()) return errno == ESRCH;
  constexpr int kPatience = 3000;
  pollfd ended = {watched.Get(), POLLIN, 0};
  const bool isOver = ::poll(&ended, 1, kPatience) == 1;
  if (!isOver) ::kill(process, SIGKILL);
  return isOver;
}

int ExitOfChild(const std::function<int()>& body) {
  constexpr int kThrew = 99;
  const pid_t child = ::fork();
  if (child == 0) {
    try {
      ::_exit(body());
    } catch (...) {
      ::_exit(kThrew);
    }
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int ExitOfUnprivileged(const std::function<int()>& body) {
  if (::geteuid() != 0) return body();
  return ExitOfChild([&body] { return DropPrivileges() ? body() : kStillPrivileged; });
}

Interruptions::Interruptions(void (*onTick)(int count)) {
  constexpr suseconds_t kEveryMillisecond = 1000;
  ticks = 0;
  tickHandler = onTick;
  struct sigaction action = {};
  action.sa_handler = CountTick;
  EXPECT_EQ(::sigaction(SIGALRM, &action, nullptr), 0);
  SetTimer(kEveryMillisecond);
}

Interruptions::~Interruptions() {
  SetTimer(0);
  struct sigaction action = {};
  action.sa_handler = SIG_IGN;
  EXPECT_EQ(::sigaction(SIGALRM, &action, nullptr), 0);
  action.sa_handler = SIG_DFL;
  EXPECT_EQ(::sigaction(SIGALRM, &action, nullptr), 0);
}

}  // namespace usbinfo_test
