#include "cli/model/ItemFacts.h"

#include "cli/model/DeviceText.h"
#include "cli/model/Speed.h"

namespace cli {

namespace {

/// Collects facts about one item.
class Facts {
 public:
  explicit Facts(const Item& item) : fItem(item) {}

  void Text(const char* label, PropertyId property, bool isSearched = false) {
    const std::string text = SentString(fItem, property);
    if (!text.empty()) fFacts.push_back({label, text, isSearched});
  }
  void Known(const char* label, const std::string& name) {
    if (!name.empty()) fFacts.push_back({label, name, true});
  }
  void Number(const char* label, PropertyId property) {
    if (fItem.Has(property)) {
      fFacts.push_back({label, std::to_string(fItem.Number(property)), false});
    }
  }
  void Digit(const char* label, PropertyId property) {
    if (IsDigit(fItem.Number(property))) Number(label, property);
  }
  void Version(const char* label, PropertyId property) {
    const std::uint64_t version = fItem.Number(property);
    if (version != 0) fFacts.push_back({label, FormatVersion(version), false});
  }
  void Code(const char* label, PropertyId property) {
    if (fItem.Has(property)) {
      fFacts.push_back({label, FormatCode(fItem.Number(property)), false});
    }
  }
  void Speed(const char* label) {
    const std::string speed = FormatSpeed(fItem.Number(PropertyId::kSpeed));
    if (!speed.empty()) fFacts.push_back({label, speed, false});
  }
  std::vector<ItemFact> Take() { return std::move(fFacts); }

 private:
  const Item& fItem;
  std::vector<ItemFact> fFacts;
};

void AddDescriptor(Facts& facts, const std::string& known) {
  facts.Text("Product", PropertyId::kDescription, true);
  facts.Known("Known as", known);
  facts.Text("Manufacturer", PropertyId::kManufacturer, true);
  facts.Text("Serial number", PropertyId::kSerialNumber, true);
  facts.Version("USB version", PropertyId::kUSBVersion);
  facts.Code("Class", PropertyId::kClassCode);
  facts.Code("Subclass", PropertyId::kSubclassCode);
  facts.Code("Protocol", PropertyId::kProtocolCode);
  facts.Digit("Configurations", PropertyId::kNumberOfConfigs);
  facts.Text("Plugged into", PropertyId::kPortNumber);
}

}  // namespace

std::vector<ItemFact> FactsOf(const UsbTreeNode& node, const UsbIds* names) {
  Facts facts(*node.item);
  switch (node.Class()) {
    case ClassId::kController:
      facts.Number("Interface type", PropertyId::kInterfaceType);
      break;
    case ClassId::kPort:
      facts.Speed("Speed");
      break;
    case ClassId::kHub:
      AddDescriptor(facts, KnownAs(*node.item, names));
      facts.Number("Ports", PropertyId::kNumberOfPorts);
      break;
    default:
      AddDescriptor(facts, KnownAs(*node.item, names));
      break;
  }
  facts.Text("Address", PropertyId::kDeviceID);
  return facts.Take();
}

}  // namespace cli
