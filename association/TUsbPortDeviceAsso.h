// The provider of KALDO_USBConnection: links each device or downstream hub that the host holds to the port
// it is plugged into, and marks that port as occupied. It works on the host's instances alone, so ports,
// devices and hubs must have been committed before.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "association/HostInstances.h"
#include "provider/TUsb.h"

class TUsbPortDeviceAsso : public TUsb {
 public:
  explicit TUsbPortDeviceAsso(boost::shared_ptr<NKESTA20::ICIMClass> cimClass);
  TUsbPortDeviceAsso(boost::shared_ptr<NKESTA20::ICIMClass> cimClass,
                     NKESTA20::TPluginManagerProvider* provider);
  ~TUsbPortDeviceAsso() override;

  using TUsb::GetCIMInstances;
  /// Makes an association per connection, devices before hubs; true if at least one was made.
  bool GetCIMInstances(std::string className) override;

  /// The connections of the instances of `dependentClassName`, in their order: at most one each, to the first
  /// port of the same depth, hub name and port number. Marks each port that it links. Empty, with a status
  /// line, when the host does not supply the instances.
  std::vector<NKESTA20::PropertyMap> MakePortAssociation(std::string dependentClassName);

  /// An array-of-strings value holding `texts` in order.
  NKESTA20::TCIMValue GetStrCimValue(std::vector<std::string> texts);

 private:
  /// Where something is plugged in: properties that a port and what is plugged into it have in common.
  struct Place {
    unsigned short depth = 0;
    std::string hubName;
    std::string portNumber;

    bool operator==(const Place& other) const;
  };

  bool FindInstances(const std::string& dependentClassName, InstanceList& ports, InstanceList& dependents);
  bool ReadDependentPlace(const boost::shared_ptr<NKESTA20::ICIMInstance>& dependent, bool isHub,
                          Place& place);
  bool ReadPortPlace(const boost::shared_ptr<NKESTA20::ICIMInstance>& port, Place& place);
  void ConnectToPort(const boost::shared_ptr<NKESTA20::ICIMInstance>& dependent, const Place& wanted,
                     const InstanceList& ports, std::vector<NKESTA20::PropertyMap>& links);
  void MarkOccupied(const boost::shared_ptr<NKESTA20::ICIMInstance>& port);
};
