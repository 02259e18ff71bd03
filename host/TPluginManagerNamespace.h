// The host's plug-in manager: a namespace that records plug-ins, and the provider view that they log through.
#pragma once

#include "host/HostApi.h"
#include "host/ICIMNamespace.h"
#include "host/TPluginManagerProvider.h"

namespace NKESTA20 {

class IPluginCallbacks;

class USBINFO_HOST_API TPluginManagerNamespace : public ICIMNamespace, public TPluginManagerProvider {
 public:
  /// Records the plug-in object. Not virtual: plug-ins call it through a null pointer too, where a host that
  /// has no manager records nothing.
  void RegisterPlugin(IPluginCallbacks* plugin);
};

}  // namespace NKESTA20
