// How the plug-in object registers itself: with which manager, in which view, which references it releases,
// and what is left when the host fails.
#include "host/IPluginBasicQueryCallbacks.h"
#include "host/TQSVException.h"
#include "standin/PluginManager.h"
#include "standin/StatusCode.h"
#include "tests/plugin/PluginTest.h"
#include "tests/support/Allocations.h"

using NKESTA20::ICIMNamespace;
using NKESTA20::IPluginCallbacks;
using NKESTA20::TQSVException;
using NKESTA20::TUSBInfoCallbacks;
using standin::HostOperation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace usbinfo_test {
namespace {

class Construction : public HostTest {
 protected:
  /// The host calls from now on.
  std::vector<HostOperation>& RecordOperations() {
    standin::HostSeam::SetObserver(
        [this](const standin::HostCall& call) { fOperations.push_back(call.operation); });
    return fOperations;
  }

  /// Has `operation` throw a host exception once it is called.
  static void Fail(HostOperation operation) {
    FailHostCall(operation, "", [] { standin::Throw(standin::StatusCode::kAccessDenied); });
  }

 private:
  std::vector<HostOperation> fOperations;
};

TEST_F(Construction, RegistersItsCallbacksViewWithTheManager) {
  TUSBInfoCallbacks plugin;
  EXPECT_THAT(host.Plugins(), ElementsAre(static_cast<IPluginCallbacks*>(&plugin)));
}

TEST_F(Construction, AsksTheHostForTheManagerAndRegistersAndNothingElse) {
  const std::vector<HostOperation>& operations = RecordOperations();
  TUSBInfoCallbacks plugin;
  EXPECT_THAT(operations, ElementsAre(HostOperation::kGetPluginManager, HostOperation::kRegisterPlugin));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(Construction, KeepsNoReferenceToTheManager) {
  const boost::shared_ptr<ICIMNamespace> manager = host.PluginManager();
  const long before = manager.use_count();
  TUSBInfoCallbacks plugin;
  EXPECT_EQ(manager.use_count(), before);
}

TEST_F(Construction, HoldsTheManagerWhileItRegisters) {
  boost::shared_ptr<ICIMNamespace> manager = host.PluginManager();
  const long before = manager.use_count();
  long during = 0;
  FailHostCall(HostOperation::kRegisterPlugin, "", [&] { during = manager.use_count(); });
  TUSBInfoCallbacks plugin;
  EXPECT_GT(during, before);
}

TEST_F(Construction, RegistersOnANullManager) {
  host.SetPluginManager(nullptr);
  const std::vector<HostOperation>& operations = RecordOperations();
  TUSBInfoCallbacks plugin;
  EXPECT_THAT(operations, ElementsAre(HostOperation::kGetPluginManager, HostOperation::kRegisterPlugin));
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(Construction, RegistersOnANullManagerWhenTheHostsNamespaceIsNoManager) {
  const auto other = boost::make_shared<::testing::StrictMock<MockNamespace>>();
  host.SetPluginManager(other);
  const long before = other.use_count();
  const std::vector<HostOperation>& operations = RecordOperations();
  TUSBInfoCallbacks plugin;
  EXPECT_THAT(operations, ElementsAre(HostOperation::kGetPluginManager, HostOperation::kRegisterPlugin));
  EXPECT_THAT(host.Plugins(), IsEmpty());
  EXPECT_EQ(other.use_count(), before);
}

TEST_F(Construction, WorksWithAnyManagerDerivedFromTheHosts) {
  class OtherManager : public standin::PluginManager {};
  host.SetPluginManager(boost::make_shared<OtherManager>());
  TUSBInfoCallbacks plugin;
  EXPECT_THAT(host.Plugins(), ElementsAre(&plugin));
}

TEST_F(Construction, AFailureToGetTheManagerLeavesTheConstructor) {
  Fail(HostOperation::kGetPluginManager);
  EXPECT_THROW(TUSBInfoCallbacks(), TQSVException);
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(Construction, AFailureToRegisterLeavesTheConstructor) {
  Fail(HostOperation::kRegisterPlugin);
  EXPECT_THROW(TUSBInfoCallbacks(), TQSVException);
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(Construction, AFailureToRegisterOnANullManagerLeavesTheConstructor) {
  host.SetPluginManager(nullptr);
  Fail(HostOperation::kRegisterPlugin);
  EXPECT_THROW(TUSBInfoCallbacks(), TQSVException);
}

TEST_F(Construction, AFailureToRegisterReleasesTheManager) {
  const boost::shared_ptr<ICIMNamespace> manager = host.PluginManager();
  const long before = manager.use_count();
  Fail(HostOperation::kRegisterPlugin);
  EXPECT_THROW(TUSBInfoCallbacks(), TQSVException);
  EXPECT_EQ(manager.use_count(), before);
}

TEST_F(Construction, AFailureFreesTheObject) {
  for (const HostOperation operation : {HostOperation::kGetPluginManager, HostOperation::kRegisterPlugin}) {
    FailHostCall(operation, "", [] { throw 7; });
    const std::size_t before = Allocations::Live();
    const std::size_t made = Allocations::Made();
    bool thrown = false;
    try {
      new TUSBInfoCallbacks;
    } catch (int) {
      thrown = true;
    }
    EXPECT_EQ(Allocations::Live(), before);
    EXPECT_EQ(Allocations::Made(), made + 1);
    EXPECT_TRUE(thrown);
  }
}

}  // namespace
}  // namespace usbinfo_test
