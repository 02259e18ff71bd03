// The machine as a test wants it: files and commands by name, every question recorded, nothing touched.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "standin/OperatingSystem.h"

namespace usbinfo_test {

class FakeOperatingSystem : public standin::OperatingSystem {
 public:
  /// `calls` gets a line per question: "exists PATH", "capture PATH", "spawn COMMAND SECONDS". Must outlive
  /// the fake, as the host owns that.
  explicit FakeOperatingSystem(std::vector<std::string>* calls) : fCalls(calls) {}

  bool FileExists(const std::string& path) override;
  /// The file's text; throws CIM_ERR_NOT_FOUND for a path that was never given.
  std::string CaptureFile(const std::string& path) override;
  /// The command's output; empty for a command that was never given.
  std::string SpawnProcess(const std::string& command, int seconds) override;

  std::map<std::string, std::string> files;
  std::map<std::string, std::string> outputs;
  /// Called before each answer with the recorded line; may throw, or change the answers.
  std::function<void(const std::string& call)> onCall;

 private:
  void Record(const std::string& call);

  std::vector<std::string>* fCalls;
};

}  // namespace usbinfo_test
