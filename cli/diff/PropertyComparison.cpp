#include "cli/diff/PropertyComparison.h"

#include <algorithm>
#include <array>
#include <utility>

#include "cli/diff/InventoryDiff.h"
#include "cli/model/DeviceText.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

constexpr std::array<std::string_view, 7> kFacts = {"kinds",    "interfaces", "speed", "maxPower",
                                                    "revision", "connect",    "peer"};

bool AreEqualWithoutCase(std::string_view left, std::string_view right) {
  return ToLower(left) == ToLower(right);
}

/// Properties that depend on the place, on the kernel's number for the device or on the system; those
/// differences are reported by other means.
bool IsReportedSeparately(PropertyId property) {
  constexpr std::array<PropertyId, 6> kProperties = {
      PropertyId::kDeviceID,   PropertyId::kName,       PropertyId::kHubName,
      PropertyId::kPortNumber, PropertyId::kSystemName, PropertyId::kSystemCreationClassName};
  return std::find(kProperties.begin(), kProperties.end(), property) != kProperties.end();
}

/// A controller, hub, port or device; the other classes are links.
bool IsCompared(const schema::ClassSchema& classSchema) {
  return classSchema.id != ClassId::kPortOnHub && classSchema.id != ClassId::kConnection;
}

/// The value to compare: a string that the device did not send counts as absent.
ComparedValue Significant(const ComparedValue& value) {
  const auto* const text = std::get_if<std::string>(&value);
  if (text == nullptr) return value;
  std::string sent = SentString(*text);
  return sent.empty() ? ComparedValue() : ComparedValue(std::move(sent));
}

template <typename Type>
ComparedValue FactOf(const std::optional<Type>& value) {
  return value ? ComparedValue(*value) : ComparedValue();
}

/// The settings of interfaces, or those alone that usb-devices lists, too.
std::vector<InterfaceFacts> Listed(std::vector<InterfaceFacts> interfaces, bool isActiveOnly) {
  if (isActiveOnly) std::erase_if(interfaces, [](const InterfaceFacts& each) { return !each.isActive; });
  return interfaces;
}

bool IsNothing(const ComparedValue& value) {
  return std::holds_alternative<std::monostate>(value);
}

}  // namespace

std::vector<std::string> ComparedProperties() {
  std::vector<std::string> names(kFacts.begin(), kFacts.end());
  for (const schema::ClassSchema& classSchema : schema::ServedClasses()) {
    if (!IsCompared(classSchema)) continue;
    for (const schema::PropertySchema& property : classSchema.properties) {
      if (!IsReportedSeparately(property.id)) names.emplace_back(property.name);
    }
  }
  std::stable_sort(names.begin(), names.end(), [](const std::string& left, const std::string& right) {
    return ToLower(left) < ToLower(right);
  });
  names.erase(std::unique(names.begin(), names.end(), AreEqualWithoutCase), names.end());
  return names;
}

PropertyComparison::PropertyComparison(bool usesKernel, bool isSysfs, std::vector<std::string> ignored)
    : fUsesKernel(usesKernel), fIsSysfs(isSysfs), fIgnored(std::move(ignored)) {}

std::vector<PropertyChange> PropertyComparison::ChangesOf(const PlacedItem& before,
                                                          const PlacedItem& after) const {
  std::vector<PropertyChange> changes;
  AddProperties(before, after, changes);
  if (!fUsesKernel) return changes;
  if (before.device != nullptr && after.device != nullptr) AddDeviceFacts(before, after, changes);
  if (before.port != nullptr && after.port != nullptr) {
    Add({"connect", {}, FactOf(before.port->connect), FactOf(after.port->connect)}, changes);
  }
  return changes;
}

bool PropertyComparison::IsIgnored(std::string_view name) const {
  return std::any_of(fIgnored.begin(), fIgnored.end(),
                     [&](const std::string& ignored) { return AreEqualWithoutCase(ignored, name); });
}

void PropertyComparison::AddProperties(const PlacedItem& before, const PlacedItem& after,
                                       std::vector<PropertyChange>& changes) const {
  const bool hasSpeeds = fUsesKernel && before.device != nullptr && after.device != nullptr &&
                         before.device->speed && after.device->speed;
  for (const schema::PropertySchema& property : before.item->Schema().properties) {
    if (IsReportedSeparately(property.id) || IsIgnored(property.name)) continue;
    // The kernel's manufacturer of a root hub holds its own version.
    if (property.id == PropertyId::kManufacturer && before.isRootHub) continue;
    // The kernel's rate says more than the class of speed.
    if (property.id == PropertyId::kSpeed && hasSpeeds) continue;
    ComparedValue old = ValueOf(before, property.id);
    ComparedValue now = ValueOf(after, property.id);
    if (Significant(old) == Significant(now)) continue;
    changes.push_back({property.name, property.id, std::move(old), std::move(now)});
  }
}

void PropertyComparison::AddDeviceFacts(const PlacedItem& before, const PlacedItem& after,
                                        std::vector<PropertyChange>& changes) const {
  const DeviceFacts& old = *before.device;
  const DeviceFacts& now = *after.device;
  Add({"kinds", {}, old.kinds, now.kinds}, changes);
  Add({"interfaces", {}, Listed(old.interfaces, !fIsSysfs), Listed(now.interfaces, !fIsSysfs)}, changes);
  // A device list has 10000 for 20000, too.
  constexpr double kFastestInList = 10000;
  const bool isAsInList =
      old.speed && now.speed && *old.speed >= kFastestInList && *now.speed >= kFastestInList;
  if (fIsSysfs || !isAsInList) Add({"speed", {}, FactOf(old.speed), FactOf(now.speed)}, changes);
  Add({"maxPower", {}, FactOf(old.maxPower), FactOf(now.maxPower)}, changes);
  // The revision of a root hub is the kernel's version.
  if (!before.isRootHub) Add({"revision", {}, FactOf(old.revision), FactOf(now.revision)}, changes);
}

/// What is not known equals everything.
void PropertyComparison::Add(PropertyChange change, std::vector<PropertyChange>& changes) const {
  if (IsNothing(change.before) || IsNothing(change.after) || IsIgnored(change.name)) return;
  if (change.before != change.after) changes.push_back(std::move(change));
}

ComparedValue PropertyComparison::ValueOf(const PlacedItem& placed, PropertyId property) const {
  const DeviceFacts* const facts = fUsesKernel ? placed.device : nullptr;
  if (facts != nullptr && property == PropertyId::kDescription) return ProductOf(*placed.item, facts);
  if (facts != nullptr && property == PropertyId::kManufacturer) return ManufacturerOf(*placed.item, facts);
  if (facts != nullptr && property == PropertyId::kSerialNumber) return SerialOf(*placed.item, facts);
  return std::visit([](const auto& value) { return ComparedValue(value); }, placed.item->Get(property));
}

}  // namespace cli
