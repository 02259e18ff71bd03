// One run of one provider, whatever it is: which of its operations are called, in which order, and which
// lines report the outcome.
#include <stdexcept>

#include "host/TQSVException.h"
#include "standin/StatusCode.h"
#include "tests/plugin/PluginTest.h"

using ::testing::ElementsAre;
using ::testing::InSequence;
using ::testing::Return;
using ::testing::StrictMock;
using ::testing::Throw;

namespace usbinfo_test {
namespace {

class MockProvider : public TUsb {
 public:
  MOCK_METHOD(void, CollectData, (), (override));
  MOCK_METHOD(bool, GetCIMInstances, (), (override));
  MOCK_METHOD(bool, GetCIMInstances, (std::string className), (override));
};

class ProviderRun : public PluginTest {
 protected:
  StrictMock<MockProvider> provider;
};

/// Throws something that is not an exception class.
bool ThrowNumber() {
  throw 7;
}

bool ThrowHostException() {
  standin::Throw(standin::StatusCode::kFailed);
}

TEST_F(ProviderRun, CollectsThenAsksForInstancesOfTheClassAsItIs) {
  const InSequence ordered;
  EXPECT_CALL(provider, CollectData());
  EXPECT_CALL(provider, GetCIMInstances()).WillOnce(Return(true));
  plugin.RetrieveDataForClass(&provider);
}

TEST_F(ProviderRun, SuccessIsOneDebugLine) {
  EXPECT_CALL(provider, CollectData());
  EXPECT_CALL(provider, GetCIMInstances()).WillOnce(Return(true));
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kRetrieved));
}

TEST_F(ProviderRun, NoInstancesIsOneDebugLine) {
  EXPECT_CALL(provider, CollectData());
  EXPECT_CALL(provider, GetCIMInstances()).WillOnce(Return(false));
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kNoInstances));
}

TEST_F(ProviderRun, NothingIsAskedForAfterAFailureToCollect) {
  EXPECT_CALL(provider, CollectData()).WillOnce(Throw(std::runtime_error("no data")));
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kUnknownException, kNoInstances));
}

TEST_F(ProviderRun, AHostExceptionWhileCollectingIsSwallowed) {
  EXPECT_CALL(provider, CollectData()).WillOnce([] { ThrowHostException(); });
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kUnknownException, kNoInstances));
}

TEST_F(ProviderRun, ANumberThrownWhileCollectingIsSwallowed) {
  EXPECT_CALL(provider, CollectData()).WillOnce([] { ThrowNumber(); });
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kUnknownException, kNoInstances));
}

TEST_F(ProviderRun, AStandardExceptionWhileMakingInstancesIsSwallowed) {
  EXPECT_CALL(provider, CollectData());
  EXPECT_CALL(provider, GetCIMInstances()).WillOnce(Throw(std::runtime_error("no instance")));
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kUnknownException, kNoInstances));
}

TEST_F(ProviderRun, AHostExceptionWhileMakingInstancesIsSwallowed) {
  EXPECT_CALL(provider, CollectData());
  EXPECT_CALL(provider, GetCIMInstances()).WillOnce(ThrowHostException);
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kUnknownException, kNoInstances));
}

TEST_F(ProviderRun, ANumberThrownWhileMakingInstancesIsSwallowed) {
  EXPECT_CALL(provider, CollectData());
  EXPECT_CALL(provider, GetCIMInstances()).WillOnce(ThrowNumber);
  EXPECT_EQ(plugin.RetrieveDataForClass(&provider), 0);
  EXPECT_THAT(log, ElementsAre(kUnknownException, kNoInstances));
}

TEST_F(ProviderRun, LinesAreWrittenWithoutAManagerToo) {
  host.SetPluginManager(nullptr);
  NKESTA20::TUSBInfoCallbacks unregistered;
  EXPECT_CALL(provider, CollectData()).Times(2);
  EXPECT_CALL(provider, GetCIMInstances()).WillOnce(Return(true)).WillOnce(ThrowNumber);
  unregistered.RetrieveDataForClass(&provider);
  unregistered.RetrieveDataForClass(&provider);
  EXPECT_THAT(log, ElementsAre(kRetrieved, kUnknownException, kNoInstances));
}

TEST_F(ProviderRun, TheProviderStaysItsCallers) {
  int destroyed = 0;
  class Watched : public StrictMock<MockProvider> {
   public:
    explicit Watched(int* count) : fCount(count) {}
    ~Watched() override { ++*fCount; }

   private:
    int* fCount;
  };
  {
    Watched watched(&destroyed);
    EXPECT_CALL(watched, CollectData());
    EXPECT_CALL(watched, GetCIMInstances()).WillOnce(Return(true));
    plugin.RetrieveDataForClass(&watched);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);
}

}  // namespace
}  // namespace usbinfo_test
