#include "cli/model/FromHost.h"

#include <algorithm>

#include "standin/Host.h"
#include "standin/Instance.h"
#include "standin/ValueView.h"

using NKESTA20::TCIMValue;
using Type = TCIMValue::TCIMType;

namespace cli {

namespace {

Value ReadValue(const TCIMValue& value) {
  switch (standin::TypeOf(value)) {
    case Type::kUint8:
    case Type::kUint16:
    case Type::kUint64:
      return standin::NumberOf(value);
    case Type::kStringArray:
      return standin::StringsOf(value);
    case Type::kReference:
      return Reference{standin::TextOf(standin::ReferenceOf(value))};
    case Type::kString:
      return standin::StringOf(value);
    default:
      return {};
  }
}

Item ReadItem(ClassId classId, const standin::Instance& instance) {
  Item item(classId);
  for (std::size_t index = 0; index < item.Schema().properties.size(); ++index) {
    const TCIMValue* const value = instance.ValueAt(index);
    if (value != nullptr) item.SetAt(index, ReadValue(*value));
  }
  return item;
}

/// True when the last request for connections comes after the requests for the classes that it links, and no
/// later request recreates the ports.
bool AsksForConnections(const std::vector<std::string>& requested) {
  const auto nameOf = [](ClassId classId) { return schema::ClassOf(classId).name; };
  const auto last = std::find(requested.rbegin(), requested.rend(), nameOf(ClassId::kConnection));
  if (last == requested.rend()) return false;
  const auto end = last.base();
  const auto comesBefore = [&](ClassId classId) {
    return std::find(requested.begin(), end, nameOf(classId)) != end;
  };
  const bool arePortsMadeAnew = std::find(end, requested.end(), nameOf(ClassId::kPort)) != requested.end();
  return comesBefore(ClassId::kHub) && comesBefore(ClassId::kPort) && comesBefore(ClassId::kDevice) &&
         !arePortsMadeAnew;
}

}  // namespace

Inventory FromHost(const standin::Host& host, const std::vector<std::string>& requested) {
  Inventory inventory(host.SystemName());
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    for (const auto& instance : host.Cimv2()->ClassForRequest(schema.name)->Instances()) {
      inventory.Add(ReadItem(schema.id, *instance));
    }
  }
  inventory.SetKnowsConnections(AsksForConnections(requested));
  return inventory;
}

}  // namespace cli
