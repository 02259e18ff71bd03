// The lines of the page's picture of controllers: which nodes have one, and in whose line the others are. A
// controller and its root hub share one; an empty socket is a mark in the line of its hub.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/model/Sockets.h"

namespace cli {

class HtmlLines {
 public:
  /// `sockets` must outlive this.
  explicit HtmlLines(const Sockets& sockets);

  const Sockets& GetSockets() const { return fSockets; }
  /// A row for each node but those that are described in another's; parents before their children.
  const std::vector<SocketRow>& Rows() const { return fRows; }
  const SocketNode& NodeAt(std::size_t row) const { return fSockets.Nodes()[fRows[row].node]; }
  /// The first row after `row` that is not below it.
  std::size_t EndOf(std::size_t row) const;

  /// The node that is described in the line of `node`.
  const SocketNode& Shown(const SocketNode& node) const;
  /// A socket on a hub with nothing known to be plugged in; a socket by itself has a line.
  bool IsMark(std::size_t row) const;
  /// A controller of which all sockets are known, and nothing is plugged into any.
  bool IsEmptyController(std::size_t row) const;

  /// The anchor in the page that shows a node: "i5".
  std::string AnchorOf(const SocketNode& node) const;

 private:
  std::size_t IndexOf(const SocketNode& node) const;

  const Sockets& fSockets;
  std::vector<SocketRow> fRows;
  /// Per node, the one whose line shows it.
  std::vector<std::size_t> fShownBy;
};

/// The numbers of the buses that a node is on, as the filter looks for them: "1 2".
std::string BusesOf(const SocketNode& node);

}  // namespace cli
