#include "cli/watch/EventBatch.h"

#include <algorithm>
#include <string_view>

#include "cli/model/Inventory.h"
#include "kernel/Number.h"

namespace cli {

namespace {

/// 0 for the number means that it is not known.
bool Has(const Inventory& inventory, const kernel::Device& device) {
  if (!inventory.Kernel()) return false;
  const std::vector<DeviceFacts>& facts = inventory.Kernel()->devices;
  return std::any_of(facts.begin(), facts.end(), [&device](const DeviceFacts& known) {
    return known.name == device.name && (device.number == 0 || known.number == device.number);
  });
}

/// The interface of that number, which is added where it is missing.
kernel::Interface& InterfaceOf(kernel::Device& device, std::uint8_t number) {
  if (device.configurations.empty()) device.configurations.emplace_back().isActive = true;
  std::vector<kernel::Interface>& interfaces = device.configurations.front().interfaces;
  const auto found =
      std::find_if(interfaces.begin(), interfaces.end(),
                   [number](const kernel::Interface& interface) { return interface.number == number; });
  if (found != interfaces.end()) return *found;
  kernel::Interface& added = interfaces.emplace_back();
  added.number = number;
  added.settings.emplace_back().isActive = true;
  return added;
}

}  // namespace

void EventBatch::Take(const UsbEvent& event, Clock::Point now) {
  Note(now);
  const std::string_view name = event.name;
  const auto device = kernel::ParseDeviceName(name.substr(0, name.find(':')));
  if (!device) return;
  if (name.find(':') == std::string_view::npos) {
    TakeDevice(event, *device);
  } else if (event.action == UsbEvent::Action::kAdd) {
    TakeInterface(event, *device);
  }
}

void EventBatch::TakeLoss(Clock::Point now) {
  Note(now);
  fHasLosses = true;
}

std::optional<Clock::Point> EventBatch::LookAt(Clock::Point::duration settle) const {
  if (!fFirst) return std::nullopt;
  return std::min(fLast + settle, *fFirst + kMostSettlingTimes * settle);
}

std::vector<kernel::Device> EventBatch::CameAndWent(const Inventory& before, const Inventory& after) const {
  std::vector<kernel::Device> devices;
  for (const auto& [stay, device] : fVisitors) {
    if (!Has(before, device) && !Has(after, device)) devices.push_back(device);
  }
  return devices;
}

void EventBatch::Note(Clock::Point now) {
  if (!fFirst) fFirst = now;
  fLast = now;
}

void EventBatch::TakeDevice(const UsbEvent& event, const kernel::DeviceName& name) {
  if (event.action != UsbEvent::Action::kAdd) return;
  kernel::Device& visitor = fVisitors[{name, event.number}];
  visitor.name = event.name;
  visitor.bus = name.bus;
  visitor.number = event.number;
  visitor.descriptor.vendor = event.vendor;
  visitor.descriptor.product = event.product;
  visitor.descriptor.codes = event.codes.value_or(kernel::ClassCodes());
  fNumbers[name] = event.number;
}

void EventBatch::TakeInterface(const UsbEvent& event, const kernel::DeviceName& device) {
  const auto number = fNumbers.find(device);
  if (number == fNumbers.end() || !event.codes) return;
  const std::string_view name = event.name;
  constexpr unsigned kMostInterfaces = 255;
  const auto interface = kernel::ParseNumber(name.substr(name.rfind('.') + 1), kMostInterfaces);
  if (!interface) return;
  kernel::Device& owner = fVisitors.at({device, number->second});
  InterfaceOf(owner, static_cast<std::uint8_t>(*interface)).settings.front().codes = *event.codes;
}

}  // namespace cli
