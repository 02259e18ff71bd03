// Device lists cut short or with a byte missing, as a full disk, a broken pipe or a slip of an editor leave
// them: every such text of every capture, through the cutter and, where it makes other records than the texts
// before, through the whole plug-in and every output format.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <unordered_set>

#include "tests/fuzz/PluginTarget.h"
#include "tests/fuzz/RecordsTarget.h"
#include "tests/model/ListModel.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {
namespace {

/// A run takes ten times as long under the sanitizers, so only every 53rd byte is damaged there. Lines
/// differ in length, so all places of a line are still hit.
constexpr std::size_t kStride = SANITIZED ? 107 : 1;

/// Each capture's bytes are divided among this number of tests, which run in parallel.
constexpr std::size_t kParts = 4;

/// All of a text that reaches an instance or the log. The records hold more, which CheckRecords looks at.
std::string Taken(const std::string& text) {
  static constexpr Field kTaken[] = {kBus,     kLevel,       kParent,    kPort,     kNumber,
                                     kSpeed,   kMaxChildren, kClass,     kSubClass, kProtocol,
                                     kConfigs, kVendor,      kProductId, kVersion};
  const ListModel list(text);
  std::string taken;
  const auto add = [&taken](std::string_view part) { taken.append(part).push_back('\n'); };
  for (const ListRecord& record : list.Records()) {
    for (const Field field : kTaken) add(record.fields[field]);
    for (const std::string_view value : {record.product, record.serial, record.manufacturer}) add(value);
    add(std::to_string(record.usbHost) + (record.isHub ? " hub" : ""));
  }
  for (const std::string& type : list.Unmatched()) add(type);
  return taken;
}

/// A capture and the part of it that is damaged.
using Part = std::tuple<std::string, std::size_t>;

class DamagedCapture : public testing::TestWithParam<Part> {
 protected:
  /// Checks what `damage` makes of the capture for each byte of the part.
  void CheckEveryDamage(const std::function<std::string(const std::string& text, std::size_t at)>& damage) {
    const auto& [path, part] = GetParam();
    const std::string text = ReadFile(path);
    const std::size_t end = text.size() * (part + 1) / kParts;
    for (std::size_t at = text.size() * part / kParts; at < end; at += kStride) {
      ASSERT_NO_THROW(Check(damage(text, at))) << "byte " << at;
    }
  }

 private:
  void Check(const std::string& text) {
    CheckRecords(text);
    if (fSeen.insert(Taken(text)).second) CheckPlugin(text, fLogged);
  }

  std::unordered_set<std::string> fSeen;
  DistinctLines fLogged;
};

TEST_P(DamagedCapture, IsReadWhereverItIsCut) {
  CheckEveryDamage([](const std::string& text, std::size_t at) { return text.substr(0, at); });
}

TEST_P(DamagedCapture, IsReadWhicheverByteIsMissing) {
  CheckEveryDamage([](std::string text, std::size_t at) { return text.erase(at, 1); });
}

std::string TestName(const testing::TestParamInfo<Part>& part) {
  return TestNameOf(std::get<0>(part.param)) + "_" + std::to_string(std::get<1>(part.param));
}

INSTANTIATE_TEST_SUITE_P(All, DamagedCapture,
                         testing::Combine(testing::ValuesIn(CapturePaths()),
                                          testing::Range<std::size_t>(0, kParts)),
                         TestName);

}  // namespace
}  // namespace usbinfo_test
