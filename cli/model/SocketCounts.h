// How many nodes the picture of an inventory has.
#pragma once

#include <cstddef>

namespace cli {

struct SocketCounts {
  std::size_t controllers = 0;
  std::size_t hubs = 0;
  std::size_t sockets = 0;
  std::size_t devices = 0;
  /// Of the sockets.
  std::size_t free = 0;
  std::size_t notUsed = 0;
  std::size_t unknown = 0;
  /// The kernel says which ports share a socket; else `sockets` counts ports.
  bool knowsPeers = false;
};

}  // namespace cli
