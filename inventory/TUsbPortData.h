// The provider of KALDO_USBPort: one instance per port entry of the inventory.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "inventory/TUsbData.h"

class TUsbPortData : public TUsbData {
 public:
  explicit TUsbPortData(boost::shared_ptr<NKESTA20::ICIMClass> cls);
  TUsbPortData(boost::shared_ptr<NKESTA20::ICIMClass> cls, NKESTA20::TPluginManagerProvider* handle);
  ~TUsbPortData() override;

  using TUsbData::GetCIMInstances;
  /// Makes an instance of class `className` per entry; true if at least one was made.
  bool GetCIMInstances(std::string className) override;
};
