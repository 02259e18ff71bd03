#include "cli/format/DeviceColumns.h"

#include "cli/format/RenderOptions.h"
#include "cli/model/DeviceText.h"
#include "cli/model/SocketText.h"

namespace cli {

namespace {

using Nodes = const Sockets&;
using Node = const SocketNode&;

bool HasRow(const SocketNode& node, const RenderOptions& options) {
  switch (node.Class()) {
    case ClassId::kPort:
      return options.listsFreeSockets && node.state == SocketState::kFree;
    case ClassId::kHub:
      return !options.listsFreeSockets && !node.IsRootHub();
    case ClassId::kDevice:
      return !options.listsFreeSockets;
    default:
      return false;
  }
}

}  // namespace

const std::vector<DeviceColumn>& DeviceColumns() {
  static const std::vector<DeviceColumn> columns = {
      {"place", "PLACE", [](Nodes, Node node) { return PlaceOf(node, true); }, Importance::kIdentifier},
      {"kind", "KIND", [](Nodes, Node node) { return KindOf(node); }, Importance::kUseful},
      {"name", "NAME",
       [](Nodes sockets, Node node) {
         return node.Class() == ClassId::kPort ? DescribeRow(sockets, node) : ProductOf(node);
       },
       Importance::kMain},
      {"vendor", "VENDOR", [](Nodes, Node node) { return ManufacturerOf(node); }, Importance::kMinor},
      {"identifier", "ID", [](Nodes, Node node) { return FormatId(node.GetItem()); },
       Importance::kIdentifier},
      {"serial", "SERIAL", [](Nodes, Node node) { return SerialOf(node); }, Importance::kIdentifier},
      {"speed", "SPEED", [](Nodes sockets, Node node) { return SpeedOf(sockets, node); }, Importance::kUseful,
       true},
      {"driver", "DRIVER", [](Nodes, Node node) { return DriversOf(node); }, Importance::kMinor}};
  return columns;
}

std::vector<std::string> DeviceColumnNames() {
  std::vector<std::string> names;
  for (const DeviceColumn& column : DeviceColumns()) names.push_back(column.name);
  return names;
}

std::vector<const SocketNode*> DeviceRows(const Sockets& sockets, const RenderOptions& options) {
  std::vector<const SocketNode*> rows;
  for (const SocketNode& node : sockets.Nodes()) {
    if (HasRow(node, options)) rows.push_back(&node);
  }
  return rows;
}

}  // namespace cli
