// The plug-in over any text; see the header.
#include "tests/fuzz/PluginTarget.h"

#include "standin/ValueView.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/InventoryModel.h"
#include "tests/fuzz/ReadBack.h"
#include "tests/support/RecordedSystem.h"

namespace usbinfo_test {

namespace {

using NKESTA20::ILogger;

/// The records that the plug-in makes of `text`; an empty text counts as none.
ListModel Model(const std::string& text) {
  return ListModel(text.empty() ? std::string_view(" ") : std::string_view(text));
}

void CheckIdentifiers(const cli::Inventory& inventory, const char* className,
                      const std::vector<std::string>& expected) {
  const auto& instances = inventory.InstancesOf(className);
  RequireCount(instances.size(), expected.size(), className);
  for (std::size_t index = 0; index < expected.size(); ++index) {
    RequireEqual(instances[index].Text("DeviceID"), expected[index], className);
  }
}

/// The identifier of the instance that the reference called `name` leads to, "hub " ahead of a hub's.
std::string Target(const cli::InstanceView& link, const char* name) {
  const NKESTA20::TCIMReference& path = standin::ReferenceOf(*link.Find(name));
  for (const auto& [key, value] : standin::KeysOf(path)) {
    if (key == "DeviceID") return standin::TextOf(value);
  }
  throw BrokenInvariant("a reference has a DeviceID");
}

InventoryModel::Links LinksOf(const cli::Inventory& inventory, const char* className, bool marksHubs) {
  InventoryModel::Links links;
  for (const cli::InstanceView& link : inventory.InstancesOf(className)) {
    const auto& dependent = standin::ReferenceOf(*link.Find("Dependent"));
    const bool isHub = marksHubs && standin::ClassNameOf(dependent) == "KALDO_USBHub";
    links.emplace(Target(link, "Antecedent"), (isHub ? "hub " : "") + Target(link, "Dependent"));
  }
  RequireCount(links.size(), inventory.InstancesOf(className).size(), "distinct links");
  return links;
}

/// A port says whether something is plugged in.
void CheckPortStates(const cli::Inventory& inventory, const InventoryModel::Links& connections) {
  std::set<std::string> occupied;
  for (const auto& [port, dependent] : connections) occupied.insert(port);
  for (const cli::InstanceView& port : inventory.InstancesOf("KALDO_USBPort")) {
    const bool isOccupied = occupied.count(port.Text("DeviceID")) != 0;
    RequireEqual(port.Text("StatusDescriptions"), isOccupied ? "{Device connected}" : "{No device connected}",
                 "the state of a port");
  }
}

void CheckLogged(const std::vector<LoggedLine>& log, const std::vector<std::string>& unmatched) {
  std::vector<std::string> found;
  for (const auto& [severity, text] : log) {
    Require(severity >= ILogger::kStatus, "no error is logged");
    Require(text != "USBInfo plugin threw unknown exception", "no provider throws");
    const std::size_t end = text.find(" can't match the data");
    if (severity == ILogger::kStatus && end != std::string::npos) found.push_back(text.substr(0, end));
  }
  Require(found == unmatched, "the log tells of the unmatched lines, in order");
}

}  // namespace

std::size_t ItemsIn(const std::string& text) {
  const InventoryModel model(Model(text).Records());
  return model.Hubs().size() + model.Ports().size() + model.Devices().size();
}

void CheckInventory(const PluginRun& run, const std::string& text) {
  const ListModel list = Model(text);
  const InventoryModel expected(list.Records());
  const cli::Inventory& inventory = run.Result();
  CheckIdentifiers(inventory, "KALDO_USBController", expected.Controllers());
  CheckIdentifiers(inventory, "KALDO_USBHub", expected.Hubs());
  CheckIdentifiers(inventory, "KALDO_USBPort", expected.Ports());
  CheckIdentifiers(inventory, "KALDO_USBDevice", expected.Devices());
  Require(LinksOf(inventory, "KALDO_USBPortOnHub", false) == expected.PortsOnHubs(), "the ports on hubs");
  const auto connections = expected.Connections();
  Require(LinksOf(inventory, "KALDO_USBConnection", true) == connections, "what is plugged in where");
  CheckPortStates(inventory, connections);
  CheckLogged(run.Log(), text.empty() ? std::vector<std::string>() : list.Unmatched());
}

void CheckPlugin(const std::string& text, DistinctLines& known) {
  SetSystemHook([](const std::string&) { throw BrokenInvariant("a command was run"); });
  const PluginRun run(text);
  SetSystemHook(nullptr);
  CheckInventory(run, text);
  CheckEveryFormat(run.Result());
  DistinctLines fresh;
  for (const LoggedLine& line : run.Log()) {
    if (known.insert(line).second) fresh.insert(line);
  }
  CheckLog(fresh);
}

void CheckPlugin(const std::string& text) {
  DistinctLines known;
  CheckPlugin(text, known);
}

}  // namespace usbinfo_test
