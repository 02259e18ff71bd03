// The inventory object itself: what building one touches, and that the family's base makes no instances.
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::PropertyMap;
using NKESTA20::TCIMValue;
using standin::HostOperation;

class InventoryObject : public InventoryTest {
 protected:
  /// One entry per list, and the mark of a finished build.
  static void FillLists() {
    Inventory::fUsbControllerData = {PropertyMap{{"Name", TCIMValue("controller")}}};
    Inventory::fUsbHubData = {PropertyMap{{"Name", TCIMValue("hub")}}};
    Inventory::fUsbPortData = {PropertyMap{{"Name", TCIMValue("port")}}};
    Inventory::fUsbDeviceData = {PropertyMap{{"Name", TCIMValue("device")}}};
    Inventory::fDataAlreadyCollected = true;
  }

  static std::vector<Properties> AllEntries() {
    std::vector<Properties> entries;
    for (const auto* list : {&Inventory::fUsbControllerData, &Inventory::fUsbHubData,
                             &Inventory::fUsbPortData, &Inventory::fUsbDeviceData}) {
      for (const Properties& entry : DescribeAll(*list)) entries.push_back(entry);
    }
    return entries;
  }
};

TEST_F(InventoryObject, EveryConstructorLeavesTheWorkingMapsEmpty) {
  const Inventory bare;
  const Inventory withClass(ClassNamed("KALDO_USBHub"));
  const Inventory withHandle(ClassNamed("KALDO_USBHub"), &handle);
  for (const Inventory* built : {&bare, &withClass, &withHandle}) {
    EXPECT_TRUE(built->fProperties.empty());
    EXPECT_TRUE(built->fPortProperties.empty());
  }
}

TEST_F(InventoryObject, BuildingAndDestroyingOneTouchesNoList) {
  FillLists();
  {
    const Inventory bare;
    const Inventory withClass(ClassNamed("KALDO_USBHub"));
    const Inventory withHandle(ClassNamed("KALDO_USBHub"), &handle);
  }
  EXPECT_EQ(AllEntries(), (std::vector<Properties>{{{"Name", Text("controller")}},
                                                   {{"Name", Text("hub")}},
                                                   {{"Name", Text("port")}},
                                                   {{"Name", Text("device")}}}));
  EXPECT_TRUE(Inventory::fDataAlreadyCollected);
}

TEST_F(InventoryObject, BuildingOneDoesNotStartTheBuildOfTheLists) {
  const Inventory built(ClassNamed("KALDO_USBHub"), &handle);
  EXPECT_FALSE(Inventory::fDataAlreadyCollected);
  EXPECT_EQ(calls, std::vector<std::string>());
  EXPECT_EQ(log, Log());
}

TEST_F(InventoryObject, ConstructorsHandClassAndHandleToTheBase) {
  const auto cls = ClassNamed("KALDO_USBPort");
  Inventory withClass(cls);
  EXPECT_EQ(withClass.GetCIMClass(), cls.get());
  Inventory withHandle(cls, &handle);
  EXPECT_EQ(withHandle.GetCIMClass(), cls.get());
  EXPECT_EQ(withHandle.GetInfoHandle(), &handle);
}

TEST_F(InventoryObject, MakesNoInstancesOfItsOwn) {
  FillLists();
  HostCalls made;
  EXPECT_FALSE(inventory.GetCIMInstances("KALDO_USBHub"));
  EXPECT_FALSE(inventory.GetCIMInstances(std::string()));
  EXPECT_EQ(made.Count(HostOperation::kCreateInstance), 0);
  EXPECT_EQ(log, Log());
}

TEST_F(InventoryObject, ArgumentFreeRequestOnlyAsksForTheClassName) {
  FillLists();
  HostCalls made;
  EXPECT_FALSE(inventory.GetCIMInstances());
  EXPECT_EQ(made.Count(HostOperation::kGetClassName, "KALDO_USBHub"), 1);
  EXPECT_EQ(made.Count(HostOperation::kCreateInstance), 0);
}

}  // namespace
}  // namespace usbinfo_test
