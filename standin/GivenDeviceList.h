// A device list given by the user in place of the machine: every file holds it, every command is silent, and
// nothing of the machine is touched.
#pragma once

#include <string>
#include <utility>

#include "standin/OperatingSystem.h"

namespace standin {

class GivenDeviceList : public OperatingSystem {
 public:
  explicit GivenDeviceList(std::string text) : fText(std::move(text)) {}

  bool FileExists(const std::string&) override { return true; }
  std::string CaptureFile(const std::string&) override { return fText; }
  std::string SpawnProcess(const std::string&, int) override { return std::string(); }

 private:
  std::string fText;
};

}  // namespace standin
