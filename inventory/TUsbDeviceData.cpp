#include "inventory/TUsbDeviceData.h"

using NKESTA20::ICIMClass;
using NKESTA20::TPluginManagerProvider;

TUsbDeviceData::TUsbDeviceData(boost::shared_ptr<ICIMClass> cls) : TUsbData(cls) {}

TUsbDeviceData::TUsbDeviceData(boost::shared_ptr<ICIMClass> cls, TPluginManagerProvider* handle)
    : TUsbData(cls, handle) {}

TUsbDeviceData::~TUsbDeviceData() = default;

bool TUsbDeviceData::GetCIMInstances(std::string className) {
  WriteDebug("Entering TUsbDeviceData::GetCIMInstances routine");
  const bool generated =
      GenerateInstances(fUsbDeviceData, className,
                        "TUsbDeviceData encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for ");
  WriteDebug("Exiting TUsbDeviceData::GetCIMInstances routine");
  return generated;
}
