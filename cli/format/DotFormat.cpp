#include "cli/format/DotFormat.h"

#include <fmt/format.h>

#include "cli/model/Description.h"
#include "cli/model/DeviceText.h"
#include "cli/model/UsbTree.h"
#include "cli/text/Text.h"

namespace cli {

namespace {

/// For a line of a label. Graphviz reads escapes such as `\N` and entities such as `&lt;` in labels; neither
/// may come from a device's string.
void AppendToLabel(char byte, std::string& out) {
  if (byte == '&') {
    out += "&amp;";
  } else if (byte == '"' || byte == '\\') {
    out.append(1, '\\').append(1, byte);
  } else {
    out += byte;
  }
}

/// The lines that are not empty, one below the other.
std::string Label(const std::vector<std::string>& lines) {
  std::string label;
  for (const std::string& line : lines) {
    if (line.empty()) continue;
    if (!label.empty()) label += "\\n";
    for (const char byte : EscapeForDocument(line)) AppendToLabel(byte, label);
  }
  return '"' + label + '"';
}

class Graph {
 public:
  explicit Graph(const Inventory& inventory)
      : fInventory(inventory), fTree(inventory), fIsTop(fTree.Nodes().size(), false) {
    for (const std::size_t index : fTree.Top()) fIsTop[index] = true;
  }

  std::string Text() const {
    if (fTree.Nodes().empty()) return "digraph usb {\n}\n";
    std::string text = Head();
    // Graphviz draws connected nodes from the bottom up.
    for (auto top = fTree.Top().rbegin(); top != fTree.Top().rend(); ++top) text += Node(*top);
    for (std::size_t index = 0; index < fTree.Nodes().size(); ++index) {
      if (!fIsTop[index]) text += Node(index);
    }
    for (std::size_t index = 0; index < fTree.Nodes().size(); ++index) text += Edges(index);
    return text + "}\n";
  }

 private:
  std::string Head() const {
    return fmt::format(
        "digraph usb {{\n"
        "  graph [rankdir=LR, nodesep=0.08, ranksep=0.5, labelloc=t, labeljust=l, fontname=\"sans-serif\",\n"
        "         fontsize=14, label={}];\n"
        "  node [shape=box, style=\"rounded,filled\", color=\"#8a94a3\", fillcolor=\"#ffffff\",\n"
        "        fontname=\"sans-serif\", fontsize=10, height=0.3, margin=\"0.12,0.06\"];\n"
        "  edge [arrowhead=none, color=\"#8a94a3\"];\n",
        Label({Summary(fInventory)}));
  }

  std::string Node(std::size_t index) const {
    const UsbTreeNode& node = fTree.Nodes()[index];
    const std::string place = PlaceOf(node, fIsTop[index]);
    switch (node.Class()) {
      case ClassId::kController:
        return NodeText(index, "controller", {place, DisplayName(fInventory, node)},
                        R"(fillcolor="#24364b", fontcolor="#ffffff")");
      case ClassId::kHub: {
        const std::string ports = Count(node.item->Number(PropertyId::kNumberOfPorts), "port");
        return NodeText(index, "hub",
                        {place, DisplayName(fInventory, node), FormatId(*node.item) + ", " + ports},
                        R"(fillcolor="#dde8f5")");
      }
      case ClassId::kPort:
        return Port(index, place);
      default:
        return NodeText(index, "device",
                        {fIsTop[index] ? place : "", DisplayName(fInventory, node), Facts(node)},
                        R"(fillcolor="#e3f1e4")");
    }
  }

  std::string Port(std::size_t index, const std::string& place) const {
    const UsbTreeNode& node = fTree.Nodes()[index];
    constexpr const char* kSmall =
        R"(shape=plaintext, style="", fontcolor="#667080", fontsize=8, height=0.16, margin="0.03,0")";
    switch (fInventory.StateOf(*node.item)) {
      case PortState::kFree:
        return NodeText(index, "port free", {place + " free"}, kSmall);
      case PortState::kUnknown:
        return NodeText(index, "port unknown", {place}, kSmall);
      default:
        return NodeText(index, "port used", {place, SpeedOf(fTree, node)}, "fontsize=9");
    }
  }

  bool IsFree(const UsbTreeNode& port) const { return fInventory.StateOf(*port.item) == PortState::kFree; }

  /// A device's identifier, and its speed if it is known.
  std::string Facts(const UsbTreeNode& node) const {
    const std::string speed = SpeedOf(fTree, node);
    return speed.empty() ? FormatId(*node.item) : FormatId(*node.item) + ", " + speed;
  }

  static std::string NodeText(std::size_t index, const char* svgClass, const std::vector<std::string>& lines,
                              const char* look) {
    return fmt::format("  n{} [class=\"{}\", label={}, {}];\n", index, svgClass, Label(lines), look);
  }

  std::string Edges(std::size_t index) const {
    std::string text;
    for (const std::size_t child : fTree.Nodes()[index].children) {
      const UsbTreeNode& node = fTree.Nodes()[child];
      const bool isToFreePort = node.Class() == ClassId::kPort && IsFree(node);
      text += fmt::format("  n{} -> n{}{};\n", index, child, isToFreePort ? " [color=\"#d3d8df\"]" : "");
    }
    return text;
  }

  const Inventory& fInventory;
  UsbTree fTree;
  std::vector<bool> fIsTop;
};

}  // namespace

std::string RenderDot(const Inventory& inventory, const RenderOptions&) {
  return Graph(inventory).Text();
}

}  // namespace cli
