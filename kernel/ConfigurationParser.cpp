#include "kernel/ConfigurationParser.h"

#include <algorithm>

namespace kernel {
namespace {

constexpr std::uint8_t kInterfaceDescriptor = 4;
constexpr std::uint8_t kEndpointDescriptor = 5;
constexpr std::uint8_t kAssociationDescriptor = 11;
constexpr std::size_t kInterfaceDescriptorSize = 9;
constexpr std::size_t kAssociationDescriptorSize = 8;
// The kernel's limits per configuration, interface and setting.
constexpr std::size_t kMostInterfaces = 32;
constexpr std::size_t kMostAssociations = 16;
constexpr std::size_t kMostSettings = 128;
constexpr std::size_t kMostEndpoints = 30;

constexpr std::uint8_t kEndpointNumberBits = 0x0f;

bool IsControl(const Endpoint& endpoint) {
  return TransferTypeOf(endpoint.attributes) == TransferType::kControl;
}

/// A control endpoint takes both directions of its number.
bool IsSame(const Endpoint& one, const Endpoint& other) {
  if (one.address == other.address) return true;
  const bool isSameNumber = ((one.address ^ other.address) & kEndpointNumberBits) == 0;
  return isSameNumber && (IsControl(one) || IsControl(other));
}

class ConfigurationParser {
 public:
  ConfigurationParser(Bytes header, const ParsingRules& rules);

  void Take(Bytes descriptor);
  Configuration Result() && { return std::move(fConfiguration); }

 private:
  void TakeAssociation(Bytes descriptor);
  void TakeInterface(Bytes descriptor);
  void TakeEndpoint(Bytes descriptor);
  /// The interface of that number, a new one where there is none; null beyond the limits.
  Interface* InterfaceOf(std::uint8_t number);
  bool IsTaken(const Endpoint& endpoint) const;

  ParsingRules fRules;
  std::size_t fDeclaredInterfaces;
  Configuration fConfiguration;
  // The setting that endpoints belong to, and its interface; null where they belong to none.
  Interface* fInterface = nullptr;
  AlternateSetting* fSetting = nullptr;
  std::size_t fDeclaredEndpoints = 0;
};

ConfigurationParser::ConfigurationParser(Bytes header, const ParsingRules& rules)
    : fRules(rules), fDeclaredInterfaces(header[4]) {
  const int milliamperes = rules.speed >= Speed::kSuper ? 8 : 2;
  fConfiguration.value = header[5];
  fConfiguration.attributes = header[7];
  fConfiguration.maxPower = static_cast<std::uint16_t>(header[8] * milliamperes);
  // fInterface and fSetting point into it.
  fConfiguration.interfaces.reserve(kMostInterfaces);
}

void ConfigurationParser::Take(Bytes descriptor) {
  switch (descriptor[1]) {
    case kAssociationDescriptor:
      return TakeAssociation(descriptor);
    case kInterfaceDescriptor:
      return TakeInterface(descriptor);
    case kEndpointDescriptor:
      return TakeEndpoint(descriptor);
    default:
      return;
  }
}

void ConfigurationParser::TakeAssociation(Bytes descriptor) {
  auto& associations = fConfiguration.associations;
  if (descriptor.size() < kAssociationDescriptorSize || associations.size() == kMostAssociations) return;
  associations.push_back({descriptor[2], descriptor[3], {descriptor[4], descriptor[5], descriptor[6]}});
}

void ConfigurationParser::TakeInterface(Bytes descriptor) {
  fSetting = nullptr;
  if (descriptor.size() < kInterfaceDescriptorSize) return;
  fInterface = InterfaceOf(descriptor[2]);
  if (fInterface == nullptr) return;

  auto& settings = fInterface->settings;
  const std::uint8_t number = descriptor[3];
  const bool isThere = std::any_of(settings.begin(), settings.end(),
                                   [&](const AlternateSetting& other) { return other.number == number; });
  if (isThere || settings.size() == kMostSettings) return;
  settings.push_back({number, false, {descriptor[5], descriptor[6], descriptor[7]}, {}});
  fSetting = &settings.back();
  fDeclaredEndpoints = std::min<std::size_t>(descriptor[4], kMostEndpoints);
}

Interface* ConfigurationParser::InterfaceOf(std::uint8_t number) {
  auto& interfaces = fConfiguration.interfaces;
  const bool isCountKept = (fRules.quirks & kQuirkHonorInterfaceCount) != 0;
  if (isCountKept && interfaces.size() >= fDeclaredInterfaces) return nullptr;
  const auto found = std::find_if(interfaces.begin(), interfaces.end(),
                                  [&](const Interface& other) { return other.number == number; });
  if (found != interfaces.end()) return &*found;
  if (interfaces.size() == kMostInterfaces) return nullptr;
  interfaces.push_back({number, {}, {}});
  return &interfaces.back();
}

void ConfigurationParser::TakeEndpoint(Bytes descriptor) {
  if (fSetting == nullptr || descriptor.size() < kEndpointDescriptorSize) return;
  if (fSetting->endpoints.size() >= fDeclaredEndpoints) return;
  const Endpoint endpoint = ParseEndpoint(descriptor, fRules);
  const bool isEndpointZero = (endpoint.address & kEndpointNumberBits) == 0;
  if (!isEndpointZero && !IsTaken(endpoint)) fSetting->endpoints.push_back(endpoint);
}

bool ConfigurationParser::IsTaken(const Endpoint& endpoint) const {
  for (const Interface& interface : fConfiguration.interfaces) {
    for (const AlternateSetting& setting : interface.settings) {
      // Other settings of the interface are never active together with this one.
      if (&interface == fInterface && &setting != fSetting) continue;
      for (const Endpoint& other : setting.endpoints) {
        if (IsSame(other, endpoint)) return true;
      }
    }
  }
  return false;
}

}  // namespace

std::size_t DescriptorLength(Bytes bytes) {
  constexpr std::size_t kLeast = 2;
  if (bytes.size() < kLeast || bytes[0] < kLeast || bytes[0] > bytes.size()) return 0;
  return bytes[0];
}

bool IsConfiguration(Bytes bytes) {
  return DescriptorLength(bytes) >= kConfigurationDescriptorSize && bytes[1] == kConfigurationDescriptor;
}

Configuration ParseConfiguration(Bytes bytes, const ParsingRules& rules) {
  ConfigurationParser parser(bytes, rules);
  for (Bytes rest = bytes.subspan(bytes[0]); DescriptorLength(rest) != 0; rest = rest.subspan(rest[0])) {
    parser.Take(rest.first(rest[0]));
  }
  return std::move(parser).Result();
}

}  // namespace kernel
