// The host calls the plug-in through virtual tables that it was compiled against, so the slots are part of
// the interface. Each operation is reached here by its number alone. The destructor takes the first two
// entries.
#include "tests/plugin/PluginTest.h"

using NKESTA20::ICIMNamespace;
using NKESTA20::IPluginBasicQueryCallbacks;
using NKESTA20::IPluginCallbacks;
using NKESTA20::TUSBInfoCallbacks;
using ::testing::ElementsAre;

namespace usbinfo_test {
namespace {

constexpr std::size_t kDeletingDestructor = 1;
constexpr std::size_t kFirstOperation = 2;

/// Calls the operation in `slot` of the table that `object` begins with.
template <typename Result, typename... Arguments>
Result CallSlot(void* object, std::size_t slot, Arguments... arguments) {
  void* const* const table = *static_cast<void* const**>(object);
  const auto operation = reinterpret_cast<Result (*)(void*, Arguments...)>(table[slot]);
  return operation(object, arguments...);
}

class VirtualTable : public PluginTest {
 protected:
  void* Primary() { return static_cast<IPluginCallbacks*>(&plugin); }
  void* Secondary() { return static_cast<IPluginBasicQueryCallbacks*>(&plugin); }

  /// Requests no class through `slot`; the line that is logged shows whether GetData is there.
  void RequestNothing(void* object, std::size_t slot) {
    boost::shared_ptr<ICIMNamespace> ns = host.Cimv2();
    ClassList classes;
    CallSlot<void, boost::shared_ptr<ICIMNamespace>*, ClassList*>(object, slot, &ns, &classes);
  }
};

TEST_F(VirtualTable, CallbacksAreThePrimaryBaseAndQueriesTheSecond) {
  EXPECT_EQ(Primary(), static_cast<void*>(&plugin));
  EXPECT_EQ(Secondary(), static_cast<void*>(reinterpret_cast<char*>(&plugin) + sizeof(void*)));
}

TEST_F(VirtualTable, HandleFollowsTheTwoBases) {
  EXPECT_EQ(sizeof(TUSBInfoCallbacks), 3 * sizeof(void*));
}

TEST_F(VirtualTable, IdentityComesFirst) {
  EXPECT_EQ(CallSlot<int>(Primary(), kFirstOperation), 0);
  EXPECT_EQ(CallSlot<std::string>(Primary(), kFirstOperation + 1), "USB Information Collector");
  EXPECT_EQ(CallSlot<std::string>(Primary(), kFirstOperation + 2), "1.0");
  EXPECT_EQ(CallSlot<std::string>(Primary(), kFirstOperation + 3), "1.0");
}

TEST_F(VirtualTable, InitAndDeInitFollowPrepareForUnload) {
  CallSlot<void>(Primary(), kFirstOperation + 5);
  CallSlot<void>(Primary(), kFirstOperation + 6);
  EXPECT_THAT(log, ElementsAre(kInit, kDeInit));
}

TEST_F(VirtualTable, VersionsDifferBySlot) {
  class Numbered : public TUSBInfoCallbacks {
    std::string GetVersion() override { return "version"; }
    std::string GetInterfaceVersion() override { return "interface version"; }
  };
  Numbered numbered;
  IPluginCallbacks* const view = &numbered;
  EXPECT_EQ(CallSlot<std::string>(view, kFirstOperation + 2), "version");
  EXPECT_EQ(CallSlot<std::string>(view, kFirstOperation + 3), "interface version");
}

TEST_F(VirtualTable, PrepareForUnloadFollowsIdentityAndDeletesThroughTheTable) {
  class Watched : public TUSBInfoCallbacks {
   public:
    explicit Watched(int* destroyed) : fDestroyed(destroyed) {}
    ~Watched() override { ++*fDestroyed; }

   private:
    int* fDestroyed;
  };
  int destroyed = 0;
  IPluginCallbacks* const first = new Watched(&destroyed);
  CallSlot<void>(first, kFirstOperation + 4);
  EXPECT_EQ(destroyed, 1);
  IPluginCallbacks* const second = new Watched(&destroyed);
  CallSlot<void>(second, kDeletingDestructor);
  EXPECT_EQ(destroyed, 2);
}

TEST_F(VirtualTable, DataRequestFollowsDeInit) {
  RequestNothing(Primary(), kFirstOperation + 7);
  EXPECT_THAT(log, ElementsAre(kNormalExit));
}

TEST_F(VirtualTable, QueriesHoldTheDataRequestAlone) {
  RequestNothing(Secondary(), kFirstOperation);
  EXPECT_THAT(log, ElementsAre(kNormalExit));
}

}  // namespace
}  // namespace usbinfo_test
