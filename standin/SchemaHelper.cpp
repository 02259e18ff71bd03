// The host's knowledge of the system, from the one stand-in host.
#include "host/TCIMSchemaHelper.h"
#include "schema/ClassSchema.h"
#include "standin/Host.h"
#include "standin/HostEntry.h"

using standin::Host;
using standin::HostEntry;
using standin::HostOperation;

namespace NKESTA20 {

const std::string TCIMSchemaHelper::kContextName = "ContextName";
const std::string TCIMSchemaHelper::kPluginNSPName = "PluginNamespace";

std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace>) {
  HostEntry::Pass(HostOperation::kGetSystemName);
  return Host::Instance().SystemName();
}

std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace>) {
  HostEntry::Pass(HostOperation::kGetSystemCreationClassName);
  return schema::kSystemClass;
}

}  // namespace NKESTA20
