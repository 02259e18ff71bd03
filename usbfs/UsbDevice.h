// One device of the list: a handle over one parser per line type, and the device type. Copies are cheap and
// share the parsers, so a line applied through one copy is seen through all; the last copy frees them.
// The cutter fills records, the inventory reads them.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "usbfs/Interface.h"
#include "usbfs/configuration.h"
#include "usbfs/descriptor.h"
#include "usbfs/deviceInfo.h"
#include "usbfs/product.h"
#include "usbfs/topology.h"

class UsbDevice {
 public:
  /// Device types.
  static constexpr int kOrdinaryDevice = 0;
  static constexpr int kHub = 1;

  UsbDevice();

  /// Each passes a whole line of the list to its parser.
  void setTopology(std::string line);
  void setDescriptor(std::string line);
  void setInterface(std::string line);
  void setDeviceInfo(std::string line);
  void setProduct(std::string line);
  void setConfiguration(std::string line);

  /// The shared parsers, never null.
  boost::shared_ptr<topology> getTopology() const { return fTopology; }
  boost::shared_ptr<descriptor> getDescriptor() const { return fDescriptor; }
  boost::shared_ptr<Interface> getInterface() const { return fInterface; }
  boost::shared_ptr<deviceInfo> getDeviceInfo() const { return fDeviceInfo; }
  boost::shared_ptr<product> getProduct() const { return fProduct; }
  boost::shared_ptr<configuration> getConfiguration() const { return fConfiguration; }

  void SetDeviceType(int type) { fDeviceType = type; }
  int GetDeviceType() const { return fDeviceType; }

 private:
  boost::shared_ptr<topology> fTopology;
  boost::shared_ptr<descriptor> fDescriptor;
  boost::shared_ptr<Interface> fInterface;
  boost::shared_ptr<deviceInfo> fDeviceInfo;
  boost::shared_ptr<product> fProduct;
  boost::shared_ptr<configuration> fConfiguration;
  int fDeviceType = kOrdinaryDevice;
};
