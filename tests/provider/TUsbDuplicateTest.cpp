// The test for duplicates: only object paths count, and the first equal one decides.
// The fixture owns the questioned instance and its class; a question too many fails the test.
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/provider/ProviderTest.h"

namespace {

using NKESTA20::ICIMClass;
using NKESTA20::ICIMInstance;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using NKESTA20::TQSVException;
using standin::HostOperation;
using ::testing::_;
using ::testing::ElementsAre;
using ::testing::InSequence;
using ::testing::Invoke;
using ::testing::IsEmpty;
using ::testing::Return;
using ::testing::Throw;
using usbinfo_test::OperationsDuring;
using usbinfo_test::PlainProvider;

TCIMReference PathOf(const std::string& id) {
  return standin::MakePath("KALDO_USBHub", {{"DeviceID", TCIMValue(id)}});
}

class TUsbDuplicate : public usbinfo_test::ProviderTest {
 protected:
  /// An instance of the class that must be asked for its path exactly once.
  boost::shared_ptr<StrictInstance> Existing(const std::string& id) {
    const auto existing = boost::make_shared<StrictInstance>();
    EXPECT_CALL(*existing, GetObjectPath(IsEmpty())).WillOnce(Return(PathOf(id)));
    return existing;
  }

  /// Makes the questioned instance "b" of a class that holds `existing`.
  void ExpectQuestions(const std::vector<boost::shared_ptr<ICIMInstance>>& existing) {
    const InSequence sequence;
    EXPECT_CALL(*instance, GetClass(IsEmpty())).WillOnce(Return(itsClass));
    EXPECT_CALL(*instance, GetObjectPath(IsEmpty())).WillOnce(Return(PathOf("b")));
    EXPECT_CALL(*itsClass, EnumerateInstances(_, 0, IsEmpty()))
        .WillOnce(Invoke([existing](const ICIMClass::InstanceCallback& callback, int, const PropertyMap&) {
          for (const auto& each : existing) EXPECT_TRUE(callback(each));
        }));
  }

  /// The provider's class, which must not be called.
  boost::shared_ptr<StrictClass> requestedClass = boost::make_shared<StrictClass>();
  boost::shared_ptr<StrictClass> itsClass = boost::make_shared<StrictClass>();
  boost::shared_ptr<StrictInstance> instance = boost::make_shared<StrictInstance>();
  PlainProvider provider{requestedClass, &handle};
};

TEST_F(TUsbDuplicate, AClassWithoutInstancesHasNone) {
  ExpectQuestions({});
  EXPECT_FALSE(provider.IsDuplicateInstance(instance.get()));
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(TUsbDuplicate, DifferentPathsAreAllAskedForAndAreNoDuplicates) {
  ExpectQuestions({Existing("a"), Existing("B"), Existing("c")});
  EXPECT_FALSE(provider.IsDuplicateInstance(instance.get()));
}

TEST_F(TUsbDuplicate, AnEqualPathAtTheEndIsFound) {
  ExpectQuestions({Existing("a"), Existing("c"), Existing("b")});
  EXPECT_TRUE(provider.IsDuplicateInstance(instance.get()));
}

TEST_F(TUsbDuplicate, StopsAtTheFirstEqualPath) {
  const auto neverAsked = boost::make_shared<StrictInstance>();
  ExpectQuestions({Existing("a"), Existing("b"), neverAsked, neverAsked});
  EXPECT_TRUE(provider.IsDuplicateInstance(instance.get()));
}

TEST_F(TUsbDuplicate, ComparesPathsWithTheHostsEqualityAndNothingElse) {
  ExpectQuestions({Existing("a"), Existing("c"), Existing("b")});
  EXPECT_THAT(OperationsDuring([this] { provider.IsDuplicateInstance(instance.get()); }),
              ElementsAre(HostOperation::kCompareReferences, HostOperation::kCompareReferences,
                          HostOperation::kCompareReferences));
}

TEST_F(TUsbDuplicate, FailureToGetTheClassLeaves) {
  EXPECT_CALL(*instance, GetClass(IsEmpty())).WillOnce(Throw(HostFailure()));
  EXPECT_THROW(provider.IsDuplicateInstance(instance.get()), TQSVException);
}

TEST_F(TUsbDuplicate, FailureToGetThePathLeaves) {
  EXPECT_CALL(*instance, GetClass(IsEmpty())).WillOnce(Return(itsClass));
  EXPECT_CALL(*instance, GetObjectPath(IsEmpty())).WillOnce(Throw(HostFailure()));
  EXPECT_THROW(provider.IsDuplicateInstance(instance.get()), TQSVException);
}

TEST_F(TUsbDuplicate, FailureToEnumerateLeaves) {
  EXPECT_CALL(*instance, GetClass(_)).WillOnce(Return(itsClass));
  EXPECT_CALL(*instance, GetObjectPath(_)).WillOnce(Return(PathOf("b")));
  EXPECT_CALL(*itsClass, EnumerateInstances(_, _, _)).WillOnce(Throw(std::runtime_error("other")));
  EXPECT_THROW(provider.IsDuplicateInstance(instance.get()), std::runtime_error);
}

TEST_F(TUsbDuplicate, FailureToGetAnExistingPathLeaves) {
  const auto broken = boost::make_shared<StrictInstance>();
  EXPECT_CALL(*broken, GetObjectPath(_)).WillOnce(Throw(HostFailure()));
  ExpectQuestions({Existing("a"), broken});
  EXPECT_THROW(provider.IsDuplicateInstance(instance.get()), TQSVException);
}

class TUsbDuplicateInTheHost : public usbinfo_test::ProviderTest {
 protected:
  boost::shared_ptr<ICIMInstance> Make(const std::string& id, const std::string& description) {
    const auto made = hubs->CreateInstance(PropertyMap());
    made->SetProperty("CreationClassName", TCIMValue("KALDO_USBHub"), PropertyMap());
    made->SetProperty("SystemCreationClassName", TCIMValue("KALDO_ComputerSystem"), PropertyMap());
    made->SetProperty("SystemName", TCIMValue("testhost"), PropertyMap());
    made->SetProperty("DeviceID", TCIMValue(id), PropertyMap());
    made->SetProperty("Description", TCIMValue(description), PropertyMap());
    return made;
  }

  boost::shared_ptr<standin::CimClass> hubs = host.Cimv2()->ClassForRequest("KALDO_USBHub");
  PlainProvider provider{hubs, &handle};
};

TEST_F(TUsbDuplicateInTheHost, ACommittedInstanceEqualsItself) {
  const auto hub = Make("a", "x");
  EXPECT_FALSE(provider.IsDuplicateInstance(hub.get()));
  hub->Commit(PropertyMap());
  EXPECT_TRUE(provider.IsDuplicateInstance(hub.get()));
}

TEST_F(TUsbDuplicateInTheHost, OnlyKeysCount) {
  Make("a", "x")->Commit(PropertyMap());
  EXPECT_TRUE(provider.IsDuplicateInstance(Make("a", "another description").get()));
  EXPECT_FALSE(provider.IsDuplicateInstance(Make("b", "x").get()));
}

}  // namespace
