#include "cli/collect/InventoryMask.h"

#include <set>
#include <string>
#include <utility>

#include "cli/collect/SerialMask.h"
#include "cli/model/DeviceText.h"
#include "kernel/DeviceName.h"

namespace cli {

namespace {

/// The kernel's own vendor number, which its root hubs carry.
constexpr std::uint64_t kKernelVendor = 0x1D6B;

class InventoryMasker {
 public:
  InventoryMasker(const Inventory& inventory, const SerialMask& mask) : fMask(mask) {
    std::set<std::string> controllers;
    for (const Item& controller : inventory.Controllers()) {
      controllers.insert(controller.String(PropertyId::kDeviceID));
    }
    for (const Item& hub : inventory.Hubs()) {
      const std::string& identifier = hub.String(PropertyId::kDeviceID);
      const bool isRootHub =
          hub.Number(PropertyId::kVendorID) == kKernelVendor && controllers.count(identifier) != 0;
      if (isRootHub) fRootHubs.insert(identifier);
    }
  }

  Item Masked(Item item) const {
    const std::string serial = SentString(item, PropertyId::kSerialNumber);
    const bool isRootHub =
        item.Class() == ClassId::kHub && fRootHubs.count(item.String(PropertyId::kDeviceID)) != 0;
    if (serial.empty() || isRootHub) return item;
    item.SetAt(item.Schema().IndexOf(PropertyId::kSerialNumber), fMask.Mask(serial));
    return item;
  }

  KernelFacts Masked(KernelFacts facts) const {
    for (DeviceFacts& device : facts.devices) {
      const bool hasSerial = device.serial && !device.serial->empty();
      if (hasSerial && !IsRootHub(device)) device.serial = fMask.Mask(*device.serial);
    }
    return facts;
  }

 private:
  /// Not what only goes by a root hub's number.
  bool IsRootHub(const DeviceFacts& device) const {
    const auto name = kernel::ParseDeviceName(device.name.value_or(""));
    return name && name->IsRootHub() && fRootHubs.count(device.device) != 0;
  }

  const SerialMask& fMask;
  std::set<std::string> fRootHubs;
};

Origin MaskedBy(const SerialMask& mask, Origin origin) {
  origin.masked = Masking{mask.Fingerprint()};
  return origin;
}

}  // namespace

Inventory MaskSerials(const Inventory& inventory, const SerialMask& mask) {
  const InventoryMasker masker(inventory, mask);
  Inventory masked(inventory.SystemName());
  masked.SetKnowsConnections(inventory.KnowsConnections());
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    for (const Item& item : ofClass.items) masked.Add(masker.Masked(item));
  }
  if (inventory.GetOrigin()) masked.SetOrigin(MaskedBy(mask, *inventory.GetOrigin()));
  if (inventory.Kernel()) masked.SetKernel(masker.Masked(*inventory.Kernel()));
  return masked;
}

}  // namespace cli
