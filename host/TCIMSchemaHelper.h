// The host's knowledge of the system that its objects describe, and the names for context arguments.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "host/HostApi.h"

namespace NKESTA20 {

class ICIMNamespace;

class USBINFO_HOST_API TCIMSchemaHelper {
 public:
  /// The name of the system; throws TQSVException when the host does not know it.
  static std::string GetSystemName(boost::shared_ptr<ICIMNamespace> ns);
  /// The class of the system's own instance; throws TQSVException when the host does not know it.
  static std::string GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns);

  /// Key and value of the one-entry context by which a plug-in reaches the classes it links.
  static const std::string kContextName;
  static const std::string kPluginNSPName;
};

}  // namespace NKESTA20
