// The tree for people; see the header.
#include "cli/TreeFormat.h"

#include <fmt/format.h>
#include <libsmartcols/libsmartcols.h>

#include <algorithm>
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

std::string Device(const UsbTreeNode& node) {
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

/// What stands in `column` for the node; for an occupied port, of what is plugged in.
std::string Cell(const UsbTree& tree, const UsbTreeNode& node, bool isTop, Column column) {
  const UsbTreeNode& shown = tree.Shown(node);
  switch (column) {
    case kPlace:
      return PlaceOf(node, isTop);
    case kDevice:
      return Device(shown);
    case kId:
      return IdOf(shown);
    default:
      return SpeedOf(tree, shown);
  }
}

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

libscols_line* AddRow(libscols_table* table, libscols_line* parent, const UsbTree& tree,
                      const UsbTreeNode& node) {
  libscols_line* const line = scols_table_new_line(table, parent);
  if (line == nullptr) throw std::bad_alloc();
  for (const Column column : {kPlace, kDevice, kId, kSpeed}) {
    const std::string cell = FitForCell(Cell(tree, node, parent == nullptr, column));
    Check(scols_line_set_data(line, column, cell.c_str()));
  }
  return line;
}

void AddRows(libscols_table* table, const UsbTree& tree) {
  // The last line at each depth.
  std::vector<libscols_line*> lines;
  for (const UsbTreeRow& row : tree.Rows()) {
    libscols_line* const parent = row.depth == 0 ? nullptr : lines[row.depth - 1];
    lines.resize(row.depth);
    lines.push_back(AddRow(table, parent, tree, tree.Nodes()[row.node]));
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

}  // namespace

std::string RenderTree(const Inventory& inventory, const RenderOptions& options) {
  const UsbTree tree(inventory);
  const std::string heading = EscapeForTerminal(Summary(inventory)) + "\n\n";
  if (tree.Nodes().empty()) return heading + "Associations alone have no rows in a tree.\n";
  const Table table = NewTable(options);
  AddRows(table.get(), tree);
  return heading + Print(table.get());
}

}  // namespace cli
