#include "cli/model/DeviceText.h"

#include <fmt/format.h>

#include <cctype>
#include <optional>

#include "cli/model/UsbIds.h"

namespace cli {

namespace {

std::string KnownString(const Item& item, PropertyId property, const DeviceFacts* facts,
                        std::optional<std::string> DeviceFacts::*known) {
  return facts == nullptr ? SentString(item, property) : (facts->*known).value_or("");
}

}  // namespace

std::string SentString(const Item& item, PropertyId property) {
  return SentString(item.String(property));
}

std::string SentString(const std::string& text) {
  // What the plug-in stores when no line of the list gives the string.
  return text == "Not Available" ? std::string() : text;
}

std::string ProductOf(const Item& item, const DeviceFacts* facts) {
  return KnownString(item, PropertyId::kDescription, facts, &DeviceFacts::product);
}

std::string ManufacturerOf(const Item& item, const DeviceFacts* facts) {
  return KnownString(item, PropertyId::kManufacturer, facts, &DeviceFacts::manufacturer);
}

std::string SerialOf(const Item& item, const DeviceFacts* facts) {
  return KnownString(item, PropertyId::kSerialNumber, facts, &DeviceFacts::serial);
}

std::string NameOf(const Item& item) {
  std::string name = SentString(item, PropertyId::kDescription);
  return name.empty() ? "(no name)" : name;
}

std::string FormatId(const Item& item) {
  if (item.Class() != ClassId::kHub && item.Class() != ClassId::kDevice) return {};
  return fmt::format("{:04x}:{:04x}", item.Number(PropertyId::kVendorID),
                     item.Number(PropertyId::kUSBDeviceID));
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

std::string KnownAs(const Item& item, const UsbIds* names) {
  if (names == nullptr) return {};
  const auto vendor = static_cast<std::uint16_t>(item.Number(PropertyId::kVendorID));
  const auto product = static_cast<std::uint16_t>(item.Number(PropertyId::kUSBDeviceID));
  const std::string vendorName = names->Vendor(vendor);
  std::string productName = names->Product(vendor, product);
  if (vendorName.empty()) return productName;
  return productName.empty() ? "(" + vendorName + ")" : productName + " (" + vendorName + ")";
}

}  // namespace cli
