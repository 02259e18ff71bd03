#include "cli/model/NodeFacts.h"

#include <fmt/format.h>

#include <utility>

#include "cli/model/DeviceText.h"
#include "cli/model/SocketText.h"

namespace cli {

namespace {

class FactList {
 public:
  void Add(const char* label, std::string value) {
    if (!value.empty()) fFacts.push_back({label, std::move(value)});
  }
  std::vector<NodeFact> Take() { return std::move(fFacts); }

 private:
  std::vector<NodeFact> fFacts;
};

bool IsHardwired(const Sockets& sockets, const SocketNode& node) {
  if (node.isHardwired) return true;
  return node.parent != SocketNode::kNone && sockets.Nodes()[node.parent].isHardwired;
}

void AddIdentity(const SocketNode& node, const UsbIds* names, FactList& facts) {
  facts.Add("Kind", KindOf(node));
  facts.Add("Name", ProductOf(node));
  facts.Add("Known as", KnownAs(node.GetItem(), names));
  facts.Add("Vendor", ManufacturerOf(node));
  facts.Add("Identifier", FormatId(node.GetItem()));
  facts.Add("Serial number", SerialOf(node));
}

void AddVersions(const SocketNode& node, FactList& facts) {
  const std::uint64_t version = node.GetItem().Number(PropertyId::kUSBVersion);
  if (version != 0) facts.Add("USB version", FormatVersion(version));
  const DeviceFacts* const known = node.halves.front().device;
  if (known != nullptr) facts.Add("Revision", known->revision.value_or(""));
  const std::uint64_t configurations = node.GetItem().Number(PropertyId::kNumberOfConfigs);
  const bool isKnown = node.GetItem().Has(PropertyId::kNumberOfConfigs) && IsDigit(configurations);
  if (isKnown) facts.Add("Configurations", std::to_string(configurations));
}

void AddUse(const SocketNode& node, FactList& facts) {
  const DeviceFacts* const known = node.halves.front().device;
  if (known == nullptr) return;
  if (known->maxPower.value_or(0) != 0) facts.Add("Power", fmt::format("{} mA", *known->maxPower));
  facts.Add("Driver", DriversOf(node));
  facts.Add("Device number", std::to_string(known->number));
  if (known->nodes) facts.Add("Device files", fmt::format("{}", fmt::join(*known->nodes, ", ")));
}

void AddDescriptor(const Sockets& sockets, const SocketNode& node, const UsbIds* names, FactList& facts) {
  AddIdentity(node, names, facts);
  AddVersions(node, facts);
  if (node.Class() == ClassId::kHub) {
    facts.Add(sockets.KnowsPeers() ? "Sockets" : "Ports", std::to_string(NumberOfSockets(sockets, node)));
  }
  AddUse(node, facts);
}

}  // namespace

std::vector<NodeFact> FactsOf(const Sockets& sockets, const SocketNode& node, const UsbIds* names) {
  FactList facts;
  const bool isDescribed = node.Class() == ClassId::kHub || node.Class() == ClassId::kDevice;
  if (isDescribed) AddDescriptor(sockets, node, names, facts);
  facts.Add("Place", node.name);
  facts.Add("Other half", OtherHalfOf(node));
  facts.Add("Speed", SpeedOf(sockets, node));
  if (IsHardwired(sockets, node)) facts.Add("Socket", "hard-wired");
  facts.Add("DeviceID", node.GetItem().String(PropertyId::kDeviceID));
  return facts.Take();
}

}  // namespace cli
