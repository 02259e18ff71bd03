#include "tests/fuzz/DescriptorsTarget.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

#include "kernel/DescriptorParser.h"
#include "kernel/DeviceListReader.h"
#include "kernel/DeviceListWriter.h"
#include "kernel/ListFindings.h"
#include "kernel/ListRepairs.h"
#include "tests/fuzz/BrokenInvariant.h"

namespace usbinfo_test {

namespace {

using kernel::Configuration;
using kernel::Device;
using kernel::Interface;

/// Takes the input apart, as far as it goes.
class DeviceInput {
 public:
  explicit DeviceInput(std::string_view input) : fRest(input) {}

  std::uint8_t Byte() {
    if (fRest.empty()) return 0;
    const char byte = fRest.front();
    fRest.remove_prefix(1);
    return static_cast<std::uint8_t>(byte);
  }
  std::string String(std::size_t length) {
    const std::string text(fRest.substr(0, length));
    fRest.remove_prefix(text.size());
    return text;
  }
  /// In memory of that size, so that a read beyond its end is found.
  std::vector<std::uint8_t> Rest() const { return {fRest.begin(), fRest.end()}; }

 private:
  std::string_view fRest;
};

void RequireLimits(const Interface& interface) {
  Require(interface.settings.size() <= 128, "an interface has at most 128 settings");
  for (const auto& setting : interface.settings) {
    Require(setting.endpoints.size() <= 30, "a setting has at most 30 endpoints");
  }
}

void RequireLimits(const Configuration& configuration) {
  Require(configuration.interfaces.size() <= 32, "a configuration has at most 32 interfaces");
  Require(configuration.associations.size() <= 16, "a configuration has at most 16 associations");
  std::set<std::uint8_t> numbers;
  for (const Interface& interface : configuration.interfaces) {
    Require(numbers.insert(interface.number).second, "each interface of a configuration has its own number");
    RequireLimits(interface);
  }
}

/// As the kernel has a device that it has just configured.
void Activate(Device& device) {
  if (device.configurations.empty()) return;
  Configuration& configuration = device.configurations.front();
  configuration.isActive = true;
  for (Interface& interface : configuration.interfaces) {
    interface.driver = "driver";
    if (!interface.settings.empty()) interface.settings.front().isActive = true;
  }
}

/// The record begins with an empty line, and no line after it does.
void RequireOneRecord(const std::string& list) {
  Require(list.rfind("\nT:  ", 0) == 0, "a record begins with its topology");
  Require(list.find("\n\n", 1) == std::string::npos, "the list has one record");
  Require(list.find("\nT:", 1) == std::string::npos, "no string begins a record");
  Require(std::count(list.begin(), list.end(), '\r') == 0, "no string ends a line");
}

void RequireSound(const std::string& list) {
  Require(kernel::FindingsIn(list).empty(), "nothing in the list is forged");
  kernel::ListRepairs repairs;
  RequireEqual(kernel::WithoutStaleInterfaces(kernel::RepairParents(list, repairs), repairs), list,
               "a list that needs no repair");
  Require(repairs == kernel::ListRepairs(), "nothing is repaired");
  const std::string kept = kernel::WithoutLinesBehindEndpoints(list);
  RequireEqual(kernel::WithoutLinesBehindEndpoints(kept), kept, "what is left out once");
}

}  // namespace

void CheckDescriptors(const std::string& text) {
  DeviceInput input(text);
  const kernel::ParsingRules rules = {static_cast<kernel::Speed>(input.Byte() % 6),
                                      static_cast<std::uint32_t>(input.Byte()) << 5};
  const std::size_t length = input.Byte();
  Device device;
  device.name = "usb1";
  device.bus = 1;
  device.number = 1;
  device.speed = rules.speed;
  device.manufacturer = input.String(length);
  device.product = input.String(length);
  device.serial = input.String(length);
  const auto file = input.Rest();
  const auto found = kernel::ParseDescriptors(file, rules);
  if (!found) return;
  RequireCount(found->configurations.size(), found->device.configurationCount, "configurations");
  for (const Configuration& configuration : found->configurations) RequireLimits(configuration);

  device.descriptor = found->device;
  device.configurations = found->configurations;
  Activate(device);
  const std::string list = kernel::WriteDeviceList({{device}, {}, {}});
  RequireOneRecord(list);
  RequireSound(list);
  const kernel::Topology read = kernel::ReadDeviceList(list);
  RequireCount(read.devices.size(), 1, "devices of the list");
  RequireEqual(kernel::WriteDeviceList(read), list, "the list as it is read");
  Require(read.devices.front().descriptor == device.descriptor, "the device descriptor as it is read");
}

}  // namespace usbinfo_test
