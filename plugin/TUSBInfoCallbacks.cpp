#include "plugin/TUSBInfoCallbacks.h"

#include <boost/pointer_cast.hpp>
#include <cstdint>
#include <memory>

#include "association/TUsbPortDeviceAsso.h"
#include "association/TUsbPortHubAsso.h"
#include "host/ICIMClass.h"
#include "host/ILogger.h"
#include "host/TPluginManagerNamespace.h"
#include "host/TRootObject.h"
#include "inventory/TUsbControllerData.h"
#include "inventory/TUsbDeviceData.h"
#include "inventory/TUsbHubData.h"
#include "inventory/TUsbPortData.h"
#include "plugin/Vocabulary.h"

namespace NKESTA20 {

int gStarted = 0;

namespace {

/// Runs before every other initializer of the module, whatever the order of its files: the vocabulary's
/// constants carry the default priority and are not built yet, so nothing here may touch them.
__attribute__((constructor(101))) void CreatePluginObject() {
  // The host owns it from here on and ends it through PrepareForUnload.
  new TUSBInfoCallbacks;  // NOLINT(cppcoreguidelines-owning-memory)
}

using ClassPointer = boost::shared_ptr<ICIMClass>;
using ProviderMaker = std::unique_ptr<TUsb> (*)(const ClassPointer& cls, TPluginManagerProvider* handle);

template <typename Provider>
std::unique_ptr<TUsb> MakeProvider(const ClassPointer& cls, TPluginManagerProvider* handle) {
  return std::make_unique<Provider>(cls, handle);
}

/// The function that makes the provider for `className`; null for a class that is not served.
ProviderMaker FindProviderMaker(const std::string& className) {
  struct ServedClass {
    const std::string& name;
    ProviderMaker make;
  };
  static const ServedClass kServedClasses[] = {
      {kClassUsbPort, MakeProvider<TUsbPortData>},
      {kClassUsbHub, MakeProvider<TUsbHubData>},
      {kClassUsbDevice, MakeProvider<TUsbDeviceData>},
      {kClassUsbController, MakeProvider<TUsbControllerData>},
      {kClassUsbPortOnHub, MakeProvider<TUsbPortHubAsso>},
      {kClassUsbConnection, MakeProvider<TUsbPortDeviceAsso>},
  };
  for (const ServedClass& served : kServedClasses) {
    if (served.name == className) return served.make;
  }
  return nullptr;
}

void Log(ILogger::EQSVLogSeverity severity, const std::string& text) {
  TRootObject::GetCoreLogger()->Write(severity, text);
}

}  // namespace

TUSBInfoCallbacks::TUSBInfoCallbacks() {
  const boost::shared_ptr<ICIMNamespace> root = TRootObject::GetPluginManager();
  const auto manager = boost::dynamic_pointer_cast<TPluginManagerNamespace>(root);
  // Not through the pointer's own arrow, which refuses a null manager.
  TPluginManagerNamespace* const registrar = manager.get();
  registrar->RegisterPlugin(this);
  fProviderHandle = registrar;
}

TUSBInfoCallbacks::~TUSBInfoCallbacks() = default;

int TUSBInfoCallbacks::GetType() {
  return 0;
}

std::string TUSBInfoCallbacks::GetName() {
  return "USB Information Collector";
}

std::string TUSBInfoCallbacks::GetVersion() {
  return "1.0";
}

std::string TUSBInfoCallbacks::GetInterfaceVersion() {
  return "1.0";
}

void TUSBInfoCallbacks::PrepareForUnload() {
  // The host may call through a null pointer, and this file is compiled so that the check survives
  // optimisation.
  if (reinterpret_cast<std::uintptr_t>(this) == 0) return;
  delete this;
}

void TUSBInfoCallbacks::Init() {
  Log(ILogger::kDebug, "TUSBInfoCallbacks::Init - Initializing the plugin.");
}

void TUSBInfoCallbacks::DeInit() {
  Log(ILogger::kDebug, "TUSBInfoCallbacks::DeInit - De-initializing the plugin.");
}

void TUSBInfoCallbacks::GetData(boost::shared_ptr<ICIMNamespace>,
                                std::vector<boost::shared_ptr<ICIMClass>>& classes) {
  for (const ClassPointer& cls : classes) {
    const std::string name = cls->GetClassName(PropertyMap());
    Log(ILogger::kDebug, "TUSBInfoCallbacks::GetData - Received request for class " + name + ".");
    const ProviderMaker make = FindProviderMaker(name);
    if (make == nullptr) continue;
    const std::unique_ptr<TUsb> provider = make(cls, fProviderHandle);
    RetrieveDataForClass(provider.get());
  }
  Log(ILogger::kDebug, "TUSBInfoCallbacks::GetData - Normal exit from plugin.");
}

int TUSBInfoCallbacks::RetrieveDataForClass(TUsb* provider) {
  bool created = false;
  try {
    provider->CollectData();
    created = provider->GetCIMInstances();
  } catch (...) {
    created = false;
    Log(ILogger::kStatus, "USBInfo plugin threw unknown exception");
  }
  Log(ILogger::kDebug,
      created
          ? "TUSBInfoCallbacks::retrieveDataForClass - Data successfully retrieved."
          : "TUSBInfoCallbacks::retrieveDataForClass - No instances of the requested class were created.");
  return 0;
}

}  // namespace NKESTA20
