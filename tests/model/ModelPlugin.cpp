#include "tests/model/ModelPlugin.h"

#include <memory>

using standin::HostOperation;

namespace usbinfo_test {

namespace {

struct ModelProvider {
  const char* className;
  const char* name;
  const char* errorName;
  bool isInventory;
};

/// Null for a class that is not served.
const ModelProvider* ProviderOf(const std::string& className) {
  static constexpr ModelProvider kProviders[] = {
      {"KALDO_USBController", "TUsbControllerData", "TUsbControllerData", true},
      {"KALDO_USBHub", "TUsbHubData", "TUsbHubData", true},
      {"KALDO_USBPort", "TUsbPortData", "UsbPort Data", true},
      {"KALDO_USBDevice", "TUsbDeviceData", "TUsbDeviceData", true},
      {"KALDO_USBPortOnHub", "TUsbPortHubAsso", "USB Port-Hub Association", false},
      {"KALDO_USBConnection", "TUsbPortDeviceAsso", "USB Port-Device Association", false},
  };
  for (const ModelProvider& provider : kProviders) {
    if (className == provider.className) return &provider;
  }
  return nullptr;
}

}  // namespace

void ModelPlugin::Run(const std::vector<std::string>& request) {
  fHost.Log(kDebug, "TUSBInfoCallbacks::Init - Initializing the plugin.");
  try {
    GetData(request);
  } catch (...) {
    DeInit();
    throw;
  }
  DeInit();
}

void ModelPlugin::GetData(const std::vector<std::string>& request) {
  for (const std::string& className : request) {
    fHost.Call(HostOperation::kGetClassName, className);
    fHost.Log(kDebug, "TUSBInfoCallbacks::GetData - Received request for class " + className + ".");
    if (ProviderOf(className) == nullptr) continue;
    fHost.OwnStep();
    Serve(className);
  }
  fHost.Log(kDebug, "TUSBInfoCallbacks::GetData - Normal exit from plugin.");
}

void ModelPlugin::DeInit() {
  fHost.Log(kDebug, "TUSBInfoCallbacks::DeInit - De-initializing the plugin.");
}

void ModelPlugin::Serve(const std::string& className) {
  bool isThrown = false;
  bool isMade = false;
  try {
    if (ProviderOf(className)->isInventory) fInventory.Collect(className);
    isMade = MakeInstances(className);
  } catch (ModelHostError&) {
    isThrown = true;
  } catch (ModelOtherError&) {
    isThrown = true;
  }
  if (isThrown) fHost.Log(kStatus, "USBInfo plugin threw unknown exception");
  fHost.Log(kDebug, isMade ? "TUSBInfoCallbacks::retrieveDataForClass - Data successfully retrieved."
                           : "TUSBInfoCallbacks::retrieveDataForClass - No instances of the requested class "
                             "were created.");
}

bool ModelPlugin::MakeInstances(const std::string& className) {
  fHost.Call(HostOperation::kGetClassName, className);
  const ModelProvider& provider = *ProviderOf(className);
  fHost.Log(kDebug, std::string("Entering ") + provider.name + "::GetCIMInstances routine");
  std::vector<Properties> entries;
  if (className == "KALDO_USBPortOnHub") {
    entries = fAssociations.LinkPortsToHubs();
  } else if (className == "KALDO_USBConnection") {
    entries = fAssociations.LinkDevicesToPorts();
  } else {
    entries = fInventory.EntriesOf(className);
  }
  const bool isMade =
      GenerateAll(entries, className,
                  std::string(provider.errorName) +
                      " encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for " + className);
  fHost.Log(kDebug, std::string("Exiting ") + provider.name + "::GetCIMInstances routine");
  return isMade;
}

bool ModelPlugin::GenerateAll(const std::vector<Properties>& entries, const std::string& className,
                              const std::string& errorLeadIn) {
  bool isMade = false;
  for (const Properties& entry : entries) {
    try {
      Generate(entry, className);
      isMade = true;
    } catch (ModelHostError& error) {
      const std::string what = fHost.What(error);
      fHost.Log(kStatus, errorLeadIn + " Error Code: " + what);
    }
  }
  return isMade;
}

void ModelPlugin::Generate(const Properties& entry, const std::string& className) {
  fHost.Log(kVerbose, "TUsb::generateCIMInstance - Generating CIM instance for class " + className + ".");
  fHost.Call(HostOperation::kCreateInstance, className);
  for (const auto& property : entry) {
    fHost.Log(kDebug, "Setting property : " + property.first);
    fHost.Call(HostOperation::kSetProperty, property.first);
  }
  fHost.Call(HostOperation::kGetClassName, className);
  auto instance = std::make_shared<ModelInstance>();
  instance->className = className;
  instance->properties = entry;
  fHost.Commit(instance);
}

Outcome RunModel(const Scenario& scenario, const ListValues& list, const std::optional<Fault>& fault,
                 bool keepsCalls) {
  ModelHost host(scenario, fault, keepsCalls);
  ModelPlugin plugin(host, list);
  std::string leaving = "nothing";
  try {
    plugin.Run(scenario.request);
  } catch (ModelHostError&) {
    leaving = NameOf(FaultKind::kHostException);
  } catch (ModelOtherError& error) {
    leaving = NameOf(error.kind);
  }
  return host.TakeOutcome(leaving);
}

}  // namespace usbinfo_test
