// The host's view of a plug-in's right to log: providers hold a pointer to it and stay silent when it is
// null.
#pragma once

#include "host/HostApi.h"

namespace NKESTA20 {

class USBINFO_HOST_API TPluginManagerProvider {
 public:
  virtual ~TPluginManagerProvider() = default;
};

}  // namespace NKESTA20
