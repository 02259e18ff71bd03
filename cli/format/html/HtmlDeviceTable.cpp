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
  /// Names the row.
  bool isHeading = false;

  std::string Text(const Sockets& sockets, const SocketNode& node) const {
    const auto& columns = DeviceColumns();
    const auto column = std::find_if(columns.begin(), columns.end(),
                                     [this](const DeviceColumn& each) { return each.name == name; });
    return column->text(sockets, node);
  }
};

HtmlDeviceTable::HtmlDeviceTable(HtmlWriter& writer, const HtmlLines& lines, const RenderOptions& options)
    : fWriter(writer), fLines(lines), fOptions(options), fColumns(Columns()) {}

HtmlDeviceTable::~HtmlDeviceTable() = default;

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

std::vector<HtmlDeviceTable::Column> HtmlDeviceTable::Columns() const {
  if (fOptions.listsFreeSockets) return {{"place", "Place", true}, {"name", "State"}, {"speed", "Speed"}};
  std::vector<Column> columns;
  if (fLines.GetSockets().GetInventory().Kernel()) columns.push_back({"kind", "Kind"});
  columns.insert(columns.end(), {{"name", "Name", true},
                                 {"vendor", "Vendor"},
                                 {"identifier", "Identifier"},
                                 {"serial", "Serial number"},
                                 {"place", "Place"},
                                 {"speed", "Speed"}});
  return columns;
}

const char* HtmlDeviceTable::Title() const {
  if (!fOptions.listsFreeSockets) return "Devices and hubs";
  return fLines.GetSockets().KnowsPeers() ? "Free sockets" : "Free ports";
}

void HtmlDeviceTable::WriteHead() {
  fWriter.Open("thead");
  fWriter.Open("tr");
  for (const Column& column : fColumns) {
    fWriter.Element("th", {{"scope", "col"}, {"class", column.name}}, column.title);
  }
  fWriter.Close();
  fWriter.Close();
}

void HtmlDeviceTable::WriteRow(const SocketNode& node) {
  fWriter.Open("tr");
  for (const Column& column : fColumns) {
    if (column.isHeading) {
      fWriter.Open("th", {{"scope", "row"}, {"class", column.name}});
    } else {
      fWriter.Open("td", {{"class", column.name}});
    }
    WriteContent(node, column.name, column.Text(fLines.GetSockets(), node));
    fWriter.Close();
  }
  fWriter.Close();
}

void HtmlDeviceTable::WriteContent(const SocketNode& node, const std::string& column,
                                   const std::string& text) {
  if (column == "kind") WriteIcon(fWriter, text);
  if (column == "place") {
    fWriter.Element("a", {{"href", "#" + fLines.AnchorOf(node)}, {"data-find", ""}}, text);
  } else if (!text.empty()) {
    fWriter.Element("span", {{"data-find", ""}}, text);
  } else if (column == "name") {
    const std::string known = KnownAs(node.GetItem(), fOptions.names);
    fWriter.Element("span", {{"class", "known"}, {"data-find", ""}}, known.empty() ? "(no name)" : known);
  }
}

}  // namespace cli
