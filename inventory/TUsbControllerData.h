// The provider of KALDO_USBController: one instance per controller entry of the inventory.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "inventory/TUsbData.h"

class TUsbControllerData : public TUsbData {
 public:
  explicit TUsbControllerData(boost::shared_ptr<NKESTA20::ICIMClass> cls);
  TUsbControllerData(boost::shared_ptr<NKESTA20::ICIMClass> cls, NKESTA20::TPluginManagerProvider* handle);
  ~TUsbControllerData() override;

  using TUsbData::GetCIMInstances;
  /// Makes an instance of class `className` per entry; true if at least one was made.
  bool GetCIMInstances(std::string className) override;
};
