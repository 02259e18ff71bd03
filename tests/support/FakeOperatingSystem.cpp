#include "tests/support/FakeOperatingSystem.h"

#include "standin/StatusCode.h"

namespace usbinfo_test {

void FakeOperatingSystem::Record(const std::string& call) {
  fCalls->push_back(call);
  if (onCall) onCall(call);
}

bool FakeOperatingSystem::FileExists(const std::string& path) {
  Record("exists " + path);
  return files.count(path) != 0;
}

std::string FakeOperatingSystem::CaptureFile(const std::string& path) {
  Record("capture " + path);
  const auto found = files.find(path);
  if (found == files.end()) standin::Throw(standin::StatusCode::kNotFound);
  return found->second;
}

std::string FakeOperatingSystem::SpawnProcess(const std::string& command, int seconds) {
  Record("spawn " + command + " " + std::to_string(seconds));
  const auto found = outputs.find(command);
  return found == outputs.end() ? std::string() : found->second;
}

}  // namespace usbinfo_test
