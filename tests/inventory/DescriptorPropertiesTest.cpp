// What the descriptor, product and string lines add to a map of whatever content, and the array values.
#include "host/TQSVException.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::PropertyMap;
using NKESTA20::TCIMValue;
using standin::HostOperation;

class DescriptorProperties : public InventoryTest {
 protected:
  Properties AddedTo(PropertyMap map, const std::vector<std::string>& lines) {
    inventory.DisplayDeviceDescriptor(MakeDevice(lines), map);
    return Describe(map);
  }
};

TEST_F(DescriptorProperties, AreExactlyTenWithAllLinesThere) {
  EXPECT_EQ(AddedTo({}, {kDeviceLine, kDescriptorLine, kProductLine, "S:  Manufacturer=Acme",
                         "S:  Product=Flash Disk", "S:  SerialNumber=A1 b2"}),
            (Properties{{"USBVersion", Uint16(110)},
                        {"ClassCode", Uint8(53)},
                        {"SubclassCode", Uint8(1)},
                        {"ProtocolCode", Uint8(3)},
                        {"VendorID", Uint16(0x12ab)},
                        {"USBDeviceID", Uint16(0x00ff)},
                        {"Manufacturer", Text("Acme")},
                        {"Description", Text("Flash Disk")},
                        {"SerialNumber", Text("A1 b2")},
                        {"NumberOfConfigs", Uint8(5)}}));
  EXPECT_EQ(log, (Log{Debug("TUsbData::DisplayDeviceDescriptor: Begin"),
                      Debug("TUsbData::DisplayDeviceDescriptor: End")}));
}

TEST_F(DescriptorProperties, LeaveOutEveryEmptyText) {
  EXPECT_EQ(AddedTo({}, {"S:  Manufacturer=", "S:  Product=", "S:  SerialNumber="}),
            (Properties{{"USBVersion", Uint16(0)},
                        {"ClassCode", Uint8(208)},
                        {"SubclassCode", Uint8(208)},
                        {"ProtocolCode", Uint8(208)},
                        {"VendorID", Uint16(0)},
                        {"USBDeviceID", Uint16(0)},
                        {"NumberOfConfigs", Uint8(208)}}));
}

TEST_F(DescriptorProperties, NeverReplaceWhatTheMapAlreadyHolds) {
  const Properties properties =
      AddedTo({{"Description", TCIMValue("")}, {"VendorID", TCIMValue("kept")}, {"Own", TCIMValue("mine")}},
              {kProductLine, "S:  Product=Flash Disk"});
  EXPECT_EQ(properties.at("Description"), Text(""));
  EXPECT_EQ(properties.at("VendorID"), Text("kept"));
  EXPECT_EQ(properties.at("Own"), Text("mine"));
  EXPECT_EQ(properties.at("USBDeviceID"), Uint16(0x00ff));
}

TEST_F(DescriptorProperties, AreAddedInOrderUpToAFailure) {
  HostCalls::Fail(HostOperation::kMakeStringValue, "A1 b2", 1, ThrowHostError);
  PropertyMap map;
  const UsbDevice device = MakeDevice({kDescriptorLine, "S:  Product=Disk", "S:  SerialNumber=A1 b2"});
  EXPECT_THROW(inventory.DisplayDeviceDescriptor(device, map), NKESTA20::TQSVException);
  EXPECT_EQ(map.count("Manufacturer"), 1U);
  EXPECT_EQ(map.count("Description"), 1U);
  EXPECT_EQ(map.count("SerialNumber"), 0U);
  EXPECT_EQ(map.count("NumberOfConfigs"), 0U);
  EXPECT_EQ(log, (Log{Debug("TUsbData::DisplayDeviceDescriptor: Begin")}));
}

class InventoryArrayValue : public InventoryTest {};

TEST_F(InventoryArrayValue, HoldsItsTextsInOrder) {
  EXPECT_EQ(Describe(inventory.GetStrCimValue({"b", "", "a", "b"})), Texts({"b", "", "a", "b"}));
}

TEST_F(InventoryArrayValue, OfNoTextsIsAnEmptyArrayNotNull) {
  const TCIMValue value = inventory.GetStrCimValue({});
  EXPECT_FALSE(value.IsNull());
  EXPECT_EQ(Describe(value), Texts({}));
  EXPECT_EQ(static_cast<int>(standin::TypeOf(value)), 13);
}

TEST_F(InventoryArrayValue, MakesAValuePerTextAndThenTheArray) {
  HostCalls made;
  inventory.GetStrCimValue({"one", "two"});
  EXPECT_EQ(made.Subjects({HostOperation::kMakeStringValue, HostOperation::kMakeArrayValue}),
            (std::vector<std::string>{"one", "two", "2"}));
}

}  // namespace
}  // namespace usbinfo_test
