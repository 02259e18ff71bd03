// A module whose plug-in has a life but answers no queries. The module owns it, so that it is not lost where
// a host cannot register it; it logs a line when the host releases it.
#include <boost/shared_ptr.hpp>
#include <string>

#include "host/ICIMNamespace.h"
#include "host/ILogger.h"
#include "host/IPluginCallbacks.h"
#include "host/TPluginManagerNamespace.h"
#include "host/TRootObject.h"

namespace {

using NKESTA20::ILogger;
using NKESTA20::TPluginManagerNamespace;
using NKESTA20::TRootObject;

class UnqueriedPlugin : public NKESTA20::IPluginCallbacks {
 public:
  UnqueriedPlugin() {
    const auto manager = TRootObject::GetPluginManager();
    auto* const registry = dynamic_cast<TPluginManagerNamespace*>(manager.get());
    if (registry != nullptr) registry->RegisterPlugin(this);
  }

  int GetType() override { return 0; }
  std::string GetName() override { return "Unqueried"; }
  std::string GetVersion() override { return "1.0"; }
  std::string GetInterfaceVersion() override { return "1.0"; }
  void PrepareForUnload() override {
    TRootObject::GetCoreLogger()->Write(ILogger::kStatus, "PrepareForUnload");
  }
  void Init() override {}
  void DeInit() override {}
};

UnqueriedPlugin plugin;

}  // namespace
