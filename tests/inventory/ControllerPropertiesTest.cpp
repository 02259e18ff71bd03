// The controller entry that a root hub yields: its exact properties, its log lines, and what a failure
// leaves.
#include "host/TQSVException.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::TQSVException;
using standin::HostOperation;

class ControllerProperties : public InventoryTest {
 protected:
  /// The one entry made from a root hub with these string lines.
  Properties EntryOf(const std::vector<std::string>& stringLines) {
    std::vector<std::string> lines = {kRootHubLine};
    lines.insert(lines.end(), stringLines.begin(), stringLines.end());
    inventory.FillControllerProperties(MakeHub(lines));
    return Describe(Inventory::fUsbControllerData.back());
  }

  Typed InterfaceTypeOf(const std::string& productText) {
    return EntryOf({"S:  Product=" + productText}).at("InterfaceType");
  }
};

TEST_F(ControllerProperties, AreExactlySix) {
  EXPECT_EQ(EntryOf({"S:  Manufacturer=Linux", "S:  Product=EHCI Host Controller", "S:  SerialNumber=0000"}),
            (Properties{{"Description", Text("EHCI Host Controller")},
                        {"DeviceID", Text("Bus 01  Device   1")},
                        {"InterfaceType", Uint16(4)},
                        {"SystemCreationClassName", Text("KALDO_ComputerSystem")},
                        {"SystemName", Text("testhost")},
                        {"CreationClassName", Text("KALDO_USBController")}}));
}

TEST_F(ControllerProperties, LogTheirStepsInOrder) {
  EntryOf({"S:  Product=EHCI Host Controller"});
  EXPECT_EQ(log, (Log{Debug("TUsbData::FillControllerProperties: Begin"),
                      Debug("TUsbData::GetKeyProperties: Begin"), Debug("TUsbData::GetKeyProperties: End"),
                      Debug("TUsbData::FillControllerProperties: End")}));
}

TEST_F(ControllerProperties, InterfaceTypeIsOneWithoutAKnownName) {
  EXPECT_EQ(InterfaceTypeOf("xHCI Host Controller"), Uint16(1));
  EXPECT_EQ(InterfaceTypeOf("OHC I"), Uint16(1));
  EXPECT_EQ(InterfaceTypeOf(""), Uint16(1));
}

TEST_F(ControllerProperties, InterfaceTypeNamesTheKindInAnyLetterCase) {
  EXPECT_EQ(InterfaceTypeOf("UHCI Host Controller"), Uint16(2));
  EXPECT_EQ(InterfaceTypeOf("uhci"), Uint16(2));
  EXPECT_EQ(InterfaceTypeOf("oHcI"), Uint16(3));
  EXPECT_EQ(InterfaceTypeOf("ehci_hcd"), Uint16(4));
}

TEST_F(ControllerProperties, InterfaceTypeIsZeroWithoutAProductLine) {
  const Properties entry = EntryOf({});
  EXPECT_EQ(entry.at("InterfaceType"), Uint16(0));
  EXPECT_EQ(entry.at("Description"), Text("Not Available"));
}

TEST_F(ControllerProperties, DescriptionIsStoredEvenWhenEmpty) {
  EXPECT_EQ(EntryOf({"S:  Product="}).at("Description"), Text(""));
}

TEST_F(ControllerProperties, DescriptionIsNotTrimmed) {
  EXPECT_EQ(EntryOf({"S:  Product=  Host  "}).at("Description"), Text("  Host  "));
}

TEST_F(ControllerProperties, IdentifierAddsNoBlanksToBusAndDeviceNumber) {
  inventory.FillControllerProperties(MakeHub({"T:  Bus=01Lev=00 Prnt=00 Dev#=1 Spd=480"}));
  EXPECT_EQ(Describe(Inventory::fUsbControllerData.at(0)).at("DeviceID"), Text("Bus 01 Device 1"));
}

TEST_F(ControllerProperties, IdentifierKeepsTheBlanksOfBusAndDeviceNumber) {
  inventory.FillControllerProperties(MakeHub({"T:  Bus=  7  Lev=00 Prnt=00 Dev#=   42  Spd=480"}));
  EXPECT_EQ(Describe(Inventory::fUsbControllerData.at(0)).at("DeviceID"), Text("Bus   7   Device    42 "));
}

TEST_F(ControllerProperties, EqualTheRootHubsIdentifier) {
  const UsbDevice rootHub = MakeHub({kRootHubLine});
  inventory.FillControllerProperties(rootHub);
  inventory.FillDeviceProperties(rootHub);
  EXPECT_EQ(TextsOf(Inventory::fUsbControllerData, "DeviceID"), TextsOf(Inventory::fUsbHubData, "DeviceID"));
}

TEST_F(ControllerProperties, AreFiledAtTheEndAndOnlyAmongControllers) {
  inventory.FillControllerProperties(MakeHub({kRootHubLine}));
  inventory.FillControllerProperties(MakeHub({With(kRootHubLine, "Bus=01", "Bus=02")}));
  EXPECT_EQ(TextsOf(Inventory::fUsbControllerData, "DeviceID"),
            (std::vector<std::string>{"Bus 01  Device   1", "Bus 02  Device   1"}));
  EXPECT_TRUE(Inventory::fUsbHubData.empty());
  EXPECT_TRUE(Inventory::fUsbPortData.empty());
  EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
}

TEST_F(ControllerProperties, LeaveBothWorkingMapsEmpty) {
  inventory.FillControllerProperties(MakeHub({kRootHubLine}));
  EXPECT_TRUE(inventory.fProperties.empty());
  EXPECT_TRUE(inventory.fPortProperties.empty());
}

TEST_F(ControllerProperties, HostErrorLeavesThemHalfAssembledAndUnfiled) {
  HostCalls::Fail(HostOperation::kMakeStringValue, "Bus 01  Device   1", 1, ThrowHostError);
  EXPECT_THROW(inventory.FillControllerProperties(MakeHub({kRootHubLine, "S:  Product=one"})), TQSVException);
  EXPECT_EQ(Describe(inventory.fProperties), (Properties{{"Description", Text("one")}}));
  EXPECT_TRUE(Inventory::fUsbControllerData.empty());
  EXPECT_EQ(log, (Log{Debug("TUsbData::FillControllerProperties: Begin")}));
}

TEST_F(ControllerProperties, OtherErrorLeavesThemHalfAssembledAndUnfiled) {
  HostCalls::Fail(HostOperation::kMakeNumberValue, "4", 1, ThrowAnotherError);
  EXPECT_THROW(inventory.FillControllerProperties(MakeHub({kRootHubLine, "S:  Product=ehci"})), AnotherError);
  EXPECT_EQ(Describe(inventory.fProperties),
            (Properties{{"Description", Text("ehci")}, {"DeviceID", Text("Bus 01  Device   1")}}));
  EXPECT_TRUE(Inventory::fUsbControllerData.empty());
}

TEST_F(ControllerProperties, WhatAFailureLeftWinsOverTheNextController) {
  HostCalls::Fail(HostOperation::kMakeStringValue, "Bus 01  Device   1", 1, ThrowHostError);
  EXPECT_THROW(inventory.FillControllerProperties(MakeHub({kRootHubLine, "S:  Product=one"})), TQSVException);
  const Properties second = EntryOf({"S:  Product=two"});
  EXPECT_EQ(second.at("Description"), Text("one"));
  EXPECT_TRUE(inventory.fProperties.empty());
}

TEST_F(ControllerProperties, AreFiledWithEmptyNamesWhenTheHostDoesNotKnowThem) {
  HostCalls::Fail(HostOperation::kGetSystemCreationClassName, "", HostCalls::kEvery, ThrowHostError);
  const Properties entry = EntryOf({"S:  Product=uhci"});
  EXPECT_EQ(entry, (Properties{{"Description", Text("uhci")},
                               {"DeviceID", Text("Bus 01  Device   1")},
                               {"InterfaceType", Uint16(2)},
                               {"SystemCreationClassName", Text("")},
                               {"SystemName", Text("")},
                               {"CreationClassName", Text("KALDO_USBController")}}));
}

}  // namespace
}  // namespace usbinfo_test
