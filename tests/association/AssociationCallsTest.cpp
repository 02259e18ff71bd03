// Every host call of the two association providers over one pair, one by one: the order, the arguments, which
// calls get the one-entry context and which an empty one, and the texts as the host renders them.
#include <deque>
#include <memory>

#include "association/TUsbPortDeviceAsso.h"
#include "association/TUsbPortHubAsso.h"
#include "host/TCIMSchemaHelper.h"
#include "tests/association/AssociationTest.h"
#include "tests/support/HostMocks.h"

namespace usbinfo_test {
namespace {

using boost::shared_ptr;
using NKESTA20::ICIMClass;
using NKESTA20::ICIMNamespace;
using NKESTA20::ICIMProperty;
using NKESTA20::TCIMReference;
using NKESTA20::TCIMSchemaHelper;
using ::testing::_;
using ::testing::InSequence;
using ::testing::IsEmpty;
using ::testing::ResultOf;
using ::testing::Return;
using ::testing::ReturnRef;
using ::testing::StrictMock;

using InstancePointer = shared_ptr<StrictMock<MockInstance>>;

Properties DescribeMap(const NKESTA20::PropertyMap& map) {
  return Describe(map);
}

Typed DescribeValue(const NKESTA20::TCIMValue& value) {
  return Describe(value);
}

class AssociationCalls : public AssociationTest {
 protected:
  /// A mock owned by the fixture: an expectation that owned what it returns would keep itself alive.
  template <typename Mock>
  shared_ptr<StrictMock<Mock>> NewMock() {
    const auto owner = std::make_shared<StrictMock<Mock>>();
    owned.push_back(owner);
    return shared_ptr<StrictMock<Mock>>(owner.get(), [](auto*) {});
  }

  /// The next calls: for the namespace of the requested class.
  void ExpectNamespace() {
    EXPECT_CALL(*requested, GetNamespace(IsEmpty())).WillOnce(Return(shared_ptr<ICIMNamespace>(ns)));
  }

  /// The next calls: for the class of that name, by the one-entry context, and for its instances.
  void ExpectEnumeration(const std::string& className, const std::vector<InstancePointer>& instances) {
    const auto cls = NewMock<MockClass>();
    const Properties context = {{TCIMSchemaHelper::kContextName, Text(TCIMSchemaHelper::kPluginNSPName)}};
    EXPECT_CALL(*ns, GetClass(className, ResultOf(DescribeMap, context)))
        .WillOnce(Return(shared_ptr<ICIMClass>(cls)));
    EXPECT_CALL(*cls, EnumerateInstances(_, 0, IsEmpty()))
        .WillOnce([instances](const ICIMClass::InstanceCallback& callback, int, const PropertyMap&) {
          for (const InstancePointer& instance : instances) EXPECT_TRUE(callback(instance));
        });
  }

  void ExpectNumber(const InstancePointer& instance, const std::string& name, unsigned short number) {
    values.emplace_back(number);
    const auto property = NewMock<MockProperty>();
    EXPECT_CALL(*instance, GetProperty(name, IsEmpty())).WillOnce(Return(shared_ptr<ICIMProperty>(property)));
    EXPECT_CALL(*property, GetValue(IsEmpty())).WillOnce(ReturnRef(values.back()));
  }

  void ExpectText(const InstancePointer& instance, const std::string& name, const std::string& text) {
    const auto property = NewMock<MockProperty>();
    EXPECT_CALL(*instance, GetProperty(name, IsEmpty())).WillOnce(Return(shared_ptr<ICIMProperty>(property)));
    EXPECT_CALL(*property, GetValueAsText()).WillOnce(Return(text));
  }

  void ExpectPlace(const InstancePointer& instance, unsigned short depth) {
    ExpectNumber(instance, "HubDepth", depth);
    ExpectText(instance, "HubName", "A");
    ExpectText(instance, "PortNumber", "0");
  }

  static void ExpectPath(const InstancePointer& instance, const TCIMReference& path) {
    EXPECT_CALL(*instance, GetObjectPath(IsEmpty())).WillOnce(Return(path));
  }

  static TCIMReference Path(const std::string& className) {
    return standin::MakePath(className, {{"Key", TCIMValue("k")}});
  }

  static Typed PathOf(const std::string& className) { return Reference(className + ".Key=\"k\""); }

  std::vector<std::shared_ptr<void>> owned;
  shared_ptr<StrictMock<MockClass>> requested = NewMock<MockClass>();
  shared_ptr<StrictMock<MockNamespace>> ns = NewMock<MockNamespace>();
  InstancePointer hub = NewMock<MockInstance>();
  InstancePointer port = NewMock<MockInstance>();
  InstancePointer device = NewMock<MockInstance>();
  /// The values that properties return by reference.
  std::deque<TCIMValue> values;
};

TEST_F(AssociationCalls, OfAPortAndItsHub) {
  const InSequence inSequence;
  ExpectNamespace();
  ExpectEnumeration("KALDO_USBHub", {hub});
  ExpectEnumeration("KALDO_USBPort", {port});
  ExpectNumber(port, "HubDepth", 3);
  ExpectText(port, "HubName", "A");
  ExpectNumber(hub, "HubDepth", 3);
  ExpectText(hub, "Name", "A");
  ExpectPath(hub, Path("Hub"));
  ExpectPath(port, Path("Port"));
  TUsbPortHubAsso provider(requested, &handle);
  EXPECT_EQ(DescribeAll(provider.MakePortHubAssociation()),
            (Links{{{"Antecedent", PathOf("Hub")}, {"Dependent", PathOf("Port")}}}));
  EXPECT_EQ(log, Log());
}

TEST_F(AssociationCalls, OfAPortAndItsDevice) {
  const InSequence inSequence;
  ExpectNamespace();
  ExpectEnumeration("KALDO_USBPort", {port});
  ExpectEnumeration("KALDO_USBDevice", {device});
  ExpectPlace(device, 3);
  ExpectPlace(port, 3);
  ExpectPath(port, Path("Port"));
  ExpectPath(device, Path("Device"));
  EXPECT_CALL(*port, SetProperty("StatusDescriptions", ResultOf(DescribeValue, Texts({"Device connected"})),
                                 IsEmpty()));
  TUsbPortDeviceAsso provider(requested, &handle);
  EXPECT_EQ(DescribeAll(provider.MakePortAssociation("KALDO_USBDevice")),
            (Links{{{"Antecedent", PathOf("Port")}, {"Dependent", PathOf("Device")}}}));
}

TEST_F(AssociationCalls, OfARootHubAndAHubBelowIt) {
  const InSequence inSequence;
  const InstancePointer rootHub = NewMock<MockInstance>();
  ExpectNamespace();
  ExpectEnumeration("KALDO_USBPort", {port});
  ExpectEnumeration("KALDO_USBHub", {rootHub, hub});
  ExpectNumber(rootHub, "HubDepth", 0);
  ExpectPlace(hub, 1);
  ExpectPlace(port, 0);
  ExpectPath(port, Path("Port"));
  ExpectPath(hub, Path("Hub"));
  EXPECT_CALL(*port, SetProperty("StatusDescriptions", _, IsEmpty()));
  TUsbPortDeviceAsso provider(requested, &handle);
  EXPECT_EQ(DescribeAll(provider.MakePortAssociation("KALDO_USBHub")),
            (Links{{{"Antecedent", PathOf("Port")}, {"Dependent", PathOf("Hub")}}}));
}

TEST_F(AssociationCalls, PairNothingWhenAnEnumerationBreaksOff) {
  ExpectNamespace();
  ExpectEnumeration("KALDO_USBHub", {hub});
  const auto ports = NewMock<MockClass>();
  EXPECT_CALL(*ns, GetClass("KALDO_USBPort", _)).WillOnce(Return(shared_ptr<ICIMClass>(ports)));
  EXPECT_CALL(*ports, EnumerateInstances(_, 0, IsEmpty()))
      .WillOnce([this](const ICIMClass::InstanceCallback& callback, int, const PropertyMap&) {
        callback(port);
        ThrowHostError();
      });
  TUsbPortHubAsso provider(requested, &handle);
  EXPECT_TRUE(provider.MakePortHubAssociation().empty());
  EXPECT_EQ(log.size(), 1U);
}

TEST_F(AssociationCalls, PairNothingWhenTheEnumerationOfDevicesBreaksOff) {
  ExpectNamespace();
  ExpectEnumeration("KALDO_USBPort", {port});
  const auto devices = NewMock<MockClass>();
  EXPECT_CALL(*ns, GetClass("KALDO_USBDevice", _)).WillOnce(Return(shared_ptr<ICIMClass>(devices)));
  EXPECT_CALL(*devices, EnumerateInstances(_, 0, IsEmpty()))
      .WillOnce([this](const ICIMClass::InstanceCallback& callback, int, const PropertyMap&) {
        callback(device);
        ThrowHostError();
      });
  TUsbPortDeviceAsso provider(requested, &handle);
  EXPECT_TRUE(provider.MakePortAssociation("KALDO_USBDevice").empty());
  EXPECT_EQ(log.size(), 2U) << "the begin line and the error, no end line";
}

}  // namespace
}  // namespace usbinfo_test
