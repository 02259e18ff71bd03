// One property; see the header.
#include "standin/Property.h"

#include "standin/HostSeam.h"
#include "standin/ValueView.h"

namespace standin {

const NKESTA20::TCIMValue& Property::GetValue(NKESTA20::PropertyMap) {
  HostSeam::Enter(HostOperation::kGetPropertyValue, fName);
  return fValue;
}

std::string Property::GetValueAsText() {
  HostSeam::Enter(HostOperation::kGetPropertyText, fName);
  return TextOf(fValue);
}

}  // namespace standin
