// The provider base's two pointers and the bridge from the dispatcher's call to the provider's own.
// The fixture owns the class; a provider must not.
#include <string>
#include <type_traits>

#include "tests/provider/ProviderTest.h"

namespace {

using NKESTA20::ICIMClass;
using NKESTA20::TQSVException;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::ReturnRef;
using ::testing::Throw;
using usbinfo_test::PlainProvider;

static_assert(std::is_abstract_v<TUsb>, "each provider says for itself how it makes instances");
static_assert(std::has_virtual_destructor_v<TUsb>, "providers are deleted through their base");

class TUsbBase : public usbinfo_test::ProviderTest {
 protected:
  boost::shared_ptr<StrictClass> cls = boost::make_shared<StrictClass>();
};

TEST_F(TUsbBase, HandsOutTheClassAndTheHandleThatItWasGiven) {
  PlainProvider provider(cls, &handle);
  EXPECT_EQ(provider.GetCIMClass(), cls.get());
  EXPECT_EQ(provider.GetInfoHandle(), &handle);
}

TEST_F(TUsbBase, TakesTheClassWithoutAHandle) {
  PlainProvider provider(cls);
  EXPECT_EQ(provider.GetCIMClass(), cls.get());
}

TEST_F(TUsbBase, DoesNotHoldTheClass) {
  const boost::weak_ptr<ICIMClass> watched = cls;
  {
    const PlainProvider provider(cls, &handle);
    const PlainProvider classOnly(cls);
    EXPECT_EQ(cls.use_count(), 1);
    cls.reset();
    EXPECT_TRUE(watched.expired());
  }
}

TEST_F(TUsbBase, ReleasesNothingWhenDeletedThroughItsBase) {
  TUsb* const provider = new PlainProvider(cls, &handle);
  delete provider;
  EXPECT_EQ(cls.use_count(), 1);
}

TEST_F(TUsbBase, CollectDataOfTheBaseDoesNothing) {
  PlainProvider provider(cls, &handle);
  EXPECT_THAT(usbinfo_test::OperationsDuring([&provider] { provider.CollectData(); }), IsEmpty());
  EXPECT_THAT(provider.asked, IsEmpty());
}

TEST_F(TUsbBase, BridgeAsksForTheClassesOwnName) {
  const std::string name = "KALDO_USBHub";
  EXPECT_CALL(*cls, GetClassName(IsEmpty())).WillOnce(ReturnRef(name));
  PlainProvider provider(cls, &handle);
  provider.GetCIMInstances();
  EXPECT_THAT(provider.asked, ElementsAre("KALDO_USBHub"));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(TUsbBase, BridgeReturnsTheProvidersAnswer) {
  const std::string name = "KALDO_USBHub";
  EXPECT_CALL(*cls, GetClassName(IsEmpty())).WillRepeatedly(ReturnRef(name));
  PlainProvider provider(cls, &handle);
  provider.answer = true;
  EXPECT_TRUE(provider.GetCIMInstances());
  provider.answer = false;
  EXPECT_FALSE(provider.GetCIMInstances());
}

TEST_F(TUsbBase, BridgePassesAFailureToNameTheClassOn) {
  EXPECT_CALL(*cls, GetClassName(IsEmpty())).WillOnce(Throw(HostFailure()));
  PlainProvider provider(cls, &handle);
  EXPECT_THROW(provider.GetCIMInstances(), TQSVException);
  EXPECT_THAT(provider.asked, IsEmpty());
}

}  // namespace
