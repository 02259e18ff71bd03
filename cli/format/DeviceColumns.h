// The columns that describe devices, for the formats with a row per device.
#pragma once

#include <string>
#include <vector>

#include "cli/text/ColumnWidths.h"

namespace cli {

class Sockets;
struct RenderOptions;
struct SocketNode;

struct DeviceColumn {
  /// As options and programs name it: "serial".
  std::string name;
  /// For people: "SERIAL".
  std::string title;
  /// Empty where nothing is known. Any bytes may stand in it.
  std::string (*text)(const Sockets& sockets, const SocketNode& node);
  Importance importance;
  bool isNumber = false;
};

/// In the order in which they are shown.
const std::vector<DeviceColumn>& DeviceColumns();
std::vector<std::string> DeviceColumnNames();

/// What has a row, in the tree's order: hubs and devices, but for root hubs below their controllers; with
/// `options.listsFreeSockets`, the free sockets instead.
std::vector<const SocketNode*> DeviceRows(const Sockets& sockets, const RenderOptions& options);

}  // namespace cli
