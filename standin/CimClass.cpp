// One class; see the header.
#include "standin/CimClass.h"

#include <boost/make_shared.hpp>

#include "standin/HostSeam.h"
#include "standin/Namespace.h"
#include "standin/StatusCode.h"

using NKESTA20::ICIMInstance;
using NKESTA20::ICIMNamespace;
using NKESTA20::PropertyMap;

namespace standin {

CimClass::CimClass(const boost::shared_ptr<Namespace>& ns, const std::string& name)
    : fNamespace(ns), fName(name), fSchema(schema::FindClass(name)) {}

const std::string& CimClass::GetClassName(PropertyMap) {
  HostSeam::Enter(HostOperation::kGetClassName, fName);
  return fName;
}

boost::shared_ptr<ICIMNamespace> CimClass::GetNamespace(PropertyMap) {
  HostSeam::Enter(HostOperation::kGetClassNamespace, fName);
  const boost::shared_ptr<Namespace> ns = fNamespace.lock();
  if (!ns) Throw(StatusCode::kFailed);
  return ns;
}

boost::shared_ptr<ICIMInstance> CimClass::CreateInstance(PropertyMap) {
  HostSeam::Enter(HostOperation::kCreateInstance, fName);
  if (fSchema == nullptr) Throw(StatusCode::kInvalidClass);
  return boost::make_shared<Instance>(shared_from_this(), *fSchema);
}

void CimClass::EnumerateInstances(InstanceCallback callback, int flags, PropertyMap) {
  HostSeam::Enter(HostOperation::kEnumerateInstances, fName);
  if (flags != 0) Throw(StatusCode::kInvalidParameter);
  const std::size_t count = fInstances.size();
  for (std::size_t index = 0; index < count; ++index) {
    const boost::shared_ptr<Instance> instance = fInstances[index];
    if (!callback(instance)) return;
  }
}

void CimClass::Store(const std::string& path, const boost::shared_ptr<Instance>& instance) {
  const auto [place, isNew] = fIndexByPath.emplace(path, fInstances.size());
  if (!isNew) {
    fInstances[place->second] = instance;
    return;
  }
  try {
    fInstances.push_back(instance);
  } catch (...) {
    fIndexByPath.erase(place);
    throw;
  }
}

}  // namespace standin
