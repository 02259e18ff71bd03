#include "cli/format/html/HtmlDeviceTable.h"

#include <algorithm>
#include <string>

#include "cli/format/DeviceColumns.h"
#include "cli/format/RenderOptions.h"
#include "cli/format/html/HtmlIcons.h"
#include "cli/format/html/HtmlWriter.h"
#include "cli/model/DeviceText.h"

namespace cli {

struct HtmlDeviceTable::Column {
  /// One of DeviceColumnNames.
  std::string name;
  const char* title;
  /// Free sockets have a value, too.
  bool isOfSockets = false;

  std::string Text(const Sockets& sockets, const SocketNode& node) const {
    const auto& columns = DeviceColumns();
    const auto column = std::find_if(columns.begin(), columns.end(),
                                     [this](const DeviceColumn& each) { return each.name == name; });
    return column->text(sockets, node);
  }
};

HtmlDeviceTable::HtmlDeviceTable(HtmlWriter& writer, const HtmlLines& lines, const RenderOptions& options)
    : fWriter(writer), fLines(lines), fOptions(options) {}

void HtmlDeviceTable::Write() {
  const std::vector<const SocketNode*> rows = DeviceRows(fLines.GetSockets(), fOptions);
  if (rows.empty()) return;
  fWriter.Open("section", {{"id", "devices"}, {"aria-labelledby", "devices-title"}});
  fWriter.Element("h2", {{"id", "devices-title"}}, Title());
  fWriter.Open("table", {{"aria-labelledby", "devices-title"}});
  WriteHead();
  fWriter.Open("tbody");
  for (const SocketNode* const node : rows) WriteRow(*node);
  fWriter.Close();
  fWriter.Close();
  fWriter.Close();
}

const std::vector<HtmlDeviceTable::Column>& HtmlDeviceTable::Columns() {
  static const std::vector<Column> columns = {{"kind", "Kind"},
                                              {"name", "Name", true},
                                              {"vendor", "Vendor"},
                                              {"identifier", "Identifier"},
                                              {"serial", "Serial number"},
                                              {"place", "Place", true},
                                              {"speed", "Speed", true}};
  return columns;
}

bool HtmlDeviceTable::HasColumn(const Column& column) const {
  if (fOptions.listsFreeSockets) return column.isOfSockets;
  return column.name != "kind" || fLines.GetSockets().GetInventory().Kernel();
}

const char* HtmlDeviceTable::Title() const {
  if (!fOptions.listsFreeSockets) return "Devices and hubs";
  return fLines.GetSockets().KnowsPeers() ? "Free sockets" : "Free ports";
}

void HtmlDeviceTable::WriteHead() {
  fWriter.Open("thead");
  fWriter.Open("tr");
  for (const Column& column : Columns()) {
    if (HasColumn(column)) fWriter.Element("th", {{"scope", "col"}, {"class", column.name}}, column.title);
  }
  fWriter.Close();
  fWriter.Close();
}

void HtmlDeviceTable::WriteRow(const SocketNode& node) {
  fWriter.Open("tr");
  for (const Column& column : Columns()) {
    if (HasColumn(column)) WriteCell(node, column);
  }
  fWriter.Close();
}

void HtmlDeviceTable::WriteCell(const SocketNode& node, const Column& column) {
  const std::string text = column.Text(fLines.GetSockets(), node);
  if (column.name == "name") return WriteName(node, text);
  fWriter.Open("td", {{"class", column.name}});
  if (column.name == "kind") WriteIcon(fWriter, text);
  if (column.name == "place") {
    fWriter.Element("a", {{"href", "#" + fLines.AnchorOf(node)}, {"data-find", ""}}, text);
  } else if (!text.empty()) {
    fWriter.Element("span", {{"data-find", ""}}, text);
  }
  fWriter.Close();
}

void HtmlDeviceTable::WriteName(const SocketNode& node, const std::string& name) {
  fWriter.Open("th", {{"scope", "row"}, {"class", "name"}});
  if (!name.empty()) {
    fWriter.Element("span", {{"data-find", ""}}, name);
  } else {
    const std::string known = KnownAs(node.GetItem(), fOptions.names);
    fWriter.Element("span", {{"class", "known"}, {"data-find", ""}}, known.empty() ? "(no name)" : known);
  }
  fWriter.Close();
}

}  // namespace cli
