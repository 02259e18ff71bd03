// The names of vendors and products by number, from the list that Debian installs as usb.ids, or where there
// is none, from udev's hardware database. They do not come from the device, so they are shown beside its own
// strings and never in their place. The command reads the list once, and only for formats for people.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cli {

class HardwareDatabase;

class UsbIds {
 public:
  /// Reads the names from `list`: lines of a vendor's four-digit number and its name, each followed by its
  /// products in the same form after a tab. Other lines are ignored.
  explicit UsbIds(std::string list);
  /// Takes the names from `database`.
  explicit UsbIds(std::shared_ptr<const HardwareDatabase> database) : fDatabase(std::move(database)) {}

  /// The names of these vendors and of their products on this machine: those of the file that USBINFO_IDS
  /// names, none when that is empty; when it is not set, those of the first list that is installed, or else
  /// of the hardware database. Throws UserError when the file that USBINFO_IDS names cannot be read.
  static std::optional<UsbIds> OfThisMachine(const std::set<std::uint16_t>& vendors);

  /// A name as the list has it, with any bytes except a newline; empty when it is not known.
  std::string Vendor(std::uint16_t vendor) const;
  std::string Product(std::uint16_t vendor, std::uint16_t product) const;

 private:
  struct VendorLine {
    std::uint16_t number;
    std::string_view name;
    /// What follows its line in the list, its products first.
    std::string_view rest;
  };
  using VendorLines = std::vector<VendorLine>;

  /// The first vendor that does not come before the number.
  VendorLines::const_iterator FirstFrom(std::uint16_t number) const;

  /// Nothing where there is no list.
  std::shared_ptr<const HardwareDatabase> fDatabase;
  /// Shared, so that copies keep the text that the vendors point into.
  std::shared_ptr<const std::string> fList;
  /// Ascending by number; those with the same number in the order of the list, where the first name counts.
  /// Products are looked up in the text.
  VendorLines fVendors;
};

}  // namespace cli
