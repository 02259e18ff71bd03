#include "store/ItemColumns.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "cli/model/DeviceText.h"
#include "cli/model/Identifier.h"
#include "cli/model/ObjectPath.h"
#include "cli/option/Values.h"
#include "cli/text/Text.h"
#include "store/ColumnText.h"

using schema::ClassId;
using schema::PropertyId;

namespace store {

namespace {

/// In the order of Names.
struct Columns {
  Text identifier;
  Text link;
  Text place;
  Text vendorId;
  Text productId;
  Text manufacturer;
  Text product;
  Text serial;
  Text words;
  Text kinds;
  Text revision;
  Text drivers;
  Text peer;
  Text connect;
  Text state;
  Decimal speed;
  Integer ports;
  Integer isRoot;

  Parameters AsParameters() const {
    return {identifier, link,     place,   vendorId, productId, manufacturer, product, serial, words,
            kinds,      revision, drivers, peer,     connect,   state,        speed,   ports,  isRoot};
  }
};

Text Optional(const std::optional<std::string>& text) {
  return text ? OptionalColumnText(*text) : Text();
}

Text Joined(const std::vector<std::string>& texts) {
  return OptionalColumnText(fmt::format("{}", fmt::join(texts, ",")));
}

/// Of the active interfaces, each once.
Text DriversOf(const cli::DeviceFacts& facts) {
  std::vector<std::string> drivers;
  for (const cli::InterfaceFacts& interface : facts.interfaces) {
    const bool isNew =
        interface.driver && std::find(drivers.begin(), drivers.end(), *interface.driver) == drivers.end();
    if (interface.isActive && isNew) drivers.push_back(*interface.driver);
  }
  return Joined(drivers);
}

/// The DeviceID in a reference.
Text IdentifierIn(const cli::Item& link, PropertyId property) {
  const auto path = cli::ParseObjectPath(link.String(property));
  return path ? OptionalColumnText(path->Key(PropertyId::kDeviceID)) : Text();
}

std::string WordsOf(const std::string& manufacturer, const std::string& product) {
  const char* const blank = manufacturer.empty() || product.empty() ? "" : " ";
  return cli::ToLower(manufacturer + blank + product);
}

void AddFacts(const cli::DeviceFacts& facts, Columns& columns) {
  columns.place = Optional(facts.name);
  columns.kinds = Joined(facts.kinds);
  columns.revision = Optional(facts.revision);
  columns.drivers = DriversOf(facts);
  columns.speed = facts.speed;
}

void AddHubOrDevice(const cli::Item& item, const cli::DeviceFacts* facts, Columns& columns) {
  const std::string manufacturer = cli::ManufacturerOf(item, facts);
  const std::string product = cli::ProductOf(item, facts);
  columns.vendorId = fmt::format("{:04x}", item.Number(PropertyId::kVendorID));
  columns.productId = fmt::format("{:04x}", item.Number(PropertyId::kUSBDeviceID));
  columns.manufacturer = OptionalColumnText(manufacturer);
  columns.product = OptionalColumnText(product);
  columns.serial = OptionalColumnText(cli::SerialOf(item, facts));
  columns.words = OptionalColumnText(WordsOf(manufacturer, product));
  if (facts != nullptr) AddFacts(*facts, columns);
}

void AddPort(const cli::Item& port, const cli::PortFacts* facts, cli::PortState state, Columns& columns) {
  constexpr double kMega = 1e6;
  columns.link = OptionalColumnText(cli::HubOf(port.String(PropertyId::kDeviceID)));
  if (port.Has(PropertyId::kSpeed))
    columns.speed = static_cast<double>(port.Number(PropertyId::kSpeed)) / kMega;
  if (state != cli::PortState::kUnknown) columns.state = state == cli::PortState::kUsed ? "used" : "free";
  if (facts == nullptr) return;
  columns.place = Optional(facts->name);
  columns.peer = Optional(facts->peer);
  columns.connect = Optional(facts->connect);
  if (facts->isUsed) columns.state = *facts->isUsed ? "used" : "free";
}

}  // namespace

const std::vector<std::string>& ItemColumns::Names() {
  static const std::vector<std::string> names = {
      "identifier", "link",    "place", "vendor_id", "product_id", "manufacturer",
      "product",    "serial",  "words", "kinds",     "revision",   "drivers",
      "peer",       "connect", "state", "speed",     "ports",      "is_root"};
  return names;
}

ItemColumns::ItemColumns(const cli::Inventory& inventory)
    : fInventory(inventory), fFacts(inventory), fTree(inventory) {
  for (const cli::UsbTreeNode& node : fTree.Nodes()) fNodes[node.item] = &node;
}

Parameters ItemColumns::Of(const cli::Item& item) const {
  Columns columns;
  columns.identifier = OptionalColumnText(item.String(PropertyId::kDeviceID));
  switch (item.Class()) {
    case ClassId::kController:
      columns.product = OptionalColumnText(cli::SentString(item, PropertyId::kDescription));
      break;
    case ClassId::kHub:
      columns.ports = static_cast<std::int64_t>(item.Number(PropertyId::kNumberOfPorts));
      columns.isRoot = fNodes.at(&item)->isRootHub ? 1 : 0;
      [[fallthrough]];
    case ClassId::kDevice:
      AddHubOrDevice(item, fFacts.OfDevice(item), columns);
      break;
    case ClassId::kPort:
      AddPort(item, fFacts.OfPort(item), fInventory.StateOf(item), columns);
      break;
    default:
      columns.identifier = IdentifierIn(item, PropertyId::kDependent);
      columns.link = IdentifierIn(item, PropertyId::kAntecedent);
      break;
  }
  return columns.AsParameters();
}

Parameters ItemColumns::None() {
  return Columns().AsParameters();
}

}  // namespace store
