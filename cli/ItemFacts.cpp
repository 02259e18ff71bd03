// Facts of items; see the header.
#include "cli/ItemFacts.h"

#include <fmt/format.h>

#include "cli/Wording.h"

namespace cli {

namespace {

/// Collects facts about one item.
class Facts {
 public:
  explicit Facts(const InstanceView& item) : fItem(item) {}

  void Text(const char* label, const char* property, bool isSearched = false) {
    const std::string text = fItem.Text(property);
    if (!text.empty() && text != "Not Available") fFacts.push_back({label, text, isSearched});
  }
  void Number(const char* label, const char* property) {
    if (fItem.Find(property) != nullptr) {
      fFacts.push_back({label, std::to_string(fItem.Number(property)), false});
    }
  }
  /// A version told as a number of three digits.
  void Version(const char* label, const char* property) {
    constexpr std::uint64_t kHundred = 100;
    const std::uint64_t version = fItem.Number(property);
    if (version == 0) return;
    fFacts.push_back({label, fmt::format("{}.{:02}", version / kHundred, version % kHundred), false});
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

void AddDescriptor(Facts& facts) {
  facts.Text("Product", "Description", true);
  facts.Text("Manufacturer", "Manufacturer", true);
  facts.Text("Serial number", "SerialNumber", true);
  facts.Version("USB version", "USBVersion");
  facts.Number("Class", "ClassCode");
  facts.Number("Subclass", "SubclassCode");
  facts.Number("Protocol", "ProtocolCode");
  facts.Number("Configurations", "NumberOfConfigs");
  facts.Text("Plugged into", "PortNumber");
}

}  // namespace

std::vector<ItemFact> FactsOf(const UsbTreeNode& node) {
  Facts facts(*node.item);
  switch (node.kind) {
    case UsbTreeNode::Kind::kController:
      facts.Number("Interface type", "InterfaceType");
      break;
    case UsbTreeNode::Kind::kPort:
      facts.Speed("Speed");
      break;
    case UsbTreeNode::Kind::kHub:
      AddDescriptor(facts);
      facts.Number("Ports", "NumberOfPorts");
      break;
    case UsbTreeNode::Kind::kDevice:
      AddDescriptor(facts);
      break;
  }
  facts.Text("Address", "DeviceID");
  return facts.Taken();
}

}  // namespace cli
