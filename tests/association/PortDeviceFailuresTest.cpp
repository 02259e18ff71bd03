// The connection association when the host fails: which line is logged, what is skipped, what is still made,
// and which errors leave the provider.
#include "host/TCIMSchemaHelper.h"
#include "host/TQSVException.h"
#include "tests/association/PortDeviceTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::TQSVException;
using standin::HostOperation;

const LogLine kMarkError = Status("Could not change Status Description property");

LogLine SetupError(const std::string& dependentClassName, const std::string& code) {
  return Status(
      "KALDO_USBConnection association encountered an error\t\t\t\t\t\t\tenumerating CIM instances for "
      "KALDO_USBPort OR " +
      dependentClassName + " Error Code: " + code);
}

LogLine DependentError(const std::string& code) {
  return Status(
      "KALDO_USBConnection association encountered an error\t\t\t\t\t\twhen collecting dependent properties. "
      "Error Code: " +
      code);
}

LogLine AntecedentError(const std::string& code) {
  return Status(
      "KALDO_USBConnection association encountered an error\t\t\t\t\t\t\twhen collecting antecedent "
      "properties. Error Code: " +
      code);
}

LogLine GenerationError(const std::string& className) {
  return Status(
      "USB Port-Device Association encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for " +
      className + " Error Code: CIM_ERR_ACCESS_DENIED");
}

class PortDeviceFailure : public PortDeviceTest {
 protected:
  /// A place that lacks one of its three properties.
  static PropertyMap PlaceWithout(const std::string& missing) {
    PropertyMap place = Place(1, "A", "0");
    place.erase(missing);
    return place;
  }
};

const std::vector<std::string> kPlaceProperties = {"HubDepth", "HubName", "PortNumber"};

TEST_F(PortDeviceFailure, SkipsADependentWithAMissingPropertyAndGoesOnWithTheNext) {
  const std::string port = CommitPort("port", 1, "A", "0");
  for (const std::string& missing : kPlaceProperties) {
    Commit("KALDO_USBDevice", "no " + missing, PlaceWithout(missing));
  }
  const std::string device = CommitDevice("whole", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(port, device)});
  EXPECT_EQ(log, (Log{kBegin, DependentError("CIM_ERR_NO_SUCH_PROPERTY"),
                      DependentError("CIM_ERR_NO_SUCH_PROPERTY"), DependentError("CIM_ERR_NO_SUCH_PROPERTY"),
                      kEnd}));
}

TEST_F(PortDeviceFailure, SkipsAHubWithAMissingPropertyAlike) {
  CommitPort("port", 0, "A", "0");
  for (const std::string& missing : kPlaceProperties) {
    Commit("KALDO_USBHub", "no " + missing, PlaceWithout(missing));
  }
  EXPECT_EQ(MakeLinks("KALDO_USBHub"), Links());
  EXPECT_EQ(log, (Log{kBegin, DependentError("CIM_ERR_NO_SUCH_PROPERTY"),
                      DependentError("CIM_ERR_NO_SUCH_PROPERTY"), DependentError("CIM_ERR_NO_SUCH_PROPERTY"),
                      kEnd}));
}

TEST_F(PortDeviceFailure, AsksNoPortForAnUnreadableDependent) {
  CommitPort("port", 1, "A", "0");
  Commit("KALDO_USBDevice", "no port", PlaceWithout("PortNumber"));
  HostCalls made;
  MakeLinks("KALDO_USBDevice");
  EXPECT_EQ(made.Subjects({HostOperation::kGetProperty}), kPlaceProperties);
}

TEST_F(PortDeviceFailure, SkipsAPortWithAMissingPropertyForEachDependentAndTriesTheNextPort) {
  for (const std::string& missing : kPlaceProperties) {
    Commit("KALDO_USBPort", "no " + missing, PlaceWithout(missing));
  }
  const std::string port = CommitPort("whole", 1, "A", "0");
  const std::string device1 = CommitDevice("1", 1, "A", "0");
  const std::string device2 = CommitDevice("2", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), (Links{Link(port, device1), Link(port, device2)}));
  EXPECT_EQ(log, Concatenated({{kBegin}, Log(3 + 3, AntecedentError("CIM_ERR_NO_SUCH_PROPERTY")), {kEnd}}));
}

TEST_F(PortDeviceFailure, ReadsAllOfAPortEvenWhenItsDepthDiffers) {
  Commit("KALDO_USBPort", "no number", {{"HubDepth", Number(9)}, {"HubName", TCIMValue("B")}});
  CommitDevice("device", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links());
  EXPECT_EQ(log, (Log{kBegin, AntecedentError("CIM_ERR_NO_SUCH_PROPERTY"), kEnd}));
}

class PortDeviceRead : public PortDeviceFailure, public ::testing::WithParamInterface<HostStep> {
 protected:
  void CommitPair() {
    CommitPort("port", 1, "A", "0");
    CommitDevice("device", 1, "A", "0");
  }
  void FailTurn(int turn, Failure fail) {
    HostCalls::Fail(GetParam().operation, GetParam().subject, turn, fail);
  }
};

TEST_P(PortDeviceRead, HostErrorOnTheDependentsSideSkipsTheDependent) {
  CommitPair();
  FailTurn(1, ThrowHostError);
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links());
  EXPECT_EQ(log, (Log{kBegin, DependentError("CIM_ERR_ACCESS_DENIED"), kEnd}));
}

TEST_P(PortDeviceRead, HostErrorOnThePortsSideSkipsThePort) {
  CommitPair();
  FailTurn(2, ThrowHostError);
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links());
  EXPECT_EQ(log, (Log{kBegin, AntecedentError("CIM_ERR_ACCESS_DENIED"), kEnd}));
  EXPECT_EQ(StatusOf("port"), Texts({"No device connected"}));
}

TEST_P(PortDeviceRead, ErrorOfAnotherTypeLeavesFromEitherSide) {
  CommitPair();
  for (const int turn : {1, 2}) {
    log.clear();
    FailTurn(turn, ThrowAnotherError);
    EXPECT_THROW(provider.MakePortAssociation("KALDO_USBDevice"), AnotherError);
    EXPECT_EQ(log, Log{kBegin});
  }
}

INSTANTIATE_TEST_SUITE_P(AtEveryStep, PortDeviceRead,
                         ::testing::Values(HostStep{HostOperation::kGetProperty, "HubDepth"},
                                           HostStep{HostOperation::kGetPropertyValue, "HubDepth"},
                                           HostStep{HostOperation::kConvertToNumber, ""},
                                           HostStep{HostOperation::kGetProperty, "HubName"},
                                           HostStep{HostOperation::kGetPropertyText, "HubName"},
                                           HostStep{HostOperation::kGetProperty, "PortNumber"},
                                           HostStep{HostOperation::kGetPropertyText, "PortNumber"}));

class PortDeviceSetup : public PortDeviceFailure, public ::testing::WithParamInterface<HostStep> {};

TEST_P(PortDeviceSetup, HostErrorIsLoggedPairsNothingAndLeavesOutTheEndLine) {
  CommitPort("port", 1, "A", "0");
  CommitDevice("device", 1, "A", "0");
  HostCalls::Fail(GetParam().operation, GetParam().subject, 1, ThrowHostError);
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links());
  EXPECT_EQ(log, (Log{kBegin, SetupError("KALDO_USBDevice", "CIM_ERR_ACCESS_DENIED")}));
  EXPECT_EQ(StatusOf("port"), Texts({"No device connected"}));
}

TEST_P(PortDeviceSetup, ErrorOfAnotherTypeLeaves) {
  HostCalls::Fail(GetParam().operation, GetParam().subject, 1, ThrowAnotherError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), AnotherError);
  EXPECT_EQ(log, (Log{kEntering, kBegin}));
}

INSTANTIATE_TEST_SUITE_P(AtEveryStep, PortDeviceSetup,
                         ::testing::Values(HostStep{HostOperation::kGetClassNamespace, "KALDO_USBConnection"},
                                           HostStep{HostOperation::kGetClass, "KALDO_USBPort"},
                                           HostStep{HostOperation::kEnumerateInstances, "KALDO_USBPort"},
                                           HostStep{HostOperation::kGetClass, "KALDO_USBDevice"},
                                           HostStep{HostOperation::kEnumerateInstances, "KALDO_USBDevice"}));

TEST_F(PortDeviceFailure, StillLinksHubsWhenTheDevicesCannotBeHad) {
  const std::string port = CommitPort("port", 1, "A", "0");
  const std::string hub = CommitHub("hub", 2, "A", "0");
  HostCalls::Fail(HostOperation::kGetClass, "KALDO_USBDevice", 1, ThrowHostError);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(port, hub)});
  EXPECT_EQ(
      log,
      Concatenated({{kEntering, kBegin, SetupError("KALDO_USBDevice", "CIM_ERR_ACCESS_DENIED"), kBegin, kEnd},
                    MakingOf(kAssociation),
                    {kExiting}}));
}

TEST_F(PortDeviceFailure, StillLinksDevicesWhenTheHubsCannotBeHad) {
  const std::string port = CommitPort("port", 1, "A", "0");
  const std::string device = CommitDevice("device", 1, "A", "0");
  HostCalls::Fail(HostOperation::kEnumerateInstances, "KALDO_USBHub", 1, ThrowHostError);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(port, device)});
  EXPECT_EQ(log, Concatenated(
                     {{kEntering, kBegin, kEnd, kBegin, SetupError("KALDO_USBHub", "CIM_ERR_ACCESS_DENIED")},
                      MakingOf(kAssociation),
                      {kExiting}}));
}

TEST_F(PortDeviceFailure, NamesTheDependentClassThatTheHostLacks) {
  EXPECT_EQ(MakeLinks("KALDO_Other"), Links());
  EXPECT_EQ(log, (Log{kBegin, SetupError("KALDO_Other", "CIM_ERR_NOT_FOUND")}));
}

TEST_F(PortDeviceFailure, LetsAFailureToBuildTheContextLeave) {
  HostCalls::Fail(HostOperation::kMakeStringValue, NKESTA20::TCIMSchemaHelper::kPluginNSPName, 1,
                  ThrowHostError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), TQSVException);
  EXPECT_EQ(log, (Log{kEntering, kBegin}));
}

TEST_F(PortDeviceFailure, KeepsTheLinkWhenThePortCannotBeMarked) {
  const std::string port1 = CommitPort("1", 1, "A", "1");
  const std::string port2 = CommitPort("2", 1, "A", "2");
  const std::string device1 = CommitDevice("1", 1, "A", "1");
  const std::string device2 = CommitDevice("2", 1, "A", "2");
  HostCalls::Fail(HostOperation::kSetProperty, "StatusDescriptions", 1, ThrowHostError);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), (Links{Link(port1, device1), Link(port2, device2)}));
  EXPECT_EQ(StatusOf("1"), Texts({"No device connected"}));
  EXPECT_EQ(StatusOf("2"), Texts({"Device connected"}));
  EXPECT_EQ(log, Concatenated({{kEntering, kBegin, kMarkError, kEnd, kBegin, kEnd},
                               MakingOf(kAssociation),
                               MakingOf(kAssociation),
                               {kExiting}}));
}

TEST_F(PortDeviceFailure, TriesNoOtherPortWhenTheFirstMatchCannotBeMarked) {
  const std::string first = CommitPort("first", 1, "A", "0");
  CommitPort("second", 1, "A", "0");
  const std::string device = CommitDevice("device", 1, "A", "0");
  HostCalls::Fail(HostOperation::kSetProperty, "StatusDescriptions", 1, ThrowHostError);
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(first, device)});
  EXPECT_EQ(log, (Log{kBegin, kMarkError, kEnd}));
}

TEST_F(PortDeviceFailure, LetsAnErrorOfAnotherTypeLeaveTheMarking) {
  CommitPort("port", 1, "A", "0");
  CommitDevice("device", 1, "A", "0");
  HostCalls::Fail(HostOperation::kSetProperty, "StatusDescriptions", 1, ThrowAnotherError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), AnotherError);
  EXPECT_EQ(log, (Log{kEntering, kBegin}));
}

class PortDeviceLinking : public PortDeviceFailure, public ::testing::WithParamInterface<HostStep> {};

TEST_P(PortDeviceLinking, HostErrorInAMatchedPairLeaves) {
  CommitPort("1", 1, "A", "1");
  CommitPort("2", 1, "A", "2");
  CommitDevice("1", 1, "A", "1");
  CommitDevice("2", 1, "A", "2");
  HostCalls::Fail(GetParam().operation, GetParam().subject, 2, ThrowHostError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), TQSVException);
  EXPECT_EQ(log, (Log{kEntering, kBegin}));
  EXPECT_TRUE(Committed(kAssociation).empty());
}

INSTANTIATE_TEST_SUITE_P(AtEveryStep, PortDeviceLinking,
                         ::testing::Values(HostStep{HostOperation::kGetObjectPath, "KALDO_USBPort"},
                                           HostStep{HostOperation::kGetObjectPath, "KALDO_USBDevice"},
                                           HostStep{HostOperation::kMakeReferenceValue, ""},
                                           HostStep{HostOperation::kIsNull, ""},
                                           HostStep{HostOperation::kMakeStringValue, "Device connected"},
                                           HostStep{HostOperation::kMakeArrayValue, "1"}));

TEST_F(PortDeviceFailure, MakesNoConnectionAtAllWhenTheHubCallThrows) {
  CommitPort("1", 1, "A", "1");
  CommitPort("2", 1, "A", "2");
  CommitDevice("device", 1, "A", "1");
  CommitHub("hub", 2, "A", "2");
  HostCalls::Fail(HostOperation::kGetObjectPath, "KALDO_USBHub", 1, ThrowHostError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), TQSVException);
  EXPECT_TRUE(Committed(kAssociation).empty());
  EXPECT_EQ(StatusOf("1"), Texts({"Device connected"}));
  EXPECT_EQ(StatusOf("2"), Texts({"No device connected"}));
  EXPECT_EQ(log, (Log{kEntering, kBegin, kEnd, kBegin}));
}

TEST_F(PortDeviceFailure, GoesOnAfterAConnectionThatCannotBeMadeAndKeepsThePortMarked) {
  CommitPort("1", 1, "A", "1");
  const std::string port2 = CommitPort("2", 1, "A", "2");
  CommitDevice("device", 1, "A", "1");
  const std::string hub = CommitHub("hub", 2, "A", "2");
  HostCalls::Fail(HostOperation::kCommit, kAssociation, 1, ThrowHostError);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(port2, hub)});
  EXPECT_EQ(StatusOf("1"), Texts({"Device connected"}));
  EXPECT_EQ(log, Concatenated({{kEntering, kBegin, kEnd, kBegin, kEnd},
                               MakingOf(kAssociation),
                               {GenerationError(kAssociation)},
                               MakingOf(kAssociation),
                               {kExiting}}));
}

TEST_F(PortDeviceFailure, IsUnsuccessfulWhenNoConnectionCouldBeMade) {
  CommitPort("1", 1, "A", "1");
  CommitDevice("1", 1, "A", "1");
  CommitDevice("2", 1, "A", "1");
  HostCalls::Fail(HostOperation::kCreateInstance, kAssociation, HostCalls::kEvery, ThrowHostError);
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
  const Log failed = {MakingOf(kAssociation).front(), GenerationError(kAssociation)};
  EXPECT_EQ(log, Concatenated({{kEntering, kBegin, kEnd, kBegin, kEnd}, failed, failed, {kExiting}}));
}

TEST_F(PortDeviceFailure, StaysSuccessfulWhenOnlyTheLastConnectionFails) {
  CommitPort("1", 1, "A", "1");
  CommitDevice("1", 1, "A", "1");
  CommitDevice("2", 1, "A", "1");
  HostCalls::Fail(HostOperation::kCommit, kAssociation, 2, ThrowHostError);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
}

TEST_F(PortDeviceFailure, NamesTheRequestedClassWhenAConnectionCannotBeMade) {
  CommitPort("1", 1, "A", "1");
  CommitDevice("1", 1, "A", "1");
  HostCalls::Fail(HostOperation::kCreateInstance, "", 1, ThrowHostError);
  EXPECT_FALSE(provider.GetCIMInstances("KALDO_Other"));
  EXPECT_EQ(log.at(6), GenerationError("KALDO_Other"));
}

TEST_F(PortDeviceFailure, LetsErrorsOfOtherTypesLeaveTheMakingOfInstances) {
  CommitPort("1", 1, "A", "1");
  CommitDevice("1", 1, "A", "1");
  HostCalls::Fail(HostOperation::kCreateInstance, "", 1, ThrowAnotherError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), AnotherError);
  EXPECT_EQ(log.back(), MakingOf(kAssociation).front());
}

TEST_F(PortDeviceFailure, IsNotLoggedWithoutAHandle) {
  const std::string port = CommitPort("port", 1, "A", "0");
  Commit("KALDO_USBDevice", "no port", PlaceWithout("PortNumber"));
  const std::string device = CommitDevice("whole", 1, "A", "0");
  TUsbPortDeviceAsso silent(ClassNamed(kAssociation), nullptr);
  EXPECT_TRUE(silent.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(port, device)});
  EXPECT_EQ(log, Log());
}

}  // namespace
}  // namespace usbinfo_test
