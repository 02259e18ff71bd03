// What the host must hold after a request for all classes, worked out from the second reading of the list:
// every instance by its identifier, and what is linked with what. Properties beyond those are the formats'
// and the derived expectations' business.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/model/ListModel.h"

namespace usbinfo_test {

/// A number as formatted extraction reads it: blanks, a sign, digits; the type's highest when it does not
/// fit.
std::uint16_t ReadShort(std::string_view text);

class InventoryModel {
 public:
  using Links = std::set<std::pair<std::string, std::string>>;

  explicit InventoryModel(const std::vector<ModelRecord>& records);

  /// Identifiers in the order of their first entry; entries of one identifier are one instance.
  const std::vector<std::string>& Controllers() const { return fControllers.order; }
  const std::vector<std::string>& Hubs() const { return fHubs.order; }
  const std::vector<std::string>& Ports() const { return fPorts.order; }
  const std::vector<std::string>& Devices() const { return fDevices.order; }
  /// Hub and port, by identifier.
  Links PortsOnHubs() const;
  /// Port and what is plugged in, by identifier; a hub's is preceded by "hub ".
  Links Connections() const;

 private:
  /// Where an entry sits: its depth, its hub and its port on it; no hub for what hangs on none.
  struct Place {
    std::uint16_t depth = 0;
    std::string hub;
    std::string port;
  };
  struct Entries {
    std::vector<std::string> order;
    std::map<std::string, Place> places;

    void Add(const std::string& identifier, const Place& place);
  };

  void AddHub(const ModelRecord& record, const std::string& identifier, Place place);
  void Connect(const Entries& dependents, const std::string& prefix, Links& links) const;

  Entries fControllers;
  Entries fHubs;
  Entries fPorts;
  Entries fDevices;
};

}  // namespace usbinfo_test
