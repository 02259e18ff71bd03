#include "cli/format/html/HtmlTree.h"

#include <fmt/format.h>

#include "cli/model/Description.h"
#include "cli/model/DeviceText.h"
#include "cli/model/Identifier.h"
#include "cli/model/ItemFacts.h"
#include "cli/model/Speed.h"

namespace cli {

namespace {

/// The anchor of the item that shows a node.
std::string Anchor(std::size_t node) {
  return fmt::format("i{}", node);
}

const char* StyleOf(ClassId classId) {
  constexpr const char* kStyles[] = {"controller", "hub", "port", "device"};
  return kStyles[static_cast<std::size_t>(classId)];
}

/// A speed short enough for a socket: "480M", "5G".
std::string ShortSpeed(const UsbTreeNode& port) {
  const std::string speed = FormatSpeed(port.item->Number(PropertyId::kSpeed));
  return speed.empty() ? "?" : speed.substr(0, speed.find(' ')) + speed[speed.find(' ') + 1];
}

SpeedClass SpeedClassOfNode(const UsbTree& tree, const UsbTreeNode& node) {
  if (node.Class() == ClassId::kDevice) return SpeedClassOfDevice(node.item->Number(PropertyId::kSpeed));
  if (node.Class() == ClassId::kPort) return SpeedClassOfPort(node.item->Number(PropertyId::kSpeed));
  return node.children.empty()
             ? SpeedClass::kUnknown
             : SpeedClassOfPort(tree.Nodes()[node.children.front()].item->Number(PropertyId::kSpeed));
}

}  // namespace

HtmlTree::HtmlTree(HtmlWriter& writer, const Inventory& inventory, const UsbTree& tree, const UsbIds* names)
    : fWriter(writer), fInventory(inventory), fTree(tree), fNames(names), fRows(tree.Rows()) {}

void HtmlTree::Write() {
  std::size_t row = 0;
  for (; row < fRows.size() && NodeAt(row).Class() == ClassId::kController; row = EndOf(row))
    WriteController(row);
  if (row < fRows.size()) WriteUnlinked(row);
}

PortState HtmlTree::StateOf(const UsbTreeNode& port) const {
  return fInventory.StateOf(*port.item);
}

bool HtmlTree::IsSocketOnly(const UsbTreeNode& node) const {
  return node.Class() == ClassId::kPort && node.children.empty() && StateOf(node) != PortState::kUsed;
}

std::string HtmlTree::PortsOf(const UsbTreeNode& hub) const {
  std::size_t ports = 0;
  std::size_t free = 0;
  for (const std::size_t child : hub.children) {
    const UsbTreeNode& port = fTree.Nodes()[child];
    if (port.Class() != ClassId::kPort) continue;
    ++ports;
    if (StateOf(port) == PortState::kFree) ++free;
  }
  const std::uint64_t number = hub.item->Number(PropertyId::kNumberOfPorts);
  const bool isFreeKnown = ports == number && fInventory.KnowsConnections();
  return isFreeKnown ? fmt::format("{}, {} free", Count(number, "port"), free) : Count(number, "port");
}

std::size_t HtmlTree::EndOf(std::size_t row) const {
  std::size_t end = row + 1;
  while (end < fRows.size() && fRows[end].depth > fRows[row].depth) ++end;
  return end;
}

void HtmlTree::WriteController(std::size_t row) {
  const std::string anchor = Anchor(fRows[row].node);
  fWriter.Open("section", {{"class", "bus item"}, {"id", anchor}, {"aria-labelledby", anchor + "h"}});
  WriteDetails(row);
  WriteBelow(row);
  fWriter.Close();
}

void HtmlTree::WriteUnlinked(std::size_t first) {
  fWriter.Open("section", {{"class", "bus unlinked item"}, {"aria-labelledby", "unlinked"}});
  fWriter.Element("h2", {{"id", "unlinked"}},
                  fInventory.IsPartial() ? "Selected" : "Linked to no controller");
  WriteList(first, fRows.size());
  fWriter.Close();
}

void HtmlTree::WriteList(std::size_t first, std::size_t end) {
  fWriter.Open("ul", {{"class", "items"}});
  // Rows below the maximum depth are drawn at that depth.
  for (std::size_t row = first; row < end; row = EndOf(row)) WriteItem(row);
  fWriter.Close();
}

void HtmlTree::WriteItem(std::size_t row) {
  const bool isOnHub = fRows[row].depth > 0;
  if (isOnHub && IsSocketOnly(NodeAt(row))) return;
  const UsbTreeNode& shown = fTree.Shown(NodeAt(row));
  fWriter.Open("li",
               {{"class", fmt::format("item {}", StyleOf(shown.Class()))}, {"id", Anchor(fRows[row].node)}});
  WriteDetails(row);
  WriteBelow(row);
  fWriter.Close();
}

void HtmlTree::WriteBelow(std::size_t row) {
  WriteSockets(row);
  const std::size_t end = EndOf(row);
  bool hasItems = false;
  for (std::size_t below = row + 1; below < end; below = EndOf(below)) {
    hasItems = hasItems || !IsSocketOnly(NodeAt(below));
  }
  if (hasItems) WriteList(row + 1, end);
}

void HtmlTree::WriteDetails(std::size_t row) {
  fWriter.Open("details");
  WriteSummary(row);
  WriteFacts(row);
  fWriter.Close();
}

void HtmlTree::WriteSummary(std::size_t row) {
  const UsbTreeNode& node = NodeAt(row);
  const UsbTreeNode& shown = fTree.Shown(node);
  fWriter.Open("summary");
  const bool isController = node.Class() == ClassId::kController;
  if (isController) fWriter.Open("h2", {{"id", Anchor(fRows[row].node) + "h"}});
  fWriter.Element("span", {{"class", "place"}}, PlaceOf(node, fRows[row].depth == 0));
  fWriter.Text(" ");
  WriteName(shown);
  if (isController) fWriter.Close();
  const std::string id = FormatId(*shown.item);
  if (!id.empty()) fWriter.Element("span", {{"class", "id"}, {"data-find", ""}}, id);
  const std::string speed = SpeedOf(fTree, shown);
  const std::string speedClass = NameOf(SpeedClassOfNode(fTree, shown));
  if (!speed.empty()) fWriter.Element("span", {{"class", "speed " + speedClass}}, speed);
  fWriter.Close();
}

void HtmlTree::WriteName(const UsbTreeNode& node) {
  fWriter.Open("span", {{"class", "name"}});
  if (node.Class() == ClassId::kPort) {
    fWriter.Element("span", {}, DisplayName(fInventory, node));
  } else if (!node.isRootHub) {
    fWriter.Element("span", {{"data-find", ""}}, DisplayName(fInventory, node));
    const bool isNamed =
        node.Class() == ClassId::kController || !SentString(*node.item, PropertyId::kDescription).empty();
    const std::string known = isNamed ? std::string() : KnownAs(*node.item, fNames);
    if (!known.empty()) {
      fWriter.Text(" ");
      fWriter.Element("span", {{"class", "known"}}, known);
    }
  }
  if (node.Class() == ClassId::kHub) {
    fWriter.Text(" ");
    fWriter.Element("span", {{"class", "free-ports"}}, PortsOf(node));
  }
  fWriter.Close();
}

void HtmlTree::WriteFacts(std::size_t row) {
  fWriter.Open("dl");
  const auto writeFact = [this](const char* label, const ItemFact& fact) {
    fWriter.Open("div");
    fWriter.Element("dt", {}, label);
    fWriter.Element("dd",
                    fact.isSearched ? HtmlWriter::Attributes{{"data-find", ""}} : HtmlWriter::Attributes{},
                    fact.value);
    fWriter.Close();
  };
  const UsbTreeNode& node = NodeAt(row);
  const UsbTreeNode& shown = fTree.Shown(node);
  for (const ItemFact& fact : FactsOf(shown, fNames)) writeFact(fact.label, fact);
  if (&node != &shown) writeFact("Port's speed", {"", SpeedOf(fTree, node)});
  fWriter.Close();
}

void HtmlTree::WriteSockets(std::size_t row) {
  const UsbTreeNode& hub = fTree.Shown(NodeAt(row));
  std::vector<std::size_t> ports;
  for (const std::size_t child : hub.children) {
    if (fTree.Nodes()[child].Class() == ClassId::kPort) ports.push_back(child);
  }
  if (ports.empty()) return;
  const std::string label = hub.isRootHub ? PlaceOf(hub, false) : DisplayName(fInventory, hub);
  fWriter.Open("ul", {{"class", "sockets"}, {"aria-label", "Ports of " + label}});
  for (const std::size_t port : ports) WriteSocket(fTree.Nodes()[port], port);
  fWriter.Close();
}

void HtmlTree::WriteSocket(const UsbTreeNode& port, std::size_t index) {
  const bool isLink = !IsSocketOnly(port);
  const UsbTreeNode& shown = fTree.Shown(port);
  const std::string place = PlaceOf(port, false);
  const std::string speed = SpeedOf(fTree, port);
  std::string text = fmt::format("{}: {}", place, DisplayName(fInventory, shown));
  if (!speed.empty()) text += ", " + speed;
  fWriter.Open("li", {{"class", fmt::format("socket {} {}", NameOf(SpeedClassOfNode(fTree, port)),
                                            isLink ? "used" : NameOf(StateOf(port)))}});
  if (isLink) {
    fWriter.Open("a", {{"title", text}, {"href", "#" + Anchor(index)}});
  } else {
    fWriter.Open("span", {{"title", text}});
  }
  fWriter.Element("span", {{"class", "number"}, {"aria-hidden", "true"}},
                  std::string(PortOf(port.item->String(PropertyId::kDeviceID))));
  fWriter.Element("span", {{"class", "rate"}, {"aria-hidden", "true"}}, ShortSpeed(port));
  fWriter.Element("span", {{"class", "unseen"}}, text);
  fWriter.Close();
  fWriter.Close();
}

}  // namespace cli
