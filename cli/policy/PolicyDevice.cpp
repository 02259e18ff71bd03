#include "cli/policy/PolicyDevice.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "cli/model/DeviceText.h"
#include "cli/model/FactsByItem.h"
#include "cli/model/Place.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

PolicyValues One(std::string value) {
  return std::vector<std::string>{std::move(value)};
}

bool IsNameOfRootHub(const std::string& name) {
  const std::optional<Place> place = Place::OfName(name);
  return place && place->ports.empty();
}

std::vector<std::string> InterfacesOf(const DeviceFacts& facts) {
  std::vector<std::string> interfaces;
  for (const InterfaceFacts& interface : facts.interfaces) {
    interfaces.push_back(
        fmt::format("{:02x}:{:02x}:{:02x}", interface.classCode, interface.subclass, interface.protocol));
  }
  return interfaces;
}

/// Knows of an inventory what its devices' attributes need.
class Attributes {
 public:
  explicit Attributes(const Inventory& inventory) : fFacts(inventory) {
    const std::optional<Origin>& origin = inventory.GetOrigin();
    fIsMasked = origin && origin->masked;
    fIsFromSysfs = origin && origin->source == "sysfs";
    if (!inventory.Kernel()) return;
    for (const PortFacts& port : inventory.Kernel()->ports) {
      if (port.name) fPorts.emplace(*port.name, &port);
    }
  }

  PolicyDevice Of(const Item& item) const {
    PolicyDevice device;
    device.item = &item;
    device.facts = fFacts.OfDevice(item);
    const auto set = [&device](PolicyAttribute attribute, PolicyValues values) {
      device.attributes[static_cast<std::size_t>(attribute)] = std::move(values);
    };
    set(PolicyAttribute::kId, One(FormatId(item)));
    set(PolicyAttribute::kName, One(ProductOf(item, device.facts)));
    set(PolicyAttribute::kSerial, SerialsOf(device));
    if (device.facts == nullptr) return device;
    set(PolicyAttribute::kWithInterface, InterfacesOf(*device.facts));
    if (device.facts->hash) set(PolicyAttribute::kHash, One(*device.facts->hash));
    if (device.facts->parentHash) set(PolicyAttribute::kParentHash, One(*device.facts->parentHash));
    if (!device.facts->name) return device;
    set(PolicyAttribute::kViaPort, One(*device.facts->name));
    set(PolicyAttribute::kWithConnectType, ConnectTypesOf(*device.facts->name));
    return device;
  }

 private:
  PolicyValues SerialsOf(const PolicyDevice& device) const {
    const std::string serial = SerialOf(*device.item, device.facts);
    const bool hasOwn = device.facts != nullptr && IsNameOfRootHub(device.facts->name.value_or(""));
    if (fIsMasked && !serial.empty() && !hasOwn) return std::nullopt;
    return One(serial);
  }

  /// Only sysfs says it. There, a root hub and a port without the kernel's word have none.
  PolicyValues ConnectTypesOf(const std::string& name) const {
    if (!fIsFromSysfs) return std::nullopt;
    const auto port = fPorts.find(name);
    return One(port == fPorts.end() ? "" : port->second->connect.value_or(""));
  }

  FactsByItem fFacts;
  bool fIsMasked = false;
  bool fIsFromSysfs = false;
  /// By the name of what is plugged in.
  std::unordered_map<std::string, const PortFacts*> fPorts;
};

bool IsBefore(const PolicyDevice& left, const PolicyDevice& right) {
  const auto placeOf = [](const PolicyDevice& device) {
    return Place::OfName(device.facts == nullptr ? "" : device.facts->name.value_or(""));
  };
  const std::optional<Place> leftPlace = placeOf(left);
  const std::optional<Place> rightPlace = placeOf(right);
  if (!leftPlace || !rightPlace) return leftPlace.has_value() && !rightPlace.has_value();
  return *leftPlace < *rightPlace;
}

}  // namespace

std::string PlaceOf(const PolicyDevice& device) {
  if (device.facts != nullptr && device.facts->name) return *device.facts->name;
  return QuoteForDocument(device.item->String(PropertyId::kDeviceID));
}

std::vector<PolicyDevice> PolicyDevicesOf(const Inventory& inventory) {
  const Attributes attributes(inventory);
  std::vector<PolicyDevice> devices;
  for (const std::vector<Item>* const items : {&inventory.Hubs(), &inventory.Devices()}) {
    for (const Item& item : *items) devices.push_back(attributes.Of(item));
  }
  std::stable_sort(devices.begin(), devices.end(), IsBefore);
  return devices;
}

}  // namespace cli
