// The host's static operations, each over the one stand-in host.
#include "host/TCIMSchemaHelper.h"
#include "host/TOSSpecific.h"
#include "host/TRootObject.h"
#include "standin/Host.h"
#include "standin/HostSeam.h"

using standin::Host;
using standin::HostOperation;
using standin::HostSeam;

namespace NKESTA20 {

const std::string TCIMSchemaHelper::kContextName = "ContextName";
const std::string TCIMSchemaHelper::kPluginNSPName = "PluginNamespace";

ILogger* TRootObject::GetCoreLogger() {
  HostSeam::Enter(HostOperation::kGetCoreLogger, std::string());
  return &Host::Instance().CoreLogger();
}

boost::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() {
  HostSeam::Enter(HostOperation::kGetPluginManager, std::string());
  return Host::Instance().PluginManager();
}

std::string TCIMSchemaHelper::GetSystemName(boost::shared_ptr<ICIMNamespace>) {
  HostSeam::Enter(HostOperation::kGetSystemName, std::string());
  return Host::Instance().SystemName();
}

std::string TCIMSchemaHelper::GetSystemCreationClassName(boost::shared_ptr<ICIMNamespace>) {
  HostSeam::Enter(HostOperation::kGetSystemCreationClassName, std::string());
  return Host::kSystemCreationClassName;
}

std::string TOSSpecific::CaptureFile(std::string path) {
  HostSeam::Enter(HostOperation::kCaptureFile, path);
  return Host::Instance().Services().CaptureFile(path);
}

bool TOSSpecific::FileExists(std::string path) {
  HostSeam::Enter(HostOperation::kFileExists, path);
  return Host::Instance().Services().FileExists(path);
}

std::string TOSSpecific::SpawnProcess(std::string command, int seconds) {
  HostSeam::Enter(HostOperation::kSpawnProcess, command);
  return Host::Instance().Services().SpawnProcess(command, seconds);
}

}  // namespace NKESTA20
