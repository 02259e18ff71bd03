#include "standin/PluginModule.h"

#include <dlfcn.h>

#include "standin/Host.h"

using NKESTA20::ICIMClass;
using NKESTA20::ILogger;
using NKESTA20::IPluginBasicQueryCallbacks;
using NKESTA20::IPluginCallbacks;

namespace standin {

namespace {

void WarnOfFailure(const std::string& path) noexcept {
  try {
    Host::Instance().CoreLogger().Write(ILogger::kWarning,
                                        path + ": the plug-in failed when it was unloaded");
  } catch (...) {
    // The plug-in counts as deleted even so.
  }
}

}  // namespace

void PluginModule::Close::operator()(void* handle) const {
  ::dlclose(handle);
}

PluginModule::PluginModule(const std::string& path) {
  const std::size_t before = Host::Instance().Plugins().size();
  try {
    Load(path);
  } catch (...) {
    // The exception may have destroyed the plug-in that registered, so it is removed without another call to
    // it.
    while (Host::Instance().Plugins().size() > before) {
      Host::Instance().Forget(Host::Instance().Plugins().back());
    }
    throw;
  }
  try {
    fPath = path;
    TakeOver(before);
  } catch (...) {
    while (Host::Instance().Plugins().size() > before) Dismiss(Host::Instance().Plugins().back());
    throw;
  }
}

PluginModule::~PluginModule() {
  for (IPluginCallbacks* const plugin : fPlugins) Dismiss(plugin);
}

void PluginModule::Load(const std::string& path) {
  // dlopen is declared not to throw, but an exception from a module's initialization passes through it.
  // Calling it through a volatile pointer keeps the compiler from dropping the handler.
  void* (*volatile const open)(const char*, int) = ::dlopen;
  fHandle.reset(open(path.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (fHandle == nullptr) throw PluginError(::dlerror());
}

void PluginModule::TakeOver(std::size_t before) {
  const std::vector<IPluginCallbacks*>& plugins = Host::Instance().Plugins();
  fPlugins.assign(plugins.begin() + static_cast<std::ptrdiff_t>(before), plugins.end());
  for (IPluginCallbacks* const plugin : fPlugins) {
    fLifecycle = plugin;
    fQueries = dynamic_cast<IPluginBasicQueryCallbacks*>(plugin);
    if (fQueries != nullptr) return;
  }
  throw PluginError(fPath + ": the module registers no plug-in that answers queries");
}

void PluginModule::Dismiss(IPluginCallbacks* plugin) noexcept {
  Host::Instance().Forget(plugin);
  try {
    plugin->PrepareForUnload();
  } catch (...) {
    WarnOfFailure(fPath);
  }
}

void PluginModule::Collect(const std::vector<std::string>& classNames) {
  const boost::shared_ptr<Namespace>& ns = Host::Instance().Cimv2();
  std::vector<boost::shared_ptr<ICIMClass>> classes;
  classes.reserve(classNames.size());
  for (const std::string& name : classNames) classes.emplace_back(ns->ClassForRequest(name));
  fLifecycle->Init();
  try {
    fQueries->GetData(ns, classes);
  } catch (...) {
    DeInitAfterFailure();
    throw;
  }
  fLifecycle->DeInit();
}

void PluginModule::DeInitAfterFailure() noexcept {
  try {
    fLifecycle->DeInit();
  } catch (...) {
    // The first failure is the one to report.
  }
}

}  // namespace standin
