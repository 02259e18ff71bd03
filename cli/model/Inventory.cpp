// The view over the host's instances; see the header.
#include "cli/model/Inventory.h"

#include <algorithm>

#include "standin/ValueView.h"

namespace cli {

const std::string& InstanceView::PathText() const {
  return standin::TextOf(Path());
}

const NKESTA20::TCIMValue* InstanceView::Find(const std::string& name) const {
  const auto found = Properties().find(name);
  return found == Properties().end() ? nullptr : &found->second->Value();
}

std::string InstanceView::Text(const std::string& name) const {
  const NKESTA20::TCIMValue* const value = Find(name);
  return value == nullptr ? std::string() : standin::TextOf(*value);
}

std::uint64_t InstanceView::Number(const std::string& name) const {
  const NKESTA20::TCIMValue* const value = Find(name);
  return value == nullptr ? 0 : standin::NumberOf(*value);
}

Inventory::Inventory(const standin::Host& host) : fSystemName(host.SystemName()) {
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    ClassView view{schema, {}};
    for (const auto& instance : host.Cimv2()->ClassForRequest(schema.name)->Instances()) {
      view.instances.emplace_back(instance);
    }
    view.total = view.instances.size();
    fClasses.push_back(std::move(view));
  }
}

const ClassView& Inventory::ClassOf(const std::string& className) const {
  return *std::find_if(fClasses.begin(), fClasses.end(),
                       [&className](const ClassView& view) { return view.schema.name == className; });
}

bool Inventory::IsEmpty() const {
  return std::all_of(fClasses.begin(), fClasses.end(),
                     [](const ClassView& view) { return view.instances.empty(); });
}

Inventory Inventory::Only(const std::function<bool(const InstanceView&)>& keep) const {
  Inventory part(*this);
  for (ClassView& view : part.fClasses) {
    auto& instances = view.instances;
    instances.erase(std::remove_if(instances.begin(), instances.end(), std::not_fn(keep)), instances.end());
  }
  return part;
}

}  // namespace cli
