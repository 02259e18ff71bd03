#include "usbfs/UsbDevice.h"

#include <boost/make_shared.hpp>

UsbDevice::UsbDevice()
    : fTopology(boost::make_shared<topology>()),
      fDescriptor(boost::make_shared<descriptor>()),
      fInterface(boost::make_shared<Interface>()),
      fDeviceInfo(boost::make_shared<deviceInfo>()),
      fProduct(boost::make_shared<product>()),
      fConfiguration(boost::make_shared<configuration>()) {}

void UsbDevice::setTopology(std::string line) {
  fTopology->Initialize(line);
}

void UsbDevice::setDescriptor(std::string line) {
  fDescriptor->Initialize(line);
}

void UsbDevice::setInterface(std::string line) {
  fInterface->Initialize(line);
}

void UsbDevice::setDeviceInfo(std::string line) {
  fDeviceInfo->Initialize(line);
}

void UsbDevice::setProduct(std::string line) {
  fProduct->Initialize(line);
}

void UsbDevice::setConfiguration(std::string line) {
  fConfiguration->Initialize(line);
}
