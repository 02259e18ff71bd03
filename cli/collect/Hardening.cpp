#include "cli/collect/Hardening.h"

#include <sys/auxv.h>
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

}  // namespace cli
