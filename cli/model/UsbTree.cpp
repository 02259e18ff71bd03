// From flat classes to a tree; see the header.
#include "cli/model/UsbTree.h"

#include <algorithm>
#include <unordered_map>

namespace cli {

namespace {

using Kind = UsbTreeNode::Kind;
using IndexByText = std::unordered_map<std::string, std::size_t>;

/// Puts one node under another as the associations say, each at most once.
class Linker {
 public:
  explicit Linker(std::vector<UsbTreeNode>& nodes) : fNodes(nodes), fIsLinked(nodes.size(), false) {
    for (std::size_t index = 0; index < nodes.size(); ++index) {
      fByPath.emplace(nodes[index].item->PathText(), index);
      if (nodes[index].kind == Kind::kHub) fHubByDeviceId.emplace(nodes[index].item->Text("DeviceID"), index);
    }
  }

  /// A controller and its root hub carry the same identifier.
  void LinkRootHubs() {
    for (std::size_t index = 0; index < fNodes.size(); ++index) {
      if (fNodes[index].kind != Kind::kController) continue;
      const auto hub = fHubByDeviceId.find(fNodes[index].item->Text("DeviceID"));
      if (hub == fHubByDeviceId.end()) continue;
      fNodes[hub->second].isRootHub = true;
      Link(index, hub->second);
    }
  }

  void LinkAssociations(const std::vector<InstanceView>& associations) {
    for (const InstanceView& association : associations) {
      const auto parent = fByPath.find(association.Text("Antecedent"));
      const auto child = fByPath.find(association.Text("Dependent"));
      if (parent != fByPath.end() && child != fByPath.end()) Link(parent->second, child->second);
    }
  }

  std::vector<std::size_t> Unlinked() const {
    std::vector<std::size_t> top;
    for (std::size_t index = 0; index < fNodes.size(); ++index) {
      if (!fIsLinked[index]) top.push_back(index);
    }
    return top;
  }

 private:
  void Link(std::size_t parent, std::size_t child) {
    if (fIsLinked[child]) return;
    fIsLinked[child] = true;
    fNodes[parent].children.push_back(child);
  }

  std::vector<UsbTreeNode>& fNodes;
  std::vector<bool> fIsLinked;
  IndexByText fByPath;
  IndexByText fHubByDeviceId;
};

void AddNodes(std::vector<UsbTreeNode>& nodes, Kind kind, const std::vector<InstanceView>& instances) {
  for (const InstanceView& instance : instances) nodes.push_back({kind, &instance, false, {}});
}

}  // namespace

UsbTree::UsbTree(const Inventory& inventory) {
  AddNodes(fNodes, Kind::kController, inventory.InstancesOf("KALDO_USBController"));
  AddNodes(fNodes, Kind::kHub, inventory.InstancesOf("KALDO_USBHub"));
  AddNodes(fNodes, Kind::kPort, inventory.InstancesOf("KALDO_USBPort"));
  AddNodes(fNodes, Kind::kDevice, inventory.InstancesOf("KALDO_USBDevice"));
  Linker linker(fNodes);
  linker.LinkRootHubs();
  linker.LinkAssociations(inventory.InstancesOf("KALDO_USBPortOnHub"));
  linker.LinkAssociations(inventory.InstancesOf("KALDO_USBConnection"));
  fTop = linker.Unlinked();
}

const UsbTreeNode& UsbTree::Shown(const UsbTreeNode& node) const {
  return node.kind == Kind::kPort && node.children.size() == 1 ? fNodes[node.children.front()] : node;
}

std::vector<UsbTreeRow> UsbTree::Rows() const {
  std::vector<UsbTreeRow> rows;
  std::vector<UsbTreeRow> waiting;
  for (auto top = fTop.rbegin(); top != fTop.rend(); ++top) waiting.push_back({*top, 0});
  while (!waiting.empty()) {
    const UsbTreeRow row = waiting.back();
    waiting.pop_back();
    rows.push_back(row);
    const auto& children = Shown(fNodes[row.node]).children;
    const std::size_t depth = std::min(row.depth + 1, kMaxDepth);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
      waiting.push_back({*child, depth});
    }
  }
  return rows;
}

}  // namespace cli
