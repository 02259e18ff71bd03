// The keys that name the hosting system and the entry's own class, also when the host does not know a name.
#include "tests/inventory/InventoryTest.h"
#include "tests/inventory/SystemNames.h"
#include "tests/support/HostMocks.h"

namespace usbinfo_test {
namespace {

using NKESTA20::ICIMNamespace;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMValue;
using standin::HostOperation;
using ::testing::IsEmpty;
using ::testing::Return;
using ::testing::StrictMock;

const Log kWholeLog = {Debug("TUsbData::GetKeyProperties: Begin"), Debug("TUsbData::GetKeyProperties: End")};

class KeyProperties : public InventoryTest {
 protected:
  KeyProperties() { CurrentSystemNames() = SystemNames(); }
  ~KeyProperties() override { CurrentSystemNames() = SystemNames(); }

  Properties Keys() {
    PropertyMap keys;
    inventory.GetKeyProperties(keys);
    return Describe(keys);
  }

  static Properties SystemKeys(const std::string& creationClassName, const std::string& name) {
    return {{"SystemCreationClassName", Text(creationClassName)}, {"SystemName", Text(name)}};
  }
};

TEST_F(KeyProperties, NameTheHostingSystem) {
  EXPECT_EQ(Keys(), SystemKeys("KALDO_ComputerSystem", "testhost"));
  EXPECT_EQ(log, kWholeLog);
}

TEST_F(KeyProperties, ComeFromTheNamespaceOfTheProvidersClass) {
  Keys();
  const std::vector<const ICIMNamespace*> asked = {host.Cimv2().get()};
  EXPECT_EQ(CurrentSystemNames().askedForClass, asked);
  EXPECT_EQ(CurrentSystemNames().askedForName, asked);
}

TEST_F(KeyProperties, AskTheClassForItsNamespaceOnceWithAnEmptyContext) {
  StrictMock<MockClass> cls;
  const boost::shared_ptr<ICIMNamespace> ns(new StrictMock<MockNamespace>);
  EXPECT_CALL(cls, GetNamespace(IsEmpty())).WillOnce(Return(ns));
  Inventory mocked(boost::shared_ptr<NKESTA20::ICIMClass>(&cls, [](auto*) {}), &handle);
  PropertyMap keys;
  mocked.GetKeyProperties(keys);
  EXPECT_EQ(CurrentSystemNames().askedForClass, std::vector<const ICIMNamespace*>{ns.get()});
  EXPECT_EQ(CurrentSystemNames().askedForName, std::vector<const ICIMNamespace*>{ns.get()});
}

TEST_F(KeyProperties, AreEmptyTextsWhenTheFirstNameFails) {
  HostCalls::Fail(HostOperation::kGetSystemCreationClassName, "", 1, ThrowHostError);
  EXPECT_EQ(Keys(), SystemKeys("", ""));
  EXPECT_EQ(log, kWholeLog);
  EXPECT_TRUE(CurrentSystemNames().askedForName.empty());
}

TEST_F(KeyProperties, KeepTheFirstNameWhenOnlyTheSecondFails) {
  HostCalls::Fail(HostOperation::kGetSystemName, "", 1, ThrowHostError);
  EXPECT_EQ(Keys(), SystemKeys("KALDO_ComputerSystem", ""));
  EXPECT_EQ(log, kWholeLog);
}

TEST_F(KeyProperties, AreEmptyTextsWhenTheNamespaceCannotBeHad) {
  HostCalls::Fail(HostOperation::kGetClassNamespace, "", 1, ThrowHostError);
  EXPECT_EQ(Keys(), SystemKeys("", ""));
  EXPECT_EQ(log, kWholeLog);
}

TEST_F(KeyProperties, AreEmptyTextsWhenTheHostRefusesAValue) {
  HostCalls::Fail(HostOperation::kMakeStringValue, "KALDO_ComputerSystem", 1, ThrowHostError);
  EXPECT_EQ(Keys(), SystemKeys("", ""));
  EXPECT_EQ(log, kWholeLog);
}

TEST_F(KeyProperties, ErrorsOfOtherTypesPassThroughWithoutAnEndLine) {
  for (const HostOperation operation : {HostOperation::kGetClassNamespace, HostOperation::kGetSystemName,
                                        HostOperation::kGetSystemCreationClassName}) {
    log.clear();
    HostCalls::Fail(operation, "", 1, ThrowAnotherError);
    EXPECT_THROW(Keys(), AnotherError);
    EXPECT_EQ(log, (Log{Debug("TUsbData::GetKeyProperties: Begin")}));
  }
}

TEST_F(KeyProperties, AreStoredAsEmptyTextsWhenTheNamesAreEmpty) {
  CurrentSystemNames().creationClassName = "";
  CurrentSystemNames().name = "";
  EXPECT_EQ(Keys(), SystemKeys("", ""));
}

TEST_F(KeyProperties, AreJudgedEachOnItsOwnWhenOneNameIsEmpty) {
  CurrentSystemNames().name = "";
  EXPECT_EQ(Keys(), SystemKeys("KALDO_ComputerSystem", ""));
  CurrentSystemNames().name = "box";
  CurrentSystemNames().creationClassName = "";
  EXPECT_EQ(Keys(), SystemKeys("", "box"));
}

TEST_F(KeyProperties, NeverReplaceWhatTheMapAlreadyHolds) {
  PropertyMap keys = {{"SystemName", TCIMValue("mine")}, {"CreationClassName", TCIMValue("kept")}};
  inventory.GetHubKeyProperties(keys);
  EXPECT_EQ(Describe(keys), (Properties{{"SystemName", Text("mine")},
                                        {"SystemCreationClassName", Text("KALDO_ComputerSystem")},
                                        {"CreationClassName", Text("kept")}}));
}

TEST_F(KeyProperties, CreationClassNameIsThatOfTheEntryNotOfTheProvider) {
  PropertyMap hub;
  PropertyMap device;
  inventory.GetControllerKeyProperties();
  inventory.GetHubKeyProperties(hub);
  inventory.GetPortKeyProperties();
  inventory.GetDeviceKeyProperties(device);
  Properties expected = SystemKeys("KALDO_ComputerSystem", "testhost");
  const auto& own = expected.emplace("CreationClassName", Text("")).first;
  own->second = Text("KALDO_USBController");
  EXPECT_EQ(Describe(inventory.fProperties), expected);
  own->second = Text("KALDO_USBHub");
  EXPECT_EQ(Describe(hub), expected);
  own->second = Text("KALDO_USBPort");
  EXPECT_EQ(Describe(inventory.fPortProperties), expected);
  own->second = Text("KALDO_USBDevice");
  EXPECT_EQ(Describe(device), expected);
}

TEST_F(KeyProperties, CreationClassNameIsAddedThoughTheHostFailed) {
  HostCalls::Fail(HostOperation::kGetSystemCreationClassName, "", 1, ThrowHostError);
  PropertyMap device;
  inventory.GetDeviceKeyProperties(device);
  EXPECT_EQ(Describe(device), (Properties{{"SystemName", Text("")},
                                          {"SystemCreationClassName", Text("")},
                                          {"CreationClassName", Text("KALDO_USBDevice")}}));
}

TEST_F(KeyProperties, AreLoggedOncePerWrapper) {
  PropertyMap map;
  inventory.GetControllerKeyProperties();
  inventory.GetPortKeyProperties();
  inventory.GetHubKeyProperties(map);
  inventory.GetDeviceKeyProperties(map);
  Log expected;
  for (int wrapper = 0; wrapper < 4; ++wrapper) {
    expected.insert(expected.end(), kWholeLog.begin(), kWholeLog.end());
  }
  EXPECT_EQ(log, expected);
}

}  // namespace
}  // namespace usbinfo_test
