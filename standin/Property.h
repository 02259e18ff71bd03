// One property of one instance, which owns it and returns shared pointers to it. Setting the property again
// changes the value in place, so earlier pointers see the new one.
#pragma once

#include <string>

#include "host/ICIMProperty.h"
#include "standin/HostData.h"

namespace standin {

class Property : public NKESTA20::ICIMProperty {
 public:
  /// Not set; `name` must outlive the property.
  explicit Property(const std::string& name) : fName(name) {}

  const NKESTA20::TCIMValue& GetValue(NKESTA20::PropertyMap context) override;
  std::string GetValueAsText() override;

  // The same, without calling the observer of HostSeam.

  const std::string& Name() const { return fName; }
  bool IsSet() const { return NKESTA20::HostData::Of(fValue) != nullptr; }
  const NKESTA20::TCIMValue& Value() const { return fValue; }
  void SetValue(const NKESTA20::TCIMValue& value) { fValue = value; }

 private:
  const std::string& fName;
  NKESTA20::TCIMValue fValue;
};

}  // namespace standin
