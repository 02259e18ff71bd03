// The USB inventory: four process-wide lists of property maps, one per class, built once from the kernel's
// device list by the first provider that collects data and read by every later one. The lists live until
// the module is unloaded; the providers that derive from this class only read them. Not thread-safe.
#pragma once

#include <boost/shared_ptr.hpp>
#include <queue>
#include <string>
#include <vector>

#include "host/PropertyMap.h"
#include "provider/TUsb.h"
#include "usbfs/UsbDevice.h"

class TUsbData : public TUsb {
 public:
  TUsbData() = default;
  explicit TUsbData(boost::shared_ptr<NKESTA20::ICIMClass> cls);
  TUsbData(boost::shared_ptr<NKESTA20::ICIMClass> cls, NKESTA20::TPluginManagerProvider* handle);
  ~TUsbData() override;

  using TUsb::GetCIMInstances;
  /// Makes nothing; the derived classes make the instances.
  bool GetCIMInstances(std::string className) override;
  /// Builds the inventory if that has not been tried yet in this process. A build that finds nothing or
  /// throws is not tried again.
  void CollectData() override;

  /// Reads the device list and cuts it into records, in the list's order. Empty when there is no list. (The
  /// operation's name is part of the interface.)
  std::queue<UsbDevice> GetUsbDeviceInfomation();
  /// Files each record: a root hub as a controller too, every hub with its ports, the rest as devices.
  void PopulateData(std::queue<UsbDevice> devices);

  /// File one record, or the ports of one hub, at the end of the lists.
  void FillControllerProperties(UsbDevice rootHub);
  void FillPortProperties(UsbDevice hub);
  void FillDeviceProperties(UsbDevice device);
  /// Adds the values of the descriptor, product and string lines.
  void DisplayDeviceDescriptor(UsbDevice device, NKESTA20::PropertyMap& properties);
  /// An array-of-strings value holding `texts` in order.
  NKESTA20::TCIMValue GetStrCimValue(std::vector<std::string> texts);

  /// Adds the names of the hosting system; empty texts where the host cannot supply them.
  void GetKeyProperties(NKESTA20::PropertyMap& properties);
  /// Add all keys but "DeviceID"; the two without an argument serve the working maps.
  void GetControllerKeyProperties();
  void GetHubKeyProperties(NKESTA20::PropertyMap& properties);
  void GetPortKeyProperties();
  void GetDeviceKeyProperties(NKESTA20::PropertyMap& properties);

 protected:
  static std::vector<NKESTA20::PropertyMap> fUsbPortData;
  static std::vector<NKESTA20::PropertyMap> fUsbControllerData;
  static std::vector<NKESTA20::PropertyMap> fUsbHubData;
  static std::vector<NKESTA20::PropertyMap> fUsbDeviceData;
  static bool fDataAlreadyCollected;

  /// The controller and the port being assembled, both empty between calls.
  NKESTA20::PropertyMap fProperties;
  NKESTA20::PropertyMap fPortProperties;

 private:
  void FillHub(const UsbDevice& hub, unsigned short level, NKESTA20::PropertyMap& properties);
  void FillDevice(const UsbDevice& device, unsigned short level, NKESTA20::PropertyMap& properties);
  void FillPort(const topology& hub, unsigned int index);
};
