// What is repaired in device lists, and that nothing else changes.
#include <gmock/gmock.h>

#include <filesystem>

#include "kernel/ListRecords.h"
#include "kernel/ListRepairs.h"
#include "tests/support/HostTest.h"

using testing::ElementsAreArray;

namespace usbinfo_test {
namespace {

std::string Capture(const std::string& name) {
  return ReadFile(std::string(TEST_DATA_DIR "/captures/") + name + ".txt");
}

std::string Repaired(const std::string& text, const kernel::ListRepairs& expected) {
  kernel::ListRepairs repairs;
  std::string repaired = kernel::WithoutStaleInterfaces(kernel::RepairParents(text, repairs), repairs);
  EXPECT_EQ(expected, repairs);
  return repaired;
}

/// Bus, level, parent, port and number of every device.
std::vector<std::string> Places(const std::string& list) {
  std::vector<std::string> places;
  for (const kernel::ListLine& line : kernel::LinesOf(list)) {
    if (line.Type() != 'T') continue;
    std::string place;
    for (const char* const key : {"Bus=", "Lev=", "Prnt=", "Port=", "Dev#="}) {
      place.append(kernel::FieldOf(line.text, key)) += ' ';
    }
    places.push_back(place);
  }
  return places;
}

class KernelList : public testing::TestWithParam<std::string> {};

TEST_P(KernelList, NeedsNoRepair) {
  const std::string text = ReadFile(GetParam());
  EXPECT_EQ(text, Repaired(text, {}));
}

std::vector<std::string> KernelLists() {
  std::vector<std::string> paths;
  for (const std::string& path : CapturePaths()) {
    const std::string name = std::filesystem::path(path).filename();
    const bool isOfCommand = name.find("usb-devices") != std::string::npos || name.find("usbdevices") == 0;
    if (!isOfCommand) paths.push_back(path);
  }
  return paths;
}

INSTANTIATE_TEST_SUITE_P(All, KernelList, testing::ValuesIn(KernelLists()),
                         [](const auto& list) { return TestNameOf(list.param); });

TEST(RepairParents, GivesTheListOfTheCommandTheParentsThatTheKernelPrints) {
  EXPECT_THAT(Places(Repaired(Capture("vm-desktop-usb-devices"), {.parents = 3})),
              ElementsAreArray(Places(Capture("vm-desktop-debugfs"))));
}

TEST(RepairParents, ChangesTheParentAlone) {
  const std::string text =
      "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480 MxCh= 6\n\nnoise\n"
      "T:  Bus=02 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480 MxCh= 6\n\n"
      "T:  Bus=02 Lev=01 Prnt=01 Port=00 Cnt=00 Dev#=112 Spd=480 MxCh= 6\n\n"
      "T:  Bus=01 Lev=01 Prnt=09 Port=02 Cnt=01 Dev#=  9 Spd=12  MxCh= 0\nS:  Product=Prnt=07\n\n"
      "T:  Bus=02 Lev=02 Prnt=9 Port=02 Cnt=01 Dev#= 10 Spd=12  MxCh= 0";
  std::string repaired = text;
  repaired.replace(repaired.find("Prnt=09"), 7, "Prnt=01");
  repaired.replace(repaired.rfind("Prnt=9"), 6, "Prnt=112");
  EXPECT_EQ(repaired, Repaired(text, {.parents = 2}));
}

TEST(RepairParents, LeavesAParentThatNoRecordCanReplace) {
  const std::string text =
      "T:  Bus=01 Lev=02 Prnt=09 Port=02 Cnt=01 Dev#=  3 Spd=12  MxCh= 0\n\n"
      "T:  Bus=x1 Lev=01 Prnt=09 Port=02 Cnt=01 Dev#=  3 Spd=12  MxCh= 0\n\n"
      "T:  Bus=01 Lev=01\n";
  EXPECT_EQ(text, Repaired(text, {}));
}

TEST(WithoutStaleInterfaces, TakesInterfacesOutOfAConfigurationWithoutAny) {
  const std::string text = Capture("usbdevices-unauthorized-stale-if");
  const std::size_t at = text.find("\nI:") + 1;
  std::string repaired = text;
  repaired.erase(at, text.find('\n', at) + 1 - at);
  EXPECT_EQ(repaired, Repaired(text, {.parents = 0, .staleInterfaces = 1}));
  EXPECT_EQ("T:\nC:  #Ifs= 0\nC:* #Ifs= 1\nI:* b\n\nT:\nI: c\nC:  #Ifs= 0\nE: d\n",
            Repaired("T:\nC:  #Ifs= 0\nI: a\nI: a\nC:* #Ifs= 1\nI:* b\n\nT:\nI: c\nC:  #Ifs= 0\nE: d\nI: e",
                     {.parents = 0, .staleInterfaces = 2}));
}

TEST(WithoutLinesBehindEndpoints, EndsEachRecordAtItsFirstEndpoint) {
  EXPECT_EQ("I: 1\nE: 1\n\nT: 2\nE: 2\nT: 3\nS: E: 3\nE: 3\n \nI: 4",
            kernel::WithoutLinesBehindEndpoints(
                "I: 1\nE: 1\nE: 1\nI: 1\n\nT: 2\nE: 2\nnoise\nT: 3\nS: E: 3\nE: 3\nE: 3\n \nI: 4"));
  EXPECT_EQ("", kernel::WithoutLinesBehindEndpoints(""));
}

TEST(WithoutLinesBehindEndpoints, LeavesNothingBehindThemInAnyCapture) {
  for (const std::string& path : CapturePaths()) {
    const std::string text = kernel::WithoutLinesBehindEndpoints(ReadFile(path));
    for (const kernel::ListRecord& record : kernel::RecordsOf(text)) {
      for (const kernel::ListLine& line : record.lines) {
        EXPECT_TRUE(line.Type() != 'E' || line.text.data() == record.lines.back().text.data())
            << path << ':' << line.number;
      }
    }
  }
}

}  // namespace
}  // namespace usbinfo_test
