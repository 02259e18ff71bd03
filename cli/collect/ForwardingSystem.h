// An operating system that forwards every call to another one, which it owns. Classes that change some of the
// calls derive from it and override only those.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "standin/OperatingSystem.h"

namespace cli {

class ForwardingSystem : public standin::OperatingSystem {
 public:
  explicit ForwardingSystem(std::unique_ptr<standin::OperatingSystem> next) : fNext(std::move(next)) {}

  bool FileExists(const std::string& path) override { return fNext->FileExists(path); }
  std::string CaptureFile(const std::string& path) override { return fNext->CaptureFile(path); }
  std::string SpawnProcess(const std::string& command, int seconds) override {
    return fNext->SpawnProcess(command, seconds);
  }

 private:
  std::unique_ptr<standin::OperatingSystem> fNext;
};

}  // namespace cli
