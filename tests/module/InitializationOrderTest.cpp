// The plug-in object is created before every constant of the module, whatever the order in which the module's
// files were linked. Tested in two ways: by the list of initializers in the file, and by what has been
// allocated when the object registers, since long string constants allocate.
#include <algorithm>

#include "tests/module/BinaryTools.h"
#include "tests/module/ModuleTest.h"
#include "tests/support/Allocations.h"

namespace usbinfo_test {
namespace {

/// A module and what to call it in a test's name.
struct LinkedModule {
  std::string order;
  std::string path;
};

void PrintTo(const LinkedModule& module, std::ostream* out) {
  *out << module.order;
}

class InitializationOrder : public ModuleTest, public ::testing::WithParamInterface<LinkedModule> {};

INSTANTIATE_TEST_SUITE_P(BothLinkOrders, InitializationOrder,
                         ::testing::Values(LinkedModule{"AsBuilt", MODULE_PATH},
                                           LinkedModule{"Reversed", REVERSED_MODULE_PATH}),
                         [](const auto& testInfo) { return testInfo.param.order; });

TEST_P(InitializationOrder, CreationIsTheFirstInitializerOfMany) {
  const std::vector<std::string> initializers = InitializersInOrder(GetParam().path);
  ASSERT_GT(initializers.size(), 3U) << "the constants of several files";
  EXPECT_EQ(initializers.front(), "NKESTA20::(anonymous namespace)::CreatePluginObject()");
  EXPECT_EQ(std::count(initializers.begin(), initializers.end(), initializers.front()), 1);
}

TEST_P(InitializationOrder, OnlyTheObjectIsAllocatedWhenItRegisters) {
  std::size_t madeAtRegistration = 0;
  standin::HostSeam::SetObserver([&](const standin::HostCall& call) {
    if (call.operation == standin::HostOperation::kRegisterPlugin) madeAtRegistration = Allocations::Made();
  });
  const std::string path = GetParam().path;
  const std::size_t madeBefore = Allocations::Made();
  const standin::PluginModule module(path);
  EXPECT_EQ(madeAtRegistration, madeBefore + 1);
  EXPECT_GT(Allocations::Made(), madeAtRegistration + 50) << "the constants, built afterwards";
}

TEST_P(InitializationOrder, TheModuleServesAndUnloads) {
  GiveDeviceList(kRootHubWithMouse);
  {
    standin::PluginModule module(GetParam().path);
    module.Collect(kAllClasses);
  }
  for (const std::string& name : kAllClasses) EXPECT_EQ(InstanceCount(name), 1U) << name;
  EXPECT_FALSE(IsMapped(GetParam().path));
}

TEST(LinkOrders, Differ) {
  std::vector<std::string> reversed = InitializersInOrder(REVERSED_MODULE_PATH);
  EXPECT_NE(reversed, InitializersInOrder(MODULE_PATH));
}

}  // namespace
}  // namespace usbinfo_test
