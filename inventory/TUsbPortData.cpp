#include "inventory/TUsbPortData.h"

using NKESTA20::ICIMClass;
using NKESTA20::TPluginManagerProvider;

TUsbPortData::TUsbPortData(boost::shared_ptr<ICIMClass> cls) : TUsbData(cls) {}

TUsbPortData::TUsbPortData(boost::shared_ptr<ICIMClass> cls, TPluginManagerProvider* handle)
    : TUsbData(cls, handle) {}

TUsbPortData::~TUsbPortData() = default;

bool TUsbPortData::GetCIMInstances(std::string className) {
  WriteDebug("Entering TUsbPortData::GetCIMInstances routine");
  const bool generated =
      GenerateInstances(fUsbPortData, className,
                        "UsbPort Data encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for ");
  WriteDebug("Exiting TUsbPortData::GetCIMInstances routine");
  return generated;
}
