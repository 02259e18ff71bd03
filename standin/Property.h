// One property of one instance. The instance owns it and hands out shared pointers to it; setting the
// property again changes the value in place, so earlier hand-outs see the new one.
#pragma once

#include <string>

#include "host/ICIMProperty.h"

namespace standin {

class Property : public NKESTA20::ICIMProperty {
 public:
  Property(const std::string& name, const NKESTA20::TCIMValue& value) : fName(name), fValue(value) {}

  const NKESTA20::TCIMValue& GetValue(NKESTA20::PropertyMap context) override;
  std::string GetValueAsText() override;

  /// The value, without passing the seam.
  const NKESTA20::TCIMValue& Value() const { return fValue; }
  void SetValue(const NKESTA20::TCIMValue& value) { fValue = value; }

 private:
  std::string fName;
  NKESTA20::TCIMValue fValue;
};

}  // namespace standin
