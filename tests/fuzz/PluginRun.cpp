#include "tests/fuzz/PluginRun.h"

#include <memory>

#include "cli/model/FromHost.h"
#include "inventory/TUsbData.h"
#include "plugin/TUSBInfoCallbacks.h"
#include "standin/GivenDeviceList.h"
#include "standin/Host.h"
#include "tests/support/AllClasses.h"

using standin::Host;

namespace usbinfo_test {

namespace {

/// Reaches the lists that live as long as the process.
class BuiltInventory : private TUsbData {
 public:
  static void Forget() {
    fUsbPortData.clear();
    fUsbControllerData.clear();
    fUsbHubData.clear();
    fUsbDeviceData.clear();
    fDataAlreadyCollected = false;
  }
};

}  // namespace

PluginRun::PluginRun(const std::string& text) {
  Host& host = Host::Instance();
  host.SetSystemName(kSystemName);
  host.SetOperatingSystem(std::make_unique<standin::GivenDeviceList>(text));
  host.CoreLogger().SetSink([this](auto severity, const auto& line) { fLog.push_back({severity, line}); });
  std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> classes;
  for (const std::string& name : kAllClasses) classes.emplace_back(host.Cimv2()->ClassForRequest(name));
  NKESTA20::TUSBInfoCallbacks plugin;
  plugin.Init();
  plugin.GetData(host.Cimv2(), classes);
  plugin.DeInit();
  host.Forget(&plugin);
  fResult = cli::FromHost(host, kAllClasses);
  fResult.SetDeviceList(text);
}

PluginRun::~PluginRun() {
  BuiltInventory::Forget();
  Host::Instance().Reset();
}

}  // namespace usbinfo_test
