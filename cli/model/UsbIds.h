// The names of vendors and products by number, from the list that Debian installs as usb.ids. They do not
// come from the device, so they are shown beside its own strings and never in their place. The command reads
// the list once, and only for formats for people.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

class UsbIds {
 public:
  /// Reads the names from `list`: lines of a vendor's four-digit number and its name, each followed by its
  /// products in the same form after a tab. Other lines are ignored.
  explicit UsbIds(std::string list);

  /// The names on this machine: those of the file that USBINFO_IDS names, none when that is empty; when it is
  /// not set, those of the first list that is installed. Throws UserError when the file that USBINFO_IDS
  /// names cannot be read.
  static std::optional<UsbIds> OfThisMachine();

  /// A name as the list has it, with any bytes except a newline; empty when it is not known.
  std::string Vendor(std::uint16_t vendor) const;
  std::string Product(std::uint16_t vendor, std::uint16_t product) const;

 private:
  /// Names are pieces of the list's text.
  struct Entry {
    std::uint32_t number;
    std::string_view name;
  };
  using Entries = std::vector<Entry>;

  static void Sort(Entries& entries);
  static std::string Find(const Entries& entries, std::uint32_t number);

  /// Shared, so that copies keep the text that the entries point into.
  std::shared_ptr<const std::string> fList;
  /// Ascending by number; of several with the same number the first counts.
  Entries fVendors;
  Entries fProducts;
};

}  // namespace cli
