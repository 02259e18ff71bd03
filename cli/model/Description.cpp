#include "cli/model/Description.h"

#include <fmt/format.h>

#include "cli/model/DeviceText.h"
#include "cli/model/Identifier.h"

namespace cli {

namespace {

std::string PlaceOnBus(const UsbTreeNode& node, const std::string& identifier) {
  if (node.Class() == ClassId::kPort) {
    return fmt::format("hub {}, port {}", DeviceOf(HubOf(identifier)), PortOf(identifier));
  }
  return fmt::format("{} {}", node.Class() == ClassId::kHub ? "hub" : "device", DeviceOf(identifier));
}

}  // namespace

const char* NameOf(PortState state) {
  constexpr const char* kNames[] = {"unknown", "free", "in use"};
  return kNames[static_cast<std::size_t>(state)];
}

std::string PlaceOf(const UsbTreeNode& node, bool isTop) {
  const std::string& identifier = node.item->String(PropertyId::kDeviceID);
  if (node.Class() == ClassId::kController) return fmt::format("Bus {}", BusOf(identifier));
  if (isTop) return fmt::format("Bus {}, {}", BusOf(identifier), PlaceOnBus(node, identifier));
  switch (node.Class()) {
    case ClassId::kPort:
      return fmt::format("Port {}", PortOf(identifier));
    case ClassId::kHub:
      return node.isRootHub ? "Root hub" : "Hub";
    default:
      return fmt::format("Device {}", DeviceOf(identifier));
  }
}

std::vector<std::string> DetailsOf(const Item& item, const UsbIds* names) {
  std::vector<std::string> lines;
  const auto add = [&lines](const char* label, const std::string& text) {
    if (!text.empty()) lines.push_back(label + text);
  };
  add("manufacturer ", SentString(item, PropertyId::kManufacturer));
  add("serial number ", SentString(item, PropertyId::kSerialNumber));
  add("known as ", KnownAs(item, names));
  const std::uint64_t configurations = item.Number(PropertyId::kNumberOfConfigs);
  lines.push_back("USB " + FormatVersion(item.Number(PropertyId::kUSBVersion)) +
                  (IsDigit(configurations) ? ", " + Count(configurations, "configuration") : ""));
  lines.push_back(fmt::format("class {}, subclass {}, protocol {}",
                              FormatCode(item.Number(PropertyId::kClassCode)),
                              FormatCode(item.Number(PropertyId::kSubclassCode)),
                              FormatCode(item.Number(PropertyId::kProtocolCode))));
  return lines;
}

}  // namespace cli
