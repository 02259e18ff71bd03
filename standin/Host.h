// The stand-in host: the one process-wide object behind the host's static operations. It owns the namespace,
// the logger, the plug-in manager and the operating-system services, and is configured before a plug-in is
// loaded. Plug-ins register with it and own themselves.
#pragma once

#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>
#include <vector>

#include "host/IPluginCallbacks.h"
#include "standin/Export.h"
#include "standin/Logger.h"
#include "standin/Namespace.h"
#include "standin/OperatingSystem.h"

namespace standin {

class USBINFO_STANDIN_EXPORT Host {
 public:
  static Host& Instance();

  /// Restores the initial state: no instances, no registered plug-ins, the machine's name and services, no
  /// log sink, a plug-in manager of its own.
  void Reset();

  void SetSystemName(const std::string& name) { fSystemName = name; }
  /// The configured name, else the machine's host name.
  std::string SystemName() const;

  void SetOperatingSystem(std::unique_ptr<OperatingSystem> services) { fServices = std::move(services); }
  OperatingSystem& Services() { return *fServices; }

  /// What the host returns as its plug-in manager: any namespace, or null.
  void SetPluginManager(boost::shared_ptr<NKESTA20::ICIMNamespace> manager) { fManager = manager; }
  boost::shared_ptr<NKESTA20::ICIMNamespace> PluginManager() const { return fManager; }

  Logger& CoreLogger() { return fLogger; }
  const boost::shared_ptr<Namespace>& Cimv2() const { return fNamespace; }

  void Register(NKESTA20::IPluginCallbacks* plugin) { fPlugins.push_back(plugin); }
  /// Forgets a plug-in, before it goes away.
  void Forget(NKESTA20::IPluginCallbacks* plugin);
  /// The registered plug-ins, in the order of their registration.
  const std::vector<NKESTA20::IPluginCallbacks*>& Plugins() const { return fPlugins; }

 private:
  Host() { Reset(); }

  std::string fSystemName;
  std::unique_ptr<OperatingSystem> fServices;
  boost::shared_ptr<NKESTA20::ICIMNamespace> fManager;
  Logger fLogger;
  boost::shared_ptr<Namespace> fNamespace;
  std::vector<NKESTA20::IPluginCallbacks*> fPlugins;
};

}  // namespace standin
