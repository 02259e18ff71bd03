// The tables for people: sections, titles and rows from a captured list, and small inventories that show one
// rule each.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"
#include "cli/format/TableFormat.h"
#include "cli/model/UsbIds.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using NKESTA20::TCIMValue;
using testing::ElementsAre;
using testing::HasSubstr;

namespace usbinfo_test {
namespace {

class TableFormatTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderTable(Collected(), options); }

  static cli::RenderOptions OfClasses() {
    cli::RenderOptions ofClasses{false};
    ofClasses.showsClasses = true;
    return ofClasses;
  }

  cli::RenderOptions options = OfClasses();
};

constexpr const char* kSmallTable = R"(KALDO_USBController: 1 instance
BUS CONTROLLER
01  xHCI Host Controller

KALDO_USBHub: 2 instances
BUS DEV ID        PORTS PRODUCT              MAKER                         SERIAL
01    1 1d6b:0002     2 xHCI Host Controller Linux 6.1.0-56-amd64 xhci-hcd 0000:00:01.0
01    2 0409:55aa     2 QEMU USB Hub         QEMU                          314159

KALDO_USBPort: 4 instances
BUS HUB PORT      SPEED STATUS
01    1 00   480 Mbit/s in use
01    1 01   480 Mbit/s free
01    2 00    12 Mbit/s free
01    2 01    12 Mbit/s in use

KALDO_USBDevice: 1 instance
BUS DEV ID             SPEED PRODUCT   MAKER SERIAL
01    3 46f4:0001 1.5 Mbit/s (no name)

KALDO_USBPortOnHub: 4 instances
BUS HUB PORT NAME OF THE HUB
01    1 00   xHCI Host Controller
01    1 01   xHCI Host Controller
01    2 00   QEMU USB Hub
01    2 01   QEMU USB Hub

KALDO_USBConnection: 2 instances
BUS HUB PORT DEV PLUGGED IN
01    2 01     3 (no name)
01    1 00     2 QEMU USB Hub
)";

/// A root hub with a hub that has a nameless device.
std::string SmallList() {
  return "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\n"
         "D:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 #Cfgs=  1\n"
         "P:  Vendor=1d6b ProdID=0002 Rev= 6.01\n"
         "S:  Manufacturer=Linux 6.1.0-56-amd64 xhci-hcd\n"
         "S:  Product=xHCI Host Controller\n"
         "S:  SerialNumber=0000:00:01.0\n"
         "C:* #Ifs= 1 Cfg#= 1 Atr=a0 MxPwr=  0mA\n"
         "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n"
         "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  2 Spd=12   MxCh= 2\n"
         "D:  Ver= 1.10 Cls=09(hub  ) Sub=00 Prot=00 MxPS= 8 #Cfgs=  1\n"
         "P:  Vendor=0409 ProdID=55aa Rev= 1.01\n"
         "S:  Manufacturer=QEMU\n"
         "S:  Product=QEMU USB Hub\n"
         "S:  SerialNumber=314159\n"
         "C:* #Ifs= 1 Cfg#= 1 Atr=a0 MxPwr=  0mA\n"
         "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n"
         "T:  Bus=01 Lev=02 Prnt=02 Port=01 Cnt=01 Dev#=  3 Spd=1.5  MxCh= 0\n"
         "D:  Ver= 2.00 Cls=00(>ifc ) Sub=00 Prot=00 MxPS= 8 #Cfgs=  1\n"
         "P:  Vendor=46f4 ProdID=0001 Rev= 0.00\n"
         "C:* #Ifs= 1 Cfg#= 1 Atr=a0 MxPwr=  0mA\n"
         "I:* If#= 0 Alt= 0 #EPs= 1 Cls=03(HID  ) Sub=01 Prot=01 Driver=usbhid\n\n";
}

TEST_F(TableFormatTest, HasASectionForEachClassWithColumnsThatSuitIt) {
  Collect(SmallList());
  EXPECT_EQ(Render(), kSmallTable);
}

TEST_F(TableFormatTest, LeavesOutClassesWithoutInstances) {
  AddPort("Bus 02  Device   7 Port 03", 12000000, "Device connected");
  EXPECT_EQ(Render(),
            "KALDO_USBPort: 1 instance\n"
            "BUS HUB PORT     SPEED STATUS\n"
            "02    7 03   12 Mbit/s in use\n");
}

TEST_F(TableFormatTest, TakesPlacesOfAssociationsFromWhatTheyLink) {
  Path port = AddPort("Bus 03  Device   4 Port 05", 12000000, "x");
  Path device = AddDevice("Bus 03  Device   6", "Camera", 2);
  Associate("KALDO_USBConnection", port, device);
  EXPECT_THAT(Render(), HasSubstr("KALDO_USBConnection: 1 instance\n"
                                  "BUS HUB PORT DEV PLUGGED IN\n"
                                  "03    4 05     6 Camera\n"));
}

TEST_F(TableFormatTest, ShowsThePropertiesThatAreAskedForInTheirOrder) {
  AddDevice("Bus 01  Device   2", "Camera", 3);
  options.columns = {"Speed", "DeviceID"};
  EXPECT_EQ(Render(),
            "KALDO_USBDevice: 1 instance\n"
            "Speed DeviceID\n"
            "3     Bus 01  Device   2\n");
}

TEST_F(TableFormatTest, ShowsTypedValuesAsText) {
  AddPort("Bus 01  Device   1 Port 00", 480000000, "No device connected");
  options.columns = {"Speed", "StatusDescriptions"};
  EXPECT_EQ(Render(),
            "KALDO_USBPort: 1 instance\n"
            "Speed     StatusDescriptions\n"
            "480000000 {No device connected}\n");
}

TEST_F(TableFormatTest, ShowsAssociationsAsObjectPathsWhereTheyAreAskedFor) {
  Associate("KALDO_USBConnection", AddPort("p", 1, "x"), AddDevice("d", "", 1));
  options.columns = {"Dependent"};
  EXPECT_EQ(Render(),
            "KALDO_USBConnection: 1 instance\n"
            "Dependent\n"
            "KALDO_USBDevice.CreationClassName=\"KALDO_USBDevice\",DeviceID=\"d\","
            "SystemCreationClassName=\"KALDO_ComputerSystem\",SystemName=\"testhost\"\n");
}

TEST_F(TableFormatTest, LeavesOutClassesWithoutAnyOfTheColumns) {
  AddController("Bus 01  Device   1", "c");
  AddPort("Bus 01  Device   1 Port 00", 1, "x");
  options.columns = {"Antecedent", "InterfaceType", "Description"};
  EXPECT_EQ(Render(),
            "KALDO_USBController: 1 instance\n"
            "InterfaceType Description\n"
            "              c\n");
  options.columns = {"Antecedent"};
  EXPECT_EQ(Render(), "");
}

TEST_F(TableFormatTest, PutsOtherPeoplesNamesBesideTheDevicesOwn) {
  AddDevice("Bus 01  Device   2", "Camera", 3);
  const cli::UsbIds names("0000  Maker\n\t0000  Webcam\n");
  options.names = &names;
  EXPECT_EQ(Render(),
            "KALDO_USBDevice: 1 instance\n"
            "BUS DEV ID             SPEED PRODUCT MAKER SERIAL KNOWN AS\n"
            "01    2 0000:0000 480 Mbit/s Camera               Webcam (Maker)\n");
}

TEST_F(TableFormatTest, KnowsThePropertiesOfAllClassesOnceEach) {
  const std::vector<std::string> names = cli::PropertyNames();
  EXPECT_EQ(names.size(), 24U);
  EXPECT_EQ(names.front(), "Antecedent");
  EXPECT_EQ(names.back(), "VendorID");
  EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
}

CommandResult RunTable(std::vector<std::string> options, const std::string& list = SmallList()) {
  const std::vector<std::string> common = {"--devices", "-",        "--system-name",
                                           "testhost",  "--format", "table"};
  options.insert(options.begin(), common.begin(), common.end());
  return Command(std::move(options)).Input(list).Run();
}

TEST(TableOption, PrintsADeviceInARowWithWhatTheKernelKnowsOfIt) {
  const CommandResult result = RunTable({});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output,
            "PLACE KIND     NAME         VENDOR ID        SERIAL      SPEED DRIVER\n"
            "1-1   hub      QEMU USB Hub QEMU   0409:55aa 314159  12 Mbit/s hub\n"
            "1-1.2 keyboard (no name)           46f4:0001        1.5 Mbit/s usbhid\n");
  EXPECT_EQ(result.errors, "");
}

TEST(TableOption, PrintsTheFreeSocketsInstead) {
  EXPECT_EQ(RunTable({"--free", "--columns", "Place,NAME,speed"}).output,
            "PLACE NAME      SPEED\n"
            "1-1.1 free  12 Mbit/s\n"
            "1-2   free 480 Mbit/s\n");
}

TEST(TableOption, PrintsTheSameDevicesWhereOnlyWhatIsPluggedInIsAskedFor) {
  EXPECT_EQ(RunTable({"--occupied"}).output, RunTable({}).output);
}

TEST(TableOption, PrintsClassesThatAreAskedFor) {
  const CommandResult result =
      RunTable({"--class", "controller", "--class", "hub", "--class", "port", "--class", "device", "--class",
                "portonhub", "--class", "connection"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, kSmallTable);
  EXPECT_EQ(result.errors, "");
}

TEST(TableOption, PrintsNothingOfAnEmptyList) {
  const CommandResult result = RunTable({}, "");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
}

TEST(ColumnsOption, PicksColumns) {
  const CommandResult result =
      RunTable({"--class", "hub", "--class", "device", "--columns", "NumberOfPorts,VendorID"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output,
            "KALDO_USBHub: 2 instances\n"
            "NumberOfPorts VendorID\n"
            "2             7531\n"
            "2             1033\n"
            "\n"
            "KALDO_USBDevice: 1 instance\n"
            "VendorID\n"
            "18164\n");
}

TEST(ColumnsOption, SaysSoWhenNoClassWithInstancesHasOne) {
  const std::string list = "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  2 Spd=12   MxCh= 0\n\n";
  const CommandResult result = RunTable({"--class", "device", "--columns", "Antecedent,Dependent"}, list);
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(
      result.errors,
      "usbinfo: nothing to show: no class that has instances has Antecedent,Dependent; see usbinfo schema\n");
}

TEST(ColumnsOption, LeavesTheOldFileWhenThereIsNothingToShow) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  const std::string list = "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  2 Spd=12   MxCh= 0\n\n";
  EXPECT_EQ(RunTable({"--class", "device", "--columns", "Antecedent", "--output", path}, list).status, 1);
  EXPECT_EQ(ReadFile(path), "old");
}

}  // namespace
}  // namespace usbinfo_test
