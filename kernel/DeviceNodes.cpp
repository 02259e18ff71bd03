#include "kernel/DeviceNodes.h"

#include <algorithm>

namespace kernel {
namespace {

constexpr std::uint8_t kHubClass = 9;
/// Deeper than any driver's folders.
constexpr int kMostLevels = 16;

/// "/dev/sda" where the file names the node "sda"; else empty.
std::string NodeOf(const SysfsFolder& folder) {
  constexpr std::string_view kKey = "\nDEVNAME=";
  const std::string text = "\n" + folder.ReadIfThere("uevent").value_or("");
  const std::size_t key = text.find(kKey);
  if (key == std::string::npos) return {};
  const std::size_t begin = key + kKey.size();
  return "/dev/" + text.substr(begin, text.find('\n', begin) - begin);
}

/// Each device has folders about its power, which hold no devices.
bool MayHoldDevices(const SysfsFolder::Entry& entry) {
  return entry.isFolder && entry.name != "power";
}

void AddNodes(const SysfsFolder& folder, int levels, std::vector<std::string>& nodes) {
  try {
    const std::string node = NodeOf(folder);
    if (!node.empty()) nodes.push_back(node);
    if (levels == 0) return;
    for (const SysfsFolder::Entry& entry : folder.Entries()) {
      if (MayHoldDevices(entry)) AddNodes(folder.Open(entry.name), levels - 1, nodes);
    }
  } catch (const SysfsError&) {
    // The driver has let go of it; the others still count.
  }
}

/// A hub's ports have no nodes, and it has many.
bool IsHub(const Interface& interface) {
  return interface.settings.front().codes.classCode == kHubClass;
}

}  // namespace

std::vector<std::string> ReadNodes(const SysfsFolder& folder, const Device& device, const DeviceName& name) {
  std::vector<std::string> nodes;
  AddNodes(folder, 0, nodes);
  const auto own = static_cast<std::ptrdiff_t>(nodes.size());
  const Configuration* const active = device.ActiveConfiguration();
  if (active == nullptr) return nodes;
  for (const Interface& interface : active->interfaces) {
    if (IsHub(interface)) continue;
    try {
      AddNodes(folder.Open(name.Interface(active->value, interface.number)), kMostLevels, nodes);
    } catch (const SysfsError&) {
      // The same.
    }
  }
  std::sort(nodes.begin() + own, nodes.end());
  return nodes;
}

}  // namespace kernel
