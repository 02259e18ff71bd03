#include "standin/PluginManager.h"

#include <cstdint>

#include "standin/Host.h"
#include "standin/HostEntry.h"
#include "standin/StatusCode.h"

namespace NKESTA20 {

void TPluginManagerNamespace::RegisterPlugin(IPluginCallbacks* plugin) {
  standin::HostEntry::Pass(standin::HostOperation::kRegisterPlugin);
  // Plug-ins register through a null pointer where a host has no manager, and this file is compiled so that
  // the check survives optimisation.
  if (reinterpret_cast<std::uintptr_t>(this) == 0) return;
  standin::Host::Instance().Register(plugin);
}

}  // namespace NKESTA20

namespace standin {

boost::shared_ptr<NKESTA20::ICIMClass> PluginManager::GetClass(const std::string& className,
                                                               NKESTA20::PropertyMap) {
  HostEntry::Pass(HostOperation::kGetClass, className);
  Throw(StatusCode::kNotFound);
}

}  // namespace standin
