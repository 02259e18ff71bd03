// What the tests of the acquisition share: the machine's words, its log lines, and providers with and without
// a handle.
#pragma once

#include <boost/shared_ptr.hpp>
#include <queue>
#include <string>
#include <vector>

#include "host/TPluginManagerProvider.h"
#include "inventory/TUsbData.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {

const char* const kProcList = "/proc/bus/usb/devices";
const char* const kDebugfsList = "/sys/kernel/debug/usb/devices";

const char* const kTestProc = "exists /proc/bus/usb/devices";
const char* const kReadProc = "capture /proc/bus/usb/devices";
const char* const kTestDebugfs = "exists /sys/kernel/debug/usb/devices";
const char* const kReadDebugfs = "capture /sys/kernel/debug/usb/devices";
const char* const kMount = "system mount -t usbfs usbfs /proc/bus/usb > /dev/null 2>&1";
const char* const kUnmount = "system umount usbfs > /dev/null 2>&1";
const char* const kRunUsbDevices = "spawn usb-devices 300";

const LogLine kBegin = {kDebug, "TUsbData::GetUsbDeviceInfomation: Begin"};
const LogLine kEnd = {kDebug, "TUsbData::GetUsbDeviceInfomation: End"};
const LogLine kCouldNotOpen = {kStatus, "Could not open usb device file "};
const LogLine kCouldNotRead = {kStatus, "Could not read usb device file "};
const LogLine kListIsEmpty = {kStatus, "USB device file is empty"};

class AcquisitionTest : public HostTest {
 protected:
  /// A list of one device without an unmatched line.
  static std::string OneDevice(const std::string& product) {
    return "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 6\nS:  Product=" + product;
  }

  static std::vector<std::string> ProductsOf(std::queue<UsbDevice> devices) {
    std::vector<std::string> products;
    for (; !devices.empty(); devices.pop()) products.push_back(devices.front().getDeviceInfo()->getproduct());
    return products;
  }

  /// The products of the records that one acquisition yields.
  std::vector<std::string> Acquire() { return ProductsOf(provider.GetUsbDeviceInfomation()); }

  /// Has the mount command bring the list.
  void MountBrings(const std::string& text) {
    machine->onCall = [this, text](const std::string& call) {
      if (call == kMount) machine->files[kProcList] = text;
    };
  }

  NKESTA20::TPluginManagerProvider handle;
  TUsbData provider{boost::shared_ptr<NKESTA20::ICIMClass>(), &handle};
};

}  // namespace usbinfo_test
