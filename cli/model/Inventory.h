// The USB inventory of one machine, as a plain value: the six classes and their items. Two readers fill it;
// formats, selection and comparison use nothing else.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/model/Item.h"
#include "cli/model/KernelFacts.h"
#include "cli/model/Origin.h"
#include "cli/model/SocketCounts.h"
#include "schema/ClassSchema.h"

namespace cli {

/// The items of one class, in the order in which the host enumerates them.
struct ItemsOfClass {
  const schema::ClassSchema* schema;
  std::vector<Item> items;
  /// How many items the class had before a selection.
  std::size_t total = 0;
};

enum class PortState { kUnknown, kFree, kUsed };

class Inventory {
 public:
  explicit Inventory(std::string systemName);

  const std::string& SystemName() const { return fSystemName; }

  /// All six classes, in the order of the schema.
  const std::vector<ItemsOfClass>& Classes() const { return fClasses; }
  const ItemsOfClass& Of(ClassId classId) const { return fClasses[static_cast<std::size_t>(classId)]; }

  const std::vector<Item>& Controllers() const { return Of(ClassId::kController).items; }
  const std::vector<Item>& Hubs() const { return Of(ClassId::kHub).items; }
  const std::vector<Item>& Ports() const { return Of(ClassId::kPort).items; }
  const std::vector<Item>& Devices() const { return Of(ClassId::kDevice).items; }
  /// The links from hubs to their ports.
  const std::vector<Item>& PortsOnHubs() const { return Of(ClassId::kPortOnHub).items; }
  /// The links from ports to what is plugged into them.
  const std::vector<Item>& Connections() const { return Of(ClassId::kConnection).items; }

  /// Adds an item after the others of its class.
  void Add(Item item);

  /// True when no class has an item.
  bool IsEmpty() const;
  /// True when a selection has left items out.
  bool IsPartial() const;
  /// How many nodes the picture of the whole inventory has; nothing where that is not known of a part.
  const std::optional<SocketCounts>& CountsBeforeSelection() const { return fCountsBeforeSelection; }
  void SetCountsBeforeSelection(SocketCounts counts) { fCountsBeforeSelection = counts; }

  /// The part whose items `keep` is true for, in the same order, and what the kernel knows of these; the
  /// totals, the counts and the origin stay.
  Inventory Only(const std::function<bool(const Item&)>& keep) const;

  /// Whether a port without a reported device is known to be free, because the connections were collected.
  bool KnowsConnections() const { return fKnowsConnections; }
  void SetKnowsConnections(bool isKnown) { fKnowsConnections = isKnown; }
  PortState StateOf(const Item& port) const;

  /// Where it comes from; nothing for a saved inventory that does not say.
  const std::optional<Origin>& GetOrigin() const { return fOrigin; }
  void SetOrigin(Origin origin) { fOrigin = std::move(origin); }
  /// What the kernel knows besides; nothing for a saved inventory without it.
  const std::optional<KernelFacts>& Kernel() const { return fKernel; }
  void SetKernel(KernelFacts facts) { fKernel = std::move(facts); }

  /// The text that it was collected from, whole; nothing for a saved inventory.
  const std::optional<std::string>& DeviceList() const { return fDeviceList; }
  void SetDeviceList(std::string text) { fDeviceList = std::move(text); }

 private:
  std::string fSystemName;
  std::optional<std::string> fDeviceList;
  std::optional<Origin> fOrigin;
  std::optional<KernelFacts> fKernel;
  std::optional<SocketCounts> fCountsBeforeSelection;
  std::vector<ItemsOfClass> fClasses;
  bool fKnowsConnections = true;
};

}  // namespace cli
