// What the tests of the connection association share: ports, devices and hubs by their place, and the log's
// fixed lines.
#pragma once

#include <string>
#include <vector>

#include "association/TUsbPortDeviceAsso.h"
#include "tests/association/AssociationTest.h"

namespace usbinfo_test {

class PortDeviceTest : public AssociationTest {
 protected:
  static constexpr const char* kAssociation = "KALDO_USBConnection";
  const LogLine kEntering = Debug("Entering TUsbPortDeviceAsso::GetCIMInstances routine");
  const LogLine kExiting = Debug("Exiting TUsbPortDeviceAsso::GetCIMInstances routine");
  const LogLine kBegin = Debug("Begin: TUsbPortDeviceAsso::MakePortAssociation routine");
  const LogLine kEnd = Debug("End: TUsbPortDeviceAsso::MakePortAssociation routine");

  static PropertyMap Place(unsigned short depth, const std::string& hubName, const std::string& portNumber) {
    return {
        {"HubDepth", Number(depth)}, {"HubName", TCIMValue(hubName)}, {"PortNumber", TCIMValue(portNumber)}};
  }

  std::string CommitDevice(const std::string& deviceId, unsigned short depth, const std::string& hubName,
                           const std::string& portNumber) {
    return Commit("KALDO_USBDevice", deviceId, Place(depth, hubName, portNumber));
  }

  std::string CommitHub(const std::string& deviceId, unsigned short depth, const std::string& hubName,
                        const std::string& portNumber) {
    return Commit("KALDO_USBHub", deviceId, Place(depth, hubName, portNumber));
  }

  /// A port that nothing is plugged into yet.
  std::string CommitPort(const std::string& deviceId, unsigned short depth, const std::string& hubName,
                         const std::string& portNumber) {
    PropertyMap properties = Place(depth, hubName, portNumber);
    properties.emplace("StatusDescriptions", provider.GetStrCimValue({"No device connected"}));
    return Commit("KALDO_USBPort", deviceId, properties);
  }

  Links MakeLinks(const std::string& dependentClassName) {
    return DescribeAll(provider.MakePortAssociation(dependentClassName));
  }

  /// The status of the port with that device identifier.
  Typed StatusOf(const std::string& deviceId) {
    for (const Properties& port : Committed("KALDO_USBPort")) {
      if (port.at("DeviceID") == Text(deviceId)) return port.at("StatusDescriptions");
    }
    ADD_FAILURE() << "no port " << deviceId;
    return Text("");
  }

  static Log Concatenated(const std::vector<Log>& parts) {
    Log whole;
    for (const Log& part : parts) whole.insert(whole.end(), part.begin(), part.end());
    return whole;
  }

  TUsbPortDeviceAsso provider{ClassNamed(kAssociation), &handle};
};

}  // namespace usbinfo_test
