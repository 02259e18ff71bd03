// The part of the page that shows the machine: a section per controller, its hubs as rows of sockets, and
// what is plugged in as nested lists.
#pragma once

#include <string>
#include <vector>

#include "cli/format/html/HtmlWriter.h"
#include "cli/model/UsbTree.h"

namespace cli {

class UsbIds;

class HtmlTree {
 public:
  /// `tree` is that of `inventory`; `names` holds the names of vendors and products and may be null. All must
  /// outlive the object.
  HtmlTree(HtmlWriter& writer, const Inventory& inventory, const UsbTree& tree, const UsbIds* names);

  /// The sections, one after the other.
  void Write();

 private:
  const UsbTreeNode& NodeAt(std::size_t row) const { return fTree.Nodes()[fRows[row].node]; }
  PortState StateOf(const UsbTreeNode& port) const;
  /// A port on a hub with nothing known to be plugged in is shown as a socket only.
  bool IsSocketOnly(const UsbTreeNode& node) const;
  /// How many ports a hub has, and how many are free where that is known of all of them.
  std::string PortsOf(const UsbTreeNode& hub) const;
  /// The first row after `row` that is not below it.
  std::size_t EndOf(std::size_t row) const;

  void WriteController(std::size_t row);
  void WriteUnlinked(std::size_t first);
  /// The rows from `first` to before `end` that stand at the depth of the first one, with all below them.
  void WriteList(std::size_t first, std::size_t end);
  void WriteItem(std::size_t row);
  void WriteBelow(std::size_t row);
  void WriteDetails(std::size_t row);
  void WriteSummary(std::size_t row);
  void WriteFacts(std::size_t row);
  void WriteSockets(std::size_t row);
  void WriteSocket(const UsbTreeNode& port, std::size_t index);
  /// The device's own string, or its name from the list of names if it has none.
  void WriteName(const UsbTreeNode& node);

  HtmlWriter& fWriter;
  const Inventory& fInventory;
  const UsbTree& fTree;
  const UsbIds* fNames;
  std::vector<UsbTreeRow> fRows;
};

}  // namespace cli
