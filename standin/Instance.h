// One instance of a class: its properties by name, held against the schema as they are set. The class owns
// it once it is committed; until then whoever created it does.
#pragma once

#include <boost/enable_shared_from_this.hpp>
#include <boost/shared_ptr.hpp>
#include <boost/weak_ptr.hpp>
#include <map>
#include <string>

#include "host/ICIMInstance.h"
#include "schema/ClassSchema.h"
#include "standin/Property.h"

namespace standin {

class CimClass;

class Instance : public NKESTA20::ICIMInstance, public boost::enable_shared_from_this<Instance> {
 public:
  using Properties = std::map<std::string, boost::shared_ptr<Property>>;

  /// `schema` must outlive the instance.
  Instance(const boost::shared_ptr<CimClass>& cls, const schema::ClassSchema& schema);

  /// Throws CIM_ERR_INVALID_PARAMETER while a key is missing. An instance of an equal path is replaced.
  void Commit(NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_INVALID_PARAMETER while a key is missing.
  NKESTA20::TCIMReference GetObjectPath(NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_FAILED once the class is gone.
  boost::shared_ptr<NKESTA20::ICIMClass> GetClass(NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_NO_SUCH_PROPERTY for a property that the instance lacks.
  boost::shared_ptr<NKESTA20::ICIMProperty> GetProperty(const std::string& name,
                                                        NKESTA20::PropertyMap context) override;
  /// Throws CIM_ERR_NO_SUCH_PROPERTY for a property that the class lacks, CIM_ERR_TYPE_MISMATCH for a value
  /// of another type or null, and CIM_ERR_INVALID_PARAMETER for a changed key of a committed instance.
  void SetProperty(const std::string& name, const NKESTA20::TCIMValue& value,
                   NKESTA20::PropertyMap context) override;

  /// The same, without passing the seam.
  const Properties& AllProperties() const { return fProperties; }
  const NKESTA20::TCIMReference& Path();

 private:
  boost::weak_ptr<CimClass> fClass;
  const schema::ClassSchema& fSchema;
  Properties fProperties;
  /// The path, made when it is first asked for; empty before and after a change of a key.
  NKESTA20::TCIMReference fPath;
  bool fCommitted = false;
};

}  // namespace standin
