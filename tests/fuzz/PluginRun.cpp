// One run of the plug-in; see the header.
#include "tests/fuzz/PluginRun.h"

#include "inventory/TUsbData.h"
#include "plugin/TUSBInfoCallbacks.h"
#include "schema/ClassSchema.h"
#include "standin/GivenDeviceList.h"
#include "standin/Host.h"

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
  host.CoreLogger().SetSink([this](auto severity, const auto& line) { fLog.emplace_back(severity, line); });
  std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> classes;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    classes.emplace_back(host.Cimv2()->ClassForRequest(schema.name));
  }
  NKESTA20::TUSBInfoCallbacks plugin;
  plugin.Init();
  plugin.GetData(host.Cimv2(), classes);
  plugin.DeInit();
  host.Forget(&plugin);
  fResult = std::make_unique<cli::Inventory>(host);
}

PluginRun::~PluginRun() {
  BuiltInventory::Forget();
  Host::Instance().Reset();
}

}  // namespace usbinfo_test
