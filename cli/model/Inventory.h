// A read-only view of what the host holds after a plug-in has served it: the six classes, their instances and
// properties. Every output format reads this and nothing else. It shares the host's instances and stays valid
// after the plug-in is unloaded.
#pragma once

#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "schema/ClassSchema.h"
#include "standin/Host.h"
#include "standin/Instance.h"

namespace cli {

/// One committed instance.
class InstanceView {
 public:
  explicit InstanceView(const boost::shared_ptr<standin::Instance>& instance) : fInstance(instance) {}

  /// The object path, as a reference and as text.
  const NKESTA20::TCIMReference& Path() const { return fInstance->Path(); }
  const std::string& PathText() const;
  /// Name to property, ascending by name.
  const standin::Instance::Properties& Properties() const { return fInstance->AllProperties(); }

  /// The value of that name; null when the instance lacks it.
  const NKESTA20::TCIMValue* Find(const std::string& name) const;
  /// The value as text; empty when the instance lacks it.
  std::string Text(const std::string& name) const;
  /// The number of that name; 0 when the instance lacks it.
  std::uint64_t Number(const std::string& name) const;

 private:
  boost::shared_ptr<standin::Instance> fInstance;
};

/// One class with its instances in enumeration order.
struct ClassView {
  const schema::ClassSchema& schema;
  std::vector<InstanceView> instances;
  /// How many instances the host has, whatever part of them is viewed.
  std::size_t total = 0;
};

class Inventory {
 public:
  /// What `host` holds now.
  explicit Inventory(const standin::Host& host);

  const std::string& SystemName() const { return fSystemName; }
  /// All six classes, in the order in which a host asks for them.
  const std::vector<ClassView>& Classes() const { return fClasses; }
  /// A class of the schema, and its instances.
  const ClassView& ClassOf(const std::string& className) const;
  const std::vector<InstanceView>& InstancesOf(const std::string& className) const {
    return ClassOf(className).instances;
  }
  /// True when no class has an instance.
  bool IsEmpty() const;
  /// The part whose instances `keep` is true for, in the same order; the totals stay.
  Inventory Only(const std::function<bool(const InstanceView&)>& keep) const;

 private:
  std::string fSystemName;
  std::vector<ClassView> fClasses;
};

}  // namespace cli
