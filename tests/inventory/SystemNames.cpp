// The hosting system's names as a test wants them; see the header.
#include "tests/inventory/SystemNames.h"

#include "host/TCIMSchemaHelper.h"
#include "standin/Host.h"
#include "standin/HostSeam.h"

using standin::HostOperation;
using standin::HostSeam;

namespace usbinfo_test {

SystemNames& CurrentSystemNames() {
  static SystemNames names;
  return names;
}

}  // namespace usbinfo_test

namespace NKESTA20 {

std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace> ns) {
  HostSeam::Enter(HostOperation::kGetSystemName, std::string());
  usbinfo_test::SystemNames& names = usbinfo_test::CurrentSystemNames();
  names.askedForName.push_back(ns.get());
  return names.name.value_or(standin::Host::Instance().SystemName());
}

std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns) {
  HostSeam::Enter(HostOperation::kGetSystemCreationClassName, std::string());
  usbinfo_test::SystemNames& names = usbinfo_test::CurrentSystemNames();
  names.askedForClass.push_back(ns.get());
  return names.creationClassName.value_or(standin::Host::kSystemCreationClassName);
}

}  // namespace NKESTA20
