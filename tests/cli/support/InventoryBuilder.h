// JSON inventories made by hand: a machine is put together from buses, hubs and devices, and comes out as the
// document that the command would print for it.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "cli/model/FromJson.h"

namespace usbinfo_test {

/// What distinguishes a hub or device from others.
struct Model {
  std::string name = "Item";
  /// "Not Available" and empty mean none.
  std::string serial = "Not Available";
  int vendor = 0x1234;
  int product = 0x5678;
};

/// An origin of which nothing is null or empty.
nlohmann::json OriginExample();
/// What the kernel may know of two devices and two ports; the first ones have nothing that is null or empty.
nlohmann::json KernelExample();

class InventoryBuilder {
 public:
  explicit InventoryBuilder(const std::string& system = "testhost");

  /// A controller with its root hub; gives the root hub's identifier.
  std::string AddBus(int bus, int ports, const std::string& serial = "Not Available");
  /// A hub with its ports; gives its identifier. `number` is the kernel's for it.
  std::string AddHub(const std::string& parent, int port, int number, int ports, const Model& model = {});
  std::string AddDevice(const std::string& parent, int port, int number, const Model& model = {});

  /// The last instance of a class, which may be changed.
  nlohmann::json& Last(const std::string& className) { return fDocument["classes"][className].back(); }
  /// The instance of a class with that DeviceID, likewise.
  nlohmann::json& Find(const std::string& className, const std::string& identifier);
  nlohmann::json& Document() { return fDocument; }

  std::string Text() const { return fDocument.dump(); }
  cli::Inventory Read() const { return cli::FromJson(Text(), "built"); }

 private:
  nlohmann::json& AddEntity(const std::string& className, const std::string& identifier);
  void AddModel(nlohmann::json& item, const std::string& identifier, const Model& model);
  void AddPorts(const std::string& hub, int count);
  void Connect(const std::string& parent, int port, const std::string& className,
               const std::string& identifier);
  std::string Path(const std::string& className, const std::string& identifier) const;

  nlohmann::json fDocument;
};

}  // namespace usbinfo_test
