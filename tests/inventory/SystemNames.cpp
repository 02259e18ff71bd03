#include "tests/inventory/SystemNames.h"

#include "host/TCIMSchemaHelper.h"
#include "schema/ClassSchema.h"
#include "standin/Host.h"
#include "standin/HostEntry.h"

using standin::HostEntry;
using standin::HostOperation;

namespace usbinfo_test {

SystemNames& CurrentSystemNames() {
  static SystemNames names;
  return names;
}

}  // namespace usbinfo_test

namespace NKESTA20 {

const std::string TCIMSchemaHelper::kContextName = "ContextName";
const std::string TCIMSchemaHelper::kPluginNSPName = "PluginNamespace";

std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace> ns) {
  HostEntry::Pass(HostOperation::kGetSystemName);
  usbinfo_test::SystemNames& names = usbinfo_test::CurrentSystemNames();
  names.askedForName.push_back(ns.get());
  return names.name.value_or(standin::Host::Instance().SystemName());
}

std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace> ns) {
  HostEntry::Pass(HostOperation::kGetSystemCreationClassName);
  usbinfo_test::SystemNames& names = usbinfo_test::CurrentSystemNames();
  names.askedForClass.push_back(ns.get());
  return names.creationClassName.value_or(schema::kSystemClass);
}

}  // namespace NKESTA20
