// Loading, driving and unloading a plug-in module; see the header.
#include "standin/PluginModule.h"

#include <dlfcn.h>

#include "standin/Host.h"

using NKESTA20::ICIMClass;
using NKESTA20::IPluginBasicQueryCallbacks;

namespace standin {

PluginModule::PluginModule(const std::string& path) {
  const std::size_t before = Host::Instance().Plugins().size();
  fHandle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (fHandle == nullptr) throw PluginError(::dlerror());
  const auto& plugins = Host::Instance().Plugins();
  if (plugins.size() > before) fLifecycle = plugins.back();
  fQueries = dynamic_cast<IPluginBasicQueryCallbacks*>(fLifecycle);
  if (fQueries == nullptr) {
    Unload();
    throw PluginError(path + ": the module registers no plug-in that answers queries");
  }
}

PluginModule::~PluginModule() {
  Unload();
}

void PluginModule::Unload() {
  if (fLifecycle != nullptr) {
    Host::Instance().Forget(fLifecycle);
    fLifecycle->PrepareForUnload();
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
