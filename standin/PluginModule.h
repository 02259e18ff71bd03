// A plug-in module loaded into the process, and the plug-in that registered with the host while it loaded.
// Owns both: the destructor has the plug-in delete itself, then unloads the module.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/IPluginBasicQueryCallbacks.h"
#include "host/IPluginCallbacks.h"
#include "standin/Export.h"

namespace standin {

/// A module cannot be used; what() says why, in one line for the user.
class USBINFO_STANDIN_EXPORT PluginError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class PluginModule {
 public:
  /// Loads the module at `path`; throws PluginError when it cannot be loaded or registers no plug-in that
  /// answers queries, and what the module's own initialization throws.
  USBINFO_STANDIN_EXPORT explicit PluginModule(const std::string& path);
  PluginModule(const PluginModule&) = delete;
  PluginModule& operator=(const PluginModule&) = delete;
  /// An exception of the plug-in's PrepareForUnload is logged as a warning; the module is unloaded
  /// nevertheless.
  USBINFO_STANDIN_EXPORT ~PluginModule();

  NKESTA20::IPluginCallbacks& Lifecycle() { return *fLifecycle; }
  NKESTA20::IPluginBasicQueryCallbacks& Queries() { return *fQueries; }

  /// A whole round as a host drives it: Init, one request for the classes named, in order, then DeInit, which
  /// also follows a request that throws. Names that the schema lacks are requested, too.
  USBINFO_STANDIN_EXPORT void Collect(const std::vector<std::string>& classNames);

 private:
  struct Close {
    void operator()(void* handle) const;
  };

  void Load(const std::string& path);
  /// Takes over the plug-ins that registered after the first `before`.
  void TakeOver(std::size_t before);
  /// Removes a plug-in and has it delete itself.
  void Dismiss(NKESTA20::IPluginCallbacks* plugin) noexcept;
  void DeInitAfterFailure() noexcept;

  std::string fPath;
  std::unique_ptr<void, Close> fHandle;
  /// What registered while the module was loaded; the first that answers queries is driven.
  std::vector<NKESTA20::IPluginCallbacks*> fPlugins;
  NKESTA20::IPluginCallbacks* fLifecycle = nullptr;
  NKESTA20::IPluginBasicQueryCallbacks* fQueries = nullptr;
};

}  // namespace standin
