// udev's hardware database, which has the names of usb.ids on machines without that list. The library that
// reads it is loaded only then, since most runs of the command do without it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace cli {

class HardwareDatabase {
 public:
  HardwareDatabase(const HardwareDatabase&) = delete;
  HardwareDatabase& operator=(const HardwareDatabase&) = delete;
  ~HardwareDatabase();

  /// This machine's database, read by that version of libudev's interface. Null where it has none, or no such
  /// library.
  static std::shared_ptr<const HardwareDatabase> Open(const char* library = "libudev.so.1");

  /// A name as the database has it; empty when it is not known.
  std::string Vendor(std::uint16_t vendor) const;
  std::string Product(std::uint16_t vendor, std::uint16_t product) const;

 private:
  class Library;

  explicit HardwareDatabase(std::unique_ptr<Library> library);

  std::unique_ptr<Library> fLibrary;
};

}  // namespace cli
