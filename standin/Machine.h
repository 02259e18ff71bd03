// The machine that the process runs on, as the host's operating-system services.
#pragma once

#include <string>

#include "standin/Export.h"
#include "standin/OperatingSystem.h"

namespace standin {

class USBINFO_STANDIN_EXPORT Machine : public OperatingSystem {
 public:
  /// Also false for a file behind a directory that may not be searched.
  bool FileExists(const std::string& path) override;
  /// Reads to the end, whatever size the file is said to have: kernel files say 0. Throws CIM_ERR_NOT_FOUND,
  /// CIM_ERR_ACCESS_DENIED or, also for a file of more than kMaxOutput bytes, CIM_ERR_FAILED.
  std::string CaptureFile(const std::string& path) override;
  /// Runs `/bin/sh -c command` in a process group of its own, with empty input and its error output dropped.
  /// When `seconds` are over, or it has written more than kMaxOutput bytes, the whole group is killed and
  /// CIM_ERR_FAILED thrown, since half a list would pass for a whole one. The exit status is ignored.
  std::string SpawnProcess(const std::string& command, int seconds) override;

  static constexpr std::size_t kMaxOutput = std::size_t{256} * 1024 * 1024;
};

}  // namespace standin
