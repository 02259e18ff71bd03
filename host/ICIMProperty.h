// One named property of one instance, as the host returns it.
#pragma once

#include <string>

#include "host/HostApi.h"
#include "host/PropertyMap.h"

namespace NKESTA20 {

class USBINFO_HOST_API ICIMProperty {
 public:
  virtual ~ICIMProperty() = default;
  /// The value; the reference stays valid as long as the property.
  virtual const TCIMValue& GetValue(PropertyMap context) = 0;
  /// The value rendered as text by the host.
  virtual std::string GetValueAsText() = 0;
};

}  // namespace NKESTA20
