#include "tests/cli/support/InventoryBuilder.h"

#include <fmt/format.h>

#include <stdexcept>

using nlohmann::json;

namespace usbinfo_test {

namespace {

constexpr const char* kHub = "KALDO_USBHub";
constexpr const char* kPort = "KALDO_USBPort";
constexpr const char* kDevice = "KALDO_USBDevice";

std::string PortIdentifier(const std::string& hub, int port) {
  return fmt::format("{} Port {:02}", hub, port);
}

/// A number on the same bus as `parent`.
std::string Sibling(const std::string& parent, int number) {
  return fmt::format("{} Device {:3}", parent.substr(0, parent.find(" Device ")), number);
}

/// The inside of a key's value, as object paths spell it.
std::string Escaped(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '"' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

}  // namespace

json OriginExample() {
  return json::parse(R"({
    "source": "sysfs", "collected": "2026-11-21T12:00:00Z", "program": "usbinfo 1.0.0", "machine": "c0ffee",
    "findings": [{"code": "two-t-lines", "lines": [17, 19], "device": "Bus 01  Device   9"}],
    "repairs": [{"code": "parent", "count": 3}], "masked": {"key": "36b7d9e49e324323"},
    "selection": {"classes": ["KALDO_USBHub"], "ids": ["1d6b:"], "places": ["1:3"]}})");
}

json KernelExample() {
  return json::parse(R"({
    "devices": [
      {"device": "Bus 01  Device   2", "name": "1-1", "number": 2, "speed": 1.5, "manufacturer": "Acme",
       "product": "Stick", "serial": "S1", "kinds": ["mass storage"],
       "interfaces": [{"configuration": 1, "number": 0, "setting": 0, "active": true, "class": "08",
                       "subclass": "06", "protocol": "50", "driver": "usb-storage"}],
       "maxPower": 500, "revision": "1.00", "nodes": ["/dev/bus/usb/001/002", "/dev/sda"]},
      {"device": "Bus 01  Device   1", "name": null, "number": 1, "speed": null, "manufacturer": null,
       "product": null, "serial": null, "kinds": [], "interfaces": [], "maxPower": null, "revision": null,
       "nodes": null}],
    "ports": [
      {"port": "Bus 01  Device   1 Port 00", "name": "1-1", "peer": "2-1", "connect": "hotplug", "state": "used"},
      {"port": "Bus 01  Device   1 Port 01", "name": null, "peer": null, "connect": null, "state": null}]})");
}

InventoryBuilder::InventoryBuilder(const std::string& system) {
  fDocument = {{"schema", "usbinfo.inventory/2"},
               {"system", {{"name", system}, {"creationClassName", "KALDO_ComputerSystem"}}},
               {"origin", nullptr},
               {"kernel", nullptr}};
  for (const char* name :
       {"KALDO_USBController", kHub, kPort, kDevice, "KALDO_USBPortOnHub", "KALDO_USBConnection"}) {
    fDocument["classes"][name] = json::array();
  }
}

std::string InventoryBuilder::AddBus(int bus, int ports, const std::string& serial) {
  std::string identifier = fmt::format("Bus {:02}  Device   1", bus);
  AddEntity("KALDO_USBController", identifier).update({{"Description", "Controller"}, {"InterfaceType", 1}});
  json& hub = AddEntity(kHub, identifier);
  AddModel(hub, identifier, {"Controller", serial, 0x1d6b, 2});
  hub.update({{"HubDepth", 0}, {"NumberOfPorts", ports}});
  AddPorts(identifier, ports);
  return identifier;
}

std::string InventoryBuilder::AddHub(const std::string& parent, int port, int number, int ports,
                                     const Model& model) {
  std::string identifier = Sibling(parent, number);
  json& hub = AddEntity(kHub, identifier);
  AddModel(hub, identifier, model);
  hub.update({{"NumberOfPorts", ports},
              {"HubDepth", Find(kHub, parent)["HubDepth"].get<int>() + 1},
              {"HubName", parent},
              {"PortNumber", PortIdentifier(parent, port)}});
  AddPorts(identifier, ports);
  Connect(parent, port, kHub, identifier);
  return identifier;
}

std::string InventoryBuilder::AddDevice(const std::string& parent, int port, int number, const Model& model) {
  std::string identifier = Sibling(parent, number);
  json& device = AddEntity(kDevice, identifier);
  AddModel(device, identifier, model);
  device.update({{"Speed", 2},
                 {"HubDepth", Find(kHub, parent)["HubDepth"]},
                 {"HubName", parent},
                 {"PortNumber", PortIdentifier(parent, port)}});
  Connect(parent, port, kDevice, identifier);
  return identifier;
}

json& InventoryBuilder::Find(const std::string& className, const std::string& identifier) {
  for (json& instance : fDocument["classes"][className]) {
    if (instance["DeviceID"] == identifier) return instance;
  }
  throw std::invalid_argument(className + " " + identifier);
}

json& InventoryBuilder::AddEntity(const std::string& className, const std::string& identifier) {
  json& list = fDocument["classes"][className];
  list.push_back({{"CreationClassName", className},
                  {"DeviceID", identifier},
                  {"SystemCreationClassName", "KALDO_ComputerSystem"},
                  {"SystemName", fDocument["system"]["name"]}});
  return list.back();
}

void InventoryBuilder::AddModel(json& item, const std::string& identifier, const Model& model) {
  item.update({{"Description", model.name},
               {"Name", identifier},
               {"USBVersion", 200},
               {"ClassCode", 0},
               {"SubclassCode", 0},
               {"ProtocolCode", 0},
               {"VendorID", model.vendor},
               {"USBDeviceID", model.product},
               {"Manufacturer", "Maker"},
               {"SerialNumber", model.serial},
               {"NumberOfConfigs", 1}});
}

void InventoryBuilder::AddPorts(const std::string& hub, int count) {
  for (int port = 0; port < count; ++port) {
    const std::string identifier = PortIdentifier(hub, port);
    AddEntity(kPort, identifier)
        .update({{"HubDepth", Find(kHub, hub)["HubDepth"]},
                 {"HubName", hub},
                 {"Name", identifier},
                 {"PortNumber", identifier},
                 {"Speed", 480000000},
                 {"StatusDescriptions", {"No device connected"}}});
    fDocument["classes"]["KALDO_USBPortOnHub"].push_back(
        {{"Antecedent", Path(kHub, hub)}, {"Dependent", Path(kPort, identifier)}});
  }
}

void InventoryBuilder::Connect(const std::string& parent, int port, const std::string& className,
                               const std::string& identifier) {
  const std::string portIdentifier = PortIdentifier(parent, port);
  Find(kPort, portIdentifier)["StatusDescriptions"] = {"Device connected"};
  fDocument["classes"]["KALDO_USBConnection"].push_back(
      {{"Antecedent", Path(kPort, portIdentifier)}, {"Dependent", Path(className, identifier)}});
}

std::string InventoryBuilder::Path(const std::string& className, const std::string& identifier) const {
  return fmt::format(
      "{0}.CreationClassName=\"{0}\",DeviceID=\"{1}\",SystemCreationClassName=\"KALDO_ComputerSystem\","
      "SystemName=\"{2}\"",
      className, Escaped(identifier), Escaped(fDocument["system"]["name"].get<std::string>()));
}

}  // namespace usbinfo_test
