// Facts of items; see the header.
#include "cli/model/ItemFacts.h"

#include "cli/model/Wording.h"

namespace cli {

namespace {

/// Collects facts about one item.
class Facts {
 public:
  explicit Facts(const InstanceView& item) : fItem(item) {}

  void Text(const char* label, const char* property, bool isSearched = false) {
    const std::string text = Given(fItem, property);
    if (!text.empty()) fFacts.push_back({label, text, isSearched});
  }
  void Known(const char* label, const std::string& name) {
    if (!name.empty()) fFacts.push_back({label, name, true});
  }
  void Number(const char* label, const char* property) {
    if (fItem.Find(property) != nullptr) {
      fFacts.push_back({label, std::to_string(fItem.Number(property)), false});
    }
  }
  void Digit(const char* label, const char* property) {
    if (IsDigit(fItem.Number(property))) Number(label, property);
  }
  void Version(const char* label, const char* property) {
    const std::uint64_t version = fItem.Number(property);
    if (version != 0) fFacts.push_back({label, FormatVersion(version), false});
  }
  void Code(const char* label, const char* property) {
    if (fItem.Find(property) != nullptr) {
      fFacts.push_back({label, FormatCode(fItem.Number(property)), false});
    }
  }
  void Speed(const char* label) {
    const std::string speed = FormatSpeed(fItem.Number("Speed"));
    if (!speed.empty()) fFacts.push_back({label, speed, false});
  }
  std::vector<ItemFact> Taken() { return std::move(fFacts); }

 private:
  const InstanceView& fItem;
  std::vector<ItemFact> fFacts;
};

void AddDescriptor(Facts& facts, const std::string& known) {
  facts.Text("Product", "Description", true);
  facts.Known("Known as", known);
  facts.Text("Manufacturer", "Manufacturer", true);
  facts.Text("Serial number", "SerialNumber", true);
  facts.Version("USB version", "USBVersion");
  facts.Code("Class", "ClassCode");
  facts.Code("Subclass", "SubclassCode");
  facts.Code("Protocol", "ProtocolCode");
  facts.Digit("Configurations", "NumberOfConfigs");
  facts.Text("Plugged into", "PortNumber");
}

}  // namespace

std::vector<ItemFact> FactsOf(const UsbTreeNode& node, const UsbIds* names) {
  Facts facts(*node.item);
  switch (node.kind) {
    case UsbTreeNode::Kind::kController:
      facts.Number("Interface type", "InterfaceType");
      break;
    case UsbTreeNode::Kind::kPort:
      facts.Speed("Speed");
      break;
    case UsbTreeNode::Kind::kHub:
      AddDescriptor(facts, KnownAs(*node.item, names));
      facts.Number("Ports", "NumberOfPorts");
      break;
    case UsbTreeNode::Kind::kDevice:
      AddDescriptor(facts, KnownAs(*node.item, names));
      break;
  }
  facts.Text("Address", "DeviceID");
  return facts.Taken();
}

}  // namespace cli
