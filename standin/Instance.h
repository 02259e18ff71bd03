// One instance of a class: its properties in one block in the schema's order, checked against the schema as
// they are set. Its class owns it once it is committed; until then its creator does.
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/ICIMInstance.h"
#include "standin/Export.h"

namespace schema {
struct ClassSchema;
}

namespace standin {

class CimClass;
class Property;

/// A property that has been set, within its instance.
struct NamedValue {
  const std::string& name;
  const NKESTA20::TCIMValue& value;
};

class USBINFO_STANDIN_EXPORT Instance : public NKESTA20::ICIMInstance,
                                        public boost::enable_shared_from_this<Instance> {
 public:
  /// `schema` must outlive the instance.
  USBINFO_STANDIN_LOCAL Instance(const boost::shared_ptr<CimClass>& cls, const schema::ClassSchema& schema);
  USBINFO_STANDIN_LOCAL ~Instance() override;

  /// Throws CIM_ERR_INVALID_PARAMETER while a key is missing. An instance of an equal path is replaced.
  void Commit(NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_INVALID_PARAMETER while a key is missing.
  NKESTA20::TCIMReference GetObjectPath(NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_FAILED once the class is gone.
  boost::shared_ptr<NKESTA20::ICIMClass> GetClass(NKESTA20::PropertyMap context) override;
  /// The property itself: it shows later changes and keeps the instance alive. Throws
  /// CIM_ERR_NO_SUCH_PROPERTY for a property that the instance lacks.
  boost::shared_ptr<NKESTA20::ICIMProperty> GetProperty(const std::string& name,
                                                        NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_NO_SUCH_PROPERTY for a property that the class lacks, CIM_ERR_TYPE_MISMATCH for a value
  /// of another type or null, and CIM_ERR_INVALID_PARAMETER for a changed key of a committed instance.
  void SetProperty(const std::string& name, const NKESTA20::TCIMValue& value,
                   NKESTA20::PropertyMap context) override;

  // Reading without calling the observer of HostSeam. What is returned is valid as long as the instance,
  // values until they are set again.

  const schema::ClassSchema& Schema() const { return fSchema; }
  /// The value of the property at `index` in the schema; null while it is not set.
  const NKESTA20::TCIMValue* ValueAt(std::size_t index) const;
  /// The value of the property of that name; null while it is not set, and where the class lacks it.
  const NKESTA20::TCIMValue* Find(std::string_view name) const;
  /// All properties that have been set, ascending by name.
  std::vector<NamedValue> Properties() const;
  /// Throws CIM_ERR_INVALID_PARAMETER while a key is missing.
  const NKESTA20::TCIMReference& Path();

 private:
  boost::weak_ptr<CimClass> fClass;
  const schema::ClassSchema& fSchema;
  /// One per property of the schema; null values are not set.
  std::vector<Property> fProperties;
  /// The path, made when it is first asked for; empty before and after a change of a key.
  NKESTA20::TCIMReference fPath;
  bool fCommitted = false;
};

}  // namespace standin
