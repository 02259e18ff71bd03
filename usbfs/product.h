// The "P" line of a device block: vendor and product identifiers, kept as text.
// Owned by a device record, read by the inventory.
#pragma once

#include <string>

#include "usbfs/LineParser.h"

class product : public LineParser {
 public:
  /// Sets all three fields; one whose key or terminator is missing becomes empty.
  void Initialize(std::string line);

  /// Vendor identifier, four hexadecimal digits as written.
  std::string getVendor() const { return vendor; }
  /// Product identifier, four hexadecimal digits as written.
  std::string getProduct() const { return productId; }
  /// Device release number, leading blank and point kept.
  std::string getRevision() const { return revision; }

 private:
  std::string vendor;
  std::string productId;
  std::string revision;
};
