#include "kernel/SysfsReader.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <set>
#include <system_error>

#include "kernel/DeviceName.h"
#include "kernel/DeviceNodes.h"
#include "kernel/DeviceReader.h"
#include "kernel/PortReader.h"
#include "kernel/SysfsFolder.h"

namespace kernel {
namespace {

bool IsBelow(const DeviceName& name, const DeviceName& hub) {
  return name.bus == hub.bus && name.ports.size() > hub.ports.size() &&
         std::equal(hub.ports.begin(), hub.ports.end(), name.ports.begin());
}

/// Whether the device still exists, or only what is left of its folder.
bool IsThere(const SysfsFolder& above, const DeviceName& name) {
  return above.Has(name.Text() + "/devnum");
}

/// How often a device is read that changes meanwhile.
constexpr int kMostTries = 3;

/// The path of a root hub's controller in sysfs; empty where `root` holds no link to the root hub.
std::string ControllerOf(const SysfsFolder& root, const DeviceName& name) {
  const std::string target = root.LinkTarget(name.Text());
  const std::size_t first = target.find_first_not_of("./");
  const std::size_t last = target.rfind('/');
  if (first == std::string::npos || last == std::string::npos || last < first) return {};
  return "/" + target.substr(first, last - first);
}

class SysfsReader {
 public:
  SysfsReader(SysfsFolder root, const SysfsParts& parts) : fRoot(std::move(root)), fParts(parts) {}

  Topology Read();

 private:
  /// A device that has been read, its folder, and its ports as a hub.
  struct Found {
    SysfsFolder folder;
    Device device;
    std::vector<Port> ports;
  };

  /// Reads a device and all below it; `above` is the folder that its own is in, `hub` is null for a root hub.
  /// Gives whether it is there.
  bool ReadFrom(const SysfsFolder& above, const DeviceName& name, const Device* hub, unsigned count);
  /// The device; nothing where it is not there any more, or cannot be read.
  std::optional<Found> TryRead(const SysfsFolder& above, const DeviceName& name);
  /// Throws SysfsError.
  Found ReadOnce(const SysfsFolder& above, const DeviceName& name) const;
  /// The names of what is below a device, at any level, in order.
  std::vector<DeviceName> NamesBelow(const DeviceName& name) const;
  void AddUnreadable(const DeviceName& name, const std::string& reason);
  void FillPorts();

  SysfsFolder fRoot;
  SysfsParts fParts;
  std::set<DeviceName> fNames;
  Topology fTopology;
};

Topology SysfsReader::Read() {
  for (const SysfsFolder::Entry& entry : fRoot.Entries()) {
    if (const auto name = ParseDeviceName(entry.name)) fNames.insert(*name);
  }
  for (const DeviceName& name : fNames) {
    if (name.IsRootHub()) ReadFrom(fRoot, name, nullptr, 0);
  }
  FillPorts();
  return std::move(fTopology);
}

bool SysfsReader::ReadFrom(const SysfsFolder& above, const DeviceName& name, const Device* hub,
                           unsigned count) {
  auto found = TryRead(above, name);
  if (!found) return false;
  found->device.parentNumber = hub == nullptr ? 0 : hub->number;
  found->device.count = count;
  fTopology.devices.push_back(found->device);
  std::move(found->ports.begin(), found->ports.end(), std::back_inserter(fTopology.ports));

  unsigned children = 0;
  for (const DeviceName& below : NamesBelow(name)) {
    const bool isChild = below.ports.size() == name.ports.size() + 1;
    if (isChild && ReadFrom(found->folder, below, &found->device, children + 1)) ++children;
  }
  return true;
}

std::optional<SysfsReader::Found> SysfsReader::TryRead(const SysfsFolder& above, const DeviceName& name) {
  std::string reason;
  for (int tries = 0; tries < kMostTries; ++tries) {
    try {
      return ReadOnce(above, name);
    } catch (const SysfsError& error) {
      reason = error.what();
    }
  }
  if (IsThere(above, name)) AddUnreadable(name, reason);
  return std::nullopt;
}

SysfsReader::Found SysfsReader::ReadOnce(const SysfsFolder& above, const DeviceName& name) const {
  SysfsFolder folder = above.Open(name.Text());
  Device device = ReadDevice(folder, name);
  if (fParts.nodes) device.nodes = ReadNodes(folder, device, name);
  std::vector<Port> ports;
  if (fParts.ports) ports = ReadPorts(folder, device, name);
  if (fParts.descriptors) {
    device.rawDescriptors = ReadRawDescriptors(folder);
    if (name.IsRootHub()) device.controller = ControllerOf(above, name);
  }
  CheckUnchanged(folder, name, device);
  return {std::move(folder), std::move(device), std::move(ports)};
}

std::vector<DeviceName> SysfsReader::NamesBelow(const DeviceName& name) const {
  std::vector<DeviceName> names;
  for (auto next = fNames.upper_bound(name); next != fNames.end() && IsBelow(*next, name); ++next) {
    names.push_back(*next);
  }
  return names;
}

void SysfsReader::AddUnreadable(const DeviceName& name, const std::string& reason) {
  fTopology.unreadable.push_back({name.Text(), reason});
  for (const DeviceName& below : NamesBelow(name)) {
    fTopology.unreadable.push_back({below.Text(), "below " + name.Text() + ", which cannot be read"});
  }
}

void SysfsReader::FillPorts() {
  std::set<std::string_view> names;
  for (const Device& device : fTopology.devices) names.insert(device.name);
  for (const UnreadableDevice& device : fTopology.unreadable) names.insert(device.name);
  for (Port& port : fTopology.ports) {
    const auto hub = ParseDeviceName(port.hub);
    const std::string device = hub->Child(port.number).Text();
    if (names.contains(device)) port.device = device;
  }
}

}  // namespace

Topology ReadSysfs(const std::string& root, const SysfsParts& parts) {
  try {
    return SysfsReader(SysfsFolder(sys::OpenFile(root, O_RDONLY | O_DIRECTORY)), parts).Read();
  } catch (const std::system_error& error) {
    if (error.code().value() == ENOENT) return {};
    throw;
  }
}

}  // namespace kernel
