// Which part of an inventory the user asked for: hubs and devices by their ids or their place, and classes by
// name. Parses the values of the options and selects the part of a collected inventory.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/model/Inventory.h"

namespace cli {

/// [VID]:[PID]; what is left out may be any.
struct VendorProduct {
  std::optional<std::uint16_t> vendor;
  std::optional<std::uint16_t> product;
};

/// [BUS]:[DEV]; what is left out may be any.
struct BusDevice {
  std::optional<unsigned> bus;
  std::optional<unsigned> device;
};

/// Whether something is plugged in.
enum class Occupancy { kAny, kOccupied, kFree };

/// A selected item matches one of the ids, the place, the name, one of the classes and the occupancy, those
/// of them that are set; nothing set selects all.
struct Selection {
  std::vector<VendorProduct> ids = {};
  std::optional<BusDevice> place = std::nullopt;
  std::vector<ClassId> classes = {};
  /// The kernel's name of a hub or device, such as "1-3.1".
  std::optional<std::string> name = std::nullopt;
  Occupancy occupancy = Occupancy::kAny;

  bool IsSet() const {
    return !ids.empty() || place || !classes.empty() || name || occupancy != Occupancy::kAny;
  }
};

/// "1d6b:", "1d6b:0002", ":0002": one to four hexadecimal digits each, 0x before them or not; nothing for any
/// other form.
std::optional<VendorProduct> ParseVendorProduct(const std::string& text);

/// "1:3", "1:", ":3", ":" and "3", which is a device's number too: decimal; nothing for any other form.
std::optional<BusDevice> ParseBusDevice(const std::string& text);

/// The kernel's spelling of the name of a hub or device, "1-3.1" or "usb1"; nothing for any other form.
std::optional<std::string> ParseKernelName(const std::string& text);

/// The selected part of `inventory`, in the same order. Ids, places and names select only hubs and devices;
/// an occupancy selects sockets, of which both halves count, and kOccupied what is plugged into them; with
/// `keepsPath` these come with the controllers, hubs and ports that lead to them and the links among all
/// these, unless classes are selected too. The origin, where there is one, says what was selected, after what
/// was selected before.
Inventory Select(const Inventory& inventory, const Selection& selection, bool keepsPath);

/// The selection as options: "-d 1d6b: -s 1:3 --class KALDO_USBHub --free".
std::string Describe(const Selection& selection);

}  // namespace cli
