// A CIM namespace of the host: the way to a class by its name.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "host/HostApi.h"
#include "host/PropertyMap.h"

namespace NKESTA20 {

class ICIMClass;

class USBINFO_HOST_API ICIMNamespace {
 public:
  virtual ~ICIMNamespace() = default;
  virtual boost::shared_ptr<ICIMClass> GetClass(const std::string& className, PropertyMap context) = 0;
};

}  // namespace NKESTA20
