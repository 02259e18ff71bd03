// The fixture of the inventory's tests: empty lists and an inventory that opens what it keeps to itself, on a
// fresh host; and device records made of lines as a device list holds them.
#pragma once

#include <string>
#include <vector>

#include "host/TPluginManagerProvider.h"
#include "inventory/TUsbData.h"
#include "tests/inventory/HostFailure.h"
#include "tests/inventory/LogLines.h"
#include "tests/inventory/PropertyView.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {

class Inventory : public TUsbData {
 public:
  using TUsbData::fDataAlreadyCollected;
  using TUsbData::fPortProperties;
  using TUsbData::fProperties;
  using TUsbData::fUsbControllerData;
  using TUsbData::fUsbDeviceData;
  using TUsbData::fUsbHubData;
  using TUsbData::fUsbPortData;
  using TUsbData::TUsbData;

  /// The process-wide state as it is when the plug-in is loaded.
  static void Reset() {
    fUsbControllerData.clear();
    fUsbHubData.clear();
    fUsbPortData.clear();
    fUsbDeviceData.clear();
    fDataAlreadyCollected = false;
  }
};

class InventoryTest : public HostTest {
 protected:
  InventoryTest() { Inventory::Reset(); }
  ~InventoryTest() override { Inventory::Reset(); }

  boost::shared_ptr<standin::CimClass> ClassNamed(const std::string& name) {
    return host.Cimv2()->ClassForRequest(name);
  }

  NKESTA20::TPluginManagerProvider handle;
  Inventory inventory{ClassNamed("KALDO_USBHub"), &handle};
};

// Lines of a root hub with four ports, of a hub with two ports on it, and of a device further down.
inline const std::string kRootHubLine = "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 4";
inline const std::string kHubLine = "T:  Bus=01 Lev=01 Prnt=01 Port=02 Cnt=01 Dev#= 12 Spd=12   MxCh= 2";
inline const std::string kDeviceLine = "T:  Bus=01 Lev=02 Prnt=12 Port=01 Cnt=01 Dev#=123 Spd=1.5  MxCh= 0";
inline const std::string kDescriptorLine = "D:  Ver= 1.10 Cls=e0(wlcon) Sub=12 Prot=34 MxPS= 8 #Cfgs=  5";
inline const std::string kProductLine = "P:  Vendor=12ab ProdID=00ff Rev= 2.06";

/// `line` with its one `part` replaced; fails the test when the part is not there.
inline std::string With(std::string line, const std::string& part, const std::string& replacement) {
  const std::size_t at = line.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return at == std::string::npos ? line : line.replace(at, part.length(), replacement);
}

/// A record of the given type to which the lines were applied, each by its first letter.
inline UsbDevice MakeRecord(int type, const std::vector<std::string>& lines) {
  UsbDevice record;
  record.SetDeviceType(type);
  for (const std::string& line : lines) {
    if (line[0] == 'T') record.setTopology(line);
    if (line[0] == 'D') record.setDescriptor(line);
    if (line[0] == 'P') record.setProduct(line);
    if (line[0] == 'S') record.setDeviceInfo(line);
  }
  return record;
}

inline UsbDevice MakeHub(const std::vector<std::string>& lines) {
  return MakeRecord(UsbDevice::kHub, lines);
}

inline UsbDevice MakeDevice(const std::vector<std::string>& lines) {
  return MakeRecord(UsbDevice::kOrdinaryDevice, lines);
}

}  // namespace usbinfo_test
