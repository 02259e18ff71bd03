#include "standin/Property.h"

#include "standin/HostEntry.h"
#include "standin/ValueView.h"

namespace standin {

const NKESTA20::TCIMValue& Property::GetValue(NKESTA20::PropertyMap) {
  HostEntry::Pass(HostOperation::kGetPropertyValue, fName);
  return fValue;
}

std::string Property::GetValueAsText() {
  HostEntry::Pass(HostOperation::kGetPropertyText, fName);
  return TextOf(fValue);
}

}  // namespace standin
