// The words for people; see the header.
#include "cli/model/Wording.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "cli/model/UsbIds.h"

namespace cli {

namespace {

using Kind = UsbTreeNode::Kind;

std::string PlaceOnBus(const UsbTreeNode& node, const std::string& identifier) {
  if (node.kind == Kind::kPort) {
    const std::string hub = identifier.substr(0, identifier.rfind(" Port "));
    return fmt::format("hub {}, port {}", Behind(hub, " Device "), Behind(identifier, " Port "));
  }
  const char* const noun = node.kind == Kind::kHub ? "hub" : "device";
  return fmt::format("{} {}", noun, Behind(identifier, " Device "));
}

/// "26 ports"; "2 of 26 ports" where the others are left out.
std::string CountShown(const Inventory& inventory, const std::string& className, const std::string& noun) {
  const ClassView& view = inventory.ClassOf(className);
  const std::string all = Count(view.total, noun);
  return view.instances.size() == view.total ? all : fmt::format("{} of {}", view.instances.size(), all);
}

/// How many of the ports are free, in so far as all of them are there to be counted.
std::string FreePorts(const Inventory& inventory) {
  const ClassView& ports = inventory.ClassOf("KALDO_USBPort");
  if (ports.instances.size() != ports.total) return std::string();
  return fmt::format(" ({} free)", std::count_if(ports.instances.begin(), ports.instances.end(), IsFree));
}

}  // namespace

std::string FormatSpeed(std::uint64_t bitsPerSecond) {
  constexpr std::uint64_t kMega = 1000000;
  constexpr std::uint64_t kGiga = 1000 * kMega;
  if (bitsPerSecond == 0) return std::string();
  if (bitsPerSecond % kGiga == 0) return fmt::format("{} Gbit/s", bitsPerSecond / kGiga);
  return fmt::format("{} Mbit/s", bitsPerSecond / kMega);
}

std::string FormatSpeedClass(std::uint64_t speedClass) {
  switch (speedClass) {
    case 1:
      return "1.5 Mbit/s";
    case 2:
      return "12 Mbit/s";
    case 3:
      return "480 Mbit/s";
    case 4:
      return "5+ Gbit/s";
    default:
      return std::string();
  }
}

std::string FormatVersion(std::uint64_t version) {
  constexpr std::uint64_t kHundred = 100;
  return version == 0 ? "version unknown" : fmt::format("{}.{:02}", version / kHundred, version % kHundred);
}

std::string FormatCode(std::uint64_t code) {
  const auto digit = static_cast<unsigned char>(code + '0');
  return std::isxdigit(digit) != 0 ? fmt::format("{:c}*", digit) : "?";
}

bool IsDigit(std::uint64_t number) {
  return number < 10;
}

std::string Count(std::uint64_t number, const std::string& noun) {
  return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

std::string Behind(const std::string& identifier, const std::string& marker) {
  const std::size_t found = identifier.rfind(marker);
  const std::size_t at = found == std::string::npos ? 0 : found + marker.size();
  const std::size_t first = identifier.find_first_not_of(' ', at);
  if (first == std::string::npos) return std::string();
  return identifier.substr(first, identifier.find_last_not_of(' ') - first + 1);
}

std::string BusOf(const std::string& identifier) {
  return Behind(identifier.substr(0, identifier.find(" Device ")), "Bus ");
}

std::string Given(const std::string& text) {
  // What the plug-in puts in the place of a string that no line of the list gives.
  return text == "Not Available" ? std::string() : text;
}

std::string Given(const InstanceView& item, const std::string& property) {
  return Given(item.Text(property));
}

std::string NameOf(const InstanceView& item) {
  const std::string name = Given(item, "Description");
  return name.empty() ? "(no name)" : name;
}

std::string FormatId(const InstanceView& item) {
  return fmt::format("{:04x}:{:04x}", item.Number("VendorID"), item.Number("USBDeviceID"));
}

std::string KnownAs(const InstanceView& item, const UsbIds* names) {
  if (names == nullptr) return std::string();
  const auto vendor = static_cast<std::uint16_t>(item.Number("VendorID"));
  const auto product = static_cast<std::uint16_t>(item.Number("USBDeviceID"));
  const std::string vendorName = names->Vendor(vendor);
  std::string productName = names->Product(vendor, product);
  if (vendorName.empty()) return productName;
  return productName.empty() ? "(" + vendorName + ")" : productName + " (" + vendorName + ")";
}

std::vector<std::string> DetailsOf(const InstanceView& item, const UsbIds* names) {
  std::vector<std::string> lines;
  const auto add = [&lines](const char* label, const std::string& text) {
    if (!text.empty()) lines.push_back(label + text);
  };
  add("manufacturer ", Given(item, "Manufacturer"));
  add("serial number ", Given(item, "SerialNumber"));
  add("known as ", KnownAs(item, names));
  const std::uint64_t configurations = item.Number("NumberOfConfigs");
  lines.push_back("USB " + FormatVersion(item.Number("USBVersion")) +
                  (IsDigit(configurations) ? ", " + Count(configurations, "configuration") : ""));
  lines.push_back(fmt::format("class {}, subclass {}, protocol {}", FormatCode(item.Number("ClassCode")),
                              FormatCode(item.Number("SubclassCode")),
                              FormatCode(item.Number("ProtocolCode"))));
  return lines;
}

bool IsFree(const InstanceView& port) {
  return port.Text("StatusDescriptions") == "{No device connected}";
}

std::string StateOf(const InstanceView& port) {
  return IsFree(port) ? "free" : "in use";
}

std::string DisplayName(const UsbTreeNode& node) {
  if (node.kind == Kind::kPort) return StateOf(*node.item);
  return node.isRootHub ? std::string() : NameOf(*node.item);
}

std::string PlaceOf(const UsbTreeNode& node, bool isTop) {
  const std::string identifier = node.item->Text("DeviceID");
  if (node.kind == Kind::kController) return "Bus " + BusOf(identifier);
  if (isTop) return fmt::format("Bus {}, {}", BusOf(identifier), PlaceOnBus(node, identifier));
  switch (node.kind) {
    case Kind::kPort:
      return "Port " + Behind(identifier, " Port ");
    case Kind::kHub:
      return node.isRootHub ? "Root hub" : "Hub";
    default:
      return "Device " + Behind(identifier, " Device ");
  }
}

std::string IdOf(const UsbTreeNode& node) {
  if (node.kind == Kind::kController || node.kind == Kind::kPort) return std::string();
  return FormatId(*node.item);
}

std::string SpeedOf(const UsbTree& tree, const UsbTreeNode& node) {
  switch (node.kind) {
    case Kind::kDevice:
      return FormatSpeedClass(node.item->Number("Speed"));
    case Kind::kPort:
      return FormatSpeed(node.item->Number("Speed"));
    case Kind::kHub:
      return node.children.empty() ? std::string() : SpeedOf(tree, tree.Nodes()[node.children.front()]);
    default:
      return std::string();
  }
}

std::string Summary(const Inventory& inventory) {
  return fmt::format("{}: {}, {}, {}{}, {}", inventory.SystemName(),
                     CountShown(inventory, "KALDO_USBController", "controller"),
                     CountShown(inventory, "KALDO_USBHub", "hub"),
                     CountShown(inventory, "KALDO_USBPort", "port"), FreePorts(inventory),
                     CountShown(inventory, "KALDO_USBDevice", "device"));
}

}  // namespace cli
