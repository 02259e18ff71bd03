#include "tests/fuzz/TreeReader.h"

#include <algorithm>
#include <map>
#include <set>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/Utf8.h"

namespace usbinfo_test {

namespace {

std::string Counted(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string ExpectedHeading(const cli::Inventory& inventory) {
  const auto& ports = inventory.InstancesOf("KALDO_USBPort");
  const auto freePorts = std::count_if(ports.begin(), ports.end(), [](const cli::InstanceView& port) {
    return port.Text("StatusDescriptions") == "{No device connected}";
  });
  return inventory.SystemName() + ": " +
         Counted(inventory.InstancesOf("KALDO_USBController").size(), "controller") + ", " +
         Counted(inventory.InstancesOf("KALDO_USBHub").size(), "hub") + ", " + Counted(ports.size(), "port") +
         " (" + std::to_string(freePorts) + " free), " +
         Counted(inventory.InstancesOf("KALDO_USBDevice").size(), "device");
}

/// Ports with exactly one thing plugged in show it in their own row. A hub that a controller has as its root
/// is shown there.
std::size_t SharedRows(const cli::Inventory& inventory) {
  std::set<std::string> roots;
  for (const auto& controller : inventory.InstancesOf("KALDO_USBController")) {
    roots.insert(controller.Text("DeviceID"));
  }
  std::set<std::string> rootPaths;
  for (const auto& hub : inventory.InstancesOf("KALDO_USBHub")) {
    if (roots.count(hub.Text("DeviceID")) != 0) rootPaths.insert(hub.PathText());
  }
  std::map<std::string, std::size_t> plugged;
  for (const auto& link : inventory.InstancesOf("KALDO_USBConnection")) {
    if (rootPaths.count(link.Text("Dependent")) == 0) ++plugged[link.Text("Antecedent")];
  }
  return static_cast<std::size_t>(
      std::count_if(plugged.begin(), plugged.end(), [](const auto& port) { return port.second == 1; }));
}

std::size_t ExpectedRows(const cli::Inventory& inventory) {
  std::size_t items = 0;
  for (const char* name : {"KALDO_USBController", "KALDO_USBHub", "KALDO_USBPort", "KALDO_USBDevice"}) {
    items += inventory.InstancesOf(name).size();
  }
  return items - SharedRows(inventory);
}

}  // namespace

void CheckTree(const std::string& document, const cli::Inventory& inventory) {
  constexpr std::size_t kLinesAhead = 3;
  RequireFitForCharacterSet(document);
  Require(!document.empty() && document.back() == '\n', "the tree ends with a newline");
  RequireEqual(document.substr(0, document.find('\n')), ExpectedHeading(inventory), "the tree's heading");
  const auto lines = static_cast<std::size_t>(std::count(document.begin(), document.end(), '\n'));
  RequireCount(lines, kLinesAhead + ExpectedRows(inventory), "lines of the tree");
}

}  // namespace usbinfo_test
