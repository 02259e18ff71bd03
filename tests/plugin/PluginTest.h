// The fixture for the plug-in object: a fresh host with an inventory that nobody has built yet, one plug-in
// object registered with it, and the lines that report a request's outcome.
#pragma once

#include <boost/make_shared.hpp>
#include <functional>
#include <string>
#include <vector>

#include "inventory/TUsbData.h"
#include "plugin/TUSBInfoCallbacks.h"
#include "standin/HostSeam.h"
#include "tests/plugin/DeviceLists.h"
#include "tests/plugin/RequestLog.h"
#include "tests/support/HostMocks.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {

using ClassList = std::vector<boost::shared_ptr<NKESTA20::ICIMClass>>;

/// Reaches the lists that live as long as the process, so that no test sees what another one collected.
class InventoryReset : private TUsbData {
 public:
  static void Clear() {
    fUsbPortData.clear();
    fUsbControllerData.clear();
    fUsbHubData.clear();
    fUsbDeviceData.clear();
    fDataAlreadyCollected = false;
  }
};

class PluginTest : public HostTest {
 protected:
  PluginTest() { InventoryReset::Clear(); }
  ~PluginTest() override { InventoryReset::Clear(); }

  /// The host's class objects of these names, the ones that the schema lacks included.
  ClassList Classes(const std::vector<std::string>& names) {
    ClassList classes;
    for (const std::string& name : names) classes.push_back(host.Cimv2()->ClassForRequest(name));
    return classes;
  }

  void Request(const std::vector<std::string>& names) { RequestClasses(Classes(names)); }
  void RequestClasses(ClassList classes) { plugin.GetData(host.Cimv2(), classes); }

  /// The machine's device list from now on.
  void GiveDeviceList(const std::string& text) { machine->files["/proc/bus/usb/devices"] = text; }

  std::size_t InstanceCount(const std::string& className) {
    return host.Cimv2()->ClassForRequest(className)->Instances().size();
  }

  std::vector<LogLine> DispatchLog() const { return WithoutProviders(log); }

  NKESTA20::TUSBInfoCallbacks plugin;
};

/// Has every call of `operation` whose subject is `subject` throw what `fail` throws.
inline void FailHostCall(standin::HostOperation operation, const std::string& subject,
                         const std::function<void()>& fail) {
  standin::HostSeam::SetObserver([=](const standin::HostCall& call) {
    if (call.operation == operation && call.subject == subject) fail();
  });
}

}  // namespace usbinfo_test
