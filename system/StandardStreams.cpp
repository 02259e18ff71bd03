#include "system/StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace sys {

void OccupyStandardStreams() {
  int fd = -1;
  do {
    fd = ::open("/", O_PATH | O_CLOEXEC);
  } while (fd >= 0 && fd <= STDERR_FILENO);
  if (fd >= 0) ::close(fd);
}

}  // namespace sys
