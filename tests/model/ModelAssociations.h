// The model of the two association providers: what they read back from the modelled host, what they link, and
// which line each failing step writes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/model/ModelHost.h"

namespace usbinfo_test {

class ModelAssociations {
 public:
  explicit ModelAssociations(ModelHost& host) : fHost(host) {}

  std::vector<Properties> LinkPortsToHubs();
  /// The connections of devices, then those of hubs.
  std::vector<Properties> LinkDevicesToPorts();

 private:
  /// What a device or downstream hub and its port have in common.
  struct Place {
    unsigned short depth;
    std::string hubName;
    std::string portNumber;
  };

  void Status(const std::string& leadIn, const ModelHostError& error);
  bool Reads(const std::string& leadIn, const std::function<void()>& read);
  Properties Link(const ModelInstance& antecedent, const ModelInstance& dependent);
  void LinkPort(const ModelInstance& port, const std::vector<ModelInstancePointer>& hubs,
                std::vector<Properties>& links);
  void Connect(const std::string& dependentClass, std::vector<Properties>& links);
  void ConnectDependent(const ModelInstance& dependent, const Place& wanted,
                        const std::vector<ModelInstancePointer>& ports, std::vector<Properties>& links);
  Place ReadPlace(const ModelInstance& instance);
  void Mark(ModelInstance& port);

  ModelHost& fHost;
};

}  // namespace usbinfo_test
