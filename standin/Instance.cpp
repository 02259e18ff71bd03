// One instance; see the header.
#include "standin/Instance.h"

#include <boost/make_shared.hpp>
#include <utility>
#include <vector>

#include "standin/CimClass.h"
#include "standin/HostSeam.h"
#include "standin/StatusCode.h"
#include "standin/ValueView.h"

using NKESTA20::ICIMClass;
using NKESTA20::ICIMProperty;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;

namespace standin {

namespace {

boost::shared_ptr<CimClass> LockClass(const boost::weak_ptr<CimClass>& cls) {
  boost::shared_ptr<CimClass> locked = cls.lock();
  if (!locked) Throw(StatusCode::kFailed);
  return locked;
}

}  // namespace

Instance::Instance(const boost::shared_ptr<CimClass>& cls, const schema::ClassSchema& schema)
    : fClass(cls), fSchema(schema) {}

void Instance::Commit(PropertyMap) {
  HostSeam::Enter(HostOperation::kCommit, fSchema.name);
  LockClass(fClass)->Store(TextOf(Path()), shared_from_this());
  fCommitted = true;
}

TCIMReference Instance::GetObjectPath(PropertyMap) {
  HostSeam::Enter(HostOperation::kGetObjectPath, fSchema.name);
  return Path();
}

boost::shared_ptr<ICIMClass> Instance::GetClass(PropertyMap) {
  HostSeam::Enter(HostOperation::kGetInstanceClass, fSchema.name);
  return LockClass(fClass);
}

boost::shared_ptr<ICIMProperty> Instance::GetProperty(const std::string& name, PropertyMap) {
  HostSeam::Enter(HostOperation::kGetProperty, name);
  const auto found = fProperties.find(name);
  if (found == fProperties.end()) Throw(StatusCode::kNoSuchProperty);
  return found->second;
}

void Instance::SetProperty(const std::string& name, const TCIMValue& value, PropertyMap) {
  HostSeam::Enter(HostOperation::kSetProperty, name);
  const schema::PropertySchema* const schema = fSchema.FindProperty(name);
  if (schema == nullptr) Throw(StatusCode::kNoSuchProperty);
  if (TypeOf(value) != schema->type) Throw(StatusCode::kTypeMismatch);
  if (schema->isKey && fCommitted) Throw(StatusCode::kInvalidParameter);
  if (schema->isKey) fPath = TCIMReference();
  const auto found = fProperties.find(name);
  if (found == fProperties.end()) {
    fProperties.emplace(name, boost::make_shared<Property>(name, value));
  } else {
    found->second->SetValue(value);
  }
}

const TCIMReference& Instance::Path() {
  if (!TextOf(fPath).empty()) return fPath;
  std::vector<std::pair<std::string, TCIMValue>> keys;
  for (const schema::PropertySchema& schema : fSchema.properties) {
    if (!schema.isKey) continue;
    const auto found = fProperties.find(schema.name);
    if (found == fProperties.end()) Throw(StatusCode::kInvalidParameter);
    keys.emplace_back(schema.name, found->second->Value());
  }
  fPath = MakePath(fSchema.name, std::move(keys));
  return fPath;
}

}  // namespace standin
