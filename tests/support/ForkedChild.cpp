#include "tests/support/ForkedChild.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace usbinfo_test {

pid_t StartChild(const std::function<int()>& body) {
  constexpr int kThrew = 99;
  const pid_t child = ::fork();
  if (child != 0) return child;
  const rlimit none = {0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) std::signal(signal, SIG_DFL);
  try {
    ::_exit(body());
  } catch (...) {
    ::_exit(kThrew);
  }
}

int EndOfChild(pid_t child) {
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace usbinfo_test
