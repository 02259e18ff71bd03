#include "inventory/TUsbControllerData.h"

using NKESTA20::ICIMClass;
using NKESTA20::TPluginManagerProvider;

TUsbControllerData::TUsbControllerData(boost::shared_ptr<ICIMClass> cls) : TUsbData(cls) {}

TUsbControllerData::TUsbControllerData(boost::shared_ptr<ICIMClass> cls, TPluginManagerProvider* handle)
    : TUsbData(cls, handle) {}

TUsbControllerData::~TUsbControllerData() = default;

bool TUsbControllerData::GetCIMInstances(std::string className) {
  WriteDebug("Entering TUsbControllerData::GetCIMInstances routine");
  const bool generated = GenerateInstances(
      fUsbControllerData, className,
      "TUsbControllerData encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for ");
  WriteDebug("Exiting TUsbControllerData::GetCIMInstances routine");
  return generated;
}
