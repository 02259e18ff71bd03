#include "cli/model/FactsByItem.h"

namespace cli {

namespace {

template <typename Facts>
const Facts* Find(const std::unordered_map<std::string_view, const Facts*>& facts, const Item& item) {
  const auto found = facts.find(item.String(PropertyId::kDeviceID));
  return found == facts.end() ? nullptr : found->second;
}

}  // namespace

FactsByItem::FactsByItem(const Inventory& inventory) {
  if (!inventory.Kernel()) return;
  // An instance replaces earlier ones of its identifier, so the last facts are about it.
  for (const DeviceFacts& facts : inventory.Kernel()->devices) fDevices[facts.device] = &facts;
  for (const PortFacts& facts : inventory.Kernel()->ports) fPorts[facts.port] = &facts;
}

const DeviceFacts* FactsByItem::OfDevice(const Item& item) const {
  const bool isDevice = item.Class() == ClassId::kHub || item.Class() == ClassId::kDevice;
  return isDevice ? Find(fDevices, item) : nullptr;
}

const PortFacts* FactsByItem::OfPort(const Item& item) const {
  return item.Class() == ClassId::kPort ? Find(fPorts, item) : nullptr;
}

}  // namespace cli
