// The stand-in's plug-in manager: plug-ins register with it at load. As a namespace it has no classes.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "host/TPluginManagerNamespace.h"

namespace standin {

class PluginManager : public NKESTA20::TPluginManagerNamespace {
 public:
  /// Throws CIM_ERR_NOT_FOUND for every name.
  boost::shared_ptr<NKESTA20::ICIMClass> GetClass(const std::string& className,
                                                  NKESTA20::PropertyMap context) override;
};

}  // namespace standin
