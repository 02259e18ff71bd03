// The layout of the host's interfaces: a plug-in calls through these slots in a host that was compiled
// elsewhere, so their order is part of the contract.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

#include "host/ICIMClass.h"
#include "host/ICIMInstance.h"
#include "host/ICIMNamespace.h"
#include "host/ICIMProperty.h"
#include "host/ILogger.h"
#include "host/IPluginBasicQueryCallbacks.h"
#include "host/IPluginCallbacks.h"
#include "host/TCIMSchemaHelper.h"
#include "host/TPluginManagerNamespace.h"
#include "host/TQSVException.h"

namespace {

using namespace NKESTA20;  // NOLINT(google-build-using-namespace): every type here is the host's

/// The two entries that a virtual destructor takes at the front of a table.
constexpr std::size_t kAfterDestructor = 2;

/// The place of a virtual operation in the table of its interface.
template <typename Operation>
std::size_t SlotOf(Operation operation) {
  std::size_t offset = 0;
  static_assert(sizeof(operation) >= sizeof(offset));
  std::memcpy(&offset, &operation, sizeof(offset));
  return offset / sizeof(void*);
}

TEST(HostInterface, WritesLogLinesThroughTheThirdOperationCountingTheDestructor) {
  EXPECT_EQ(SlotOf(&ILogger::Write), kAfterDestructor + 1);
}

TEST(HostInterface, OrdersTheOperationsOfAClass) {
  EXPECT_EQ(SlotOf(&ICIMClass::GetNamespace), SlotOf(&ICIMClass::GetClassName) + 1);
  EXPECT_GT(SlotOf(&ICIMClass::CreateInstance), SlotOf(&ICIMClass::GetNamespace));
  EXPECT_EQ(SlotOf(&ICIMClass::EnumerateInstances), SlotOf(&ICIMClass::CreateInstance) + 1);
}

TEST(HostInterface, OrdersTheOperationsOfAnInstance) {
  EXPECT_GT(SlotOf(&ICIMInstance::GetObjectPath), SlotOf(&ICIMInstance::Commit));
  EXPECT_EQ(SlotOf(&ICIMInstance::GetClass), SlotOf(&ICIMInstance::GetObjectPath) + 1);
  EXPECT_GT(SlotOf(&ICIMInstance::GetProperty), SlotOf(&ICIMInstance::GetClass));
  EXPECT_EQ(SlotOf(&ICIMInstance::SetProperty), SlotOf(&ICIMInstance::GetProperty) + 1);
}

TEST(HostInterface, OrdersTheOperationsOfAProperty) {
  EXPECT_GT(SlotOf(&ICIMProperty::GetValueAsText), SlotOf(&ICIMProperty::GetValue));
}

TEST(HostInterface, OrdersTheOperationsOfAPlugin) {
  EXPECT_EQ(SlotOf(&IPluginCallbacks::GetType), kAfterDestructor);
  EXPECT_EQ(SlotOf(&IPluginCallbacks::GetName), kAfterDestructor + 1);
  EXPECT_EQ(SlotOf(&IPluginCallbacks::GetVersion), kAfterDestructor + 2);
  EXPECT_EQ(SlotOf(&IPluginCallbacks::GetInterfaceVersion), kAfterDestructor + 3);
  EXPECT_EQ(SlotOf(&IPluginCallbacks::PrepareForUnload), kAfterDestructor + 4);
  EXPECT_EQ(SlotOf(&IPluginCallbacks::Init), kAfterDestructor + 5);
  EXPECT_EQ(SlotOf(&IPluginCallbacks::DeInit), kAfterDestructor + 6);
  EXPECT_EQ(SlotOf(&IPluginBasicQueryCallbacks::GetData), kAfterDestructor);
}

TEST(HostInterface, AsksAnExceptionForItsTextRightAfterTheDestructor) {
  EXPECT_EQ(SlotOf(&TQSVException::what), kAfterDestructor);
}

TEST(HostInterface, DestroysThroughEveryInterface) {
  static_assert(std::has_virtual_destructor_v<ILogger>);
  static_assert(std::has_virtual_destructor_v<ICIMClass>);
  static_assert(std::has_virtual_destructor_v<ICIMInstance>);
  static_assert(std::has_virtual_destructor_v<ICIMNamespace>);
  static_assert(std::has_virtual_destructor_v<ICIMProperty>);
  static_assert(std::has_virtual_destructor_v<IPluginCallbacks>);
  static_assert(std::has_virtual_destructor_v<IPluginBasicQueryCallbacks>);
  static_assert(std::is_base_of_v<ICIMNamespace, TPluginManagerNamespace>);
}

TEST(HostInterface, NamesTheContextOfLinkedClasses) {
  EXPECT_FALSE(TCIMSchemaHelper::kContextName.empty());
  EXPECT_FALSE(TCIMSchemaHelper::kPluginNSPName.empty());
}

}  // namespace
