// The fixture for the module as a host gets it: a fresh host, the built module, and ways to load it with and
// without the stand-in's help. Nothing of the plug-in's code is linked in.
#pragma once

#include <boost/make_shared.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "standin/GivenDeviceList.h"
#include "standin/HostSeam.h"
#include "standin/PluginModule.h"
#include "tests/plugin/DeviceLists.h"
#include "tests/plugin/RequestLog.h"
#include "tests/support/HostMocks.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {

/// A module opened by hand; closed with the object. The test must delete what the module created.
class OpenModule {
 public:
  explicit OpenModule(const char* path);
  OpenModule(const OpenModule&) = delete;
  OpenModule& operator=(const OpenModule&) = delete;
  ~OpenModule();

  /// The exported symbol of that name; null when there is none.
  void* Symbol(const char* name) const;

 private:
  void* fHandle;
};

/// The module opened by hand, with the plug-in object, which does not register in a host without a manager.
/// The destructor has the object delete itself and closes the module.
class UnrecordedPlugin {
 public:
  UnrecordedPlugin();
  UnrecordedPlugin(const UnrecordedPlugin&) = delete;
  UnrecordedPlugin& operator=(const UnrecordedPlugin&) = delete;
  ~UnrecordedPlugin();

  NKESTA20::IPluginCallbacks& Lifecycle() { return *fLifecycle; }
  NKESTA20::IPluginBasicQueryCallbacks& Queries();

 private:
  std::optional<OpenModule> fModule;
  NKESTA20::IPluginCallbacks* fLifecycle = nullptr;
};

/// True while the file is mapped into this process.
bool IsMapped(const std::string& path);

/// The module's libraries are there before the module: what they allocate as they load is not the module's.
class ModuleTest : public HostTest {
 protected:
  ModuleTest();

  void GiveDeviceList(const std::string& text) {
    host.SetOperatingSystem(std::make_unique<standin::GivenDeviceList>(text));
  }

  std::size_t InstanceCount(const std::string& className) {
    return host.Cimv2()->ClassForRequest(className)->Instances().size();
  }

  /// The host's class objects of these names.
  std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> Classes(const std::vector<std::string>& names);

  std::vector<LogLine> DispatchLog() const { return WithoutProviders(log); }
};

}  // namespace usbinfo_test
