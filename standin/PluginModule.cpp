// Loading, driving and unloading a plug-in module; see the header.
#include "standin/PluginModule.h"

#include <dlfcn.h>

#include "standin/Host.h"

using NKESTA20::ICIMClass;
using NKESTA20::IPluginBasicQueryCallbacks;
using NKESTA20::IPluginCallbacks;

namespace standin {

namespace {

/// The plug-ins that came after the first `count`.
std::vector<IPluginCallbacks*> RegisteredSince(std::size_t count) {
  const auto& plugins = Host::Instance().Plugins();
  return {plugins.begin() + static_cast<std::ptrdiff_t>(count), plugins.end()};
}

}  // namespace

PluginModule::PluginModule(const std::string& path) {
  const std::size_t before = Host::Instance().Plugins().size();
  try {
    Load(path);
  } catch (...) {
    // A module whose initialization throws stays mapped, but what it registered is gone.
    for (IPluginCallbacks* const plugin : RegisteredSince(before)) Host::Instance().Forget(plugin);
    throw;
  }
  fPlugins = RegisteredSince(before);
  for (IPluginCallbacks* const plugin : fPlugins) {
    if (fQueries != nullptr) break;
    fLifecycle = plugin;
    fQueries = dynamic_cast<IPluginBasicQueryCallbacks*>(plugin);
  }
  if (fQueries != nullptr) return;
  Unload();
  throw PluginError(path + ": the module registers no plug-in that answers queries");
}

PluginModule::~PluginModule() {
  Unload();
}

void PluginModule::Load(const std::string& path) {
  // The system promises that dlopen never throws, but what a module's initialization throws comes through it.
  // A pointer that the compiler cannot look through keeps the way open.
  void* (*volatile const open)(const char*, int) = ::dlopen;
  fHandle = open(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (fHandle == nullptr) throw PluginError(::dlerror());
}

void PluginModule::Unload() {
  for (IPluginCallbacks* const plugin : fPlugins) {
    Host::Instance().Forget(plugin);
    plugin->PrepareForUnload();
  }
  ::dlclose(fHandle);
}

void PluginModule::Collect(const std::vector<std::string>& classNames) {
  const boost::shared_ptr<Namespace>& ns = Host::Instance().Cimv2();
  std::vector<boost::shared_ptr<ICIMClass>> classes;
  classes.reserve(classNames.size());
  for (const std::string& name : classNames) classes.emplace_back(ns->ClassForRequest(name));
  fLifecycle->Init();
  fQueries->GetData(ns, classes);
  fLifecycle->DeInit();
}

}  // namespace standin
