// The object that the plug-in's code creates when it is loaded: here with this program, which links the
// plug-in's objects. This file records what had registered when its own constants were built, and has the
// object delete itself when all tests are done.
#include <gtest/gtest.h>

#include "host/IPluginBasicQueryCallbacks.h"
#include "standin/Host.h"

using NKESTA20::IPluginBasicQueryCallbacks;
using NKESTA20::IPluginCallbacks;

namespace usbinfo_test {
namespace {

const std::size_t kRegisteredCount = standin::Host::Instance().Plugins().size();
IPluginCallbacks* const kRegistered =
    kRegisteredCount == 0 ? nullptr : standin::Host::Instance().Plugins()[0];

class UnloadWhenDone : public ::testing::Environment {
 public:
  void TearDown() override {
    if (kRegistered != nullptr) kRegistered->PrepareForUnload();
  }
};

const ::testing::Environment* const kUnloadWhenDone =
    ::testing::AddGlobalTestEnvironment(new UnloadWhenDone);  // the framework owns it

TEST(LoadTimeObject, RegistersAloneBeforeOrdinaryConstantsAreBuilt) {
  EXPECT_EQ(kRegisteredCount, 1U);
}

TEST(LoadTimeObject, IsThePlugin) {
  ASSERT_NE(kRegistered, nullptr);
  EXPECT_EQ(kRegistered->GetName(), "USB Information Collector");
  EXPECT_NE(dynamic_cast<IPluginBasicQueryCallbacks*>(kRegistered), nullptr);
}

}  // namespace
}  // namespace usbinfo_test
