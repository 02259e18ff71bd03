#include "cli/format/UsbguardFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

#include "cli/model/OriginText.h"
#include "cli/policy/PolicyDevice.h"
#include "cli/text/UserError.h"
#include "cli/text/Utf8.h"

namespace cli {

namespace {

std::string QuotedForPolicy(const std::string& value) {
  std::string text = "\"";
  for (const char& character : value) {
    if (character < ' ' || character > '~') {
      AppendByteEscapes(std::string_view(&character, 1), text);
      continue;
    }
    if (character == '"' || character == '\\') text += '\\';
    text += character;
  }
  return text + '"';
}

/// " NAME VALUE"; empty where the value is not known.
std::string AttributeText(PolicyAttribute attribute, const PolicyDevice& device) {
  const PolicyValues& values = device.ValuesOf(attribute);
  return values ? fmt::format(" {} {}", NameOf(attribute), QuotedForPolicy(values->front())) : std::string();
}

std::string IdText(const PolicyDevice& device) {
  const PolicyValues& values = device.ValuesOf(PolicyAttribute::kId);
  if (values) return values->front();
  throw UserError(fmt::format(
      "the inventory does not hold the numbers of vendor and product of {}, which its rule needs; "
      "save it from sysfs, or use another format",
      PlaceOf(device)));
}

std::string InterfaceText(const PolicyDevice& device) {
  const PolicyValues& values = device.ValuesOf(PolicyAttribute::kWithInterface);
  if (!values) {
    throw UserError(fmt::format(
        "the inventory does not hold all interfaces of {}, which its rule needs; save it from sysfs, "
        "or use another format",
        PlaceOf(device)));
  }
  const std::string_view name = NameOf(PolicyAttribute::kWithInterface);
  // The language has no empty set. Besides the devices without interfaces, only those with interfaces of a
  // class that is reserved match this.
  if (values->empty()) return fmt::format(" {} match-all {{ 00:00:00 }}", name);
  if (values->size() == 1) return fmt::format(" {} {}", name, values->front());
  return fmt::format(" {} {{ {} }}", name, fmt::join(*values, " "));
}

/// Throws UserError for what the rules would allow or block unasked: forged devices, and those of classes
/// that are left out.
void CheckOrigin(const Origin& origin) {
  if (!origin.findings.empty()) {
    throw UserError(DescribeForgery(origin.findings.front()) +
                    ", and the rules would allow it; use an inventory from sysfs, or another format");
  }
  if (!origin.selection || origin.selection->classes.empty()) return;
  throw UserError(
      "the inventory lacks classes, whose devices the rules would block; save it without --class and "
      "--request, or use another format");
}

std::string RuleFor(const PolicyDevice& device) {
  const PolicyValues& serials = device.ValuesOf(PolicyAttribute::kSerial);
  if (!serials) {
    throw UserError(
        "the serial numbers are masked, so the rules would not match; leave --mask-serials out, or use "
        "another format");
  }
  const bool hasSerial = !serials->front().empty();
  return fmt::format("{} id {}{}{}{}{}{}\n", NameOf(PolicyTarget::kAllow), IdText(device),
                     AttributeText(PolicyAttribute::kSerial, device),
                     AttributeText(PolicyAttribute::kName, device),
                     hasSerial ? "" : AttributeText(PolicyAttribute::kViaPort, device), InterfaceText(device),
                     AttributeText(PolicyAttribute::kWithConnectType, device));
}

}  // namespace

std::string RenderUsbguard(const Inventory& inventory, const RenderOptions& /*options*/) {
  if (inventory.GetOrigin()) CheckOrigin(*inventory.GetOrigin());
  std::vector<PolicyDevice> devices = PolicyDevicesOf(inventory);
  // A device whose port is not known must be allowed before a rule asks for its port.
  std::stable_partition(devices.begin(), devices.end(), [](const PolicyDevice& device) {
    return !device.ValuesOf(PolicyAttribute::kViaPort).has_value();
  });
  std::string policy;
  for (const PolicyDevice& device : devices) policy += RuleFor(device);
  return policy;
}

}  // namespace cli
