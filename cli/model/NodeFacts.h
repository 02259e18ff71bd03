// What is known of one node of the picture of sockets, as labels and values for people.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Sockets.h"

namespace cli {

class UsbIds;

struct NodeFact {
  const char* label;
  std::string value;
};

/// In a fixed order; what is not known is left out. `names` holds the names of vendors and products; it may
/// be null.
std::vector<NodeFact> FactsOf(const Sockets& sockets, const SocketNode& node, const UsbIds* names);

}  // namespace cli
