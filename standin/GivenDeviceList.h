// A device list that the user gave, in place of the machine: every file has this text, every command prints
// nothing, and the machine is not touched.
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
