// What the host asks of the operating system on a plug-in's behalf. Implemented by the real machine, by a
// device list that the user gave, and by test doubles.
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
