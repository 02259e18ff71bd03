// The tree for people; see the header.
#include "cli/TreeFormat.h"

#include <fmt/format.h>
#include <libsmartcols/libsmartcols.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <sstream>

#include "cli/Text.h"
#include "cli/UsbTree.h"
#include "cli/Wording.h"

namespace cli {

namespace {

using Kind = UsbTreeNode::Kind;

struct TableDeleter {
  void operator()(libscols_table* table) const { scols_unref_table(table); }
};
using Table = std::unique_ptr<libscols_table, TableDeleter>;

enum Column : std::size_t { kPlace, kDevice, kId, kSpeed };

void Check(int result) {
  if (result != 0) throw std::bad_alloc();
}

/// Builds the rows from the nodes.
class TreeRows {
 public:
  explicit TreeRows(const UsbTree& tree) : fNodes(tree.Nodes()) {}

  /// What stands in `column` for the node; for an occupied port, of what is plugged in.
  std::string Cell(const UsbTreeNode& node, bool isTop, Column column) const {
    if (column == kPlace) return Place(node, isTop);
    const UsbTreeNode& shown = Shown(node);
    switch (column) {
      case kDevice:
        return Device(shown);
      case kId:
        return Id(shown);
      default:
        return Speed(shown);
    }
  }

  /// The node whose description the row of `node` shows: a port shows what is plugged in.
  const UsbTreeNode& Shown(const UsbTreeNode& node) const {
    return node.kind == Kind::kPort && node.children.size() == 1 ? fNodes[node.children.front()] : node;
  }

 private:
  std::string Place(const UsbTreeNode& node, bool isTop) const {
    const std::string identifier = node.item->Text("DeviceID");
    if (node.kind == Kind::kController) return "Bus " + BusOf(identifier);
    if (isTop) return fmt::format("Bus {}, {}", BusOf(identifier), PlaceOnBus(node, identifier));
    switch (node.kind) {
      case Kind::kPort:
        return "Port " + Behind(identifier, " Port ");
      case Kind::kHub:
        return node.isRootHub ? "Root hub" : "Hub";
      default:
        return "Device " + Behind(identifier, " Device ");
    }
  }

  static std::string PlaceOnBus(const UsbTreeNode& node, const std::string& identifier) {
    if (node.kind == Kind::kPort) {
      const std::string hub = identifier.substr(0, identifier.rfind(" Port "));
      return fmt::format("hub {}, port {}", Behind(hub, " Device "), Behind(identifier, " Port "));
    }
    const char* const noun = node.kind == Kind::kHub ? "hub" : "device";
    return fmt::format("{} {}", noun, Behind(identifier, " Device "));
  }

  std::string Device(const UsbTreeNode& node) const {
    switch (node.kind) {
      case Kind::kHub: {
        const std::string ports = Count(node.item->Number("NumberOfPorts"), "port");
        return node.isRootHub ? ports : NameOf(*node.item) + ", " + ports;
      }
      case Kind::kPort:
        return IsFree(*node.item) ? "free" : "in use";
      default:
        return NameOf(*node.item);
    }
  }

  static std::string Id(const UsbTreeNode& node) {
    if (node.kind == Kind::kController || node.kind == Kind::kPort) return std::string();
    return fmt::format("{:04x}:{:04x}", node.item->Number("VendorID"), node.item->Number("USBDeviceID"));
  }

  /// A hub's speed is that of its ports.
  std::string Speed(const UsbTreeNode& node) const {
    switch (node.kind) {
      case Kind::kDevice:
        return FormatSpeedClass(node.item->Number("Speed"));
      case Kind::kPort:
        return FormatSpeed(node.item->Number("Speed"));
      case Kind::kHub:
        return node.children.empty() ? std::string() : Speed(fNodes[node.children.front()]);
      default:
        return std::string();
    }
  }

  const std::vector<UsbTreeNode>& fNodes;
};

Table NewTable(const RenderOptions& options) {
  Table table(scols_new_table());
  if (!table) throw std::bad_alloc();
  if (!options.isStandardOutput) Check(scols_table_set_termforce(table.get(), SCOLS_TERMFORCE_NEVER));
  struct Heading {
    const char* name;
    double width;
    int flags;
  };
  constexpr Heading kHeadings[] = {{"USB", 0.2, SCOLS_FL_TREE},
                                   {"DEVICE", 0.5, SCOLS_FL_TRUNC},
                                   {"ID", 9, 0},
                                   {"SPEED", 10, SCOLS_FL_RIGHT}};
  for (const Heading& heading : kHeadings) {
    if (scols_table_new_column(table.get(), heading.name, heading.width, heading.flags) == nullptr) {
      throw std::bad_alloc();
    }
  }
  return table;
}

/// `text` as a cell takes it: a zero byte, which would end it, becomes U+FFFD.
std::string FitForCell(const std::string& text) {
  std::string cell;
  for (const char c : ReplaceDirectionMarks(text)) cell += c == '\0' ? "\xEF\xBF\xBD" : std::string(1, c);
  return cell;
}

libscols_line* AddRow(libscols_table* table, libscols_line* parent, const TreeRows& rows,
                      const UsbTreeNode& node) {
  libscols_line* const line = scols_table_new_line(table, parent);
  if (line == nullptr) throw std::bad_alloc();
  for (const Column column : {kPlace, kDevice, kId, kSpeed}) {
    const std::string cell = FitForCell(rows.Cell(node, parent == nullptr, column));
    Check(scols_line_set_data(line, column, cell.c_str()));
  }
  return line;
}

/// Adds a row per node, parents ahead of their children; what a port shows in its own row gets none. A list
/// may claim any number of tiers; below the last one that is drawn, rows stay at its depth.
void AddRows(libscols_table* table, const UsbTree& tree) {
  constexpr std::size_t kMaxDepth = 32;
  struct Waiting {
    std::size_t node;
    libscols_line* parent;
    std::size_t depth;
  };
  const TreeRows rows(tree);
  std::vector<Waiting> waiting;
  for (auto top = tree.Top().rbegin(); top != tree.Top().rend(); ++top) waiting.push_back({*top, nullptr, 0});
  while (!waiting.empty()) {
    const Waiting next = waiting.back();
    waiting.pop_back();
    const UsbTreeNode& node = tree.Nodes()[next.node];
    libscols_line* const line = AddRow(table, next.parent, rows, node);
    const auto& children = rows.Shown(node).children;
    const bool isDeepest = next.depth == kMaxDepth;
    libscols_line* const parent = isDeepest ? next.parent : line;
    const std::size_t depth = isDeepest ? kMaxDepth : next.depth + 1;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      waiting.push_back({*child, parent, depth});
    }
  }
}

/// The table as text, without the blanks that pad a row's empty cells.
std::string Print(libscols_table* table) {
  char* text = nullptr;
  Check(scols_print_table_to_string(table, &text));
  const std::unique_ptr<char, decltype(&std::free)> owned(text, &std::free);
  std::string trimmed;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    trimmed += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
  }
  return trimmed;
}

std::string Heading(const Inventory& inventory) {
  std::size_t freePorts = 0;
  const auto& ports = inventory.InstancesOf("KALDO_USBPort");
  for (const InstanceView& port : ports) {
    if (IsFree(port)) ++freePorts;
  }
  return fmt::format("{}: {}, {}, {} ({} free), {}\n\n", EscapeForTerminal(inventory.SystemName()),
                     Count(inventory.InstancesOf("KALDO_USBController").size(), "controller"),
                     Count(inventory.InstancesOf("KALDO_USBHub").size(), "hub"), Count(ports.size(), "port"),
                     freePorts, Count(inventory.InstancesOf("KALDO_USBDevice").size(), "device"));
}

}  // namespace

std::string RenderTree(const Inventory& inventory, const RenderOptions& options) {
  const Table table = NewTable(options);
  AddRows(table.get(), UsbTree(inventory));
  return Heading(inventory) + Print(table.get());
}

}  // namespace cli
