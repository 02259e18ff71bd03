// One CIM class: it names itself, makes new instances and enumerates the committed ones. The host passes the
// plug-in the classes to fill.
#pragma once

#include <boost/function.hpp>
#include <boost/shared_ptr.hpp>
#include <string>

#include "host/HostApi.h"
#include "host/PropertyMap.h"

namespace NKESTA20 {

class ICIMInstance;
class ICIMNamespace;

class USBINFO_HOST_API ICIMClass {
 public:
  /// Called with each instance in turn; false ends the enumeration.
  using InstanceCallback = boost::function<bool(boost::shared_ptr<ICIMInstance>)>;

  virtual ~ICIMClass() = default;
  virtual const std::string& GetClassName(PropertyMap context) = 0;
  /// The namespace that the class belongs to.
  virtual boost::shared_ptr<ICIMNamespace> GetNamespace(PropertyMap context) = 0;
  /// A new, empty instance of this class, not yet committed.
  virtual boost::shared_ptr<ICIMInstance> CreateInstance(PropertyMap context) = 0;
  /// Calls `callback` once per existing instance; `flags` is 0.
  virtual void EnumerateInstances(InstanceCallback callback, int flags, PropertyMap context) = 0;
};

}  // namespace NKESTA20
