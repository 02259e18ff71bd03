// Loading the module: it has no entry function, so all that a host sees is the plug-in that registers itself.
#include <dlfcn.h>

#include "tests/module/ModuleTest.h"

using NKESTA20::IPluginCallbacks;
using standin::HostOperation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::NiceMock;

namespace usbinfo_test {
namespace {

class Load : public ModuleTest {
 protected:
  /// The operations of the host that loading the module calls.
  static std::vector<HostOperation> OperationsOfALoad() {
    std::vector<HostOperation> operations;
    standin::HostSeam::SetObserver(
        [&](const standin::HostCall& call) { operations.push_back(call.operation); });
    { const UnrecordedPlugin plugin; }
    standin::HostSeam::SetObserver(nullptr);
    return operations;
  }
};

TEST_F(Load, RegistersOnePlugin) {
  const standin::PluginModule module(MODULE_PATH);
  EXPECT_EQ(host.Plugins().size(), 1U);
}

TEST_F(Load, RegistersOnceAndWritesNothing) {
  const standin::PluginModule module(MODULE_PATH);
  const std::vector<IPluginCallbacks*> registered = host.Plugins();
  { const OpenModule again(MODULE_PATH); }
  EXPECT_EQ(host.Plugins(), registered);
  EXPECT_THAT(log, IsEmpty());
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Load, PluginNamesItself) {
  standin::PluginModule module(MODULE_PATH);
  EXPECT_EQ(host.Plugins().at(0), &module.Lifecycle());
  EXPECT_EQ(module.Lifecycle().GetType(), 0);
  EXPECT_EQ(module.Lifecycle().GetName(), "USB Information Collector");
  EXPECT_EQ(module.Lifecycle().GetVersion(), "1.0");
  EXPECT_EQ(module.Lifecycle().GetInterfaceVersion(), "1.0");
}

TEST_F(Load, InitAndDeInitWriteTheirLines) {
  standin::PluginModule module(MODULE_PATH);
  module.Lifecycle().Init();
  module.Lifecycle().DeInit();
  EXPECT_THAT(log, ElementsAre(kInit, kDeInit));
}

TEST_F(Load, QueryViewIsAnotherViewOfTheSameObject) {
  standin::PluginModule module(MODULE_PATH);
  EXPECT_EQ(dynamic_cast<void*>(&module.Queries()), dynamic_cast<void*>(&module.Lifecycle()));
  EXPECT_NE(static_cast<void*>(&module.Queries()), static_cast<void*>(&module.Lifecycle()));
}

TEST_F(Load, AsksForTheManagerAndRegistersAndNothingElse) {
  EXPECT_THAT(OperationsOfALoad(),
              ElementsAre(HostOperation::kGetPluginManager, HostOperation::kRegisterPlugin));
  EXPECT_EQ(host.Plugins().size(), 1U);
}

TEST_F(Load, RegistersWithoutAManagerToo) {
  host.SetPluginManager(nullptr);
  EXPECT_THAT(OperationsOfALoad(),
              ElementsAre(HostOperation::kGetPluginManager, HostOperation::kRegisterPlugin));
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(Load, RegistersWithANamespaceThatIsNoManagerToo) {
  const auto other = boost::make_shared<NiceMock<MockNamespace>>();
  host.SetPluginManager(other);
  const long references = other.use_count();
  EXPECT_THAT(OperationsOfALoad(),
              ElementsAre(HostOperation::kGetPluginManager, HostOperation::kRegisterPlugin));
  EXPECT_THAT(host.Plugins(), IsEmpty());
  EXPECT_EQ(other.use_count(), references);
}

TEST_F(Load, TheExportedIntegerIsZeroAndStaysSo) {
  GiveDeviceList(kRootHubWithMouse);
  standin::PluginModule module(MODULE_PATH);
  const OpenModule again(MODULE_PATH);
  const int* const started = static_cast<const int*>(again.Symbol("_ZN8NKESTA208gStartedE"));
  ASSERT_NE(started, nullptr);
  EXPECT_EQ(*started, 0);
  module.Collect(kAllClasses);
  EXPECT_EQ(*started, 0);
}

TEST_F(Load, OffersItsSymbolsToNoOtherModule) {
  const standin::PluginModule module(MODULE_PATH);
  EXPECT_EQ(::dlsym(RTLD_DEFAULT, "_ZN8NKESTA208gStartedE"), nullptr);
}

}  // namespace
}  // namespace usbinfo_test
