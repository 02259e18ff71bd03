// The host's operating-system services. They run on the caller's thread and block until done.
#pragma once

#include <string>

#include "host/HostApi.h"

namespace NKESTA20 {

class USBINFO_HOST_API TOSSpecific {
 public:
  /// The whole file; throws TQSVException when it cannot be read.
  static std::string CaptureFile(std::string path);
  static bool FileExists(std::string path);
  /// Runs a shell command line and returns what it wrote to standard output; `seconds` is its time limit.
  static std::string SpawnProcess(std::string command, int seconds);
};

}  // namespace NKESTA20
