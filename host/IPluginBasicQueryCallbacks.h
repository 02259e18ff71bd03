// How the host asks a plug-in for data.
#pragma once

#include <boost/shared_ptr.hpp>
#include <vector>

#include "host/HostApi.h"

namespace NKESTA20 {

class ICIMClass;
class ICIMNamespace;

class USBINFO_HOST_API IPluginBasicQueryCallbacks {
 public:
  virtual ~IPluginBasicQueryCallbacks() = default;
  /// Fills the wanted classes with instances, in the order given.
  virtual void GetData(boost::shared_ptr<ICIMNamespace> ns,
                       std::vector<boost::shared_ptr<ICIMClass>>& classes) = 0;
};

}  // namespace NKESTA20
