// The host's root and its operating-system services, each over the one stand-in host.
#include "host/TOSSpecific.h"
#include "host/TRootObject.h"
#include "standin/Host.h"
#include "standin/HostEntry.h"

using standin::Host;
using standin::HostEntry;
using standin::HostOperation;

namespace NKESTA20 {

ILogger* TRootObject::GetCoreLogger() {
  HostEntry::Pass(HostOperation::kGetCoreLogger);
  return &Host::Instance().CoreLogger();
}

boost::shared_ptr<ICIMNamespace> TRootObject::GetPluginManager() {
  HostEntry::Pass(HostOperation::kGetPluginManager);
  return Host::Instance().PluginManager();
}

std::string TOSSpecific::CaptureFile(std::string path) {
  HostEntry::Pass(HostOperation::kCaptureFile, path);
  return Host::Instance().Services().CaptureFile(path);
}

bool TOSSpecific::FileExists(std::string path) {
  HostEntry::Pass(HostOperation::kFileExists, path);
  return Host::Instance().Services().FileExists(path);
}

std::string TOSSpecific::SpawnProcess(std::string command, int seconds) {
  HostEntry::Pass(HostOperation::kSpawnProcess, command);
  return Host::Instance().Services().SpawnProcess(command, seconds);
}

}  // namespace NKESTA20
