#include "cli/collect/Hardening.h"

#include <sys/auxv.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace cli {

bool HasRightsOfItsFile() {
  return ::getauxval(AT_SECURE) != 0;
}

void ProtectSearchPath() {
  if (::geteuid() != 0 && !HasRightsOfItsFile()) return;
  if (::setenv("PATH", "/usr/sbin:/usr/bin:/sbin:/bin", 1) == 0) return;
  throw std::system_error(errno, std::generic_category(), "cannot set PATH");
}

void ForbidCoreDumps() {
  const rlimit none = {0, 0};
  if (::prctl(PR_SET_DUMPABLE, 0) == 0 && ::setrlimit(RLIMIT_CORE, &none) == 0) return;
  throw std::system_error(errno, std::generic_category(), "cannot forbid core dumps");
}

}  // namespace cli
