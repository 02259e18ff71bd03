// One CIM instance. The plug-in fills and commits new ones and reads committed ones back; all failures are
// thrown as TQSVException.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "host/HostApi.h"
#include "host/PropertyMap.h"
#include "host/TCIMReference.h"

namespace NKESTA20 {

class ICIMClass;
class ICIMProperty;

class USBINFO_HOST_API ICIMInstance {
 public:
  virtual ~ICIMInstance() = default;
  /// Makes the instance part of the host's data.
  virtual void Commit(PropertyMap context) = 0;
  virtual TCIMReference GetObjectPath(PropertyMap context) = 0;
  virtual boost::shared_ptr<ICIMClass> GetClass(PropertyMap context) = 0;
  /// The named property; the host decides what happens when the instance lacks it.
  virtual boost::shared_ptr<ICIMProperty> GetProperty(const std::string& name, PropertyMap context) = 0;
  virtual void SetProperty(const std::string& name, const TCIMValue& value, PropertyMap context) = 0;
};

}  // namespace NKESTA20
