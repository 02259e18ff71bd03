#include "cli/model/FromKernel.h"

#include <fmt/format.h>

#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "cli/model/Identifier.h"
#include "cli/model/Kinds.h"
#include "cli/model/Speed.h"
#include "kernel/DeviceName.h"
#include "kernel/Number.h"
#include "kernel/Topology.h"

namespace cli {

namespace {

/// The numbers of a bus and of a device on it.
using Address = std::pair<unsigned, unsigned>;

/// Knows the DeviceIDs of an inventory.
class ItemIdentifiers {
 public:
  explicit ItemIdentifiers(const Inventory& inventory) {
    for (const Item& hub : inventory.Hubs()) Add(hub.String(PropertyId::kDeviceID));
    for (const Item& device : inventory.Devices()) Add(device.String(PropertyId::kDeviceID));
  }

  std::string Of(const kernel::Device& device) const {
    const auto found = fByAddress.find({device.bus, device.number});
    if (found != fByAddress.end()) return found->second;
    return fmt::format("Bus {:02}  Device {:3}", device.bus, device.number);
  }

 private:
  void Add(const std::string& identifier) {
    constexpr unsigned kMost = 65535;
    const auto bus = kernel::ParseNumber(BusOf(identifier), kMost);
    const auto number = kernel::ParseNumber(DeviceOf(identifier), kMost);
    if (bus && number) fByAddress.try_emplace({*bus, *number}, identifier);
  }

  std::map<Address, std::string> fByAddress;
};

template <typename Value>
std::optional<Value> Unless(bool isUnknown, Value value) {
  return isUnknown ? std::nullopt : std::optional<Value>(std::move(value));
}

std::optional<std::string> UnlessEmpty(const std::string& text) {
  return Unless(text.empty(), text);
}

std::vector<InterfaceFacts> InterfacesOf(const kernel::Device& device) {
  std::vector<InterfaceFacts> facts;
  for (const kernel::Configuration& configuration : device.configurations) {
    for (const kernel::Interface& interface : configuration.interfaces) {
      for (const kernel::AlternateSetting& setting : interface.settings) {
        facts.push_back({.configuration = configuration.value,
                         .number = interface.number,
                         .setting = setting.number,
                         .isActive = configuration.isActive && setting.isActive,
                         .classCode = setting.codes.classCode,
                         .subclass = setting.codes.subclass,
                         .protocol = setting.codes.protocol,
                         .driver = UnlessEmpty(interface.driver)});
      }
    }
  }
  return facts;
}

/// Nothing where the identifiers are missing, too: the root hubs of early kernels have nothing but zeros.
std::optional<std::string> RevisionOf(const kernel::DeviceDescriptor& descriptor) {
  constexpr unsigned kBitsOfByte = 8;
  constexpr unsigned kByte = 0xFF;
  const bool isUnknown = descriptor.vendor == 0 && descriptor.product == 0 && descriptor.revision == 0;
  return Unless(isUnknown,
                fmt::format("{:x}.{:02x}", descriptor.revision >> kBitsOfByte, descriptor.revision & kByte));
}

std::optional<std::uint64_t> MaxPowerOf(const kernel::Device& device) {
  const kernel::Configuration* const active = device.ActiveConfiguration();
  return active == nullptr ? std::nullopt : std::optional<std::uint64_t>(active->maxPower);
}

/// Nothing where a list gives a port that no hub can have.
std::optional<std::string> KnownName(const std::string& name) {
  return Unless(!kernel::ParseDeviceName(name), name);
}

DeviceFacts FactsOfDevice(const kernel::Device& device, std::string identifier) {
  return {.device = std::move(identifier),
          .name = KnownName(device.name),
          .number = device.number,
          .speed = Unless(!IsRate(device.megabitsPerSecond), device.megabitsPerSecond),
          .manufacturer = device.manufacturer,
          .product = device.product,
          .serial = device.serial,
          .kinds = KindsOf(device),
          .interfaces = InterfacesOf(device),
          .maxPower = MaxPowerOf(device),
          .revision = RevisionOf(device.descriptor),
          .nodes = Unless(device.nodes.empty(), device.nodes),
          .lacksConfigurations = device.configurations.size() < device.descriptor.configurationCount};
}

/// The name of what is or would be plugged into the port of that number, of the hub of that name.
std::optional<std::string> NameBehind(std::string_view hub, unsigned number) {
  const std::optional<kernel::DeviceName> name = kernel::ParseDeviceName(hub);
  return name ? std::optional(name->Child(number).Text()) : std::nullopt;
}

/// The same for the port of a name like "usb2-port3".
std::optional<std::string> NameBehind(std::string_view port) {
  constexpr std::string_view kMarker = "-port";
  constexpr unsigned kMostPorts = 255;
  const std::size_t at = port.rfind(kMarker);
  if (at == std::string_view::npos) return std::nullopt;
  const auto number = kernel::ParseNumber(port.substr(at + kMarker.size()), kMostPorts);
  return number ? NameBehind(port.substr(0, at), *number) : std::nullopt;
}

/// What ports have to know of the devices.
class Hubs {
 public:
  Hubs(const std::vector<kernel::Device>& devices, const ItemIdentifiers& identifiers) {
    for (const kernel::Device& device : devices) {
      fByName.try_emplace(device.name, Hub{device.bus, identifiers.Of(device)});
      if (device.name.empty()) fUncertainBuses.insert(device.bus);
    }
  }

  /// Nothing for a port of none of the devices.
  std::optional<PortFacts> FactsOf(const kernel::Port& port) const {
    const auto found = fByName.find(port.hub);
    if (found == fByName.end()) return std::nullopt;
    const Hub& hub = found->second;
    const bool isUsed = !port.device.empty();
    return PortFacts{.port = fmt::format("{} Port {:02}", hub.identifier, port.number - 1),
                     .name = NameBehind(port.hub, port.number),
                     .peer = NameBehind(port.peer),
                     .connect = UnlessEmpty(port.connectType),
                     .isUsed = Unless(!isUsed && fUncertainBuses.count(hub.bus) != 0, isUsed)};
  }

 private:
  struct Hub {
    unsigned bus;
    std::string identifier;
  };

  std::map<std::string, Hub> fByName;
  /// Those with a device that has no place.
  std::set<unsigned> fUncertainBuses;
};

}  // namespace

KernelFacts FromKernel(const kernel::Topology& topology, const Inventory& inventory) {
  const ItemIdentifiers identifiers(inventory);
  KernelFacts facts;
  for (const kernel::Device& device : topology.devices) {
    facts.devices.push_back(FactsOfDevice(device, identifiers.Of(device)));
  }
  const Hubs hubs(topology.devices, identifiers);
  for (const kernel::Port& port : topology.ports) {
    if (std::optional<PortFacts> ofPort = hubs.FactsOf(port)) facts.ports.push_back(std::move(*ofPort));
  }
  return facts;
}

}  // namespace cli
