// One class of the namespace and its committed instances. A class that the schema lacks can be requested too,
// since a host may ask a plug-in for any class; it refuses to make instances. The namespace owns it.
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/ICIMClass.h"
#include "standin/Export.h"
#include "standin/Instance.h"

namespace schema {
struct ClassSchema;
}

namespace standin {

class Namespace;

class USBINFO_STANDIN_EXPORT CimClass : public NKESTA20::ICIMClass,
                                        public boost::enable_shared_from_this<CimClass> {
 public:
  USBINFO_STANDIN_LOCAL CimClass(const boost::shared_ptr<Namespace>& ns, const std::string& name);

  const std::string& GetClassName(NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_FAILED once the namespace is gone.
  boost::shared_ptr<NKESTA20::ICIMNamespace> GetNamespace(NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_INVALID_CLASS for a class that the schema lacks.
  boost::shared_ptr<NKESTA20::ICIMInstance> CreateInstance(NKESTA20::PropertyMap context) override;
  /// In commit order; throws CIM_ERR_INVALID_PARAMETER for flags other than 0. Instances that the callback
  /// commits are not visited.
  void EnumerateInstances(InstanceCallback callback, int flags, NKESTA20::PropertyMap context) override;

  /// Stores a committed instance under its path; it replaces one of the same path.
  USBINFO_STANDIN_LOCAL void Store(const boost::shared_ptr<Instance>& instance);

  /// The same, without calling the observer of HostSeam.
  const std::string& Name() const { return fName; }
  const std::vector<boost::shared_ptr<Instance>>& Instances() const { return fInstances; }

 private:
  USBINFO_STANDIN_LOCAL void Append(std::string_view path, const boost::shared_ptr<Instance>& instance);

  boost::weak_ptr<Namespace> fNamespace;
  std::string fName;
  const schema::ClassSchema* fSchema;
  std::vector<boost::shared_ptr<Instance>> fInstances;
  /// By the path texts of the instances themselves, which no longer change.
  std::unordered_map<std::string_view, std::size_t> fIndexByPath;
};

}  // namespace standin
