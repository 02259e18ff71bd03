#include "tests/fuzz/TreeReader.h"

#include <algorithm>
#include <map>
#include <set>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/ReadPath.h"
#include "tests/fuzz/Utf8.h"

using cli::PropertyId;

namespace usbinfo_test {

namespace {

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string ExpectedHeading(const cli::Inventory& inventory) {
  const std::vector<cli::Item>& ports = inventory.Ports();
  const auto freePorts = std::count_if(ports.begin(), ports.end(), [](const cli::Item& port) {
    return port.Text(PropertyId::kStatusDescriptions) == "{No device connected}";
  });
  return inventory.SystemName() + ": " + Counted(inventory.Controllers().size(), "controller") + ", " +
         Counted(inventory.Hubs().size(), "hub") + ", " + Counted(ports.size(), "port") + " (" +
         std::to_string(freePorts) + " free), " + Counted(inventory.Devices().size(), "device");
}

/// Ports with exactly one thing plugged in show it in their own row. A hub that a controller has as its root
/// is shown there.
std::size_t SharedRows(const cli::Inventory& inventory) {
  std::set<std::string> roots;
  for (const cli::Item& controller : inventory.Controllers()) {
    roots.insert(controller.String(PropertyId::kDeviceID));
  }
  std::set<std::string> rootPaths;
  for (const cli::Item& hub : inventory.Hubs()) {
    if (roots.count(hub.String(PropertyId::kDeviceID)) != 0) rootPaths.insert(PathTextOf(hub));
  }
  std::map<std::string, std::size_t> plugged;
  for (const cli::Item& link : inventory.Connections()) {
    if (rootPaths.count(link.String(PropertyId::kDependent)) == 0)
      ++plugged[link.String(PropertyId::kAntecedent)];
  }
  return static_cast<std::size_t>(
      std::count_if(plugged.begin(), plugged.end(), [](const auto& port) { return port.second == 1; }));
}

std::size_t ExpectedRows(const cli::Inventory& inventory) {
  return inventory.Controllers().size() + inventory.Hubs().size() + inventory.Ports().size() +
         inventory.Devices().size() - SharedRows(inventory);
}

}  // namespace

void CheckTree(const std::string& document, const cli::Inventory& inventory) {
  constexpr std::size_t kLinesAhead = 3;
  constexpr std::size_t kColumns = 4;
  RequireFitForTable(document, kColumns);
  Require(!document.empty() && document.back() == '\n', "the tree ends with a newline");
  RequireEqual(document.substr(0, document.find('\n')), ExpectedHeading(inventory), "the tree's heading");
  const auto lines = static_cast<std::size_t>(std::count(document.begin(), document.end(), '\n'));
  RequireCount(lines, kLinesAhead + ExpectedRows(inventory), "lines of the tree");
}

}  // namespace usbinfo_test
