#include "standin/Instance.h"

#include <utility>
#include <vector>

#include "schema/ClassSchema.h"
#include "standin/CimClass.h"
#include "standin/HostEntry.h"
#include "standin/Property.h"
#include "standin/StatusCode.h"
#include "standin/ValueView.h"

using NKESTA20::ICIMClass;
using NKESTA20::ICIMProperty;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using schema::ClassSchema;

namespace standin {

namespace {

/// As many as logical devices have.
constexpr std::size_t kUsualKeys = 4;

boost::shared_ptr<CimClass> LockClass(const boost::weak_ptr<CimClass>& cls) {
  boost::shared_ptr<CimClass> locked = cls.lock();
  if (!locked) Throw(StatusCode::kFailed);
  return locked;
}

}  // namespace

Instance::Instance(const boost::shared_ptr<CimClass>& cls, const schema::ClassSchema& schema)
    : fClass(cls), fSchema(schema) {
  fProperties.reserve(schema.properties.size());
  for (const schema::PropertySchema& property : schema.properties) fProperties.emplace_back(property.name);
}

Instance::~Instance() = default;

void Instance::Commit(PropertyMap) {
  HostEntry::Pass(HostOperation::kCommit, fSchema.name);
  LockClass(fClass)->Store(shared_from_this());
  fCommitted = true;
}

TCIMReference Instance::GetObjectPath(PropertyMap) {
  HostEntry::Pass(HostOperation::kGetObjectPath, fSchema.name);
  return Path();
}

boost::shared_ptr<ICIMClass> Instance::GetClass(PropertyMap) {
  HostEntry::Pass(HostOperation::kGetInstanceClass, fSchema.name);
  return LockClass(fClass);
}

boost::shared_ptr<ICIMProperty> Instance::GetProperty(const std::string& name, PropertyMap) {
  HostEntry::Pass(HostOperation::kGetProperty, name);
  const std::size_t index = fSchema.IndexOf(name);
  if (index == ClassSchema::kNone || !fProperties[index].IsSet()) Throw(StatusCode::kNoSuchProperty);
  return {shared_from_this(), &fProperties[index]};
}

void Instance::SetProperty(const std::string& name, const TCIMValue& value, PropertyMap) {
  HostEntry::Pass(HostOperation::kSetProperty, name);
  const std::size_t index = fSchema.IndexOf(name);
  if (index == ClassSchema::kNone) Throw(StatusCode::kNoSuchProperty);
  const schema::PropertySchema& schema = fSchema.properties[index];
  if (TypeOf(value) != schema.type) Throw(StatusCode::kTypeMismatch);
  if (schema.isKey && fCommitted) Throw(StatusCode::kInvalidParameter);
  if (schema.isKey) fPath = TCIMReference();
  fProperties[index].SetValue(value);
}

const TCIMValue* Instance::ValueAt(std::size_t index) const {
  const Property& property = fProperties.at(index);
  return property.IsSet() ? &property.Value() : nullptr;
}

const TCIMValue* Instance::Find(std::string_view name) const {
  const std::size_t index = fSchema.IndexOf(name);
  return index == ClassSchema::kNone ? nullptr : ValueAt(index);
}

std::vector<NamedValue> Instance::Properties() const {
  std::vector<NamedValue> properties;
  properties.reserve(fProperties.size());
  for (const Property& property : fProperties) {
    if (property.IsSet()) properties.push_back({property.Name(), property.Value()});
  }
  return properties;
}

const TCIMReference& Instance::Path() {
  if (!TextOf(fPath).empty()) return fPath;
  std::vector<std::pair<std::string, TCIMValue>> keys;
  keys.reserve(kUsualKeys);
  for (std::size_t index = 0; index < fProperties.size(); ++index) {
    if (!fSchema.properties[index].isKey) continue;
    if (!fProperties[index].IsSet()) Throw(StatusCode::kInvalidParameter);
    keys.emplace_back(fProperties[index].Name(), fProperties[index].Value());
  }
  fPath = MakePath(fSchema.name, std::move(keys));
  return fPath;
}

}  // namespace standin
