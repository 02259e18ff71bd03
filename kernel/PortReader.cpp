#include "kernel/PortReader.h"

namespace kernel {
namespace {

constexpr std::uint8_t kHubClass = 9;

/// The name of the interface that has the ports below it; empty where the hub has none.
std::string HubInterface(const Device& hub, const DeviceName& name) {
  const Configuration* const active = hub.ActiveConfiguration();
  if (active == nullptr) return {};
  for (const Interface& interface : active->interfaces) {
    if (interface.settings.front().codes.classCode == kHubClass) {
      return name.Interface(active->value, interface.number);
    }
  }
  return {};
}

std::string ReadConnectType(const SysfsFolder& folder, const std::string& path) {
  try {
    return folder.ReadLine(path);
  } catch (const SysfsError&) {
    return {};
  }
}

}  // namespace

std::vector<Port> ReadPorts(const SysfsFolder& folder, const Device& hub, const DeviceName& name) {
  const std::string interface = HubInterface(hub, name);
  std::vector<Port> ports;
  for (unsigned number = 1; number <= hub.portCount; ++number) {
    Port port{name.Port(number), hub.name, number, {}, {}, {}};
    const std::string path = interface + "/" + port.name;
    port.connectType = ReadConnectType(folder, path + "/connect_type");
    port.peer = folder.LinkName(path + "/peer");
    ports.push_back(std::move(port));
  }
  return ports;
}

}  // namespace kernel
