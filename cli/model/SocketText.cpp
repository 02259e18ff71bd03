#include "cli/model/SocketText.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <optional>

#include "cli/model/Description.h"
#include "cli/model/DeviceText.h"
#include "cli/model/Kinds.h"
#include "cli/model/Speed.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

std::string Joined(const std::vector<std::string>& texts) {
  return fmt::format("{}", fmt::join(texts, ", "));
}

double RateOf(const SocketHalf& half) {
  const DeviceFacts* const facts = half.port == nullptr ? half.device : half.hub;
  return facts == nullptr ? 0 : facts->speed.value_or(0);
}

std::string SpeedOfItem(const Sockets& sockets, const SocketNode& node) {
  switch (node.Class()) {
    case ClassId::kDevice:
      return FormatSpeedClass(node.GetItem().Number(PropertyId::kSpeed));
    case ClassId::kPort: {
      std::uint64_t speed = 0;
      for (const SocketHalf& half : node.halves) {
        speed = std::max(speed, half.GetItem().Number(PropertyId::kSpeed));
      }
      return FormatSpeed(speed);
    }
    case ClassId::kHub:
      return node.children.empty() ? std::string()
                                   : SpeedOfItem(sockets, sockets.Nodes()[node.children.front()]);
    default:
      return {};
  }
}

bool IsOfKind(const SocketNode& node, const std::string& kind) {
  return std::any_of(node.halves.begin(), node.halves.end(), [&kind](const SocketHalf& half) {
    if (half.device == nullptr) return false;
    const std::vector<std::string>& kinds = half.device->kinds;
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
  });
}

/// "driver usb-storage", "500 mA", and so on of a half about which something is known.
void AddFacts(const SocketNode& node, const DeviceFacts& facts, std::vector<std::string>& lines) {
  std::string version = "USB " + FormatVersion(node.GetItem().Number(PropertyId::kUSBVersion));
  const std::uint64_t configurations = node.GetItem().Number(PropertyId::kNumberOfConfigs);
  if (IsDigit(configurations)) version += ", " + Count(configurations, "configuration");
  if (facts.revision) version += ", revision " + *facts.revision;
  if (facts.maxPower.value_or(0) != 0) version += fmt::format(", {} mA", *facts.maxPower);
  lines.push_back(std::move(version));
  const std::string drivers = DriversOf(node);
  if (!drivers.empty()) lines.push_back("driver " + drivers);
  lines.push_back(fmt::format("device number {}", facts.number));
  if (facts.nodes) lines.push_back("nodes " + Joined(*facts.nodes));
}

std::string DescribeHalf(const SocketHalf& half) {
  std::string text;
  if (half.device != nullptr) text += half.device->name.value_or("") + ": ";
  text += FormatId(half.GetItem());
  if (RateOf(half) != 0) text += ", " + FormatRate(RateOf(half));
  if (half.device != nullptr) text += fmt::format(", device number {}", half.device->number);
  return text;
}

/// How many of the hub's ports share a socket with another of them.
std::uint64_t SharedPorts(const Sockets& sockets, const SocketNode& hub) {
  return static_cast<std::uint64_t>(
      std::count_if(hub.children.begin(), hub.children.end(), [&](std::size_t child) {
        const SocketNode& socket = sockets.Nodes()[child];
        return socket.Class() == ClassId::kPort && socket.halves.size() > 1;
      }));
}

/// "26 ports"; "2 of 26 ports" when a selection left the others out.
std::string CountShown(std::size_t shown, std::size_t total, const std::string& noun) {
  std::string all = Count(total, noun);
  // Of a part without ports is not known which of its hubs are one.
  if (shown > total) return Count(shown, noun);
  return shown == total ? all : fmt::format("{} of {}", shown, all);
}

/// Of what may be a part of an inventory, those of the whole.
SocketCounts CountsOfWhole(const Inventory& inventory, const SocketCounts& shown) {
  if (!inventory.IsPartial()) return shown;
  return inventory.CountsBeforeSelection().value_or(shown);
}

/// How many of the sockets are free, where all free ones are shown and all states are known.
std::string FreeSockets(const SocketCounts& shown, const SocketCounts& all) {
  const bool isEveryFreeOneShown = shown.free == all.free && shown.notUsed == all.notUsed;
  if (!isEveryFreeOneShown || all.unknown != 0) return {};
  const std::string others = all.notUsed == 0 ? std::string() : fmt::format(", {} not used", all.notUsed);
  return fmt::format(" ({} free{})", all.free, others);
}

}  // namespace

std::string ProductOf(const SocketNode& node) {
  return ProductOf(node.GetItem(), node.halves.front().device);
}

std::string ManufacturerOf(const SocketNode& node) {
  return ManufacturerOf(node.GetItem(), node.halves.front().device);
}

std::string SerialOf(const SocketNode& node) {
  return SerialOf(node.GetItem(), node.halves.front().device);
}

std::vector<std::string> KindsOf(const SocketNode& node) {
  std::vector<std::string> kinds;
  for (const std::string& kind : AllKinds()) {
    if (IsOfKind(node, kind)) kinds.push_back(kind);
  }
  return kinds;
}

std::string KindOf(const SocketNode& node) {
  return Joined(KindsOf(node));
}

std::string DriversOf(const SocketNode& node) {
  std::vector<std::string> drivers;
  for (const SocketHalf& half : node.halves) {
    if (half.device == nullptr) continue;
    for (const InterfaceFacts& interface : half.device->interfaces) {
      if (interface.isActive && interface.driver) AddOnce(*interface.driver, drivers);
    }
  }
  return Joined(drivers);
}

std::string SpeedOf(const Sockets& sockets, const SocketNode& node) {
  double rate = 0;
  for (const SocketHalf& half : node.halves) rate = std::max(rate, RateOf(half));
  return rate == 0 ? SpeedOfItem(sockets, node) : FormatRate(rate);
}

std::string PlaceOf(const SocketNode& node, bool isTop) {
  return node.name.empty() ? PlaceOf(*node.halves.front().node, isTop) : node.name;
}

std::string PlaceOf(const Sockets& sockets, const SocketRow& row) {
  std::string place = PlaceOf(sockets.Nodes()[row.node], row.depth == 0);
  return row.IsFolded() ? place + " to " + sockets.Nodes()[row.last].name : place;
}

const char* NameOf(SocketState state) {
  constexpr const char* kNames[] = {"unknown", "free", "in use", "not used"};
  return kNames[static_cast<std::size_t>(state)];
}

std::string NameOf(const SocketNode& node) {
  switch (node.Class()) {
    case ClassId::kController:
      return NameOf(node.GetItem());
    case ClassId::kPort:
      return NameOf(node.state);
    default: {
      std::string product = ProductOf(node);
      return product.empty() ? "(no name)" : product;
    }
  }
}

std::string DescribeRow(const Sockets& sockets, const SocketNode& node) {
  const SocketNode& shown = sockets.Shown(node);
  std::string text = NameOf(shown);
  if (shown.Class() == ClassId::kHub && node.Class() != ClassId::kController) {
    // The name of a root hub is that of its controller, above.
    text = (shown.IsRootHub() ? "" : text + ", ") + SocketsOf(sockets, shown);
  }
  return node.isHardwired ? text + ", hard-wired" : text;
}

std::uint64_t NumberOfSockets(const Sockets& sockets, const SocketNode& hub) {
  std::uint64_t ports = 0;
  for (const SocketHalf& half : hub.halves) ports += half.GetItem().Number(PropertyId::kNumberOfPorts);
  return ports - SharedPorts(sockets, hub);
}

std::string SocketsOf(const Sockets& sockets, const SocketNode& hub) {
  return Count(NumberOfSockets(sockets, hub), sockets.KnowsPeers() ? "socket" : "port");
}

std::string OtherHalfOf(const SocketNode& node) {
  const bool isDescribed = node.Class() == ClassId::kHub || node.Class() == ClassId::kDevice;
  return isDescribed && node.halves.size() > 1 ? DescribeHalf(node.halves.back()) : std::string();
}

std::vector<std::string> DetailsOf(const SocketNode& node, const UsbIds* names) {
  const DeviceFacts* const facts = node.halves.front().device;
  if (facts == nullptr) return DetailsOf(node.GetItem(), names);
  std::vector<std::string> lines;
  const auto add = [&lines](const char* label, const std::string& text) {
    if (!text.empty()) lines.push_back(label + text);
  };
  add("manufacturer ", ManufacturerOf(node));
  add("serial number ", SerialOf(node));
  add("known as ", KnownAs(node.GetItem(), names));
  AddFacts(node, *facts, lines);
  add("also ", OtherHalfOf(node));
  return lines;
}

std::string CountsOf(const Sockets& sockets) {
  const Inventory& inventory = sockets.GetInventory();
  const SocketCounts shown = sockets.Counts();
  const SocketCounts all = CountsOfWhole(inventory, shown);
  return fmt::format("{}, {}, {}{}, {}", CountShown(shown.controllers, all.controllers, "controller"),
                     CountShown(shown.hubs, all.hubs, "hub"),
                     CountShown(shown.sockets, all.sockets, all.knowsPeers ? "socket" : "port"),
                     inventory.KnowsConnections() ? FreeSockets(shown, all) : "",
                     CountShown(shown.devices, all.devices, "device"));
}

std::string Summary(const Sockets& sockets) {
  return fmt::format("{}: {}", sockets.GetInventory().SystemName(), CountsOf(sockets));
}

}  // namespace cli
