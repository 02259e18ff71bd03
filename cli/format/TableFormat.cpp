#include "cli/format/TableFormat.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <set>
#include <unordered_map>

#include "cli/format/DeviceColumns.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/Description.h"
#include "cli/model/DeviceText.h"
#include "cli/model/Identifier.h"
#include "cli/model/ObjectPath.h"
#include "cli/model/Sockets.h"
#include "cli/model/Speed.h"
#include "cli/text/TextTable.h"

namespace cli {

namespace {

using Getter = std::function<std::string(const Item& item)>;

struct TableColumn {
  TextTable::Column column;
  Getter text;
};
using TableColumns = std::vector<TableColumn>;

constexpr PropertyId kOwn = PropertyId::kDeviceID;
constexpr PropertyId kAntecedent = PropertyId::kAntecedent;
constexpr PropertyId kDependent = PropertyId::kDependent;

/// An item's own identifier, or that of what a link leads to.
std::string Identifier(const Item& item, PropertyId property) {
  if (property == kOwn) return item.String(kOwn);
  const std::optional<ObjectPath> path = ParseObjectPath(item.String(property));
  return path ? path->Key(kOwn) : std::string();
}

/// NameOf has overloads, so its name alone does not select one.
std::string ItemName(const Item& item) {
  return NameOf(item);
}

/// A text that is cut shorter is of no use.
constexpr std::size_t kSmallestText = 16;

TableColumn Text(const char* title, Getter text, Importance importance = Importance::kIdentifier) {
  return {{title, TextTable::Kind::kLeft, importance, kSmallestText}, std::move(text)};
}

TableColumn Right(const char* title, Getter text, Importance importance = Importance::kIdentifier) {
  return {{title, TextTable::Kind::kRight, importance, kSmallestText}, std::move(text)};
}

TableColumn Bus(PropertyId property) {
  return Text("BUS", [property](const Item& item) { return std::string(BusOf(Identifier(item, property))); });
}

/// The number of a hub or device on its bus.
TableColumn Device(const char* title, PropertyId property) {
  return Right(title,
               [property](const Item& item) { return std::string(DeviceOf(Identifier(item, property))); });
}

/// The hub of a port: 2 in "Bus 01  Device   2 Port 00".
TableColumn HubOfPort(PropertyId property) {
  return Right("HUB", [property](const Item& item) {
    return std::string(DeviceOf(HubOf(Identifier(item, property))));
  });
}

TableColumn Port(PropertyId property) {
  return Text("PORT",
              [property](const Item& item) { return std::string(PortOf(Identifier(item, property))); });
}

TableColumn SentStringColumn(const char* title, Importance importance, PropertyId property) {
  return Text(
      title, [property](const Item& item) { return SentString(item, property); }, importance);
}

/// The columns that suit each class.
class ChosenColumns {
 public:
  ChosenColumns(const Inventory& inventory, const UsbIds* names) : fInventory(inventory), fNames(names) {
    for (const auto* const items : {&inventory.Hubs(), &inventory.Devices()}) {
      for (const Item& item : *items) fItemsByPath.emplace(item.Path(), &item);
    }
  }

  TableColumns Of(ClassId classId) const {
    switch (classId) {
      case ClassId::kController:
        return {Bus(kOwn), Text("CONTROLLER", ItemName, Importance::kMain)};
      case ClassId::kPort:
        return {Bus(kOwn), HubOfPort(kOwn), Port(kOwn), SpeedOfPort(), Status()};
      case ClassId::kPortOnHub:
        return {Bus(kAntecedent), Device("HUB", kAntecedent), Port(kDependent),
                Name("NAME OF THE HUB", kAntecedent)};
      case ClassId::kConnection:
        return {Bus(kAntecedent), HubOfPort(kAntecedent), Port(kAntecedent), Device("DEV", kDependent),
                Name("PLUGGED IN", kDependent)};
      default:
        return OfNamed(classId == ClassId::kHub ? Ports() : SpeedOfDevice());
    }
  }

 private:
  TableColumn Status() const {
    return Text(
        "STATUS", [this](const Item& port) { return std::string(NameOf(fInventory.StateOf(port))); },
        Importance::kMain);
  }
  static TableColumn SpeedOfPort() {
    return Right(
        "SPEED", [](const Item& port) { return FormatSpeed(port.Number(PropertyId::kSpeed)); },
        Importance::kUseful);
  }
  static TableColumn SpeedOfDevice() {
    return Right(
        "SPEED", [](const Item& item) { return FormatSpeedClass(item.Number(PropertyId::kSpeed)); },
        Importance::kUseful);
  }
  static TableColumn Ports() {
    return Right(
        "PORTS", [](const Item& hub) { return hub.Text(PropertyId::kNumberOfPorts); }, Importance::kUseful);
  }

  /// The columns of hubs and devices; `own` are those that only one of the classes has.
  TableColumns OfNamed(const TableColumn& own) const {
    TableColumns columns = {Bus(kOwn),
                            Device("DEV", kOwn),
                            Text("ID", FormatId),
                            own,
                            Text("PRODUCT", ItemName, Importance::kMain),
                            SentStringColumn("MAKER", Importance::kMinor, PropertyId::kManufacturer),
                            SentStringColumn("SERIAL", Importance::kIdentifier, PropertyId::kSerialNumber)};
    if (fNames != nullptr) {
      const auto knownAs = [names = fNames](const Item& item) { return KnownAs(item, names); };
      columns.push_back(Text("KNOWN AS", knownAs, Importance::kMinor));
    }
    return columns;
  }

  /// The name of what a link leads to.
  TableColumn Name(const char* title, PropertyId property) const {
    const auto name = [this, property](const Item& link) {
      const auto found = fItemsByPath.find(link.String(property));
      return found == fItemsByPath.end() ? std::string() : NameOf(*found->second);
    };
    return Text(title, name, Importance::kMain);
  }

  const Inventory& fInventory;
  const UsbIds* fNames;
  std::unordered_map<std::string, const Item*> fItemsByPath;
};

/// Whether the property distinguishes instances.
bool IsIdentifier(PropertyId property) {
  constexpr std::array<PropertyId, 6> kIdentifiers = {PropertyId::kAntecedent,  PropertyId::kDependent,
                                                      PropertyId::kDeviceID,    PropertyId::kSerialNumber,
                                                      PropertyId::kUSBDeviceID, PropertyId::kVendorID};
  return std::find(kIdentifiers.begin(), kIdentifiers.end(), property) != kIdentifiers.end();
}

/// The properties asked for that the class has.
TableColumns AskedColumns(const schema::ClassSchema& schema, const std::vector<std::string>& names) {
  TableColumns columns;
  for (const std::string& name : names) {
    const std::size_t index = schema.IndexOf(name);
    if (index == schema::ClassSchema::kNone) continue;
    const Importance importance =
        IsIdentifier(schema.properties[index].id) ? Importance::kIdentifier : Importance::kMain;
    columns.push_back(Text(
        name.c_str(), [index](const Item& item) { return TextOf(item.At(index)); }, importance));
  }
  return columns;
}

Tone ToneOf(const Inventory& inventory, const Item& item) {
  const bool isFree = item.Class() == ClassId::kPort && inventory.StateOf(item) == PortState::kFree;
  return isFree ? Tone::kFree : Tone::kPlain;
}

std::string Section(const Inventory& inventory, const ItemsOfClass& ofClass, const TableColumns& columns,
                    const Surface& surface) {
  TextTable table(surface);
  for (const TableColumn& column : columns) table.AddColumn(column.column);
  for (const Item& item : ofClass.items) {
    const TextTable::Row row = table.AddRow();
    for (std::size_t column = 0; column < columns.size(); ++column) {
      table.SetCell(row, column, columns[column].text(item));
    }
    table.SetTone(row, ToneOf(inventory, item));
  }
  const std::string heading = ofClass.schema->name + ": " + Count(ofClass.items.size(), "instance");
  return Toned(heading, surface.isColored ? Tone::kHeading : Tone::kPlain) + "\n" + table.Print();
}

std::string RenderClasses(const Inventory& inventory, const RenderOptions& options, const Surface& surface) {
  const ChosenColumns chosen(inventory, options.names);
  std::string text;
  for (const ItemsOfClass& ofClass : inventory.Classes()) {
    if (ofClass.items.empty()) continue;
    const TableColumns columns = options.columns.empty() ? chosen.Of(ofClass.schema->id)
                                                         : AskedColumns(*ofClass.schema, options.columns);
    if (columns.empty()) continue;
    text += (text.empty() ? "" : "\n") + Section(inventory, ofClass, columns, surface);
  }
  return text;
}

/// The columns asked for, else all.
std::vector<DeviceColumn> ColumnsOfDevices(const std::vector<std::string>& names) {
  if (names.empty()) return DeviceColumns();
  std::vector<DeviceColumn> columns;
  columns.reserve(names.size());
  for (const std::string& name : names) {
    columns.push_back(*std::find_if(DeviceColumns().begin(), DeviceColumns().end(),
                                    [&](const DeviceColumn& column) { return column.name == name; }));
  }
  return columns;
}

Tone ToneOf(const SocketNode& node) {
  if (node.Class() == ClassId::kPort) return Tone::kFree;
  return node.Class() == ClassId::kHub ? Tone::kHub : Tone::kPlain;
}

/// What the table says where a device says nothing.
std::string CellOf(const DeviceColumn& column, const Sockets& sockets, const SocketNode& node) {
  const std::string text = column.text(sockets, node);
  return text.empty() && column.name == "name" ? "(no name)" : text;
}

std::string RenderDevices(const Inventory& inventory, const RenderOptions& options, const Surface& surface) {
  const Sockets sockets(inventory);
  const std::vector<const SocketNode*> rows = DeviceRows(sockets, options);
  const std::vector<DeviceColumn> columns = ColumnsOfDevices(options.columns);
  const bool hasKnownAs = options.names != nullptr && options.columns.empty();
  TextTable table(surface);
  for (const DeviceColumn& column : columns) {
    table.AddColumn({column.title, column.isNumber ? TextTable::Kind::kRight : TextTable::Kind::kLeft,
                     column.importance, kSmallestText});
  }
  if (hasKnownAs) table.AddColumn(Text("KNOWN AS", nullptr, Importance::kMinor).column);
  for (const SocketNode* const node : rows) {
    const TextTable::Row row = table.AddRow();
    for (std::size_t column = 0; column < columns.size(); ++column) {
      table.SetCell(row, column, CellOf(columns[column], sockets, *node));
    }
    if (hasKnownAs && node->Class() != ClassId::kPort) {
      table.SetCell(row, columns.size(), KnownAs(node->GetItem(), options.names));
    }
    table.SetTone(row, ToneOf(*node));
  }
  return table.Print();
}

}  // namespace

std::string RenderTable(const Inventory& inventory, const RenderOptions& options) {
  const Surface surface = SurfaceOf(options.isStandardOutput, options.color);
  return options.showsClasses ? RenderClasses(inventory, options, surface)
                              : RenderDevices(inventory, options, surface);
}

std::vector<std::string> PropertyNames() {
  std::set<std::string> names;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    for (const schema::PropertySchema& property : schema.properties) names.insert(property.name);
  }
  return {names.begin(), names.end()};
}

}  // namespace cli
