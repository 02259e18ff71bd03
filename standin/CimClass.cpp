#include "standin/CimClass.h"

#include <boost/make_shared.hpp>
#include <utility>

#include "schema/ClassSchema.h"
#include "standin/HostEntry.h"
#include "standin/Namespace.h"
#include "standin/StatusCode.h"
#include "standin/ValueView.h"

using NKESTA20::ICIMInstance;
using NKESTA20::ICIMNamespace;
using NKESTA20::PropertyMap;

namespace standin {

CimClass::CimClass(const boost::shared_ptr<Namespace>& ns, const std::string& name)
    : fNamespace(ns), fName(name), fSchema(schema::FindClass(name)) {}

const std::string& CimClass::GetClassName(PropertyMap) {
  HostEntry::Pass(HostOperation::kGetClassName, fName);
  return fName;
}

boost::shared_ptr<ICIMNamespace> CimClass::GetNamespace(PropertyMap) {
  HostEntry::Pass(HostOperation::kGetClassNamespace, fName);
  const boost::shared_ptr<Namespace> ns = fNamespace.lock();
  if (!ns) Throw(StatusCode::kFailed);
  return ns;
}

boost::shared_ptr<ICIMInstance> CimClass::CreateInstance(PropertyMap) {
  HostEntry::Pass(HostOperation::kCreateInstance, fName);
  if (fSchema == nullptr) Throw(StatusCode::kInvalidClass);
  return boost::make_shared<Instance>(shared_from_this(), *fSchema);
}

void CimClass::EnumerateInstances(InstanceCallback callback, int flags, PropertyMap) {
  HostEntry::Pass(HostOperation::kEnumerateInstances, fName);
  if (flags != 0) Throw(StatusCode::kInvalidParameter);
  const std::size_t count = fInstances.size();
  for (std::size_t index = 0; index < count; ++index) {
    const boost::shared_ptr<Instance> instance = fInstances[index];
    if (!callback(instance)) return;
  }
}

void CimClass::Store(const boost::shared_ptr<Instance>& instance) {
  const std::string_view path = TextOf(instance->Path());
  const auto found = fIndexByPath.find(path);
  if (found == fIndexByPath.end()) {
    Append(path, instance);
    return;
  }
  // The instance that is replaced takes the text of its path with it.
  auto entry = fIndexByPath.extract(found);
  entry.key() = path;
  fInstances[entry.mapped()] = instance;
  fIndexByPath.insert(std::move(entry));
}

void CimClass::Append(std::string_view path, const boost::shared_ptr<Instance>& instance) {
  fInstances.push_back(instance);
  try {
    fIndexByPath.emplace(path, fInstances.size() - 1);
  } catch (...) {
    fInstances.pop_back();
    throw;
  }
}

}  // namespace standin
