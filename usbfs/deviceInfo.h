// The "S" lines of a device block: the string descriptors, and the kind of host controller that a root hub's
// product string names. Several lines fill one object. Owned by a device record, read by the inventory.
#pragma once

#include <string>

#include "usbfs/LineParser.h"

class deviceInfo : public LineParser {
 public:
  /// Sets the fields that `line` names, anywhere in it and with these capitals: "Product" (with the kind of
  /// host controller), "SerialNumber", "Manufacturer". A value that merely holds such a word sets that field
  /// too, to the empty text when the key is missing.
  void Initialize(std::string line);
  /// Sets the kind of host controller from the driver name in `line`, in any mix of case.
  void setUsbHost(std::string line);

  /// The strings; "Not Available" until a line sets them.
  std::string getproduct() const { return product; }
  std::string getserial() const { return serial; }
  std::string getmanufacturer() const { return manufacturer; }
  /// 0 without a product line, 1 none of the known kinds, 2 UHCI, 3 OHCI, 4 EHCI.
  unsigned short getUsbHost() const { return usbHost; }

 private:
  std::string product = "Not Available";
  std::string serial = "Not Available";
  std::string manufacturer = "Not Available";
  unsigned short usbHost = 0;
};
