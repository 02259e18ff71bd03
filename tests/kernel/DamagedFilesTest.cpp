// Every file and link of a recorded machine is damaged in every way, one at a time: its device is then read
// as a whole without what the file is for, or not at all, and all others are not affected.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

#include "kernel/DeviceName.h"
#include "tests/kernel/RecordedMachine.h"

namespace {

namespace fs = std::filesystem;
using kernel::Device;
using kernel::Port;
using kernel::Topology;
using usbinfo_test::SysfsRecord;

enum class Damage { kMissing, kEmpty, kUnreadable, kTooLong, kGarbage };

void Apply(Damage damage, const std::string& path) {
  fs::remove(path);
  switch (damage) {
    case Damage::kMissing:
      return;
    case Damage::kEmpty:
      std::ofstream(path) << "";
      return;
    // Root can read every file, but not a folder.
    case Damage::kUnreadable:
      fs::create_directory(path);
      return;
    case Damage::kTooLong:
      std::ofstream(path) << std::string(100000, '1');
      return;
    case Damage::kGarbage:
      std::ofstream(path) << "\xff\x01garbage\x7f";
      return;
  }
}

struct Place {
  std::string file;
  std::string folder;
  /// The device that the file belongs to.
  std::string device;
};

Place PlaceOf(const std::string& path) {
  Place place{fs::path(path).filename(), fs::path(path).parent_path().filename(), {}};
  for (const fs::path& part : fs::path(path)) {
    if (kernel::ParseDeviceName(part.native())) place.device = part;
  }
  return place;
}

/// Whether a device of that name is the other or below it.
bool IsFrom(const std::string& name, const std::string& top) {
  if (top.starts_with("usb")) return name == top || name.starts_with(top.substr(3) + "-");
  return name == top || name.starts_with(top + ".");
}

/// The buses of one controller, with hubs in hubs, a SuperSpeed disk, drivers and their nodes; of some ports
/// the kernel says nothing, which saves files.
SysfsRecord TwoBuses() {
  SysfsRecord record = usbinfo_test::PartOf(usbinfo_test::ReadRecord("superspeed-gadgets"), "0000:00:03.0");
  std::erase_if(record, [](const auto& item) {
    return std::regex_search(item.first, std::regex("/1-5|port([3-9]|1[0-2])/"));
  });
  return record;
}

class DamagedFiles : public ::testing::Test {
 protected:
  SysfsRecord fRecord = TwoBuses();
  usbinfo_test::UnpackedSysfs fSysfs{fRecord};
  Topology fWhole = fSysfs.Read();

  /// The whole topology without a device and all below it.
  Topology Without(const std::string& name) const;
  Topology Expected(const std::string& path, Damage damage) const;
  void ExpectUnconfigured(Device& device) const;
  void CheckDamage(const std::string& path, Damage damage);
};

Topology DamagedFiles::Without(const std::string& name) const {
  Topology rest = fWhole;
  std::erase_if(rest.devices, [&](const Device& device) { return IsFrom(device.name, name); });
  std::erase_if(rest.ports, [&](const Port& port) { return IsFrom(port.hub, name); });
  return rest;
}

void DamagedFiles::ExpectUnconfigured(Device& device) const {
  device.nodes.resize(1);
  for (kernel::Configuration& configuration : device.configurations) {
    configuration.isActive = false;
    for (kernel::Interface& interface : configuration.interfaces) {
      interface.driver.clear();
      for (kernel::AlternateSetting& setting : interface.settings) setting.isActive = false;
    }
  }
}

Topology DamagedFiles::Expected(const std::string& path, Damage damage) const {
  static const std::set<std::string> kNeeded = {
      "authorized", "bConfigurationValue", "descriptors", "devnum", "maxchild", "speed"};
  static const std::set<std::string> kStrings = {"manufacturer", "product", "serial"};
  const Place place = PlaceOf(path);
  // The folder of devices has links to them, but only those to root hubs are followed.
  if (place.folder == "devices") {
    const bool isFollowed = place.file.starts_with("usb");
    return damage == Damage::kMissing || isFollowed ? Without(place.file) : fWhole;
  }
  const bool isOwn = place.folder == place.device;
  const bool isUnconfigured = place.file == "bConfigurationValue" && damage == Damage::kEmpty;
  const bool isNeeded = kNeeded.contains(place.file) && !isUnconfigured;
  // The only interface that has more than one setting.
  if (place.folder == "1-2.4:1.1" && place.file == "bAlternateSetting") return Without(place.device);
  const bool isStringOrQuirks = kStrings.contains(place.file) || place.file == "quirks";
  if (isOwn && (isNeeded || (isStringOrQuirks && damage != Damage::kMissing))) return Without(place.device);

  Topology expected = fWhole;
  for (Device& device : expected.devices) {
    if (device.name != place.device) continue;
    if (isUnconfigured) ExpectUnconfigured(device);
    if (place.file == "manufacturer") device.manufacturer.reset();
    if (place.file == "product") device.product.reset();
    if (place.file == "serial") device.serial.reset();
    if (place.file == "driver" && !isOwn) device.configurations.front().interfaces.front().driver.clear();
    if (place.file == "uevent" && isOwn) device.nodes.erase(device.nodes.begin());
    const std::string text = fRecord.at(path).text;
    const std::size_t key = text.find("DEVNAME=");
    if (key != std::string::npos) {
      std::erase(device.nodes, "/dev/" + text.substr(key + 8, text.find('\n', key) - key - 8));
    }
  }
  for (Port& port : expected.ports) {
    if (port.hub == place.device && isUnconfigured) port.connectType = port.peer = "";
    if (port.name != place.folder) continue;
    if (place.file == "connect_type")
      port.connectType = damage == Damage::kGarbage ? "\xff\x01garbage\x7f" : "";
    if (place.file == "peer") port.peer.clear();
  }
  return expected;
}

/// The reader numbers the devices on a hub anew where one is left out, and its port then counts as free or
/// used.
void Forget(Topology& topology) {
  for (Device& device : topology.devices) device.count = 0;
  for (Port& port : topology.ports) port.device.clear();
}

std::vector<std::string> NamesOf(const Topology& topology) {
  std::vector<std::string> names;
  for (const Device& device : topology.devices) names.push_back(device.name);
  return names;
}

void DamagedFiles::CheckDamage(const std::string& path, Damage damage) {
  const std::string place = fSysfs.Path(path);
  Apply(damage, place);
  Topology found = fSysfs.Read();
  fs::remove_all(place);
  usbinfo_test::Unpack({{path, fRecord.at(path)}}, fSysfs.Path(""));

  Topology expected = Expected(path, damage);
  Forget(found);
  Forget(expected);
  EXPECT_EQ(NamesOf(found), NamesOf(expected));
  EXPECT_TRUE(found.devices == expected.devices);
  EXPECT_TRUE(found.ports == expected.ports);
}

TEST_F(DamagedFiles, AffectNothingButTheirDevice) {
  ASSERT_EQ(fWhole.devices.size(), 10U);
  for (const auto& [path, file] : fRecord) {
    for (int damage = 0; damage <= static_cast<int>(Damage::kGarbage); ++damage) {
      SCOPED_TRACE(path + ", damage " + std::to_string(damage));
      CheckDamage(path, static_cast<Damage>(damage));
      if (HasFailure()) return;
    }
  }
}

TEST_F(DamagedFiles, AreReportedAndSoIsWhatIsBelowTheirDevice) {
  const std::string hub = "devices/pci0000:00/0000:00:03.0/usb1/1-2/1-2.3";
  Apply(Damage::kGarbage, fSysfs.Path(hub + "/speed"));
  const Topology found = fSysfs.Read();
  const std::vector<kernel::UnreadableDevice> expected = {{"1-2.3", "speed: no speed that is known"},
                                                          {"1-2.3.8", "below 1-2.3, which cannot be read"}};
  EXPECT_EQ(found.unreadable, expected);
  // Something is plugged in all the same.
  EXPECT_THAT(found.ports, ::testing::Contains(::testing::Field(&Port::device, "1-2.3")));
}

TEST_F(DamagedFiles, AreNotReportedOfADeviceThatHasGone) {
  Apply(Damage::kMissing, fSysfs.Path("devices/pci0000:00/0000:00:03.0/usb1/1-2/1-2.3/devnum"));
  EXPECT_THAT(fSysfs.Read().unreadable, ::testing::IsEmpty());
}

}  // namespace
