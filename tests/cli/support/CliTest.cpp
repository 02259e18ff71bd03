#include "tests/cli/support/CliTest.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <csignal>
#include <cstdlib>
#include <cwchar>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "cli/model/FromHost.h"
#include "schema/ClassSchema.h"
#include "standin/GivenDeviceList.h"
#include "standin/PluginModule.h"

using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;

namespace usbinfo_test {

namespace fs = std::filesystem;

CharacterSet::CharacterSet(const char* locale) : fBefore(std::setlocale(LC_CTYPE, nullptr)) {
  EXPECT_NE(std::setlocale(LC_CTYPE, locale), nullptr) << locale;
}

CharacterSet::~CharacterSet() {
  static_cast<void>(std::setlocale(LC_CTYPE, fBefore.c_str()));
}

FileSizeLimit::FileSizeLimit(rlim_t bytes) : fHandler(std::signal(SIGXFSZ, SIG_IGN)) {
  EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &fBefore), 0);
  rlimit limit = fBefore;
  limit.rlim_cur = bytes;
  EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

FileSizeLimit::~FileSizeLimit() {
  EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &fBefore), 0);
  std::signal(SIGXFSZ, fHandler);
}

NoPrivileges::NoPrivileges() : fUser(::geteuid()) {
  constexpr uid_t kNobody = 65534;
  // No test may go on with root's rights.
  if (fUser == 0 && ::seteuid(kNobody) != 0) throw std::runtime_error("cannot give up root's rights");
}

NoPrivileges::~NoPrivileges() {
  EXPECT_EQ(::seteuid(fUser), 0);
}

std::string CapturePath(const std::string& name) {
  return std::string(TEST_DATA_DIR "/captures/").append(name).append(".txt");
}

std::vector<std::string> CaptureNames() {
  std::vector<std::string> names;
  for (const std::string& path : CapturePaths()) names.push_back(fs::path(path).stem());
  return names;
}

std::string Expected(const std::string& file) {
  return ReadFile(TEST_DATA_DIR "/expected/" + file);
}

std::string ToTestName(const std::string& text) {
  std::string name;
  std::copy_if(text.begin(), text.end(), std::back_inserter(name),
               [](unsigned char letter) { return std::isalnum(letter) != 0; });
  return name;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

int DisplayWidth(const std::string& line) {
  const CharacterSet characters("C.UTF-8");
  std::wstring wide(line.size(), L'\0');
  const std::size_t length = std::mbstowcs(wide.data(), line.c_str(), wide.size());
  EXPECT_NE(length, static_cast<std::size_t>(-1)) << line;
  const int width = ::wcswidth(wide.data(), length);
  EXPECT_GE(width, 0) << line;
  return width;
}

std::string UserErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const cli::UserError& error) {
    return error.what();
  }
  return std::string();
}

TCIMReference CliTest::Commit(const std::string& className, const PropertyList& properties) {
  const auto instance = host.Cimv2()->ClassForRequest(className)->CreateInstance({});
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
  instance->Commit({});
  return instance->GetObjectPath({});
}

TCIMReference CliTest::CommitEntity(const std::string& className, const std::string& deviceId,
                                    PropertyList properties) {
  properties.emplace_back("CreationClassName", TCIMValue(className));
  properties.emplace_back("DeviceID", TCIMValue(deviceId));
  properties.emplace_back("SystemCreationClassName", TCIMValue("KALDO_ComputerSystem"));
  properties.emplace_back("SystemName", TCIMValue("testhost"));
  return Commit(className, properties);
}

void CliTest::Associate(const std::string& className, TCIMReference antecedent, TCIMReference dependent) {
  Commit(className, {{"Antecedent", TCIMValue(antecedent)}, {"Dependent", TCIMValue(dependent)}});
}

TCIMReference CliTest::AddController(const std::string& deviceId, const std::string& description) {
  return CommitEntity("KALDO_USBController", deviceId, {{"Description", TCIMValue(description)}});
}

TCIMReference CliTest::AddHub(const std::string& deviceId, const std::string& description,
                              unsigned char ports) {
  return CommitEntity("KALDO_USBHub", deviceId,
                      {{"Description", TCIMValue(description)}, {"NumberOfPorts", TCIMValue(ports)}});
}

TCIMReference CliTest::AddPort(const std::string& deviceId, unsigned long speed, const std::string& status) {
  const TCIMValue texts(TCIMValue::TCIMType::kStringArray, 1, {TCIMValue(status)});
  return CommitEntity("KALDO_USBPort", deviceId,
                      {{"Speed", TCIMValue(speed)}, {"StatusDescriptions", texts}});
}

TCIMReference CliTest::AddDevice(const std::string& deviceId, const std::string& description,
                                 unsigned char speedClass) {
  return CommitEntity("KALDO_USBDevice", deviceId,
                      {{"Description", TCIMValue(description)}, {"Speed", TCIMValue(speedClass)}});
}

cli::Inventory CliTest::Collected() const {
  std::vector<std::string> all;
  for (const schema::ClassSchema& served : schema::ServedClasses()) all.push_back(served.name);
  return cli::FromHost(host, all);
}

void CliTest::Collect(const std::string& deviceList) {
  host.SetOperatingSystem(std::make_unique<standin::GivenDeviceList>(deviceList));
  CollectThroughModule();
}

void CliTest::CollectThroughModule() {
  std::vector<std::string> names;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) names.push_back(schema.name);
  standin::PluginModule(MODULE_PATH).Collect(names);
}

}  // namespace usbinfo_test
