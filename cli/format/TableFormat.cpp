// Tables for people; see the header.
#include "cli/format/TableFormat.h"

#include <fmt/format.h>

#include <functional>
#include <set>
#include <unordered_map>

#include "cli/model/Wording.h"
#include "cli/text/TextTable.h"
#include "standin/ValueView.h"

namespace cli {

namespace {

using Getter = std::function<std::string(const InstanceView& item)>;

struct TableColumn {
  TextTable::Column column;
  Getter text;
};
using TableColumns = std::vector<TableColumn>;

constexpr const char* kOwn = "DeviceID";
constexpr const char* kAntecedent = "Antecedent";
constexpr const char* kDependent = "Dependent";

/// An item's own identifier, or that of what an association leads to; empty when it leads nowhere.
std::string Identifier(const InstanceView& item, const char* property) {
  const NKESTA20::TCIMValue* const value = item.Find(property);
  if (value == nullptr || standin::TypeOf(*value) != NKESTA20::TCIMValue::TCIMType::kReference) {
    return item.Text(property);
  }
  for (const auto& [name, key] : standin::KeysOf(standin::ReferenceOf(*value))) {
    if (name == kOwn) return standin::TextOf(key);
  }
  return std::string();
}

TableColumn Text(const char* title, Getter text) {
  return {{title, TextTable::Kind::kText, 0}, std::move(text)};
}

TableColumn Right(const char* title, Getter text) {
  return {{title, TextTable::Kind::kRight, 0}, std::move(text)};
}

/// Keeps `share` of the terminal's width where that is scarce.
TableColumn Cut(const std::string& title, double share, Getter text) {
  return {{title, TextTable::Kind::kCut, share}, std::move(text)};
}

TableColumn Bus(const char* property) {
  return Text("BUS", [property](const InstanceView& item) { return BusOf(Identifier(item, property)); });
}

/// The number of a hub or device on its bus.
TableColumn Device(const char* title, const char* property) {
  return Right(
      title, [property](const InstanceView& item) { return Behind(Identifier(item, property), " Device "); });
}

/// The hub of a port: 2 in "Bus 01  Device   2 Port 00".
TableColumn HubOfPort(const char* property) {
  return Right("HUB", [property](const InstanceView& item) {
    const std::string port = Identifier(item, property);
    return Behind(port.substr(0, port.rfind(" Port ")), " Device ");
  });
}

TableColumn Port(const char* property) {
  return Text("PORT",
              [property](const InstanceView& item) { return Behind(Identifier(item, property), " Port "); });
}

TableColumn GivenString(const char* title, double share, const char* property) {
  return Cut(title, share, [property](const InstanceView& item) { return Given(item, property); });
}

/// The columns that suit each class.
class ChosenColumns {
 public:
  ChosenColumns(const Inventory& inventory, const UsbIds* names) : fNames(names) {
    for (const char* name : {"KALDO_USBHub", "KALDO_USBDevice"}) {
      for (const InstanceView& item : inventory.InstancesOf(name)) fNamed.emplace(item.PathText(), &item);
    }
  }

  TableColumns Of(const std::string& className) const {
    if (className == "KALDO_USBController") return {Bus(kOwn), Cut("CONTROLLER", 0.5, NameOf)};
    if (className == "KALDO_USBPort")
      return {Bus(kOwn), HubOfPort(kOwn), Port(kOwn), SpeedOfPort(), Status()};
    if (className == "KALDO_USBPortOnHub") {
      return {Bus(kAntecedent), Device("HUB", kAntecedent), Port(kDependent),
              Name("NAME OF THE HUB", kAntecedent)};
    }
    if (className == "KALDO_USBConnection") {
      return {Bus(kAntecedent), HubOfPort(kAntecedent), Port(kAntecedent), Device("DEV", kDependent),
              Name("PLUGGED IN", kDependent)};
    }
    return OfNamed(className == "KALDO_USBHub" ? Ports() : SpeedOfDevice());
  }

 private:
  static TableColumn Status() { return Text("STATUS", StateOf); }
  static TableColumn SpeedOfPort() {
    return Right("SPEED", [](const InstanceView& port) { return FormatSpeed(port.Number("Speed")); });
  }
  static TableColumn SpeedOfDevice() {
    return Right("SPEED", [](const InstanceView& item) { return FormatSpeedClass(item.Number("Speed")); });
  }
  static TableColumn Ports() {
    return Right("PORTS", [](const InstanceView& hub) { return hub.Text("NumberOfPorts"); });
  }

  /// Of hubs and devices, which have names; `own` is what only one of the classes has.
  TableColumns OfNamed(const TableColumn& own) const {
    TableColumns columns = {Bus(kOwn),
                            Device("DEV", kOwn),
                            Text("ID", FormatId),
                            own,
                            Cut("PRODUCT", 0.2, NameOf),
                            GivenString("MAKER", 0.05, "Manufacturer"),
                            GivenString("SERIAL", 0.2, "SerialNumber")};
    if (fNames != nullptr) {
      const auto knownAs = [names = fNames](const InstanceView& item) { return KnownAs(item, names); };
      columns.push_back(Cut("KNOWN AS", 0.1, knownAs));
    }
    return columns;
  }

  /// The name of what an association leads to.
  TableColumn Name(const char* title, const char* property) const {
    return Cut(title, 0.5, [this, property](const InstanceView& association) {
      const auto found = fNamed.find(association.Text(property));
      return found == fNamed.end() ? std::string() : NameOf(*found->second);
    });
  }

  const UsbIds* fNames;
  std::unordered_map<std::string, const InstanceView*> fNamed;
};

/// The properties asked for that the class has.
TableColumns AskedColumns(const schema::ClassSchema& schema, const std::vector<std::string>& names) {
  TableColumns columns;
  for (const std::string& name : names) {
    if (schema.FindProperty(name) == nullptr) continue;
    columns.push_back(Cut(name, 0.1, [name](const InstanceView& item) { return item.Text(name); }));
  }
  return columns;
}

Tone ToneOf(const ClassView& view, const InstanceView& item) {
  return view.schema.name == "KALDO_USBPort" && IsFree(item) ? Tone::kFree : Tone::kPlain;
}

std::string Section(const ClassView& view, const TableColumns& columns, const RenderOptions& options) {
  TextTable table(options);
  for (const TableColumn& column : columns) table.AddColumn(column.column);
  for (const InstanceView& item : view.instances) {
    const TextTable::Row row = table.AddRow();
    for (std::size_t column = 0; column < columns.size(); ++column) {
      table.SetCell(row, column, columns[column].text(item));
    }
    table.SetTone(row, ToneOf(view, item));
  }
  const std::string heading = view.schema.name + ": " + Count(view.instances.size(), "instance");
  const bool isColored = UsesColor(options.color, options.isStandardOutput);
  return Toned(heading, isColored ? Tone::kHeading : Tone::kPlain) + "\n" + table.Print();
}

}  // namespace

std::string RenderTable(const Inventory& inventory, const RenderOptions& options) {
  const ChosenColumns chosen(inventory, TextTable(options).HasRoomForNames() ? options.names : nullptr);
  std::string text;
  for (const ClassView& view : inventory.Classes()) {
    if (view.instances.empty()) continue;
    const TableColumns columns =
        options.columns.empty() ? chosen.Of(view.schema.name) : AskedColumns(view.schema, options.columns);
    if (columns.empty()) continue;
    text += (text.empty() ? "" : "\n") + Section(view, columns, options);
  }
  return text;
}

std::vector<std::string> TableColumnNames() {
  std::set<std::string> names;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    for (const schema::PropertySchema& property : schema.properties) names.insert(property.name);
  }
  return {names.begin(), names.end()};
}

}  // namespace cli
