#include "tests/support/HostTest.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "standin/HostSeam.h"
#include "tests/support/RecordedSystem.h"

namespace usbinfo_test {

HostTest::HostTest() {
  host.Reset();
  host.SetSystemName("testhost");
  auto fake = std::make_unique<FakeOperatingSystem>(&calls);
  machine = fake.get();
  host.SetOperatingSystem(std::move(fake));
  host.CoreLogger().SetSink([this](NKESTA20::ILogger::EQSVLogSeverity severity, const std::string& text) {
    log.push_back({severity, text});
  });
  SetSystemHook([this](const std::string& command) {
    calls.push_back("system " + command);
    if (machine->onCall) machine->onCall(calls.back());
  });
}

HostTest::~HostTest() {
  standin::HostSeam::SetObserver(nullptr);
  SetSystemHook(nullptr);
  host.Reset();
}

std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::vector<std::string> CapturePaths() {
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(TEST_DATA_DIR "/captures")) {
    if (entry.path().extension() == ".txt") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

std::string TestNameOf(const std::string& path) {
  std::string name = std::filesystem::path(path).stem();
  std::replace_if(
      name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; }, '_');
  return name;
}

}  // namespace usbinfo_test
