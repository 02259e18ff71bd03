// The provider of KALDO_USBHub: one instance per hub entry of the inventory.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "inventory/TUsbData.h"

class TUsbHubData : public TUsbData {
 public:
  explicit TUsbHubData(boost::shared_ptr<NKESTA20::ICIMClass> cls);
  TUsbHubData(boost::shared_ptr<NKESTA20::ICIMClass> cls, NKESTA20::TPluginManagerProvider* handle);
  ~TUsbHubData() override;

  using TUsbData::GetCIMInstances;
  /// Makes an instance of class `className` per entry; true if at least one was made.
  bool GetCIMInstances(std::string className) override;
};
