// The provider of KALDO_USBDevice: one instance per device entry of the inventory.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "inventory/TUsbData.h"

class TUsbDeviceData : public TUsbData {
 public:
  explicit TUsbDeviceData(boost::shared_ptr<NKESTA20::ICIMClass> cls);
  TUsbDeviceData(boost::shared_ptr<NKESTA20::ICIMClass> cls, NKESTA20::TPluginManagerProvider* handle);
  ~TUsbDeviceData() override;

  using TUsbData::GetCIMInstances;
  /// Makes an instance of class `className` per entry; true if at least one was made.
  bool GetCIMInstances(std::string className) override;
};
