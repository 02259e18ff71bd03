// The kinds that class codes stand for, and which of a device's codes count.
#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

#include "cli/model/Kinds.h"
#include "kernel/Device.h"

using kernel::ClassCodes;
using kernel::Configuration;
using kernel::Device;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

/// An active configuration with an interface of one active setting for each of the codes.
Configuration Active(const std::vector<ClassCodes>& interfaces) {
  Configuration configuration;
  configuration.isActive = true;
  for (const ClassCodes& codes : interfaces)
    configuration.interfaces.push_back({0, "", {{0, true, codes, {}}}});
  return configuration;
}

Device With(std::vector<Configuration> configurations, const ClassCodes& ofDevice = {}) {
  Device device;
  device.configurations = std::move(configurations);
  device.descriptor.codes = ofDevice;
  return device;
}

std::vector<std::string> KindsOfInterfaces(const std::vector<ClassCodes>& interfaces) {
  return cli::KindsOf(With({Active(interfaces)}));
}

struct CodesOfKind {
  const char* kind;
  std::vector<ClassCodes> codes;
};

const CodesOfKind kTable[] = {
    {"hub", {{9, 0, 0}, {9, 0, 1}, {9, 0, 2}}},
    {"keyboard", {{3, 1, 1}, {3, 0, 1}}},
    {"mouse", {{3, 1, 2}, {3, 0, 2}}},
    {"input", {{3, 0, 0}, {3, 1, 0}, {3, 1, 3}, {5, 0, 0}}},
    {"mass storage", {{8, 6, 0x50}, {8, 6, 0x62}, {8, 4, 0}, {8, 2, 0x50}}},
    {"audio", {{1, 1, 0}, {1, 2, 0x20}, {1, 3, 0}, {0x10, 3, 0}}},
    {"video", {{0x0E, 1, 0}, {0x0E, 2, 1}, {0x10, 1, 0}, {0x10, 2, 0}, {0xEF, 5, 0}}},
    {"printer", {{7, 1, 1}, {7, 1, 2}, {7, 1, 4}}},
    {"scanner/camera", {{6, 1, 1}}},
    {"network",
     {{2, 6, 0},
      {2, 7, 0},
      {2, 0x0C, 7},
      {2, 0x0D, 0},
      {2, 0x0E, 0},
      {0xE0, 1, 3},
      {0xEF, 4, 1},
      {0xEF, 4, 7}}},
    {"serial", {{2, 2, 0}, {2, 2, 0xFF}}},
    {"modem",
     {{2, 2, 1}, {2, 2, 6}, {2, 1, 0}, {2, 3, 1}, {2, 4, 0}, {2, 5, 0}, {2, 8, 0}, {2, 9, 1}, {2, 10, 0}}},
    {"smart card", {{0x0B, 0, 0}, {0x0B, 0, 2}}},
    {"wireless", {{0xE0, 1, 2}, {0xE0, 2, 1}, {0xE0, 2, 3}, {0xEF, 2, 2}, {0xFE, 2, 0}}},
    {"bluetooth", {{0xE0, 1, 1}, {0xE0, 1, 4}}},
    {"vendor-specific", {{0xFF, 0, 0}, {0xFF, 0xFF, 0xFF}}},
    {"other",
     {{0, 0, 0},
      {2, 0, 0},
      {2, 0x0B, 0},
      {0x0A, 0, 0},
      {0x0D, 0, 0},
      {0x0F, 0, 0},
      {0x11, 0, 0},
      {0x12, 0, 0},
      {0x3C, 0, 0},
      {0xDC, 1, 1},
      {0xEF, 1, 1},
      {0xFE, 1, 1},
      {0xFE, 3, 1}}},
};

TEST(Kinds, FollowFromTheCodesOfASetting) {
  std::vector<std::string> named;
  for (const CodesOfKind& row : kTable) {
    named.emplace_back(row.kind);
    for (const ClassCodes& codes : row.codes) {
      EXPECT_THAT(KindsOfInterfaces({codes}), ElementsAre(row.kind))
          << int{codes.classCode} << ' ' << int{codes.subclass} << ' ' << int{codes.protocol};
    }
  }
  EXPECT_EQ(named, cli::AllKinds());
}

TEST(Kinds, StandOnceInTheOrderOfAllKinds) {
  EXPECT_THAT(KindsOfInterfaces({{0xFF, 0, 0}, {3, 1, 2}, {8, 6, 0x50}, {3, 1, 1}, {8, 6, 0x62}}),
              ElementsAre("keyboard", "mouse", "mass storage", "vendor-specific"));
}

TEST(Kinds, AreNotThoseOfAnInterfaceThatCarriesTheDataOfAnother) {
  EXPECT_THAT(KindsOfInterfaces({{2, 2, 1}, {0x0A, 0, 0}}), ElementsAre("modem"));
}

TEST(Kinds, AreThoseOfWhatIsActive) {
  Configuration inactive = Active({{8, 6, 0x50}});
  inactive.isActive = false;
  Configuration active = Active({{1, 1, 0}});
  active.interfaces[0].settings.push_back({1, false, {0x0E, 1, 0}, {}});
  EXPECT_THAT(cli::KindsOf(With({inactive, active})), ElementsAre("audio"));
}

TEST(Kinds, AreThoseOfAllSettingsWhereNoConfigurationIsActive) {
  Configuration first = Active({{8, 6, 0x50}});
  first.isActive = false;
  first.interfaces[0].settings[0].isActive = false;
  Configuration second = first;
  second.interfaces[0].settings[0].codes = {3, 1, 1};
  EXPECT_THAT(cli::KindsOf(With({first, second})), ElementsAre("keyboard", "mass storage"));
}

TEST(Kinds, TakeTheDevicesClassForAHubOrWhereNoInterfaceSaysMore) {
  EXPECT_THAT(cli::KindsOf(With({Active({{0xFF, 0, 0}})}, {9, 0, 1})), ElementsAre("hub", "vendor-specific"));
  EXPECT_THAT(cli::KindsOf(With({Active({{8, 6, 0x50}})}, {0xFF, 0, 0})), ElementsAre("mass storage"));
  EXPECT_THAT(cli::KindsOf(With({}, {0xE0, 1, 1})), ElementsAre("bluetooth"));
  EXPECT_THAT(cli::KindsOf(With({Active({})}, {0xDC, 2, 1})), ElementsAre("other"));
}

TEST(Kinds, AreNoneWhereTheDevicesClassLeavesThemToInterfacesThatAreNotKnown) {
  EXPECT_THAT(cli::KindsOf(With({})), IsEmpty());
  EXPECT_THAT(cli::KindsOf(With({Active({})}, {0xEF, 2, 1})), IsEmpty());
}

}  // namespace
}  // namespace usbinfo_test
