#include "cli/format/DotFormat.h"

#include <fmt/format.h>

#include <algorithm>

#include "cli/model/DeviceText.h"
#include "cli/model/SocketText.h"
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

constexpr const char* kSmallLook =
    R"(shape=plaintext, style="", fontcolor="#667080", fontsize=8, height=0.16, margin="0.03,0")";
constexpr const char* kToEmpty = " [color=\"#d3d8df\"]";

bool IsEmpty(const SocketNode& node) {
  return node.Class() == ClassId::kPort && node.children.empty() &&
         (node.state == SocketState::kFree || node.state == SocketState::kNotUsed);
}

class Graph {
 public:
  explicit Graph(const Inventory& inventory) : fSockets(inventory) {}

  std::string Text() const {
    if (fSockets.Nodes().empty()) return "digraph usb {\n}\n";
    std::string text = Head();
    // Graphviz draws connected nodes from the bottom up.
    for (auto top = fSockets.Top().rbegin(); top != fSockets.Top().rend(); ++top) text += Node(*top);
    for (std::size_t index = 0; index < fSockets.Nodes().size(); ++index) {
      const SocketNode& node = fSockets.Nodes()[index];
      if (node.parent != SocketNode::kNone && !IsEmpty(node)) text += Node(index);
      text += EmptySockets(index);
    }
    for (std::size_t index = 0; index < fSockets.Nodes().size(); ++index) text += Edges(index);
    return text + "}\n";
  }

 private:
  std::string Head() const {
    return fmt::format(
        "digraph usb {{\n"
        "  graph [rankdir=LR, ordering=out, nodesep=0.08, ranksep=0.5, labelloc=t, labeljust=l,\n"
        "         fontname=\"sans-serif\", fontsize=14, label={}];\n"
        "  node [shape=box, style=\"rounded,filled\", color=\"#8a94a3\", fillcolor=\"#ffffff\",\n"
        "        fontname=\"sans-serif\", fontsize=10, height=0.3, margin=\"0.12,0.06\"];\n"
        "  edge [arrowhead=none, color=\"#8a94a3\"];\n",
        Label({Summary(fSockets)}));
  }

  std::string Node(std::size_t index) const {
    const SocketNode& node = fSockets.Nodes()[index];
    const bool isTop = node.parent == SocketNode::kNone;
    const std::string place = PlaceOf(node, isTop);
    const std::string name = fmt::format("n{}", index);
    switch (node.Class()) {
      case ClassId::kController:
        return NodeText(name, "controller", {place, NameOf(node)},
                        R"(fillcolor="#24364b", fontcolor="#ffffff")");
      case ClassId::kHub: {
        const std::string facts = FormatId(node.GetItem()) + ", " + SocketsOf(fSockets, node);
        return NodeText(name, "hub", {place, node.IsRootHub() ? "" : NameOf(node), facts},
                        R"(fillcolor="#dde8f5")");
      }
      case ClassId::kPort:
        return Socket(name, node, place);
      default:
        return NodeText(name, "device",
                        {isTop || HasOwnName(node) ? place : "", NameOf(node), KindOf(node), Facts(node)},
                        R"(fillcolor="#e3f1e4")");
    }
  }

  /// Whether the name is not that of the socket that it is drawn at.
  bool HasOwnName(const SocketNode& device) const {
    return device.parent != SocketNode::kNone && device.name != fSockets.Nodes()[device.parent].name;
  }

  std::string Socket(const std::string& name, const SocketNode& node, const std::string& place) const {
    const std::string hardwired = node.isHardwired ? "hard-wired" : "";
    switch (node.state) {
      case SocketState::kUsed:
        return NodeText(name, "port used", {place, SpeedOf(fSockets, node), hardwired}, "fontsize=9");
      case SocketState::kUnknown:
        return NodeText(name, "port unknown", {place, hardwired}, kSmallLook);
      default:
        return NodeText(name, "port free", {place + " " + NameOf(node.state), hardwired}, kSmallLook);
    }
  }

  std::size_t CountEmpty(const SocketNode& hub, SocketState state) const {
    return static_cast<std::size_t>(
        std::count_if(hub.children.begin(), hub.children.end(), [&](std::size_t child) {
          const SocketNode& node = fSockets.Nodes()[child];
          return IsEmpty(node) && node.state == state;
        }));
  }

  /// One node for all empty sockets of a hub.
  std::string EmptySockets(std::size_t hub) const {
    std::vector<std::string> lines;
    for (const SocketState state : {SocketState::kFree, SocketState::kNotUsed}) {
      const std::size_t count = CountEmpty(fSockets.Nodes()[hub], state);
      if (count != 0) lines.push_back(fmt::format("+{} {}", count, NameOf(state)));
    }
    return lines.empty() ? "" : NodeText(fmt::format("f{}", hub), "port free", lines, kSmallLook);
  }

  /// A device's identifier, and its speed if it is known.
  std::string Facts(const SocketNode& node) const {
    const std::string speed = SpeedOf(fSockets, node);
    return speed.empty() ? FormatId(node.GetItem()) : FormatId(node.GetItem()) + ", " + speed;
  }

  static std::string NodeText(const std::string& name, const char* svgClass,
                              const std::vector<std::string>& lines, const char* look) {
    return fmt::format("  {} [class=\"{}\", label={}, {}];\n", name, svgClass, Label(lines), look);
  }

  std::string Edges(std::size_t index) const {
    std::string text;
    bool hasEmpty = false;
    for (const std::size_t child : fSockets.Nodes()[index].children) {
      const bool isEmpty = IsEmpty(fSockets.Nodes()[child]);
      hasEmpty = hasEmpty || isEmpty;
      if (!isEmpty) text += fmt::format("  n{} -> n{};\n", index, child);
    }
    return hasEmpty ? text + fmt::format("  n{0} -> f{0}{1};\n", index, kToEmpty) : text;
  }

  Sockets fSockets;
};

}  // namespace

std::string RenderDot(const Inventory& inventory, const RenderOptions&) {
  return Graph(inventory).Text();
}

}  // namespace cli
