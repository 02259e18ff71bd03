// The stand-in's checks of instances: what may be set, read and committed, with the exact status where it may
// not, and properties that are returned without a copy.
#include <gmock/gmock.h>

#include <boost/shared_ptr.hpp>
#include <functional>
#include <string>
#include <vector>

#include "host/ICIMInstance.h"
#include "host/ICIMProperty.h"
#include "host/TCIMReference.h"
#include "schema/ClassSchema.h"
#include "standin/ValueView.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::ICIMInstance;
using NKESTA20::ICIMProperty;
using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using schema::ClassSchema;
using schema::PropertySchema;
using standin::TextOf;
using standin::TypeOf;
using ::testing::ElementsAre;
using usbinfo_test::ClassOf;
using usbinfo_test::CommitEntity;
using usbinfo_test::DeviceIds;
using usbinfo_test::MakeArray;
using usbinfo_test::MakeEntity;
using usbinfo_test::PropertyText;
using usbinfo_test::StatusOf;

using InstancePtr = boost::shared_ptr<ICIMInstance>;

class InstanceTest : public usbinfo_test::HostTest {
 protected:
  /// One value of each type, null included.
  std::vector<TCIMValue> EveryType() {
    TCIMReference path = standin::MakePath("C", {});
    return {TCIMValue(),
            TCIMValue(static_cast<unsigned char>(1)),
            TCIMValue(static_cast<unsigned short>(1)),
            TCIMValue(1UL),
            TCIMValue("1"),
            TCIMValue(path),
            MakeArray({"1"})};
  }

  /// An instance of `schema` with a value for every key but `missing`.
  InstancePtr WithoutKey(const ClassSchema& schema, const std::string& missing) {
    const InstancePtr instance = ClassOf(schema.name)->CreateInstance({});
    for (const PropertySchema& property : schema.properties) {
      if (!property.isKey || property.name == missing) continue;
      for (const TCIMValue& value : EveryType()) {
        if (TypeOf(value) == property.type) instance->SetProperty(property.name, value, {});
      }
    }
    return instance;
  }

  /// Calls `check` with every class and each of its keys.
  void ForEachKey(const std::function<void(const ClassSchema&, const std::string& key)>& check) {
    for (const ClassSchema& schema : schema::ServedClasses()) {
      for (const PropertySchema& property : schema.properties) {
        if (property.isKey) check(schema, property.name);
      }
    }
  }
};

TEST_F(InstanceTest, TakesForEachPropertyValuesOfItsTypeOnly) {
  for (const ClassSchema& schema : schema::ServedClasses()) {
    const InstancePtr instance = ClassOf(schema.name)->CreateInstance({});
    for (const PropertySchema& property : schema.properties) {
      for (const TCIMValue& value : EveryType()) {
        const char* const status =
            TypeOf(value) == property.type ? "nothing thrown" : "CIM_ERR_TYPE_MISMATCH";
        EXPECT_EQ(StatusOf([&] { instance->SetProperty(property.name, value, {}); }), status)
            << schema.name << " " << property.name << " " << TypeOf(value);
      }
    }
  }
}

TEST_F(InstanceTest, RefusesAPropertyThatItsClassLacks) {
  const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
  for (const char* name : {"VendorID", "OperationalStatus", "speed", ""}) {
    EXPECT_EQ(StatusOf([&] { port->SetProperty(name, TCIMValue("1"), {}); }), "CIM_ERR_NO_SUCH_PROPERTY");
    EXPECT_EQ(StatusOf([&] { port->GetProperty(name, {}); }), "CIM_ERR_NO_SUCH_PROPERTY");
  }
}

TEST_F(InstanceTest, HasOnlyWhatWasSet) {
  const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
  EXPECT_EQ(StatusOf([&] { port->GetProperty("HubName", {}); }), "CIM_ERR_NO_SUCH_PROPERTY");
  port->SetProperty("HubName", TCIMValue("h"), {});
  EXPECT_EQ(PropertyText(*port, "HubName"), "h");
}

TEST_F(InstanceTest, KeepsTheOldValueWhenItRefusesANewOne) {
  const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
  port->SetProperty("HubName", TCIMValue("old"), {});
  EXPECT_EQ(StatusOf([&] { port->SetProperty("HubName", TCIMValue(1UL), {}); }), "CIM_ERR_TYPE_MISMATCH");
  EXPECT_EQ(StatusOf([&] { port->SetProperty("HubName", TCIMValue(), {}); }), "CIM_ERR_TYPE_MISMATCH");
  EXPECT_EQ(PropertyText(*port, "HubName"), "old");
}

TEST_F(InstanceTest, HasNoPathAndCannotBeCommittedWithoutAllKeys) {
  ForEachKey([this](const ClassSchema& schema, const std::string& key) {
    const InstancePtr instance = WithoutKey(schema, key);
    EXPECT_EQ(StatusOf([&] { instance->GetObjectPath({}); }), "CIM_ERR_INVALID_PARAMETER") << key;
    EXPECT_EQ(StatusOf([&] { instance->Commit({}); }), "CIM_ERR_INVALID_PARAMETER") << key;
    EXPECT_TRUE(ClassOf(schema.name)->Instances().empty()) << key;
  });
}

TEST_F(InstanceTest, CanBeCommittedOnceTheMissingKeyIsThere) {
  const ClassSchema& schema = *schema::FindClass("KALDO_USBHub");
  const InstancePtr hub = WithoutKey(schema, "DeviceID");
  EXPECT_EQ(StatusOf([&] { hub->Commit({}); }), "CIM_ERR_INVALID_PARAMETER");
  hub->SetProperty("DeviceID", TCIMValue("late"), {});
  hub->Commit({});
  EXPECT_THAT(DeviceIds("KALDO_USBHub"), ElementsAre("late"));
}

TEST_F(InstanceTest, FollowsItsKeysUntilItIsCommitted) {
  const InstancePtr hub = MakeEntity("KALDO_USBHub", "first");
  const TCIMReference before = hub->GetObjectPath({});
  hub->SetProperty("DeviceID", TCIMValue("second"), {});
  EXPECT_FALSE(hub->GetObjectPath({}) == before);
  EXPECT_TRUE(hub->GetObjectPath({}) == MakeEntity("KALDO_USBHub", "second")->GetObjectPath({}));
}

TEST_F(InstanceTest, KeepsItsKeysOnceItIsCommitted) {
  ForEachKey([this](const ClassSchema& schema, const std::string& key) {
    const InstancePtr instance = WithoutKey(schema, "");
    instance->Commit({});
    const std::string path = TextOf(instance->GetObjectPath({}));
    TCIMReference other = standin::MakePath("Other", {});
    const TCIMValue value = schema.kind == ClassSchema::Kind::kEntity ? TCIMValue("other") : TCIMValue(other);
    EXPECT_EQ(StatusOf([&] { instance->SetProperty(key, value, {}); }), "CIM_ERR_INVALID_PARAMETER") << key;
    EXPECT_EQ(TextOf(instance->GetObjectPath({})), path);
    EXPECT_NE(PropertyText(*instance, key), TextOf(value));
  });
}

TEST_F(InstanceTest, ReportsAWrongTypeBeforeAKeyThatCannotChange) {
  const InstancePtr hub = CommitEntity("KALDO_USBHub", "hub");
  EXPECT_EQ(StatusOf([&] { hub->SetProperty("DeviceID", TCIMValue(1UL), {}); }), "CIM_ERR_TYPE_MISMATCH");
}

TEST_F(InstanceTest, IsNotCommittedByBeingMade) {
  MakeEntity("KALDO_USBHub", "made");
  EXPECT_TRUE(DeviceIds("KALDO_USBHub").empty());
}

TEST_F(InstanceTest, ShowsAChangeAfterTheCommitAtOnce) {
  const InstancePtr port = CommitEntity("KALDO_USBPort", "p");
  port->SetProperty("StatusDescriptions", MakeArray({"Device connected"}), {});
  const auto& committed = ClassOf("KALDO_USBPort")->Instances();
  ASSERT_EQ(committed.size(), 1U);
  EXPECT_EQ(PropertyText(*committed.front(), "StatusDescriptions"), "{Device connected}");
}

TEST_F(InstanceTest, ShowsAChangeThroughAPropertyHandedOutEarlier) {
  const InstancePtr port = CommitEntity("KALDO_USBPort", "p");
  port->SetProperty("Speed", TCIMValue(12UL), {});
  const boost::shared_ptr<ICIMProperty> speed = port->GetProperty("Speed", {});
  const TCIMValue& value = speed->GetValue({});
  port->SetProperty("Speed", TCIMValue(480000000UL), {});
  EXPECT_EQ(speed->GetValueAsText(), "480000000");
  EXPECT_EQ(standin::NumberOf(value), 480000000U);
}

TEST_F(InstanceTest, HandsOutThePropertyItself) {
  const InstancePtr port = CommitEntity("KALDO_USBPort", "p");
  const boost::shared_ptr<ICIMProperty> first = port->GetProperty("DeviceID", {});
  const boost::shared_ptr<ICIMProperty> second = port->GetProperty("DeviceID", {});
  EXPECT_EQ(first, second);
  EXPECT_EQ(&first->GetValue({}), &second->GetValue({}));
}

TEST_F(InstanceTest, KeepsAHandedOutPropertyAlive) {
  boost::shared_ptr<ICIMProperty> name;
  {
    const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
    name = port->GetProperty("DeviceID", {});
  }
  EXPECT_EQ(name->GetValueAsText(), "p");
}

TEST_F(InstanceTest, KeepsAValueOfItsOwn) {
  const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
  TCIMValue name("given");
  port->SetProperty("Name", name, {});
  name = TCIMValue("changed");
  EXPECT_EQ(PropertyText(*port, "Name"), "given");
}

TEST_F(InstanceTest, KnowsItsClassAndNamespace) {
  const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
  EXPECT_EQ(port->GetClass({}), ClassOf("KALDO_USBPort"));
  EXPECT_EQ(port->GetClass({})->GetNamespace({}), host.Cimv2());
}

TEST_F(InstanceTest, FailsOnceItsHostHasStartedAnew) {
  const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
  const auto ports = port->GetClass({});
  host.Reset();
  EXPECT_EQ(StatusOf([&] { ports->GetNamespace({}); }), "CIM_ERR_FAILED");
  EXPECT_EQ(PropertyText(*port, "DeviceID"), "p");
}

TEST_F(InstanceTest, FailsWithoutItsClass) {
  const InstancePtr port = MakeEntity("KALDO_USBPort", "p");
  host.Reset();
  EXPECT_EQ(StatusOf([&] { port->GetClass({}); }), "CIM_ERR_FAILED");
  EXPECT_EQ(StatusOf([&] { port->Commit({}); }), "CIM_ERR_FAILED");
}

}  // namespace
