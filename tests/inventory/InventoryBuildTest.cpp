// The one-shot build of the lists and the classification of records: what is filed where and in which order,
// and that a build is never made twice.
#include <memory>
#include <queue>

#include "host/TQSVException.h"
#include "inventory/TUsbControllerData.h"
#include "inventory/TUsbDeviceData.h"
#include "inventory/TUsbHubData.h"
#include "inventory/TUsbPortData.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::TQSVException;
using standin::HostOperation;
using ::testing::Contains;
using ::testing::Not;
using Names = std::vector<std::string>;

constexpr const char* kDeviceFile = "/proc/bus/usb/devices";

/// A root hub's block of a device list; an endpoint line closes it.
std::string RootHubBlock(const std::string& bus, const std::string& ports) {
  return "T:  Bus=" + bus + " Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= " + ports +
         "\nI:  If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\nE:  Ad=81(I)\n";
}

class InventoryBuild : public InventoryTest {
 protected:
  void GiveDeviceList(const std::string& text) { machine->files[kDeviceFile] = text; }

  void Populate(const std::vector<UsbDevice>& records) {
    std::queue<UsbDevice> queue;
    for (const UsbDevice& record : records) queue.push(record);
    inventory.PopulateData(queue);
    EXPECT_EQ(queue.size(), records.size()) << "works on a copy";
  }

  static Names Controllers() { return TextsOf(Inventory::fUsbControllerData, "DeviceID"); }
  static Names Hubs() { return TextsOf(Inventory::fUsbHubData, "Name"); }
  static Names Ports() { return TextsOf(Inventory::fUsbPortData, "Name"); }
  static Names Devices() { return TextsOf(Inventory::fUsbDeviceData, "Name"); }
  static void ExpectNothingFiled() {
    EXPECT_TRUE(Inventory::fUsbControllerData.empty());
    EXPECT_TRUE(Inventory::fUsbHubData.empty());
    EXPECT_TRUE(Inventory::fUsbPortData.empty());
    EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
  }

  std::vector<std::unique_ptr<TUsbData>> OneProviderPerClass() {
    std::vector<std::unique_ptr<TUsbData>> providers;
    providers.push_back(std::make_unique<TUsbControllerData>(ClassNamed("KALDO_USBController"), &handle));
    providers.push_back(std::make_unique<TUsbHubData>(ClassNamed("KALDO_USBHub"), &handle));
    providers.push_back(std::make_unique<TUsbPortData>(ClassNamed("KALDO_USBPort"), &handle));
    providers.push_back(std::make_unique<TUsbDeviceData>(ClassNamed("KALDO_USBDevice"), &handle));
    return providers;
  }
};

TEST_F(InventoryBuild, FilesARootHubAsControllerHubAndPorts) {
  Populate({MakeHub({With(kRootHubLine, "MxCh= 4", "MxCh= 1")})});
  EXPECT_EQ(Controllers(), Names{"Bus 01  Device   1"});
  EXPECT_EQ(Hubs(), Names{"Bus 01  Device   1"});
  EXPECT_EQ(Ports(), Names{"Bus 01  Device   1 Port 00"});
  EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
}

TEST_F(InventoryBuild, LogsARootHubAsControllerFirstThenAsHub) {
  Populate({MakeHub({With(kRootHubLine, "MxCh= 4", "MxCh= 0")})});
  EXPECT_EQ(
      log,
      (Log{Debug("TUsbData::PopulateData: Begin"), Debug("TUsbData::FillControllerProperties: Begin"),
           Debug("TUsbData::GetKeyProperties: Begin"), Debug("TUsbData::GetKeyProperties: End"),
           Debug("TUsbData::FillControllerProperties: End"), Debug("TUsbData::FillDeviceProperties: Begin"),
           Debug("TUsbData::DisplayDeviceDescriptor: Begin"), Debug("TUsbData::DisplayDeviceDescriptor: End"),
           Debug("TUsbData::GetKeyProperties: Begin"), Debug("TUsbData::GetKeyProperties: End"),
           Debug("TUsbData::FillPortProperties: Begin"), Debug("Total Ports0"),
           Debug("TUsbData::FillPortProperties: End"), Debug("TUsbData::FillDeviceProperties: End"),
           Debug("TUsbData::PopulateData: End")}));
}

TEST_F(InventoryBuild, FilesTwoRootHubsInTheirOrder) {
  Populate({MakeHub({With(With(kRootHubLine, "Bus=01", "Bus=02"), "MxCh= 4", "MxCh= 2")}),
            MakeHub({With(kRootHubLine, "MxCh= 4", "MxCh= 1")})});
  EXPECT_EQ(Controllers(), (Names{"Bus 02  Device   1", "Bus 01  Device   1"}));
  EXPECT_EQ(Hubs(), (Names{"Bus 02  Device   1", "Bus 01  Device   1"}));
  EXPECT_EQ(Ports(), (Names{"Bus 02  Device   1 Port 00", "Bus 02  Device   1 Port 01",
                            "Bus 01  Device   1 Port 00"}));
}

TEST_F(InventoryBuild, FilesAHubBelowTheRootWithoutAController) {
  Populate({MakeHub({kHubLine})});
  EXPECT_TRUE(Inventory::fUsbControllerData.empty());
  EXPECT_EQ(Hubs(), Names{"Bus 01  Device  12"});
  EXPECT_EQ(Ports(), (Names{"Bus 01  Device  12 Port 00", "Bus 01  Device  12 Port 01"}));
}

TEST_F(InventoryBuild, TakesOnlyTheLevelWrittenAsTwoZerosForARoot) {
  for (const char* level : {"0", " 0", "000", " 00", "00 ", ""}) {
    Populate({MakeHub({With(kRootHubLine, "Lev=00", "Lev=" + std::string(level))})});
    EXPECT_TRUE(Inventory::fUsbControllerData.empty()) << level;
  }
  EXPECT_EQ(Inventory::fUsbHubData.size(), 6U);
}

TEST_F(InventoryBuild, FilesAnOrdinaryRecordAtTheRootLevelAsADeviceOnly) {
  Populate({MakeDevice({kRootHubLine})});
  EXPECT_TRUE(Inventory::fUsbControllerData.empty());
  EXPECT_TRUE(Inventory::fUsbHubData.empty());
  EXPECT_TRUE(Inventory::fUsbPortData.empty());
  EXPECT_EQ(Devices(), Names{"Bus 01  Device   1"});
}

TEST_F(InventoryBuild, OfNoRecordsOnlyLogsItsFrame) {
  Populate({});
  ExpectNothingFiled();
  EXPECT_EQ(log, (Log{Debug("TUsbData::PopulateData: Begin"), Debug("TUsbData::PopulateData: End")}));
}

TEST_F(InventoryBuild, StopsAtAnErrorAndKeepsWhatWasFiledBefore) {
  HostCalls::Fail(HostOperation::kMakeStringValue, "Bus 01  Device  12", 1, ThrowHostError);
  EXPECT_THROW(Populate({MakeHub({With(kRootHubLine, "MxCh= 4", "MxCh= 1")}), MakeHub({kHubLine}),
                         MakeDevice({kDeviceLine})}),
               TQSVException);
  EXPECT_EQ(Controllers(), Names{"Bus 01  Device   1"});
  EXPECT_EQ(Hubs(), Names{"Bus 01  Device   1"});
  EXPECT_EQ(Ports(), Names{"Bus 01  Device   1 Port 00"});
  EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
  EXPECT_THAT(log, Not(Contains(Debug("TUsbData::PopulateData: End"))));
}

TEST_F(InventoryBuild, MarksItselfDoneBeforeItReadsAnything) {
  std::vector<bool> doneAtCall;
  machine->onCall = [&doneAtCall](const std::string&) {
    doneAtCall.push_back(Inventory::fDataAlreadyCollected);
  };
  inventory.CollectData();
  ASSERT_FALSE(doneAtCall.empty());
  EXPECT_EQ(doneAtCall, std::vector<bool>(doneAtCall.size(), true));
}

TEST_F(InventoryBuild, ReadsTheDeviceListAndThenFilesIt) {
  GiveDeviceList(RootHubBlock("01", "0"));
  inventory.CollectData();
  EXPECT_TRUE(Inventory::fDataAlreadyCollected);
  EXPECT_EQ(Controllers(), Names{"Bus 01  Device   1"});
  ASSERT_GE(log.size(), 5U);
  EXPECT_EQ(Log(log.begin(), log.begin() + 5),
            (Log{Debug("TUsbData::GetUsbDeviceInfomation: Begin"), Status("E can't match the data"),
                 Status(" can't match the data"), Debug("TUsbData::GetUsbDeviceInfomation: End"),
                 Debug("TUsbData::PopulateData: Begin")}));
  EXPECT_EQ(log.back(), Debug("TUsbData::PopulateData: End"));
}

TEST_F(InventoryBuild, OfAMachineWithoutADeviceListStaysEmptyAndIsNotTriedAgain) {
  inventory.CollectData();
  EXPECT_TRUE(Inventory::fDataAlreadyCollected);
  ExpectNothingFiled();
  EXPECT_EQ(log, (Log{Debug("TUsbData::GetUsbDeviceInfomation: Begin"),
                      Status("Could not open usb device file "), Status("USB device file is empty")}));
  const std::vector<std::string> firstCalls = calls;
  GiveDeviceList(RootHubBlock("01", "2"));
  inventory.CollectData();
  EXPECT_EQ(calls, firstCalls);
  ExpectNothingFiled();
}

TEST_F(InventoryBuild, OfAListWithoutDevicesFilesNothing) {
  GiveDeviceList("B:  Alloc=  0/800 us ( 0%)\n");
  inventory.CollectData();
  ExpectNothingFiled();
  EXPECT_EQ(log.back(), Debug("TUsbData::GetUsbDeviceInfomation: End"));
}

TEST_F(InventoryBuild, OfAnEmptyFileLeavesEveryProviderWithoutInstances) {
  GiveDeviceList("");
  for (const auto& provider : OneProviderPerClass()) {
    provider->CollectData();
    TUsb& base = *provider;
    EXPECT_FALSE(base.GetCIMInstances());
  }
  EXPECT_TRUE(Inventory::fDataAlreadyCollected);
  ExpectNothingFiled();
  EXPECT_EQ(calls, (std::vector<std::string>{"exists /proc/bus/usb/devices", "capture /proc/bus/usb/devices",
                                             "spawn usb-devices 300"}));
}

TEST_F(InventoryBuild, IsSharedByTheProvidersOfAllClassesWhicheverComesFirst) {
  for (std::size_t first = 0; first < 4; ++first) {
    Inventory::Reset();
    GiveDeviceList(RootHubBlock("01", "2"));
    const auto providers = OneProviderPerClass();
    providers[first]->CollectData();
    const std::vector<std::string> firstCalls = calls;
    log.clear();
    GiveDeviceList(RootHubBlock("02", "3"));
    for (const auto& provider : providers) provider->CollectData();
    EXPECT_EQ(calls, firstCalls);
    EXPECT_EQ(log, Log());
    EXPECT_EQ(Controllers(), Names{"Bus 01  Device   1"});
    EXPECT_EQ(Hubs(), Names{"Bus 01  Device   1"});
    EXPECT_EQ(Ports(), (Names{"Bus 01  Device   1 Port 00", "Bus 01  Device   1 Port 01"}));
    EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
  }
}

TEST_F(InventoryBuild, ThatCouldNotReadTheListIsNeverTriedAgain) {
  HostCalls::Fail(HostOperation::kSpawnProcess, "", 1, ThrowHostError);
  EXPECT_THROW(inventory.CollectData(), TQSVException);
  EXPECT_TRUE(Inventory::fDataAlreadyCollected);
  const std::vector<std::string> firstCalls = calls;
  GiveDeviceList(RootHubBlock("01", "2"));
  Inventory another(ClassNamed("KALDO_USBPort"), &handle);
  another.CollectData();
  EXPECT_EQ(calls, firstCalls);
  ExpectNothingFiled();
}

TEST_F(InventoryBuild, ThatFailedMidwayIsNeverTriedAgain) {
  GiveDeviceList(RootHubBlock("01", "1") + RootHubBlock("02", "1"));
  HostCalls::Fail(HostOperation::kMakeStringValue, "Bus 02  Device   1", 1, ThrowAnotherError);
  EXPECT_THROW(inventory.CollectData(), AnotherError);
  EXPECT_TRUE(Inventory::fDataAlreadyCollected);
  const std::vector<std::string> firstCalls = calls;
  inventory.CollectData();
  EXPECT_EQ(calls, firstCalls);
  EXPECT_EQ(Controllers(), Names{"Bus 01  Device   1"});
  EXPECT_EQ(Hubs(), Names{"Bus 01  Device   1"});
  EXPECT_EQ(Ports(), Names{"Bus 01  Device   1 Port 00"});
}

TEST_F(InventoryBuild, TakesTheSystemsNamesOfTheProviderThatRanFirst) {
  GiveDeviceList(RootHubBlock("01", "1"));
  HostCalls made;
  TUsbPortData ports(ClassNamed("KALDO_USBPort"), &handle);
  ports.CollectData();
  EXPECT_EQ(made.Count(HostOperation::kGetClassNamespace), 3);
  EXPECT_EQ(made.Count(HostOperation::kGetClassNamespace, "KALDO_USBPort"), 3);
}

}  // namespace
}  // namespace usbinfo_test
