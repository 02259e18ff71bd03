// Exceptions while the device list is acquired: the host's own are caught as long as files are tested and
// read, at every step, and all others pass.
#include <gmock/gmock.h>

#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/TQSVException.h"
#include "standin/HostSeam.h"
#include "standin/StatusCode.h"
#include "tests/usbfs/AcquisitionFixture.h"

namespace {

using namespace usbinfo_test;
using NKESTA20::TQSVException;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

/// A way to the list, and the step of it, counted from 1, that fails.
struct FailingStep {
  const char* name;
  /// The file that is there from the start; null: the mount command brings the usual one.
  const char* file;
  std::size_t step;
  std::vector<std::string> way;
  /// True when the list has been read before the step.
  bool hasText = false;
};

std::ostream& operator<<(std::ostream& out, const FailingStep& step) {
  return out << step.name;
}

const std::vector<FailingStep>& FailingSteps() {
  static const std::vector<std::string> proc = {kTestProc, kReadProc};
  static const std::vector<std::string> debugfs = {kTestProc, kTestDebugfs, kReadDebugfs};
  static const std::vector<std::string> mounted = {kTestProc, kTestDebugfs, kMount,
                                                   kTestProc, kReadProc,    kUnmount};
  static const std::vector<FailingStep> all = {{"TestingProc", kProcList, 1, proc},
                                               {"ReadingProc", kProcList, 2, proc},
                                               {"TestingDebugfs", kDebugfsList, 2, debugfs},
                                               {"ReadingDebugfs", kDebugfsList, 3, debugfs},
                                               {"Mounting", nullptr, 3, mounted},
                                               {"TestingProcAfterMount", nullptr, 4, mounted},
                                               {"ReadingProcAfterMount", nullptr, 5, mounted},
                                               {"Unmounting", nullptr, 6, mounted, true}};
  return all;
}

class AcquisitionStep : public AcquisitionTest, public ::testing::WithParamInterface<FailingStep> {
 protected:
  AcquisitionStep() {
    machine->outputs["usb-devices"] = OneDevice("command");
    if (GetParam().file != nullptr) machine->files[GetParam().file] = OneDevice("file");
  }

  /// Has the step fail with what `fail` throws.
  template <typename Fail>
  void FailWith(Fail fail) {
    machine->onCall = [this, fail](const std::string& call) {
      if (call == kMount) machine->files[kProcList] = OneDevice("file");
      if (calls.size() == GetParam().step) fail();
    };
  }

  std::vector<std::string> StepsTaken() const {
    const auto& way = GetParam().way;
    return {way.begin(), way.begin() + static_cast<std::ptrdiff_t>(GetParam().step)};
  }
};

INSTANTIATE_TEST_SUITE_P(Every, AcquisitionStep, ::testing::ValuesIn(FailingSteps()),
                         [](const auto& each) { return std::string(each.param.name); });

TEST_P(AcquisitionStep, FailureOfTheHostGoesOnWithTheTextAsItStands) {
  FailWith([] { standin::Throw(standin::StatusCode::kAccessDenied); });
  const std::vector<std::string> products = Acquire();
  std::vector<std::string> expectedCalls = StepsTaken();
  if (GetParam().hasText) {
    EXPECT_THAT(products, ElementsAre("file"));
    EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotRead, kEnd));
  } else {
    expectedCalls.push_back(kRunUsbDevices);
    EXPECT_THAT(products, ElementsAre("command"));
    EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotRead, LogLine{kDebug, OneDevice("command")}, kEnd));
  }
  EXPECT_THAT(calls, ElementsAreArray(expectedCalls));
}

TEST_P(AcquisitionStep, OtherExceptionsPassThrough) {
  FailWith([] { throw std::runtime_error("other"); });
  EXPECT_THROW(Acquire(), std::runtime_error);
  EXPECT_THAT(calls, ElementsAreArray(StepsTaken()));
  EXPECT_THAT(log, ElementsAre(kBegin));
}

class AcquisitionFailure : public AcquisitionTest {
 protected:
  /// Has writing the line `text` fail once.
  static void FailToLog(const std::string& text) {
    standin::HostSeam::SetObserver([text](const standin::HostCall& call) {
      if (call.operation != standin::HostOperation::kWriteLog || call.subject != text) return;
      standin::Throw(standin::StatusCode::kFailed);
    });
  }
};

TEST_F(AcquisitionFailure, UnreadableListAndNoCommandYieldNothing) {
  machine->files[kProcList] = OneDevice("file");
  machine->onCall = [](const std::string& call) {
    if (call == kReadProc) standin::Throw(standin::StatusCode::kAccessDenied);
  };
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotRead, kListIsEmpty));
}

TEST_F(AcquisitionFailure, AnUnreadableProcListIsNotMadeUpForByDebugfs) {
  machine->files[kProcList] = OneDevice("file");
  machine->files[kDebugfsList] = OneDevice("debugfs");
  machine->onCall = [](const std::string& call) {
    if (call == kReadProc) standin::Throw(standin::StatusCode::kAccessDenied);
  };
  EXPECT_THAT(Acquire(), IsEmpty());
  EXPECT_THAT(calls, ElementsAre(kTestProc, kReadProc, kRunUsbDevices));
}

TEST_F(AcquisitionFailure, HostFailureOfTheCommandPassesThrough) {
  machine->onCall = [](const std::string& call) {
    if (call == kRunUsbDevices) standin::Throw(standin::StatusCode::kFailed);
  };
  EXPECT_THROW(Acquire(), TQSVException);
  EXPECT_THAT(calls, ElementsAre(kTestProc, kTestDebugfs, kMount, kTestProc, kRunUsbDevices));
  EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotOpen));
}

TEST_F(AcquisitionFailure, OtherFailureOfTheCommandPassesThrough) {
  machine->files[kProcList] = "";
  machine->onCall = [](const std::string& call) {
    if (call == kRunUsbDevices) throw std::runtime_error("other");
  };
  EXPECT_THROW(Acquire(), std::runtime_error);
  EXPECT_THAT(log, ElementsAre(kBegin));
}

TEST_F(AcquisitionFailure, ALoggerThatFailsAmongTheFilesIsCaughtWithThem) {
  FailToLog(kCouldNotOpen.text);
  machine->outputs["usb-devices"] = OneDevice("command");
  EXPECT_THAT(Acquire(), ElementsAre("command"));
  EXPECT_THAT(log, ElementsAre(kBegin, kCouldNotRead, LogLine{kDebug, OneDevice("command")}, kEnd));
}

TEST_F(AcquisitionFailure, ALoggerThatFailsBeforeOrAfterTheFilesIsNotCaught) {
  for (const LogLine& line : {kBegin, kListIsEmpty}) {
    FailToLog(line.text);
    EXPECT_THROW(Acquire(), TQSVException) << line;
  }
}

TEST_F(AcquisitionFailure, TheNextCallStartsAfresh) {
  machine->files[kProcList] = OneDevice("file");
  machine->onCall = [](const std::string&) { throw std::runtime_error("other"); };
  EXPECT_THROW(Acquire(), std::runtime_error);
  machine->onCall = nullptr;
  EXPECT_THAT(Acquire(), ElementsAre("file"));
}

}  // namespace
