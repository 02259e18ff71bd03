// Object paths: their text to the last escape, their parts, and when two of them name the same object.
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "host/ICIMInstance.h"
#include "host/TCIMReference.h"
#include "standin/ValueView.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using standin::MakePath;
using standin::TextOf;
using ::testing::ElementsAre;
using usbinfo_test::ClassOf;
using usbinfo_test::MakeEntity;

class ObjectPathTest : public usbinfo_test::HostTest {};

std::string EntityPathText(const std::string& className, const std::string& deviceId) {
  return TextOf(MakeEntity(className, deviceId)->GetObjectPath({}));
}

TEST_F(ObjectPathTest, NamesTheClassAndItsKeysInOrder) {
  EXPECT_EQ(EntityPathText("KALDO_USBHub", "Bus 01  Device   1"),
            R"(KALDO_USBHub.CreationClassName="KALDO_USBHub",DeviceID="Bus 01  Device   1",)"
            R"(SystemCreationClassName="KALDO_ComputerSystem",SystemName="host")");
}

TEST_F(ObjectPathTest, LeavesOutWhatIsNoKey) {
  const auto controller = MakeEntity("KALDO_USBController", "c");
  const std::string before = TextOf(controller->GetObjectPath({}));
  controller->SetProperty("Description", TCIMValue("text"), {});
  EXPECT_EQ(TextOf(controller->GetObjectPath({})), before);
}

TEST_F(ObjectPathTest, EscapesBackslashesAndQuotesOnly) {
  EXPECT_EQ(TextOf(MakePath("C", {{"K", TCIMValue(R"(a"b\c)")}})), R"(C.K="a\"b\\c")");
  EXPECT_EQ(TextOf(MakePath("C", {{"K", TCIMValue("a,b=c.'\n\t{}\xFF")}})), "C.K=\"a,b=c.'\n\t{}\xFF\"");
  EXPECT_EQ(TextOf(MakePath("C", {{"K", TCIMValue("")}})), R"(C.K="")");
}

TEST_F(ObjectPathTest, QuotesAndEscapesReferencesOnceMore) {
  TCIMReference hub = MakePath("Hub", {{"DeviceID", TCIMValue(R"(a"b\c)")}, {"Name", TCIMValue("n")}});
  TCIMReference port = MakePath("Port", {{"DeviceID", TCIMValue("p")}});
  const auto link = ClassOf("KALDO_USBPortOnHub")->CreateInstance({});
  link->SetProperty("Dependent", TCIMValue(port), {});
  link->SetProperty("Antecedent", TCIMValue(hub), {});
  EXPECT_EQ(TextOf(link->GetObjectPath({})),
            R"(KALDO_USBPortOnHub.Antecedent="Hub.DeviceID=\"a\\\"b\\\\c\",Name=\"n\"",)"
            R"(Dependent="Port.DeviceID=\"p\"")");
}

TEST_F(ObjectPathTest, ComposesFromPartsInAnyOrder) {
  const TCIMReference path =
      MakePath("C", {{"b", TCIMValue("2")}, {"B", TCIMValue("1")}, {"a", TCIMValue("3")}});
  EXPECT_EQ(TextOf(path), R"(C.B="1",a="3",b="2")");
}

TEST_F(ObjectPathTest, WritesNumbersWithoutQuotes) {
  EXPECT_EQ(TextOf(MakePath("C", {{"K", TCIMValue(static_cast<unsigned short>(65535))}})), "C.K=65535");
}

TEST_F(ObjectPathTest, ShowsItsParts) {
  const TCIMReference path = MakeEntity("KALDO_USBPort", "p")->GetObjectPath({});
  EXPECT_EQ(standin::ClassNameOf(path), "KALDO_USBPort");
  std::vector<std::string> keys;
  for (const auto& [name, value] : standin::KeysOf(path)) keys.push_back(name + "=" + TextOf(value));
  EXPECT_THAT(keys, ElementsAre("CreationClassName=KALDO_USBPort", "DeviceID=p",
                                "SystemCreationClassName=KALDO_ComputerSystem", "SystemName=host"));
}

TEST_F(ObjectPathTest, IsEmptyByDefault) {
  const TCIMReference empty;
  EXPECT_EQ(TextOf(empty), "");
  EXPECT_EQ(standin::ClassNameOf(empty), "");
  EXPECT_TRUE(standin::KeysOf(empty).empty());
  EXPECT_TRUE(empty == TCIMReference());
  EXPECT_FALSE(empty == MakePath("C", {}));
}

TEST_F(ObjectPathTest, IsEqualWhenClassAndKeysAre) {
  const auto path = [](const std::string& cls, const std::string& id) {
    return MakePath(cls, {{"DeviceID", TCIMValue(id)}, {"SystemName", TCIMValue("host")}});
  };
  EXPECT_TRUE(path("C", "1") == path("C", "1"));
  EXPECT_FALSE(path("C", "1") == path("D", "1"));
  EXPECT_FALSE(path("C", "1") == path("C", "1 "));
  EXPECT_FALSE(path("C", "a") == path("C", "A"));
  EXPECT_FALSE(path("C", "1") == MakePath("C", {{"DeviceID", TCIMValue("1")}}));
}

TEST_F(ObjectPathTest, DistinguishesKeysThatImitateOneAnother) {
  const auto path = [](const std::string& first, const std::string& second) {
    return MakePath("C", {{"A", TCIMValue(first)}, {"B", TCIMValue(second)}});
  };
  EXPECT_FALSE(path("x", R"(y",B="z)") == path(R"(x",B="y)", "z"));
  EXPECT_FALSE(path(R"(\)", "") == path(R"(\\)", ""));
}

TEST_F(ObjectPathTest, CopiesAreEqualAndApart) {
  TCIMReference first = MakePath("C", {{"K", TCIMValue("1")}});
  TCIMReference copy = first;
  TCIMReference assigned;
  assigned = first;
  first = MakePath("C", {{"K", TCIMValue("2")}});
  EXPECT_EQ(TextOf(copy), R"(C.K="1")");
  EXPECT_TRUE(assigned == copy);
  EXPECT_FALSE(first == copy);
}

}  // namespace
