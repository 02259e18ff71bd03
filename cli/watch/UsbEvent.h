// What the kernel reports when a USB device or one of its interfaces comes, goes or changes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "kernel/Device.h"

namespace cli {

struct UsbEvent {
  enum class Action { kAdd, kRemove, kOther };

  Action action = Action::kOther;
  /// The kernel's name: "1-3.1" for a device, "1-3.1:1.0" for one of its interfaces.
  std::string name = {};
  /// The device number; 0 for an interface, and where it is not known.
  unsigned number = 0;
  /// Of a device; 0 where they are not known.
  std::uint16_t vendor = 0;
  std::uint16_t product = 0;
  /// Of a device or an interface; nothing where they are not known.
  std::optional<kernel::ClassCodes> codes = std::nullopt;
};

/// An event with that action and the device's name. `property` gives what else the kernel says: DEVNUM;
/// PRODUCT, three hexadecimal numbers such as "46d/c52b/1201"; TYPE of a device and INTERFACE of an
/// interface, three decimal ones such as "3/1/1". It gives an empty text for what is missing.
UsbEvent ReadUsbEvent(std::string_view action, std::string_view name,
                      const std::function<std::string(const char* property)>& property);

}  // namespace cli
