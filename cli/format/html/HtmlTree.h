// The machine as the page shows it: a section per controller, its hubs as rows of sockets, and what is
// plugged in as nested lists.
#pragma once

#include <string>
#include <vector>

#include "cli/format/html/HtmlWriter.h"
#include "cli/model/UsbTree.h"

namespace cli {

class UsbIds;

class HtmlTree {
 public:
  /// `names`, which may be null, tells what vendors and products are known as. All must outlive the object.
  HtmlTree(HtmlWriter& writer, const UsbTree& tree, const UsbIds* names)
      : fWriter(writer), fTree(tree), fNames(names), fRows(tree.Rows()) {}

  /// The sections, one after the other.
  void Write();

 private:
  const UsbTreeNode& NodeAt(std::size_t row) const { return fTree.Nodes()[fRows[row].node]; }
  /// The first row after `row` that does not hang on it.
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
  /// The device's own string, or what it is known as where it has none.
  void WriteName(const UsbTreeNode& node);

  HtmlWriter& fWriter;
  const UsbTree& fTree;
  const UsbIds* fNames;
  std::vector<UsbTreeRow> fRows;
};

}  // namespace cli
