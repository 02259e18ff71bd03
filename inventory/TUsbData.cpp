#include "inventory/TUsbData.h"

#include "plugin/Vocabulary.h"
#include "usbfs/DeviceListCutter.h"
#include "usbfs/DeviceListSource.h"

using NKESTA20::ICIMClass;
using NKESTA20::PropertyMap;
using NKESTA20::TPluginManagerProvider;

std::vector<PropertyMap> TUsbData::fUsbPortData;
std::vector<PropertyMap> TUsbData::fUsbControllerData;
std::vector<PropertyMap> TUsbData::fUsbHubData;
std::vector<PropertyMap> TUsbData::fUsbDeviceData;
bool TUsbData::fDataAlreadyCollected = false;

TUsbData::TUsbData(boost::shared_ptr<ICIMClass> cls) : TUsb(cls) {}

TUsbData::TUsbData(boost::shared_ptr<ICIMClass> cls, TPluginManagerProvider* handle) : TUsb(cls, handle) {}

TUsbData::~TUsbData() = default;

bool TUsbData::GetCIMInstances(std::string) {
  return false;
}

void TUsbData::CollectData() {
  if (fDataAlreadyCollected) return;
  fDataAlreadyCollected = true;
  const std::queue<UsbDevice> devices = GetUsbDeviceInfomation();
  if (devices.empty()) return;
  PopulateData(devices);
}

std::queue<UsbDevice> TUsbData::GetUsbDeviceInfomation() {
  WriteDebug("TUsbData::GetUsbDeviceInfomation: Begin");
  const std::string text = DeviceListSource(*this).Read();
  if (text.empty()) return std::queue<UsbDevice>();
  std::queue<UsbDevice> devices =
      CutDeviceList(text, [this](const std::string& type) { WriteStatus(type + " can't match the data"); });
  WriteDebug("TUsbData::GetUsbDeviceInfomation: End");
  return devices;
}

void TUsbData::PopulateData(std::queue<UsbDevice> devices) {
  WriteDebug("TUsbData::PopulateData: Begin");
  for (; !devices.empty(); devices.pop()) {
    const UsbDevice& device = devices.front();
    if (device.GetDeviceType() == UsbDevice::kHub && device.getTopology()->getLevel() == "00") {
      FillControllerProperties(device);
    }
    FillDeviceProperties(device);
  }
  WriteDebug("TUsbData::PopulateData: End");
}
