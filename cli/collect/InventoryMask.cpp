#include "cli/collect/InventoryMask.h"

#include <set>
#include <string>
#include <utility>

#include "cli/collect/SerialMask.h"
#include "cli/model/DeviceText.h"

namespace cli {

namespace {

/// The kernel's own vendor number, which its root hubs carry.
constexpr std::uint64_t kKernelVendor = 0x1D6B;

class InventoryMasker {
 public:
  InventoryMasker(const Inventory& inventory, const SerialMask& mask) : fMask(mask) {
    for (const Item& controller : inventory.Controllers()) {
      fControllers.insert(controller.String(PropertyId::kDeviceID));
    }
  }

  Item Masked(Item item) const {
    const std::string serial = SentString(item, PropertyId::kSerialNumber);
    if (serial.empty() || IsRootHub(item)) return item;
    item.SetAt(item.Schema().IndexOf(PropertyId::kSerialNumber), fMask.Mask(serial));
    return item;
  }

 private:
  bool IsRootHub(const Item& item) const {
    return item.Class() == ClassId::kHub && item.Number(PropertyId::kVendorID) == kKernelVendor &&
           fControllers.count(item.String(PropertyId::kDeviceID)) != 0;
  }

  const SerialMask& fMask;
  std::set<std::string> fControllers;
};

}  // namespace

Inventory MaskSerials(const Inventory& inventory, const SerialMask& mask) {
  const InventoryMasker masker(inventory, mask);
  Inventory masked(inventory.SystemName());
  masked.SetKnowsConnections(inventory.KnowsConnections());
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    for (const Item& item : ofClass.items) masked.Add(masker.Masked(item));
  }
  return masked;
}

}  // namespace cli
