// The host's root: the way to its process-wide objects.
#pragma once

#include <boost/shared_ptr.hpp>

#include "host/HostApi.h"

namespace NKESTA20 {

class ICIMNamespace;
class ILogger;

class USBINFO_HOST_API TRootObject {
 public:
  /// The core logger, never null.
  static ILogger* GetCoreLogger();
  /// The plug-in manager, in its namespace view; may be null or, in a host without one, another namespace.
  static boost::shared_ptr<ICIMNamespace> GetPluginManager();
};

}  // namespace NKESTA20
