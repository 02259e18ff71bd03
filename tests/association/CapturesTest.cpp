// The four providers and the two associations over real device lists, asked for in one request: the whole log
// and every committed instance against what was derived from the lists by other means.
#include <cctype>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>

#include "plugin/TUSBInfoCallbacks.h"
#include "schema/ClassSchema.h"
#include "standin/GivenDeviceList.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using nlohmann::json;

const LogLine kInit = Debug("TUSBInfoCallbacks::Init - Initializing the plugin.");
const LogLine kDeInit = Debug("TUSBInfoCallbacks::DeInit - De-initializing the plugin.");

json JsonOf(const Typed& value) {
  switch (value.type) {
    case ValueType::kUint8:
    case ValueType::kUint16:
    case ValueType::kUint64:
      return std::stoull(value.content.at(0));
    case ValueType::kStringArray:
      return value.content;
    default:
      return value.content.at(0);
  }
}

class Capture : public InventoryTest, public ::testing::WithParamInterface<std::string> {
 protected:
  static std::string Expected(const std::string& ending) {
    const std::string name = std::filesystem::path(GetParam()).stem();
    return ReadFile(TEST_DATA_DIR "/expected/" + name + ending);
  }

  /// The expected lines of the request itself; those of starting and stopping the plug-in stand around them.
  static Log ExpectedLog() {
    Log lines;
    std::istringstream text(Expected(".log.jsonl"));
    for (std::string line; std::getline(text, line);) {
      const json parsed = json::parse(line);
      lines.push_back({parsed.at("severity"), parsed.at("text")});
    }
    if (lines.size() < 2) return lines;
    EXPECT_EQ(lines.front(), kInit);
    EXPECT_EQ(lines.back(), kDeInit);
    return Log(lines.begin() + 1, lines.end() - 1);
  }

  json CommittedInstances() {
    json classes = json::object();
    for (const schema::ClassSchema& schema : schema::ServedClasses()) {
      json& instances = classes[schema.name] = json::array();
      for (const auto& instance : ClassNamed(schema.name)->Instances()) {
        json& properties = instances.emplace_back(json::object());
        for (const auto& [name, value] : Describe(*instance)) properties[name] = JsonOf(value);
      }
    }
    return classes;
  }

  void RequestAll() {
    host.SetOperatingSystem(std::make_unique<standin::GivenDeviceList>(ReadFile(GetParam())));
    std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> classes;
    for (const char* name : {"KALDO_USBController", "KALDO_USBHub", "KALDO_USBPort", "KALDO_USBDevice",
                             "KALDO_USBPortOnHub", "KALDO_USBConnection"}) {
      classes.emplace_back(ClassNamed(name));
    }
    NKESTA20::TUSBInfoCallbacks plugin;
    plugin.GetData(host.Cimv2(), classes);
  }
};

TEST_P(Capture, IsLoggedLineByLineAsExpected) {
  RequestAll();
  const Log expected = ExpectedLog();
  ASSERT_EQ(log.size(), expected.size());
  for (std::size_t line = 0; line < log.size(); ++line) ASSERT_EQ(log[line], expected[line]) << line;
}

TEST_P(Capture, BecomesExactlyTheExpectedInstances) {
  RequestAll();
  EXPECT_EQ(CommittedInstances(), json::parse(Expected(".json")).at("classes"));
}

TEST_P(Capture, IsServedAgainFromTheListsWithoutBeingReadAgain) {
  RequestAll();
  const json first = CommittedInstances();
  const std::size_t firstLines = log.size();
  log.clear();
  HostCalls made;
  RequestAll();
  EXPECT_EQ(made.Count(standin::HostOperation::kFileExists), 0);
  EXPECT_EQ(CommittedInstances(), first);
  EXPECT_LT(log.size(), firstLines);
}

std::string NameOf(const ::testing::TestParamInfo<std::string>& info) {
  std::string name = std::filesystem::path(info.param).stem();
  for (char& c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
  }
  return name;
}

INSTANTIATE_TEST_SUITE_P(OfTheTestData, Capture, ::testing::ValuesIn(CapturePaths()), NameOf);

}  // namespace
}  // namespace usbinfo_test
