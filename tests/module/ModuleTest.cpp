#include "tests/module/ModuleTest.h"

#include <dlfcn.h>

#include <filesystem>
#include <fstream>

#include "tests/module/BinaryTools.h"
#include "tests/support/Allocations.h"

namespace usbinfo_test {

OpenModule::OpenModule(const char* path) : fHandle(::dlopen(path, RTLD_NOW | RTLD_LOCAL)) {
  EXPECT_NE(fHandle, nullptr) << ::dlerror();
}

OpenModule::~OpenModule() {
  if (fHandle != nullptr) ::dlclose(fHandle);
}

void* OpenModule::Symbol(const char* name) const {
  return ::dlsym(fHandle, name);
}

UnrecordedPlugin::UnrecordedPlugin() {
  // The object is the first thing that the module allocates.
  Allocations::WatchForFirst();
  fModule.emplace(MODULE_PATH);
  fLifecycle = static_cast<NKESTA20::IPluginCallbacks*>(Allocations::First());
}

UnrecordedPlugin::~UnrecordedPlugin() {
  fLifecycle->PrepareForUnload();
}

NKESTA20::IPluginBasicQueryCallbacks& UnrecordedPlugin::Queries() {
  return dynamic_cast<NKESTA20::IPluginBasicQueryCallbacks&>(*fLifecycle);
}

bool IsMapped(const std::string& path) {
  const std::string canonical = std::filesystem::canonical(path);
  std::ifstream maps("/proc/self/maps");
  EXPECT_TRUE(maps.is_open());
  for (std::string line; std::getline(maps, line);) {
    if (line.find(canonical) != std::string::npos) return true;
  }
  return false;
}

ModuleTest::ModuleTest() {
  // Loaded once and kept, as in a process that uses them itself.
  static const std::vector<std::string> kLibraries = NeededLibraries(MODULE_PATH);
  for (const std::string& library : kLibraries) {
    EXPECT_NE(::dlopen(library.c_str(), RTLD_NOW), nullptr) << ::dlerror();
  }
}

std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> ModuleTest::Classes(
    const std::vector<std::string>& names) {
  std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> classes;
  for (const std::string& name : names) classes.push_back(host.Cimv2()->ClassForRequest(name));
  return classes;
}

}  // namespace usbinfo_test
