// The process-wide host object: what is configured answers the static operations, and a reset takes all of
// it back.
#include <gmock/gmock.h>
#include <sys/utsname.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <string>

#include "host/TCIMSchemaHelper.h"
#include "host/TOSSpecific.h"
#include "host/TPluginManagerNamespace.h"
#include "host/TQSVException.h"
#include "host/TRootObject.h"
#include "standin/Machine.h"
#include "standin/PluginManager.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::TCIMSchemaHelper;
using NKESTA20::TOSSpecific;
using NKESTA20::TPluginManagerNamespace;
using NKESTA20::TRootObject;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using usbinfo_test::ClassOf;
using usbinfo_test::CommitEntity;
using usbinfo_test::IdlePlugin;
using usbinfo_test::StatusOf;

class HostObjectTest : public usbinfo_test::HostTest {
 protected:
  IdlePlugin first;
  IdlePlugin second;
};

std::string NodeName() {
  utsname names = {};
  EXPECT_EQ(::uname(&names), 0);
  return names.nodename;
}

TEST_F(HostObjectTest, IsOneObject) {
  EXPECT_EQ(&standin::Host::Instance(), &host);
}

TEST_F(HostObjectTest, NamesTheSystemAsConfigured) {
  host.SetSystemName("configured \"name\"");
  EXPECT_EQ(TCIMSchemaHelper::GetSystemName(host.Cimv2()), "configured \"name\"");
  EXPECT_EQ(host.SystemName(), "configured \"name\"");
}

TEST_F(HostObjectTest, NamesTheSystemAsTheMachineUnlessConfigured) {
  host.SetSystemName("");
  EXPECT_EQ(TCIMSchemaHelper::GetSystemName(host.Cimv2()), NodeName());
  EXPECT_EQ(TCIMSchemaHelper::GetSystemName(nullptr), NodeName());
}

TEST_F(HostObjectTest, NamesTheClassOfTheSystem) {
  EXPECT_EQ(TCIMSchemaHelper::GetSystemCreationClassName(host.Cimv2()), "KALDO_ComputerSystem");
  EXPECT_EQ(TCIMSchemaHelper::GetSystemCreationClassName(nullptr), "KALDO_ComputerSystem");
}

TEST_F(HostObjectTest, HandsOutItsLogger) {
  EXPECT_EQ(TRootObject::GetCoreLogger(), &host.CoreLogger());
}

TEST_F(HostObjectTest, RecordsPluginsInTheOrderInWhichTheyCome) {
  const auto manager = TRootObject::GetPluginManager();
  auto* const registry = dynamic_cast<TPluginManagerNamespace*>(manager.get());
  ASSERT_NE(registry, nullptr);
  registry->RegisterPlugin(&second);
  registry->RegisterPlugin(&first);
  EXPECT_THAT(host.Plugins(), ElementsAre(&second, &first));
}

TEST_F(HostObjectTest, ForgetsOnePluginAndKeepsTheOthers) {
  IdlePlugin third;
  for (IdlePlugin* plugin : {&first, &second, &third}) host.Register(plugin);
  host.Forget(&second);
  EXPECT_THAT(host.Plugins(), ElementsAre(&first, &third));
  host.Forget(&second);
  EXPECT_THAT(host.Plugins(), ElementsAre(&first, &third));
}

TEST_F(HostObjectTest, HasThePluginManagerThatItIsGiven) {
  const auto manager = boost::make_shared<standin::PluginManager>();
  host.SetPluginManager(manager);
  EXPECT_EQ(TRootObject::GetPluginManager(), manager);
}

TEST_F(HostObjectTest, CanHaveAnotherNamespaceForAPluginManager) {
  host.SetPluginManager(host.Cimv2());
  const auto manager = TRootObject::GetPluginManager();
  EXPECT_EQ(manager, host.Cimv2());
  EXPECT_EQ(dynamic_cast<TPluginManagerNamespace*>(manager.get()), nullptr);
}

TEST_F(HostObjectTest, AsksTheConfiguredServices) {
  machine->files["/file"] = "content";
  machine->outputs["command"] = "output";
  EXPECT_TRUE(TOSSpecific::FileExists("/file"));
  EXPECT_FALSE(TOSSpecific::FileExists("/other"));
  EXPECT_EQ(TOSSpecific::CaptureFile("/file"), "content");
  EXPECT_EQ(StatusOf([] { TOSSpecific::CaptureFile("/other"); }), "CIM_ERR_NOT_FOUND");
  EXPECT_EQ(TOSSpecific::SpawnProcess("command", 7), "output");
  EXPECT_THAT(calls, ElementsAre("exists /file", "exists /other", "capture /file", "capture /other",
                                 "spawn command 7"));
}

TEST_F(HostObjectTest, ResetForgetsInstancesAndPlugins) {
  CommitEntity("KALDO_USBHub", "1");
  host.Register(&first);
  const auto before = host.Cimv2();
  host.Reset();
  EXPECT_NE(host.Cimv2(), before);
  EXPECT_THAT(ClassOf("KALDO_USBHub")->Instances(), IsEmpty());
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(HostObjectTest, ResetForgetsTheConfiguration) {
  host.SetPluginManager(nullptr);
  host.Reset();
  EXPECT_EQ(host.SystemName(), NodeName());
  EXPECT_NE(dynamic_cast<standin::Machine*>(&host.Services()), nullptr);
  EXPECT_NE(dynamic_cast<TPluginManagerNamespace*>(host.PluginManager().get()), nullptr);
}

TEST_F(HostObjectTest, ResetForgetsTheSink) {
  host.Reset();
  TRootObject::GetCoreLogger()->Write(NKESTA20::ILogger::kError, "dropped");
  EXPECT_TRUE(log.empty());
}

TEST_F(HostObjectTest, CopesWithASecondReset) {
  host.Reset();
  host.Reset();
  EXPECT_NE(host.PluginManager(), nullptr);
  EXPECT_EQ(host.Cimv2()->GetClass("KALDO_USBHub", {})->GetClassName({}), "KALDO_USBHub");
}

}  // namespace
