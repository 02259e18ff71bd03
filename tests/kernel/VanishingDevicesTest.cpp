// Devices go, come back as others, change their number or lose their configuration at each moment of the
// reading: each is then read as it was before or as it is after, or is not there, and never as something in
// between.
#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdarg>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <utility>

#include "tests/kernel/RecordedMachine.h"

namespace {

/// Called before each file or folder is opened below another one.
std::function<void()> onOpen;

}  // namespace

// Takes the place of the C library's function.
extern "C" int openat(int folder, const char* path, int flags, ...) {
  using Function = int (*)(int, const char*, int, ...);
  static const auto original = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "openat"));
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (const auto call = std::exchange(onOpen, nullptr)) {
    call();
    // It counts the calls, and does not count its own.
    if (!onOpen) onOpen = call;
  }
  return original(folder, path, flags, mode);
}

namespace {

namespace fs = std::filesystem;
using kernel::Device;
using kernel::Topology;
using usbinfo_test::SysfsRecord;
using usbinfo_test::UnpackedSysfs;

/// A hub in a root hub, a hub in that, and a mouse in that; without what there is of ports, which is many
/// files.
SysfsRecord SmallMachine() {
  SysfsRecord record = usbinfo_test::PartOf(usbinfo_test::ReadRecord("machine"), "0000:00:03.0");
  std::erase_if(record, [](const auto& item) {
    const std::string place = item.first + " " + item.second.text;
    return std::regex_search(place, std::regex("-port[0-9]+/|usb2|1-11|1-2\\.[14]"));
  });
  return record;
}

constexpr const char* kHub = "devices/pci0000:00/0000:00:03.0/usb1/1-2";
constexpr const char* kMouse = "devices/pci0000:00/0000:00:03.0/usb1/1-2/1-2.3/1-2.3.8";

class VanishingDevices : public ::testing::Test {
 protected:
  SysfsRecord fBefore = SmallMachine();
  SysfsRecord fAfter = fBefore;

  /// Has `change` happen before each opening of a file in turn, and compares what was read with both
  /// machines.
  void ChangeAtEachMoment(const std::function<void(const UnpackedSysfs&)>& change) const;
};

/// The same but for what depends on others.
Device Alone(Device device) {
  device.count = 0;
  return device;
}

std::vector<Device> DevicesNamed(const Topology& topology, const std::string& name) {
  std::vector<Device> devices;
  for (const Device& device : topology.devices) {
    if (device.name == name) devices.push_back(Alone(device));
  }
  return devices;
}

void VanishingDevices::ChangeAtEachMoment(const std::function<void(const UnpackedSysfs&)>& change) const {
  const Topology before = UnpackedSysfs(fBefore).Read();
  const Topology after = UnpackedSysfs(fAfter).Read();
  bool hasHappened = true;
  for (int moment = 0; hasHappened; ++moment) {
    const UnpackedSysfs sysfs(fBefore);
    int left = moment;
    hasHappened = false;
    onOpen = [&] {
      if (left-- != 0) return;
      hasHappened = true;
      change(sysfs);
    };
    const Topology found = sysfs.Read();
    onOpen = nullptr;

    SCOPED_TRACE(moment);
    EXPECT_THAT(found.unreadable, ::testing::IsEmpty());
    for (const Device& device : before.devices) {
      const auto then = DevicesNamed(found, device.name);
      const auto now = DevicesNamed(after, device.name);
      EXPECT_THAT(then, ::testing::AnyOf(std::vector{Alone(device)}, now)) << device.name;
    }
    if (HasFailure()) return;
  }
}

/// Removes the link first, as nobody who lists the devices from then on finds it.
void Remove(const UnpackedSysfs& sysfs, const std::string& folder) {
  const std::string name = fs::path(folder).filename();
  for (const auto& entry : fs::directory_iterator(sysfs.Root())) {
    const std::string link = entry.path().filename();
    if (link == name || link.starts_with(name + ".")) fs::remove(entry.path());
  }
  fs::remove_all(sysfs.Path(folder));
}

bool IsBelow(const std::string& path, const std::string& text, const std::string& folder) {
  return path.starts_with(folder + "/") || (text + "/").find(folder + "/") != std::string::npos;
}

TEST_F(VanishingDevices, AreThereAsAWholeOrNotAtAllAndNeitherIsWhatIsBelowThem) {
  std::erase_if(fAfter, [](const auto& item) { return IsBelow(item.first, item.second.text, kHub); });
  ChangeAtEachMoment([](const UnpackedSysfs& sysfs) { Remove(sysfs, kHub); });
}

TEST_F(VanishingDevices, AreNotMixedWithThoseThatTakeTheirPlace) {
  const std::string folder = std::string(kMouse) + "/";
  fAfter[folder + "devnum"].text = "77\n";
  fAfter[folder + "product"].text = "Other\n";
  fAfter[folder + "serial"].text = "Other 1\n";
  fAfter[folder + "uevent"].text = "DEVNAME=bus/usb/001/077\n";
  fAfter[folder + "1-2.3.8:1.0/driver"].text = "../other";
  ChangeAtEachMoment([&](const UnpackedSysfs& sysfs) {
    fs::remove_all(sysfs.Path(kMouse));
    SysfsRecord fresh;
    for (const auto& [path, file] : fAfter) {
      if (path.starts_with(folder)) fresh[path] = file;
    }
    usbinfo_test::Unpack(fresh, sysfs.Path(""));
  });
}

TEST_F(VanishingDevices, AreReadAgainWhereTheirNumberChanges) {
  const std::string folder = std::string(kMouse) + "/";
  const std::string node = "DEVNAME=bus/usb/001/077\n";
  fAfter[folder + "devnum"].text = "77\n";
  fAfter[folder + "uevent"].text = node;
  ChangeAtEachMoment([&](const UnpackedSysfs& sysfs) {
    std::ofstream(sysfs.Path(folder + "devnum")) << "77\n";
    std::ofstream(sysfs.Path(folder + "uevent")) << node;
  });
}

TEST_F(VanishingDevices, AreReadAgainWhereTheirConfigurationChanges) {
  const std::string folder = std::string(kMouse) + "/";
  fAfter[folder + "bConfigurationValue"].text = "";
  std::erase_if(fAfter, [&](const auto& item) { return item.first.starts_with(folder + "1-2.3.8:1.0/"); });
  ChangeAtEachMoment([&](const UnpackedSysfs& sysfs) {
    std::ofstream(sysfs.Path(folder + "bConfigurationValue")) << "";
    fs::remove_all(sysfs.Path(folder + "1-2.3.8:1.0"));
  });
}

TEST_F(VanishingDevices, CountOnlyWithTheirPortWhereTheyHaveNoConfiguration) {
  const std::string folder = std::string(kMouse) + "/";
  fBefore[folder + "bConfigurationValue"].text = "";
  EXPECT_EQ(DevicesNamed(UnpackedSysfs(fBefore).Read(), "1-2.3.8").size(), 1U);
  fBefore.erase(folder + "port");
  EXPECT_EQ(DevicesNamed(UnpackedSysfs(fBefore).Read(), "1-2.3.8").size(), 0U);
}

}  // namespace
