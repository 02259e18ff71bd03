// The namespace root/cimv2: the six classes and all that is committed. The host owns it.
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <map>
#include <string>

#include "host/ICIMNamespace.h"
#include "standin/CimClass.h"
#include "standin/Export.h"

namespace standin {

class USBINFO_STANDIN_EXPORT Namespace : public NKESTA20::ICIMNamespace,
                                         public boost::enable_shared_from_this<Namespace> {
 public:
  static constexpr const char* kName = "root/cimv2";

  /// A namespace with the classes of the schema and no instances.
  USBINFO_STANDIN_LOCAL static boost::shared_ptr<Namespace> Make();

  /// Throws CIM_ERR_NOT_FOUND for a class that the schema lacks.
  boost::shared_ptr<NKESTA20::ICIMClass> GetClass(const std::string& className,
                                                  NKESTA20::PropertyMap context) override;

  /// The class of that name, without calling the observer of HostSeam; for a name that the schema lacks, a
  /// class that makes no instances.
  boost::shared_ptr<CimClass> ClassForRequest(const std::string& className);

 private:
  std::map<std::string, boost::shared_ptr<CimClass>> fClasses;
};

}  // namespace standin
