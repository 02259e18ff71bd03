// Where the device list comes from: which files are tested and read, when usbfs is mounted, when the command
// is run, and what the log says of each way.
#include <gmock/gmock.h>

#include <string>

#include "standin/HostSeam.h"
#include "tests/usbfs/AcquisitionFixture.h"

namespace {

using namespace usbinfo_test;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Acquisition : public AcquisitionTest {};

TEST_F(Acquisition, ProcListIsReadWithoutLookingFurther) {
  machine->files[kProcList] = OneDevice("proc");
  EXPECT_THAT(Acquire(), ElementsAre("proc"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kReadProc));
  EXPECT_THAT(log, ElementsAre(kBegin, kEnd));
}

TEST_F(Acquisition, ProcListComesBeforeDebugfsListAndCommand) {
  machine->files[kProcList] = OneDevice("proc");
  machine->files[kDebugfsList] = OneDevice("debugfs");
  machine->outputs["usb-devices"] = OneDevice("command");
  EXPECT_THAT(Acquire(), ElementsAre("proc"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kReadProc));
}

TEST_F(Acquisition, DebugfsListIsReadWithoutMounting) {
  machine->files[kDebugfsList] = OneDevice("debugfs");
  machine->outputs["usb-devices"] = OneDevice("command");
  EXPECT_THAT(Acquire(), ElementsAre("debugfs"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kTestDebugfs, kReadDebugfs));
  EXPECT_THAT(log, ElementsAre(kBegin, kEnd));
}

TEST_F(Acquisition, ListThatMountingBringsIsReadAndUnmountedAgain) {
  MountBrings(OneDevice("mounted"));
  EXPECT_THAT(Acquire(), ElementsAre("mounted"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kTestDebugfs, kMount, kTestProc, kReadProc, kUnmount));
  EXPECT_THAT(log, ElementsAre(kBegin, kEnd));
}

TEST_F(Acquisition, DebugfsListThatAppearsWithTheMountIsNotLookedFor) {
  machine->onCall = [this](const std::string& call) {
    if (call == kMount) machine->files[kDebugfsList] = OneDevice("debugfs");
  };
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(calls, ElementsAre(kTestProc, kTestDebugfs, kMount, kTestProc, kRunUsbDevices));
}

TEST_F(Acquisition, FailedMountIsNotUnmountedAndLeadsToTheCommand) {
  const std::string output = OneDevice("command");
  machine->outputs["usb-devices"] = output;
  EXPECT_THAT(Acquire(), ElementsAre("command"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kTestDebugfs, kMount, kTestProc, kRunUsbDevices));
  EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotOpen, LogLine{kDebug, output}, kEnd));
}

TEST_F(Acquisition, EmptyProcListLeadsToTheCommand) {
  machine->files[kProcList] = "";
  machine->files[kDebugfsList] = OneDevice("debugfs");
  const std::string output = OneDevice("command");
  machine->outputs["usb-devices"] = output;
  EXPECT_THAT(Acquire(), ElementsAre("command"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kReadProc, kRunUsbDevices));
  EXPECT_THAT(log, ElementsAre(kBegin, LogLine{kDebug, output}, kEnd));
}

TEST_F(Acquisition, EmptyDebugfsListLeadsToTheCommandWithoutMounting) {
  machine->files[kDebugfsList] = "";
  machine->outputs["usb-devices"] = OneDevice("command");
  EXPECT_THAT(Acquire(), ElementsAre("command"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kTestDebugfs, kReadDebugfs, kRunUsbDevices));
}

TEST_F(Acquisition, EmptyMountedListIsUnmountedBeforeTheCommandIsRun) {
  MountBrings("");
  machine->outputs["usb-devices"] = OneDevice("command");
  EXPECT_THAT(Acquire(), ElementsAre("command"));
  EXPECT_THAT(calls,
              ElementsAre(kTestProc, kTestDebugfs, kMount, kTestProc, kReadProc, kUnmount, kRunUsbDevices));
}

TEST_F(Acquisition, EmptyOutputEndsWithAStatusLineAndNoEnd) {
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotOpen, kListIsEmpty));
}

TEST_F(Acquisition, EmptyFileAndEmptyOutputEndWithAStatusLineAndNoEnd) {
  machine->files[kProcList] = "";
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(log, ElementsAre(kBegin, kListIsEmpty));
}

TEST_F(Acquisition, OutputThatReportsAMissingCommandIsLoggedAndNotCut) {
  const std::string inAList = OneDevice("command-not-found");
  for (const std::string& output :
       {std::string("command-not-found"), std::string("x command-not-found\n"), inAList}) {
    log.clear();
    machine->outputs["usb-devices"] = output;
    EXPECT_THAT(Acquire(), IsEmpty());
    EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotOpen, LogLine{kDebug, output}, kListIsEmpty));
  }
}

TEST_F(Acquisition, OtherWordingsOfAMissingCommandAreCutLikeAList) {
  machine->outputs["usb-devices"] = "sh: command not found";
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotOpen, LogLine{kDebug, "sh: command not found"},
                               LogLine{kStatus, "s can't match the data"}, kEnd));
}

TEST_F(Acquisition, AFileMaySayThatACommandIsMissing) {
  machine->files[kProcList] = OneDevice("command-not-found");
  EXPECT_THAT(Acquire(), ElementsAre("command-not-found"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kReadProc));
}

TEST_F(Acquisition, UnmatchedLinesAreLoggedByTypeInTheirOrder) {
  machine->files[kProcList] = "T:  Lev=00\nD:\nE:  Ad=81\n\nT:\nE:\n";
  EXPECT_THAT(Acquire(), ElementsAre("Not Available", "Not Available"));
  EXPECT_THAT(log, ElementsAre(kBegin, LogLine{kStatus, "E can't match the data"},
                               LogLine{kStatus, "\n can't match the data"},
                               LogLine{kStatus, "E can't match the data"},
                               LogLine{kStatus, " can't match the data"}, kEnd));
}

TEST_F(Acquisition, TypesOfAnyByteAreLoggedAsTheyAre) {
  const std::string nul(1, '\0');
  machine->files[kProcList] = "B:\n\xC3\xA9\n" + nul;
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(log, ElementsAre(kBegin, LogLine{kStatus, "B can't match the data"},
                               LogLine{kStatus, "\xC3 can't match the data"},
                               LogLine{kStatus, nul + " can't match the data"}, kEnd));
}

TEST_F(Acquisition, AFileOfOneNewlineIsNotEmpty) {
  machine->files[kProcList] = "\n";
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(calls, ElementsAre(kTestProc, kReadProc));
  EXPECT_THAT(log, ElementsAre(kBegin, LogLine{kStatus, "\n can't match the data"}, kEnd));
}

TEST_F(Acquisition, AListWithoutTopologyLinesYieldsNothingAndEndsNormally) {
  machine->files[kProcList] = "S:  Product=x\nI:  Cls=09(hub  )";
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(log, ElementsAre(kBegin, kEnd));
}

TEST_F(Acquisition, RecordsComeInTheOrderOfTheListWithTheirTypes) {
  machine->files[kProcList] = "T:\nS:  Product=a\nI:  Cls=09(hub  )\n\nT:\nS:  Product=b";
  std::queue<UsbDevice> devices = provider.GetUsbDeviceInfomation();
  EXPECT_THAT(ProductsOf(devices), ElementsAre("a", "b"));
  EXPECT_EQ(devices.front().GetDeviceType(), 1);
  EXPECT_EQ(devices.back().GetDeviceType(), 0);
}

TEST_F(Acquisition, EveryCallReadsTheListAgain) {
  machine->files[kProcList] = OneDevice("first");
  EXPECT_THAT(Acquire(), ElementsAre("first"));
  machine->files[kProcList] = OneDevice("second");
  EXPECT_THAT(Acquire(), ElementsAre("second"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kReadProc, kTestProc, kReadProc));
  EXPECT_THAT(log, ElementsAre(kBegin, kEnd, kBegin, kEnd));
}

TEST_F(Acquisition, BeginIsLoggedBeforeTheMachineIsAskedAndTheOutputBeforeItIsCut) {
  machine->outputs["usb-devices"] = "B:\nT:";
  machine->onCall = [this](const std::string& call) { log.push_back({-1, call}); };
  Acquire();
  EXPECT_THAT(log, ElementsAre(kBegin, LogLine{-1, kTestProc}, LogLine{-1, kTestDebugfs}, LogLine{-1, kMount},
                               LogLine{-1, kTestProc}, kCouldNotOpen, LogLine{-1, kRunUsbDevices},
                               LogLine{kDebug, "B:\nT:"}, LogLine{kStatus, "B can't match the data"}, kEnd));
}

class SilentAcquisition : public AcquisitionTest {
 protected:
  TUsbData silent{boost::shared_ptr<NKESTA20::ICIMClass>(), nullptr};
};

TEST_F(SilentAcquisition, AsksTheSameQuestionsAndYieldsTheSameRecords) {
  machine->outputs["usb-devices"] = "B:\n" + OneDevice("command");
  EXPECT_THAT(ProductsOf(silent.GetUsbDeviceInfomation()), ElementsAre("command"));
  EXPECT_THAT(calls, ElementsAre(kTestProc, kTestDebugfs, kMount, kTestProc, kRunUsbDevices));
}

TEST_F(SilentAcquisition, NeverReachesTheLogger) {
  int fetched = 0;
  standin::HostSeam::SetObserver([&fetched](const standin::HostCall& call) {
    if (call.operation == standin::HostOperation::kGetCoreLogger) ++fetched;
  });
  machine->outputs["usb-devices"] = "B:\n" + OneDevice("command");
  silent.GetUsbDeviceInfomation();
  machine->outputs.clear();
  silent.GetUsbDeviceInfomation();
  standin::HostSeam::SetObserver(nullptr);
  EXPECT_EQ(fetched, 0);
  EXPECT_THAT(log, IsEmpty());
}

}  // namespace
