// A plug-in module loaded into the process, and the plug-in that registered with the host while it loaded.
// Owns the loading: the destructor has what registered delete itself and unloads the module.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "host/IPluginBasicQueryCallbacks.h"
#include "host/IPluginCallbacks.h"

namespace standin {

/// Why a module cannot be used; what() is one line for the user.
class PluginError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class PluginModule {
 public:
  /// Loads the module at `path`; throws PluginError when it cannot be loaded or registers no plug-in that
  /// answers queries, and what the module's own initialization throws.
  explicit PluginModule(const std::string& path);
  PluginModule(const PluginModule&) = delete;
  PluginModule& operator=(const PluginModule&) = delete;
  ~PluginModule();

  NKESTA20::IPluginCallbacks& Lifecycle() { return *fLifecycle; }
  NKESTA20::IPluginBasicQueryCallbacks& Queries() { return *fQueries; }

  /// A whole round as a host drives it: Init, one request for the classes named, in order, then DeInit.
  /// Names that the schema lacks are asked for all the same.
  void Collect(const std::vector<std::string>& classNames);

 private:
  void Load(const std::string& path);
  void Unload();

  void* fHandle = nullptr;
  /// What registered while the module was loaded; the first that answers queries is driven.
  std::vector<NKESTA20::IPluginCallbacks*> fPlugins;
  NKESTA20::IPluginCallbacks* fLifecycle = nullptr;
  NKESTA20::IPluginBasicQueryCallbacks* fQueries = nullptr;
};

}  // namespace standin
