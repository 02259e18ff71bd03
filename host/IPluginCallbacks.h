// What the host calls on a plug-in object over its life, in slot order.
#pragma once

#include <string>

#include "host/HostApi.h"

namespace NKESTA20 {

class USBINFO_HOST_API IPluginCallbacks {
 public:
  virtual ~IPluginCallbacks() = default;
  /// The plug-in's type code.
  virtual int GetType() = 0;
  virtual std::string GetName() = 0;
  virtual std::string GetVersion() = 0;
  virtual std::string GetInterfaceVersion() = 0;
  /// The last call: the plug-in object deletes itself.
  virtual void PrepareForUnload() = 0;
  virtual void Init() = 0;
  virtual void DeInit() = 0;
};

}  // namespace NKESTA20
