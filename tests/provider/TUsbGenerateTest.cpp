// Instances from property maps: which host calls are made, in which order, with which arguments and log
// lines. The fixture owns the class and the instance that it creates; a call too many fails the test.
#include <stdexcept>
#include <string>

#include "tests/provider/ProviderTest.h"

namespace {

using NKESTA20::ICIMInstance;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMValue;
using NKESTA20::TQSVException;
using standin::HostOperation;
using ::testing::_;
using ::testing::ElementsAre;
using ::testing::InSequence;
using ::testing::InvokeWithoutArgs;
using ::testing::IsEmpty;
using ::testing::NiceMock;
using ::testing::Return;
using ::testing::ReturnRef;
using ::testing::SizeIs;
using ::testing::Throw;
using usbinfo_test::IsValue;
using usbinfo_test::kDebug;
using usbinfo_test::kVerbose;
using usbinfo_test::LogLine;
using usbinfo_test::OperationsDuring;
using usbinfo_test::PlainProvider;
using Type = TCIMValue::TCIMType;

const char* const kGenerating = "TUsb::generateCIMInstance - Generating CIM instance for class ";

class TUsbGenerate : public usbinfo_test::ProviderTest {
 protected:
  const std::string name = "KALDO_USBHub";
  const PropertyMap twoProperties = {{"DeviceID", TCIMValue("id")},
                                     {"CreationClassName", TCIMValue("class")}};
  boost::shared_ptr<StrictClass> cls = boost::make_shared<StrictClass>();
  boost::shared_ptr<StrictInstance> instance = boost::make_shared<StrictInstance>();
  PlainProvider provider{cls, &handle};
};

TEST_F(TUsbGenerate, CreatesThenSetsAscendingThenAsksTheNameThenCommits) {
  const PropertyMap properties = {{"Name", TCIMValue("n")},
                                  {"DeviceID", TCIMValue("id")},
                                  {"name", TCIMValue("last")},
                                  {"CreationClassName", TCIMValue("class")}};
  const InSequence sequence;
  EXPECT_CALL(*cls, CreateInstance(IsEmpty())).WillOnce(Return(instance));
  EXPECT_CALL(*instance, SetProperty("CreationClassName", IsValue(Type::kString, "class"), IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("DeviceID", IsValue(Type::kString, "id"), IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("Name", IsValue(Type::kString, "n"), IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("name", IsValue(Type::kString, "last"), IsEmpty()));
  EXPECT_CALL(*cls, GetClassName(IsEmpty())).WillOnce(ReturnRef(name));
  EXPECT_CALL(*instance, Commit(IsEmpty()));
  EXPECT_EQ(provider.GenerateCIMInstance(properties, name), instance.get());
}

TEST_F(TUsbGenerate, HandsValuesOfEveryTypeOnAsTheyAreNullIncluded) {
  const PropertyMap properties = {{"A", TCIMValue()},
                                  {"B", TCIMValue(static_cast<unsigned char>(9))},
                                  {"C", TCIMValue(static_cast<unsigned short>(200))},
                                  {"D", TCIMValue(480UL)},
                                  {"E", TCIMValue("")}};
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Return(instance));
  EXPECT_CALL(*instance, SetProperty("A", IsValue(Type::kNull, ""), IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("B", IsValue(Type::kUint8, "9"), IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("C", IsValue(Type::kUint16, "200"), IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("D", IsValue(Type::kUint64, "480"), IsEmpty()));
  EXPECT_CALL(*instance, SetProperty("E", IsValue(Type::kString, ""), IsEmpty()));
  EXPECT_CALL(*cls, GetClassName(_)).WillOnce(ReturnRef(name));
  EXPECT_CALL(*instance, Commit(_));
  provider.GenerateCIMInstance(properties, name);
}

TEST_F(TUsbGenerate, NeitherChecksNorConvertsAValue) {
  const auto lenient = boost::make_shared<NiceMock<usbinfo_test::MockInstance>>();
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Return(lenient));
  EXPECT_CALL(*cls, GetClassName(_)).WillOnce(ReturnRef(name));
  EXPECT_THAT(OperationsDuring([this] {
                provider.GenerateCIMInstance({{"Name", TCIMValue()}}, name);
              }),
              ElementsAre(HostOperation::kGetCoreLogger, HostOperation::kWriteLog,
                          HostOperation::kGetCoreLogger, HostOperation::kWriteLog));
}

TEST_F(TUsbGenerate, WritesEachLineBeforeTheStepThatItNames) {
  const auto note = [this](const char* what) { return [this, what] { log.push_back({-1, what}); }; };
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(InvokeWithoutArgs([this] {
    log.push_back({-1, "create"});
    return instance;
  }));
  EXPECT_CALL(*instance, SetProperty(_, _, _)).WillRepeatedly(InvokeWithoutArgs(note("set")));
  EXPECT_CALL(*cls, GetClassName(_)).WillOnce(ReturnRef(name));
  EXPECT_CALL(*instance, Commit(_)).WillOnce(InvokeWithoutArgs(note("commit")));
  provider.GenerateCIMInstance(twoProperties, name);
  EXPECT_THAT(log, ElementsAre(LogLine{kVerbose, kGenerating + name + "."}, LogLine{-1, "create"},
                               LogLine{kDebug, "Setting property : CreationClassName"}, LogLine{-1, "set"},
                               LogLine{kDebug, "Setting property : DeviceID"}, LogLine{-1, "set"},
                               LogLine{-1, "commit"}));
}

TEST_F(TUsbGenerate, EmptyMapCommitsABareInstanceAfterOneLine) {
  const InSequence sequence;
  EXPECT_CALL(*cls, CreateInstance(IsEmpty())).WillOnce(Return(instance));
  EXPECT_CALL(*cls, GetClassName(IsEmpty())).WillOnce(ReturnRef(name));
  EXPECT_CALL(*instance, Commit(IsEmpty()));
  EXPECT_EQ(provider.GenerateCIMInstance({}, name), instance.get());
  EXPECT_THAT(log, ElementsAre(LogLine{kVerbose, kGenerating + name + "."}));
}

TEST_F(TUsbGenerate, DifferingClassNameIsSetButNotCommitted) {
  for (const char* other : {"KALDO_USBHu", "KALDO_USBHubs", "kaldo_usbhub", "KALDO_USBPort", ""}) {
    EXPECT_CALL(*cls, CreateInstance(IsEmpty())).WillOnce(Return(instance));
    EXPECT_CALL(*instance, SetProperty("CreationClassName", _, IsEmpty()));
    EXPECT_CALL(*instance, SetProperty("DeviceID", _, IsEmpty()));
    EXPECT_CALL(*cls, GetClassName(IsEmpty())).WillOnce(ReturnRef(name));
    EXPECT_CALL(*instance, Commit(_)).Times(0);
    log.clear();
    EXPECT_EQ(provider.GenerateCIMInstance(twoProperties, other), instance.get()) << other;
    EXPECT_THAT(log, ElementsAre(LogLine{kVerbose, kGenerating + std::string(other) + "."},
                                 LogLine{kDebug, "Setting property : CreationClassName"},
                                 LogLine{kDebug, "Setting property : DeviceID"}));
    ::testing::Mock::VerifyAndClearExpectations(cls.get());
    ::testing::Mock::VerifyAndClearExpectations(instance.get());
  }
}

TEST_F(TUsbGenerate, WithoutAHandleWorksInSilence) {
  PlainProvider silent(cls, nullptr);
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Return(instance));
  EXPECT_CALL(*instance, SetProperty(_, _, _)).Times(2);
  EXPECT_CALL(*cls, GetClassName(_)).WillOnce(ReturnRef(name));
  EXPECT_CALL(*instance, Commit(_));
  silent.GenerateCIMInstance(twoProperties, name);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(TUsbGenerate, HoldsNoReferenceToTheInstanceAfterwards) {
  boost::weak_ptr<ICIMInstance> watched;
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(InvokeWithoutArgs([&watched] {
    const auto made = boost::make_shared<NiceMock<usbinfo_test::MockInstance>>();
    watched = made;
    return made;
  }));
  EXPECT_CALL(*cls, GetClassName(_)).WillOnce(ReturnRef(name));
  provider.GenerateCIMInstance({}, name);
  EXPECT_TRUE(watched.expired());
}

TEST_F(TUsbGenerate, FailureToCreateLeaves) {
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Throw(HostFailure()));
  EXPECT_THROW(provider.GenerateCIMInstance(twoProperties, name), TQSVException);
  EXPECT_THAT(log, ElementsAre(LogLine{kVerbose, kGenerating + name + "."}));
}

TEST_F(TUsbGenerate, FailureToSetLeavesWithoutTouchingLaterProperties) {
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Return(instance));
  EXPECT_CALL(*instance, SetProperty("CreationClassName", _, _)).WillOnce(Throw(HostFailure()));
  EXPECT_THROW(provider.GenerateCIMInstance(twoProperties, name), TQSVException);
  EXPECT_THAT(log, ElementsAre(LogLine{kVerbose, kGenerating + name + "."},
                               LogLine{kDebug, "Setting property : CreationClassName"}));
}

TEST_F(TUsbGenerate, FailureToNameTheClassLeavesUncommitted) {
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Return(instance));
  EXPECT_CALL(*instance, SetProperty(_, _, _)).Times(2);
  EXPECT_CALL(*cls, GetClassName(_)).WillOnce(Throw(HostFailure()));
  EXPECT_THROW(provider.GenerateCIMInstance(twoProperties, name), TQSVException);
}

TEST_F(TUsbGenerate, FailureToCommitLeaves) {
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Return(instance));
  EXPECT_CALL(*cls, GetClassName(_)).WillOnce(ReturnRef(name));
  EXPECT_CALL(*instance, Commit(_)).WillOnce(Throw(HostFailure()));
  EXPECT_THROW(provider.GenerateCIMInstance({}, name), TQSVException);
}

TEST_F(TUsbGenerate, ExceptionsOfOtherTypesLeaveToo) {
  EXPECT_CALL(*cls, CreateInstance(_)).WillOnce(Throw(std::runtime_error("other")));
  EXPECT_THROW(provider.GenerateCIMInstance({}, name), std::runtime_error);
}

TEST_F(TUsbGenerate, EveryCallMakesAnInstanceOfItsOwn) {
  EXPECT_CALL(*cls, CreateInstance(_)).Times(2).WillRepeatedly(Return(instance));
  EXPECT_CALL(*cls, GetClassName(_)).Times(2).WillRepeatedly(ReturnRef(name));
  EXPECT_CALL(*instance, Commit(_)).Times(2);
  provider.GenerateCIMInstance({}, name);
  provider.GenerateCIMInstance({}, name);
}

TEST_F(TUsbGenerate, CommitsIntoTheHostsClass) {
  const auto hubs = host.Cimv2()->ClassForRequest(name);
  const PropertyMap keys = {{"CreationClassName", TCIMValue(name)},
                            {"DeviceID", TCIMValue("Bus 01  Device   1")},
                            {"SystemCreationClassName", TCIMValue("KALDO_ComputerSystem")},
                            {"SystemName", TCIMValue("testhost")}};
  PlainProvider real(hubs, &handle);
  real.GenerateCIMInstance(keys, "KALDO_USBPort");
  EXPECT_THAT(hubs->Instances(), IsEmpty());
  const ICIMInstance* const made = real.GenerateCIMInstance(keys, name);
  ASSERT_THAT(hubs->Instances(), SizeIs(1));
  EXPECT_EQ(made, hubs->Instances().front().get());
}

}  // namespace
