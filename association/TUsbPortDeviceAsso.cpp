#include "association/TUsbPortDeviceAsso.h"

#include "host/TQSVException.h"
#include "plugin/Vocabulary.h"
#include "provider/PropertyInsertion.h"
#include "provider/ValueConversion.h"

using NKESTA20::ICIMClass;
using NKESTA20::ICIMInstance;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMValue;
using NKESTA20::TPluginManagerProvider;
using NKESTA20::TQSVException;

TUsbPortDeviceAsso::TUsbPortDeviceAsso(boost::shared_ptr<ICIMClass> cimClass) : TUsb(cimClass) {}

TUsbPortDeviceAsso::TUsbPortDeviceAsso(boost::shared_ptr<ICIMClass> cimClass,
                                       TPluginManagerProvider* provider)
    : TUsb(cimClass, provider) {}

TUsbPortDeviceAsso::~TUsbPortDeviceAsso() = default;

bool TUsbPortDeviceAsso::Place::operator==(const Place& other) const {
  return depth == other.depth && hubName == other.hubName && portNumber == other.portNumber;
}

bool TUsbPortDeviceAsso::GetCIMInstances(std::string className) {
  WriteDebug("Entering TUsbPortDeviceAsso::GetCIMInstances routine");
  std::vector<PropertyMap> links = MakePortAssociation(kClassUsbDevice);
  {
    const std::vector<PropertyMap> hubLinks = MakePortAssociation(kClassUsbHub);
    links.insert(links.end(), hubLinks.begin(), hubLinks.end());
  }
  const bool generated = GenerateInstances(
      links, className,
      "USB Port-Device Association encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for ");
  WriteDebug("Exiting TUsbPortDeviceAsso::GetCIMInstances routine");
  return generated;
}

std::vector<PropertyMap> TUsbPortDeviceAsso::MakePortAssociation(std::string dependentClassName) {
  WriteDebug("Begin: TUsbPortDeviceAsso::MakePortAssociation routine");
  std::vector<PropertyMap> links;
  InstanceList ports;
  InstanceList dependents;
  if (!FindInstances(dependentClassName, ports, dependents)) return links;
  const bool areHubs = dependentClassName == kClassUsbHub;
  for (int index = 0; index < CountOf(dependents); ++index) {
    const auto dependent = InstanceAt(dependents, index);
    Place wanted;
    if (ReadDependentPlace(dependent, areHubs, wanted)) ConnectToPort(dependent, wanted, ports, links);
  }
  WriteDebug("End: TUsbPortDeviceAsso::MakePortAssociation routine");
  return links;
}

TCIMValue TUsbPortDeviceAsso::GetStrCimValue(std::vector<std::string> texts) {
  return MakeStringArrayValue(texts);
}

bool TUsbPortDeviceAsso::FindInstances(const std::string& dependentClassName, InstanceList& ports,
                                       InstanceList& dependents) {
  const PropertyMap context = MakeClassContext();
  try {
    const auto ns = GetCIMClass()->GetNamespace(PropertyMap());
    EnumerateInstances(ns, kClassUsbPort, context, ports);
    EnumerateInstances(ns, dependentClassName, context, dependents);
  } catch (TQSVException& error) {
    WriteStatus(
        "KALDO_USBConnection association encountered an error\t\t\t\t\t\t\tenumerating CIM instances for " +
        kClassUsbPort + " OR " + dependentClassName +
        " Error Code: " + dataToString<const char*>(error.what()));
    return false;
  }
  return true;
}

bool TUsbPortDeviceAsso::ReadDependentPlace(const boost::shared_ptr<ICIMInstance>& dependent, bool isHub,
                                            Place& place) {
  try {
    place.depth = ReadNumber(dependent, kHubDepth);
    if (isHub) {
      // A root hub is not plugged into a port. Any other hub has its own level, one more than that of its
      // port.
      if (place.depth == 0) return false;
      --place.depth;
    }
    place.hubName = ReadText(dependent, kHubName);
    place.portNumber = ReadText(dependent, kPortNumber);
  } catch (TQSVException& error) {
    WriteStatus(
        "KALDO_USBConnection association encountered an error\t\t\t\t\t\twhen collecting dependent "
        "properties. Error Code: " +
        dataToString<const char*>(error.what()));
    return false;
  }
  return true;
}

bool TUsbPortDeviceAsso::ReadPortPlace(const boost::shared_ptr<ICIMInstance>& port, Place& place) {
  try {
    place.depth = ReadNumber(port, kHubDepth);
    place.hubName = ReadText(port, kHubName);
    place.portNumber = ReadText(port, kPortNumber);
  } catch (TQSVException& error) {
    WriteStatus(
        "KALDO_USBConnection association encountered an error\t\t\t\t\t\t\twhen collecting antecedent "
        "properties. Error Code: " +
        dataToString<const char*>(error.what()));
    return false;
  }
  return true;
}

void TUsbPortDeviceAsso::ConnectToPort(const boost::shared_ptr<ICIMInstance>& dependent, const Place& wanted,
                                       const InstanceList& ports, std::vector<PropertyMap>& links) {
  for (int index = 0; index < CountOf(ports); ++index) {
    const auto port = InstanceAt(ports, index);
    Place place;
    if (!ReadPortPlace(port, place) || !(place == wanted)) continue;
    links.push_back(MakeLink(port, dependent));
    MarkOccupied(port);
    return;
  }
}

void TUsbPortDeviceAsso::MarkOccupied(const boost::shared_ptr<ICIMInstance>& port) {
  const TCIMValue occupied = GetStrCimValue({kDeviceConnected});
  try {
    port->SetProperty(kStatusDescriptions, occupied, PropertyMap());
  } catch (TQSVException&) {
    WriteStatus("Could not change Status Description property");
  }
}
