#include "tests/model/ModelAssociations.h"

using standin::HostOperation;

namespace usbinfo_test {

void ModelAssociations::Status(const std::string& leadIn, const ModelHostError& error) {
  fHost.Log(kStatus, leadIn + " Error Code: " + fHost.What(error));
}

/// Runs a guarded step; false, with its line written, when the host failed it.
bool ModelAssociations::Reads(const std::string& leadIn, const std::function<void()>& read) {
  try {
    read();
    return true;
  } catch (ModelHostError& error) {
    Status(leadIn, error);
    return false;
  }
}

Properties ModelAssociations::Link(const ModelInstance& antecedent, const ModelInstance& dependent) {
  Properties link;
  fHost.InsertReference(link, "Antecedent", antecedent);
  fHost.InsertReference(link, "Dependent", dependent);
  return link;
}

std::vector<Properties> ModelAssociations::LinkPortsToHubs() {
  std::vector<Properties> links;
  std::vector<ModelInstancePointer> hubs;
  std::vector<ModelInstancePointer> ports;
  fHost.MakeText("PluginNamespace");
  const bool isFound = Reads(
      "Port-Hub association encountered an error\t\t\t\t\t\t\tenumerating CIM instances for "
      "KALDO_USBController OR KALDO_USBHub",
      [&] {
        fHost.Call(HostOperation::kGetClassNamespace, "KALDO_USBPortOnHub");
        hubs = fHost.Enumerate("KALDO_USBHub");
        ports = fHost.Enumerate("KALDO_USBPort");
      });
  if (!isFound) return links;
  for (const ModelInstancePointer& port : ports) LinkPort(*port, hubs, links);
  return links;
}

void ModelAssociations::LinkPort(const ModelInstance& port, const std::vector<ModelInstancePointer>& hubs,
                                 std::vector<Properties>& links) {
  unsigned short portDepth = 0;
  std::string hubName;
  const bool isPortRead = Reads(
      "Port-Hub association encountered an error\t\t\t\t\t\twhen collecting dependent properties.", [&] {
        portDepth = fHost.ReadNumber(port, "HubDepth");
        hubName = fHost.ReadText(port, "HubName");
      });
  if (!isPortRead) return;
  for (const ModelInstancePointer& hub : hubs) {
    bool isMatch = false;
    Reads("Port-Hub association encountered an error\t\t\t\t\t\t\twhen collecting antecedent properties.",
          [&] {
            const unsigned short depth = fHost.ReadNumber(*hub, "HubDepth");
            const std::string name = fHost.ReadText(*hub, "Name");
            isMatch = depth == portDepth && name == hubName;
          });
    if (!isMatch) continue;
    const Properties link = Link(*hub, port);
    fHost.OwnStep();
    links.push_back(link);
    return;
  }
}

std::vector<Properties> ModelAssociations::LinkDevicesToPorts() {
  std::vector<Properties> links;
  Connect("KALDO_USBDevice", links);
  Connect("KALDO_USBHub", links);
  return links;
}

void ModelAssociations::Connect(const std::string& dependentClass, std::vector<Properties>& links) {
  fHost.Log(kDebug, "Begin: TUsbPortDeviceAsso::MakePortAssociation routine");
  std::vector<ModelInstancePointer> ports;
  std::vector<ModelInstancePointer> dependents;
  fHost.MakeText("PluginNamespace");
  const std::string leadIn =
      "KALDO_USBConnection association encountered an error\t\t\t\t\t\t\tenumerating CIM instances for "
      "KALDO_USBPort OR " +
      dependentClass;
  const bool isFound = Reads(leadIn, [&] {
    fHost.Call(HostOperation::kGetClassNamespace, "KALDO_USBConnection");
    ports = fHost.Enumerate("KALDO_USBPort");
    dependents = fHost.Enumerate(dependentClass);
  });
  if (!isFound) return;
  for (const ModelInstancePointer& dependent : dependents) {
    Place wanted{};
    bool isWanted = false;
    Reads(
        "KALDO_USBConnection association encountered an error\t\t\t\t\t\twhen collecting dependent "
        "properties.",
        [&] {
          wanted.depth = fHost.ReadNumber(*dependent, "HubDepth");
          if (dependentClass == "KALDO_USBHub" && wanted.depth-- == 0) return;
          wanted.hubName = fHost.ReadText(*dependent, "HubName");
          wanted.portNumber = fHost.ReadText(*dependent, "PortNumber");
          isWanted = true;
        });
    if (isWanted) ConnectDependent(*dependent, wanted, ports, links);
  }
  fHost.Log(kDebug, "End: TUsbPortDeviceAsso::MakePortAssociation routine");
}

ModelAssociations::Place ModelAssociations::ReadPlace(const ModelInstance& instance) {
  const unsigned short depth = fHost.ReadNumber(instance, "HubDepth");
  const std::string hubName = fHost.ReadText(instance, "HubName");
  return {depth, hubName, fHost.ReadText(instance, "PortNumber")};
}

void ModelAssociations::ConnectDependent(const ModelInstance& dependent, const Place& wanted,
                                         const std::vector<ModelInstancePointer>& ports,
                                         std::vector<Properties>& links) {
  for (const ModelInstancePointer& port : ports) {
    bool isMatch = false;
    Reads(
        "KALDO_USBConnection association encountered an error\t\t\t\t\t\t\twhen collecting antecedent "
        "properties.",
        [&] {
          const Place place = ReadPlace(*port);
          isMatch = place.depth == wanted.depth && place.hubName == wanted.hubName &&
                    place.portNumber == wanted.portNumber;
        });
    if (!isMatch) continue;
    const Properties link = Link(*port, dependent);
    fHost.OwnStep();
    links.push_back(link);
    Mark(*port);
    return;
  }
}

void ModelAssociations::Mark(ModelInstance& port) {
  const std::string connected = fHost.MakeTextArray("Device connected");
  try {
    fHost.Call(HostOperation::kSetProperty, "StatusDescriptions");
    port.properties["StatusDescriptions"] = connected;
  } catch (ModelHostError&) {
    fHost.Log(kStatus, "Could not change Status Description property");
  }
}

}  // namespace usbinfo_test
