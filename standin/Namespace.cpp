// The namespace; see the header.
#include "standin/Namespace.h"

#include <boost/make_shared.hpp>

#include "schema/ClassSchema.h"
#include "standin/HostSeam.h"
#include "standin/StatusCode.h"

using NKESTA20::ICIMClass;
using NKESTA20::PropertyMap;

namespace standin {

boost::shared_ptr<Namespace> Namespace::Make() {
  auto ns = boost::make_shared<Namespace>();
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    ns->fClasses.emplace(schema.name, boost::make_shared<CimClass>(ns, schema.name));
  }
  return ns;
}

boost::shared_ptr<ICIMClass> Namespace::GetClass(const std::string& className, PropertyMap) {
  HostSeam::Enter(HostOperation::kGetClass, className);
  const auto found = fClasses.find(className);
  if (found == fClasses.end()) Throw(StatusCode::kNotFound);
  return found->second;
}

boost::shared_ptr<CimClass> Namespace::ClassForRequest(const std::string& className) {
  const auto found = fClasses.find(className);
  if (found != fClasses.end()) return found->second;
  return boost::make_shared<CimClass>(shared_from_this(), className);
}

}  // namespace standin
