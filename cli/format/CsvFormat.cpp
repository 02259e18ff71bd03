#include "cli/format/CsvFormat.h"

#include <vector>

#include "cli/format/DeviceColumns.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/Sockets.h"
#include "cli/text/CsvText.h"

namespace cli {

namespace {

template <typename TextOf>
std::string Line(const TextOf& textOf) {
  std::vector<std::string> cells;
  for (const DeviceColumn& column : DeviceColumns()) cells.push_back(textOf(column));
  return CsvLine(cells);
}

}  // namespace

std::string RenderCsv(const Inventory& inventory, const RenderOptions& options) {
  const Sockets sockets(inventory);
  std::string text = Line([](const DeviceColumn& column) { return column.name; });
  for (const SocketNode* const node : DeviceRows(sockets, options)) {
    text += Line([&](const DeviceColumn& column) { return column.text(sockets, *node); });
  }
  return text;
}

}  // namespace cli
