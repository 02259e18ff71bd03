// Finds what the kernel knows of an inventory's items.
#pragma once

#include <string_view>
#include <unordered_map>

#include "cli/model/Inventory.h"

namespace cli {

class FactsByItem {
 public:
  /// `inventory` must outlive this.
  explicit FactsByItem(const Inventory& inventory);

  /// Of a hub or device; null where nothing is known.
  const DeviceFacts* OfDevice(const Item& item) const;
  /// Of a port; null where nothing is known.
  const PortFacts* OfPort(const Item& item) const;

 private:
  std::unordered_map<std::string_view, const DeviceFacts*> fDevices;
  std::unordered_map<std::string_view, const PortFacts*> fPorts;
};

}  // namespace cli
