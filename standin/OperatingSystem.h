// What the host asks of the operating system on a plug-in's behalf: an interface with the real machine behind
// it, or a device list given by the user, or a test's double.
#pragma once

#include <string>

namespace standin {

class OperatingSystem {
 public:
  OperatingSystem() = default;
  OperatingSystem(const OperatingSystem&) = delete;
  OperatingSystem& operator=(const OperatingSystem&) = delete;
  virtual ~OperatingSystem() = default;

  virtual bool FileExists(const std::string& path) = 0;
  /// The whole file; throws TQSVException when it cannot be read.
  virtual std::string CaptureFile(const std::string& path) = 0;
  /// The standard output of a shell command line; throws TQSVException when it is not done after `seconds`.
  virtual std::string SpawnProcess(const std::string& command, int seconds) = 0;
};

}  // namespace standin
