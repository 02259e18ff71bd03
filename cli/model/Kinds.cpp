#include "cli/model/Kinds.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <set>

#include "kernel/Device.h"

namespace cli {

namespace {

using kernel::ClassCodes;

/// The numbers are those of AllKinds.
enum class Kind : std::size_t {
  kHub,
  kKeyboard,
  kMouse,
  kInput,
  kMassStorage,
  kAudio,
  kVideo,
  kPrinter,
  kScannerOrCamera,
  kNetwork,
  kSerial,
  kModem,
  kSmartCard,
  kWireless,
  kBluetooth,
  kVendorSpecific,
  kOther
};

/// Codes that stand for a kind. A code that is not set may be any.
struct Rule {
  std::uint8_t classCode;
  std::optional<std::uint8_t> subclass;
  std::optional<std::uint8_t> protocol;
  Kind kind;
};

constexpr std::nullopt_t kAny = std::nullopt;

/// The first one that matches counts.
constexpr Rule kRules[] = {
    {0x01, kAny, kAny, Kind::kAudio},
    // Abstract control: without a protocol, or with a vendor's, it takes no modem commands.
    {0x02, 0x02, 0x00, Kind::kSerial},
    {0x02, 0x02, 0xFF, Kind::kSerial},
    {0x02, 0x01, kAny, Kind::kModem},
    {0x02, 0x02, kAny, Kind::kModem},
    {0x02, 0x03, kAny, Kind::kModem},
    {0x02, 0x04, kAny, Kind::kModem},
    {0x02, 0x05, kAny, Kind::kModem},
    {0x02, 0x08, kAny, Kind::kModem},
    {0x02, 0x09, kAny, Kind::kModem},
    {0x02, 0x0A, kAny, Kind::kModem},
    // Ethernet, ATM, Ethernet emulation, NCM and MBIM.
    {0x02, 0x06, kAny, Kind::kNetwork},
    {0x02, 0x07, kAny, Kind::kNetwork},
    {0x02, 0x0C, kAny, Kind::kNetwork},
    {0x02, 0x0D, kAny, Kind::kNetwork},
    {0x02, 0x0E, kAny, Kind::kNetwork},
    // Many devices give the protocol without the subclass that it belongs to.
    {0x03, kAny, 0x01, Kind::kKeyboard},
    {0x03, kAny, 0x02, Kind::kMouse},
    {0x03, kAny, kAny, Kind::kInput},
    // Force feedback.
    {0x05, kAny, kAny, Kind::kInput},
    {0x06, kAny, kAny, Kind::kScannerOrCamera},
    {0x07, kAny, kAny, Kind::kPrinter},
    {0x08, kAny, kAny, Kind::kMassStorage},
    {0x09, kAny, kAny, Kind::kHub},
    {0x0B, kAny, kAny, Kind::kSmartCard},
    {0x0E, kAny, kAny, Kind::kVideo},
    // Audio/video devices: control and video streams, audio streams.
    {0x10, 0x03, kAny, Kind::kAudio},
    {0x10, kAny, kAny, Kind::kVideo},
    {0xE0, 0x01, 0x01, Kind::kBluetooth},
    {0xE0, 0x01, 0x04, Kind::kBluetooth},
    // RNDIS, by two codes.
    {0xE0, 0x01, 0x03, Kind::kNetwork},
    {0xEF, 0x04, kAny, Kind::kNetwork},
    {0xE0, kAny, kAny, Kind::kWireless},
    // A wire adapter of Wireless USB.
    {0xEF, 0x02, 0x02, Kind::kWireless},
    // USB3 Vision, for cameras of machines.
    {0xEF, 0x05, kAny, Kind::kVideo},
    // A bridge to infrared.
    {0xFE, 0x02, kAny, Kind::kWireless},
    {0xFF, kAny, kAny, Kind::kVendorSpecific},
};

bool Matches(const Rule& rule, const ClassCodes& codes) {
  return rule.classCode == codes.classCode && (!rule.subclass || *rule.subclass == codes.subclass) &&
         (!rule.protocol || *rule.protocol == codes.protocol);
}

Kind KindOf(const ClassCodes& codes) {
  const auto* const rule = std::find_if(std::begin(kRules), std::end(kRules),
                                        [&](const Rule& each) { return Matches(each, codes); });
  return rule == std::end(kRules) ? Kind::kOther : rule->kind;
}

/// Whether an interface carries the data of another one, which says what it is for.
bool IsDataOfAnother(const ClassCodes& codes) {
  constexpr std::uint8_t kCommunicationsData = 0x0A;
  return codes.classCode == kCommunicationsData;
}

void AddKinds(const kernel::Configuration& configuration, std::set<Kind>& kinds) {
  for (const kernel::Interface& interface : configuration.interfaces) {
    for (const kernel::AlternateSetting& setting : interface.settings) {
      const bool counts = !configuration.isActive || setting.isActive;
      if (counts && !IsDataOfAnother(setting.codes)) kinds.insert(KindOf(setting.codes));
    }
  }
}

std::set<Kind> KindsOfInterfaces(const kernel::Device& device) {
  std::set<Kind> kinds;
  if (const kernel::Configuration* const active = device.ActiveConfiguration()) {
    AddKinds(*active, kinds);
  } else {
    for (const kernel::Configuration& configuration : device.configurations) AddKinds(configuration, kinds);
  }
  return kinds;
}

bool HasInterfaces(const kernel::Device& device) {
  return std::any_of(device.configurations.begin(), device.configurations.end(),
                     [](const kernel::Configuration& each) { return !each.interfaces.empty(); });
}

/// The kind that the device's own class says; nothing where that leaves it to the interfaces.
std::optional<Kind> KindOfWhole(const ClassCodes& codes) {
  constexpr ClassCodes kLeftToInterfaces;
  constexpr ClassCodes kLeftToAssociations = {0xEF, 0x02, 0x01};
  const bool isLeft = codes.classCode == kLeftToInterfaces.classCode || codes == kLeftToAssociations;
  return isLeft ? std::nullopt : std::optional(KindOf(codes));
}

}  // namespace

const std::vector<std::string>& AllKinds() {
  static const std::vector<std::string> kinds = {
      "hub",        "keyboard", "mouse",          "input",           "mass storage", "audio",
      "video",      "printer",  "scanner/camera", "network",         "serial",       "modem",
      "smart card", "wireless", "bluetooth",      "vendor-specific", "other"};
  return kinds;
}

std::vector<std::string> KindsOf(const kernel::Device& device) {
  std::set<Kind> kinds = KindsOfInterfaces(device);
  const std::optional<Kind> whole = KindOfWhole(device.descriptor.codes);
  if (whole && (kinds.empty() || *whole == Kind::kHub)) kinds.insert(*whole);
  if (kinds.empty() && HasInterfaces(device)) kinds.insert(Kind::kOther);
  std::vector<std::string> names;
  names.reserve(kinds.size());
  for (const Kind kind : kinds) names.push_back(AllKinds()[static_cast<std::size_t>(kind)]);
  return names;
}

}  // namespace cli
