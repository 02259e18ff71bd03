// Whole rounds over captured device lists: what the host holds afterwards and every line that was logged,
// against what was derived from the captures by other means.
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>

#include "standin/ValueView.h"
#include "tests/module/ModuleTest.h"

using NKESTA20::TCIMValue;
using nlohmann::ordered_json;

namespace usbinfo_test {

void PrintTo(const LogLine& line, std::ostream* out) {
  *out << line;
}

namespace {

/// A value as the expectations write it.
ordered_json ValueJson(const TCIMValue& value) {
  switch (standin::TypeOf(value)) {
    case TCIMValue::TCIMType::kUint8:
    case TCIMValue::TCIMType::kUint16:
    case TCIMValue::TCIMType::kUint64:
      return standin::NumberOf(value);
    case TCIMValue::TCIMType::kStringArray:
      return standin::StringsOf(value);
    default:
      return standin::TextOf(value);
  }
}

/// The whole inventory that the host holds, classes in the order in which they are asked for.
ordered_json Inventory(const standin::Host& host) {
  ordered_json classes = ordered_json::object();
  for (const std::string& name : kAllClasses) {
    ordered_json& instances = classes[name] = ordered_json::array();
    for (const auto& instance : host.Cimv2()->ClassForRequest(name)->Instances()) {
      ordered_json properties = ordered_json::object();
      for (const auto& [property, value] : instance->Properties()) {
        properties[property] = ValueJson(value);
      }
      instances.push_back(properties);
    }
  }
  return classes;
}

/// One JSON object per line, as log lines.
std::vector<LogLine> ExpectedLog(const std::string& path) {
  std::istringstream file(ReadFile(path));
  std::vector<LogLine> lines;
  for (std::string line; std::getline(file, line);) {
    const ordered_json entry = ordered_json::parse(line);
    lines.push_back({entry.at("severity").get<int>(), entry.at("text").get<std::string>()});
  }
  return lines;
}

std::string Name(const std::string& capturePath) {
  return std::filesystem::path(capturePath).stem();
}

class Capture : public ModuleTest, public ::testing::WithParamInterface<std::string> {
 protected:
  Capture() {
    GiveDeviceList(ReadFile(GetParam()));
    standin::PluginModule module(MODULE_PATH);
    module.Collect(kAllClasses);
  }

  std::string Expected(const std::string& suffix) const {
    return TEST_DATA_DIR "/expected/" + Name(GetParam()) + suffix;
  }
};

INSTANTIATE_TEST_SUITE_P(All, Capture, ::testing::ValuesIn(CapturePaths()),
                         [](const auto& testInfo) { return TestNameOf(testInfo.param); });

TEST_P(Capture, LeavesTheExpectedInventoryWithTheHost) {
  const ordered_json expected = ordered_json::parse(ReadFile(Expected(".json"))).at("classes");
  EXPECT_EQ(Inventory(host), expected);
}

TEST_P(Capture, LogsTheExpectedLines) {
  EXPECT_EQ(log, ExpectedLog(Expected(".log.jsonl")));
}

TEST(Captures, AreThere) {
  EXPECT_GE(CapturePaths().size(), 13U);
}

}  // namespace
}  // namespace usbinfo_test
