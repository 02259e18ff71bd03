// The names of vendors and products by number, from the list that Debian installs as usb.ids. They are other
// people's knowledge, shown beside what a device says of itself and never in its place. The command reads the
// list once, and only for formats that people read.
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
  /// Takes what it knows from `list`: lines of a vendor's number in four digits and its name, below each its
  /// products in the same way behind a tab. Whatever else stands there is passed over.
  explicit UsbIds(std::string list);

  /// The names that this machine has: those of the file that USBINFO_IDS names, none where that is empty, and
  /// where it is not set, those of the first list that is installed. Throws UserError when the file that
  /// USBINFO_IDS names cannot be read.
  static std::optional<UsbIds> OfThisMachine();

  /// A name as the list has it, any byte but a newline in it; empty when it is not known.
  std::string Vendor(std::uint16_t vendor) const;
  std::string Product(std::uint16_t vendor, std::uint16_t product) const;

 private:
  /// A name is a piece of the list.
  struct Entry {
    std::uint32_t number;
    std::string_view name;
  };
  using Entries = std::vector<Entry>;

  static void Sort(Entries& entries);
  static std::string Find(const Entries& entries, std::uint32_t number);

  /// Shared, so that copies keep what the entries are pieces of.
  std::shared_ptr<const std::string> fList;
  /// Ascending by number; of several with the same one the first counts.
  Entries fVendors;
  Entries fProducts;
};

}  // namespace cli
