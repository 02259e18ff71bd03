// The four providers that turn entries into instances. They are alike, so each test runs for all four: which
// list is read, what is logged, and that a bad entry costs only its own instance.
#include <memory>

#include "inventory/TUsbControllerData.h"
#include "inventory/TUsbDeviceData.h"
#include "inventory/TUsbHubData.h"
#include "inventory/TUsbPortData.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using boost::shared_ptr;
using NKESTA20::ICIMClass;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMValue;
using NKESTA20::TPluginManagerProvider;
using standin::HostOperation;

const std::string kEightTabs(8, '\t');

struct Served {
  const char* className;
  const char* providerName;
  const char* errorSubject;
  std::vector<PropertyMap>& list;
  std::unique_ptr<TUsb> (*make)(const shared_ptr<ICIMClass>& cls, TPluginManagerProvider* handle);
  std::unique_ptr<TUsb> (*makeSilent)(const shared_ptr<ICIMClass>& cls);

  LogLine Entering() const {
    return Debug("Entering " + std::string(providerName) + "::GetCIMInstances routine");
  }
  LogLine Exiting() const {
    return Debug("Exiting " + std::string(providerName) + "::GetCIMInstances routine");
  }
  LogLine Error(const std::string& requested, const std::string& code) const {
    return Status(std::string(errorSubject) + " encountered an error" + kEightTabs +
                  "generating CIM instances for " + requested + " Error Code: " + code);
  }
};

std::ostream& operator<<(std::ostream& out, const Served& served) {
  return out << served.className;
}

template <typename Provider>
std::unique_ptr<TUsb> Make(const shared_ptr<ICIMClass>& cls, TPluginManagerProvider* handle) {
  return std::make_unique<Provider>(cls, handle);
}

template <typename Provider>
std::unique_ptr<TUsb> MakeSilent(const shared_ptr<ICIMClass>& cls) {
  return std::make_unique<Provider>(cls);
}

class Provider : public InventoryTest, public ::testing::WithParamInterface<Served> {
 protected:
  const Served& served = GetParam();

  std::unique_ptr<TUsb> MakeProvider() { return served.make(ClassNamed(served.className), &handle); }

  PropertyMap Entry(const std::string& deviceId) const {
    return {{"CreationClassName", TCIMValue(served.className)},
            {"DeviceID", TCIMValue(deviceId)},
            {"SystemCreationClassName", TCIMValue("system")},
            {"SystemName", TCIMValue("box")}};
  }

  void FillList() { served.list = {Entry("one"), Entry("two"), Entry("three")}; }

  std::vector<std::string> Committed() {
    std::vector<std::string> deviceIds;
    for (const auto& instance : ClassNamed(served.className)->Instances()) {
      deviceIds.push_back(standin::StringOf(*instance->Find("DeviceID")));
    }
    return deviceIds;
  }

  LogLine Generating() const {
    return Verbose("TUsb::generateCIMInstance - Generating CIM instance for class " +
                   std::string(served.className) + ".");
  }

  /// The lines of an entry whose every property is set.
  Log EntryLog() const {
    return {Generating(), Debug("Setting property : CreationClassName"), Debug("Setting property : DeviceID"),
            Debug("Setting property : SystemCreationClassName"), Debug("Setting property : SystemName")};
  }

  static Log Concatenated(const std::vector<Log>& parts) {
    Log whole;
    for (const Log& part : parts) whole.insert(whole.end(), part.begin(), part.end());
    return whole;
  }
};

TEST_P(Provider, CommitsAnInstancePerEntryInTheListsOrder) {
  FillList();
  EXPECT_TRUE(MakeProvider()->GetCIMInstances(served.className));
  EXPECT_EQ(Committed(), (std::vector<std::string>{"one", "two", "three"}));
  EXPECT_EQ(log, Concatenated({{served.Entering()}, EntryLog(), EntryLog(), EntryLog(), {served.Exiting()}}));
}

TEST_P(Provider, GivesAnInstanceExactlyTheEntrysProperties) {
  served.list = {Entry("one")};
  MakeProvider()->GetCIMInstances(served.className);
  const auto instances = ClassNamed(served.className)->Instances();
  ASSERT_EQ(instances.size(), 1U);
  EXPECT_EQ(Describe(*instances[0]), Describe(served.list[0]));
}

TEST_P(Provider, SkipsAFailingEntryAndLogsItInOneLine) {
  FillList();
  HostCalls::Fail(HostOperation::kCreateInstance, "", 2, ThrowHostError);
  EXPECT_TRUE(MakeProvider()->GetCIMInstances(served.className));
  EXPECT_EQ(Committed(), (std::vector<std::string>{"one", "three"}));
  const Log failed = {Generating(), served.Error(served.className, "CIM_ERR_ACCESS_DENIED")};
  EXPECT_EQ(log, Concatenated({{served.Entering()}, EntryLog(), failed, EntryLog(), {served.Exiting()}}));
}

TEST_P(Provider, LogsTheCodeOfARefusedPropertyAndOfARefusedCommit) {
  served.list = {{{"Unknown", TCIMValue("x")}}, {{"DeviceID", TCIMValue("keys are missing")}}};
  EXPECT_FALSE(MakeProvider()->GetCIMInstances(served.className));
  EXPECT_EQ(log, (Log{served.Entering(), Generating(), Debug("Setting property : Unknown"),
                      served.Error(served.className, "CIM_ERR_NO_SUCH_PROPERTY"), Generating(),
                      Debug("Setting property : DeviceID"),
                      served.Error(served.className, "CIM_ERR_INVALID_PARAMETER"), served.Exiting()}));
}

TEST_P(Provider, MakesNothingWhenEveryEntryFails) {
  FillList();
  HostCalls::Fail(HostOperation::kCreateInstance, "", HostCalls::kEvery, ThrowHostError);
  EXPECT_FALSE(MakeProvider()->GetCIMInstances(served.className));
  EXPECT_TRUE(Committed().empty());
  const Log failed = {Generating(), served.Error(served.className, "CIM_ERR_ACCESS_DENIED")};
  EXPECT_EQ(log, Concatenated({{served.Entering()}, failed, failed, failed, {served.Exiting()}}));
}

TEST_P(Provider, StaysSuccessfulWhenOnlyTheLastEntryFails) {
  FillList();
  HostCalls::Fail(HostOperation::kCommit, "", 3, ThrowHostError);
  EXPECT_TRUE(MakeProvider()->GetCIMInstances(served.className));
  EXPECT_EQ(Committed(), (std::vector<std::string>{"one", "two"}));
}

TEST_P(Provider, MakesNothingFromAnEmptyList) {
  EXPECT_FALSE(MakeProvider()->GetCIMInstances(served.className));
  EXPECT_EQ(log, (Log{served.Entering(), served.Exiting()}));
}

TEST_P(Provider, ReadsItsOwnListOnly) {
  for (auto* list : {&Inventory::fUsbControllerData, &Inventory::fUsbHubData, &Inventory::fUsbPortData,
                     &Inventory::fUsbDeviceData}) {
    *list = {Entry("of another class")};
  }
  served.list = {Entry("own")};
  MakeProvider()->GetCIMInstances(served.className);
  EXPECT_EQ(Committed(), (std::vector<std::string>{"own"}));
}

TEST_P(Provider, LetsErrorsOfOtherTypesPassWithoutAnExitLine) {
  FillList();
  HostCalls::Fail(HostOperation::kCommit, "", 2, ThrowAnotherError);
  EXPECT_THROW(MakeProvider()->GetCIMInstances(served.className), AnotherError);
  EXPECT_EQ(Committed(), (std::vector<std::string>{"one"}));
  EXPECT_EQ(log, Concatenated({{served.Entering()}, EntryLog(), EntryLog()}));
}

TEST_P(Provider, CountsAnInstanceThatIsOnlyBuiltForAnotherClassName) {
  served.list = {Entry("one")};
  EXPECT_TRUE(MakeProvider()->GetCIMInstances("KALDO_Other"));
  EXPECT_TRUE(Committed().empty());
  EXPECT_EQ(log.at(1), Verbose("TUsb::generateCIMInstance - Generating CIM instance for class KALDO_Other."));
}

TEST_P(Provider, NamesTheRequestedClassInItsErrorLine) {
  served.list = {{}};
  HostCalls::Fail(HostOperation::kCreateInstance, "", 1, ThrowHostError);
  EXPECT_FALSE(MakeProvider()->GetCIMInstances("KALDO_Other"));
  EXPECT_EQ(log.at(2), served.Error("KALDO_Other", "CIM_ERR_ACCESS_DENIED"));
}

TEST_P(Provider, MakesTheSameInstancesAgainWhenAskedAgain) {
  FillList();
  const std::vector<Properties> entries = DescribeAll(served.list);
  EXPECT_TRUE(MakeProvider()->GetCIMInstances(served.className));
  const Log firstLog = log;
  log.clear();
  EXPECT_TRUE(MakeProvider()->GetCIMInstances(served.className));
  EXPECT_EQ(log, firstLog);
  EXPECT_EQ(DescribeAll(served.list), entries);
  EXPECT_EQ(Committed(), (std::vector<std::string>{"one", "two", "three"}));
}

TEST_P(Provider, MakesNoDuplicateCheck) {
  FillList();
  HostCalls made;
  MakeProvider()->GetCIMInstances(served.className);
  EXPECT_EQ(made.Count(HostOperation::kEnumerateInstances), 0);
  EXPECT_EQ(made.Count(HostOperation::kGetObjectPath), 0);
}

TEST_P(Provider, ServesTheArgumentFreeRequestUnderItsClassName) {
  FillList();
  EXPECT_TRUE(MakeProvider()->GetCIMInstances());
  EXPECT_EQ(Committed(), (std::vector<std::string>{"one", "two", "three"}));
}

TEST_P(Provider, HandsItsArgumentsToTheBase) {
  const shared_ptr<ICIMClass> cls = ClassNamed(served.className);
  const auto provider = served.make(cls, &handle);
  EXPECT_EQ(provider->GetCIMClass(), cls.get());
  EXPECT_EQ(provider->GetInfoHandle(), &handle);
  EXPECT_EQ(served.makeSilent(cls)->GetCIMClass(), cls.get());
}

TEST_P(Provider, WorksSilentlyWithoutAHandle) {
  FillList();
  HostCalls::Fail(HostOperation::kCreateInstance, "", 1, ThrowHostError);
  EXPECT_TRUE(served.make(ClassNamed(served.className), nullptr)->GetCIMInstances(served.className));
  EXPECT_EQ(Committed(), (std::vector<std::string>{"two", "three"}));
  EXPECT_EQ(log, Log());
}

TEST_P(Provider, CollectsTheInventoryOnce) {
  MakeProvider()->CollectData();
  EXPECT_TRUE(Inventory::fDataAlreadyCollected);
  EXPECT_FALSE(calls.empty());
}

INSTANTIATE_TEST_SUITE_P(
    OfEachClass, Provider,
    ::testing::Values(Served{"KALDO_USBController", "TUsbControllerData", "TUsbControllerData",
                             Inventory::fUsbControllerData, Make<TUsbControllerData>,
                             MakeSilent<TUsbControllerData>},
                      Served{"KALDO_USBHub", "TUsbHubData", "TUsbHubData", Inventory::fUsbHubData,
                             Make<TUsbHubData>, MakeSilent<TUsbHubData>},
                      Served{"KALDO_USBPort", "TUsbPortData", "UsbPort Data", Inventory::fUsbPortData,
                             Make<TUsbPortData>, MakeSilent<TUsbPortData>},
                      Served{"KALDO_USBDevice", "TUsbDeviceData", "TUsbDeviceData", Inventory::fUsbDeviceData,
                             Make<TUsbDeviceData>, MakeSilent<TUsbDeviceData>}),
    [](const auto& instance) { return std::string(instance.param.providerName); });

}  // namespace
}  // namespace usbinfo_test
