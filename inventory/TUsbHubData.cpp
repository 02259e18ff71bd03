#include "inventory/TUsbHubData.h"

using NKESTA20::ICIMClass;
using NKESTA20::TPluginManagerProvider;

TUsbHubData::TUsbHubData(boost::shared_ptr<ICIMClass> cls) : TUsbData(cls) {}

TUsbHubData::TUsbHubData(boost::shared_ptr<ICIMClass> cls, TPluginManagerProvider* handle)
    : TUsbData(cls, handle) {}

TUsbHubData::~TUsbHubData() = default;

bool TUsbHubData::GetCIMInstances(std::string className) {
  WriteDebug("Entering TUsbHubData::GetCIMInstances routine");
  const bool generated =
      GenerateInstances(fUsbHubData, className,
                        "TUsbHubData encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for ");
  WriteDebug("Exiting TUsbHubData::GetCIMInstances routine");
  return generated;
}
