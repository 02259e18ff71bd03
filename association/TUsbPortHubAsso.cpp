#include "association/TUsbPortHubAsso.h"

#include "host/TQSVException.h"
#include "plugin/Vocabulary.h"
#include "provider/ValueConversion.h"

using NKESTA20::ICIMClass;
using NKESTA20::ICIMInstance;
using NKESTA20::PropertyMap;
using NKESTA20::TPluginManagerProvider;
using NKESTA20::TQSVException;

TUsbPortHubAsso::TUsbPortHubAsso(boost::shared_ptr<ICIMClass> cimClass) : TUsb(cimClass) {}

TUsbPortHubAsso::TUsbPortHubAsso(boost::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* provider)
    : TUsb(cimClass, provider) {}

TUsbPortHubAsso::~TUsbPortHubAsso() = default;

bool TUsbPortHubAsso::GetCIMInstances(std::string className) {
  WriteDebug("Entering TUsbPortHubAsso::GetCIMInstances routine");
  const bool generated = GenerateInstances(
      MakePortHubAssociation(), className,
      "USB Port-Hub Association encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for ");
  WriteDebug("Exiting TUsbPortHubAsso::GetCIMInstances routine");
  return generated;
}

std::vector<PropertyMap> TUsbPortHubAsso::MakePortHubAssociation() {
  std::vector<PropertyMap> links;
  InstanceList hubs;
  InstanceList ports;
  if (!FindInstances(hubs, ports)) return links;
  for (int index = 0; index < CountOf(ports); ++index) LinkPort(InstanceAt(ports, index), hubs, links);
  return links;
}

bool TUsbPortHubAsso::FindInstances(InstanceList& hubs, InstanceList& ports) {
  const PropertyMap context = MakeClassContext();
  try {
    const auto ns = GetCIMClass()->GetNamespace(PropertyMap());
    EnumerateInstances(ns, kClassUsbHub, context, hubs);
    EnumerateInstances(ns, kClassUsbPort, context, ports);
  } catch (TQSVException& error) {
    WriteStatus("Port-Hub association encountered an error\t\t\t\t\t\t\tenumerating CIM instances for " +
                kClassUsbController + " OR " + kClassUsbHub +
                " Error Code: " + dataToString<const char*>(error.what()));
    return false;
  }
  return true;
}

void TUsbPortHubAsso::LinkPort(const boost::shared_ptr<ICIMInstance>& port, const InstanceList& hubs,
                               std::vector<PropertyMap>& links) {
  unsigned short portDepth = 0;
  std::string portHubName;
  try {
    portDepth = ReadNumber(port, kHubDepth);
    portHubName = ReadText(port, kHubName);
  } catch (TQSVException& error) {
    WriteStatus(
        "Port-Hub association encountered an error\t\t\t\t\t\twhen collecting dependent properties. "
        "Error Code: " +
        dataToString<const char*>(error.what()));
    return;
  }
  for (int index = 0; index < CountOf(hubs); ++index) {
    const auto hub = InstanceAt(hubs, index);
    unsigned short hubDepth = 0;
    std::string hubName;
    try {
      hubDepth = ReadNumber(hub, kHubDepth);
      hubName = ReadText(hub, kName);
    } catch (TQSVException& error) {
      WriteStatus(
          "Port-Hub association encountered an error\t\t\t\t\t\t\twhen collecting antecedent properties. "
          "Error Code: " +
          dataToString<const char*>(error.what()));
      continue;
    }
    if (hubDepth != portDepth || hubName != portHubName) continue;
    links.push_back(MakeLink(hub, port));
    return;
  }
}
