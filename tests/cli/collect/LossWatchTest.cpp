// An inventory that lost something is never printed: which lines of the plug-in's log say so, and that
// whatever fails while it runs, memory above all, the outcome is the whole inventory or an error.
#include <gmock/gmock.h>

#include <cstdint>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "cli/collect/Collection.h"
#include "cli/collect/LossWatch.h"
#include "cli/format/OutputFormat.h"
#include "cli/format/RenderOptions.h"
#include "host/TQSVException.h"
#include "standin/HostSeam.h"
#include "standin/StatusCode.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using cli::LossWatch;
using NKESTA20::ILogger;
using standin::HostCall;
using standin::HostOperation;
using standin::HostSeam;
using testing::HasSubstr;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

std::string LossError(ILogger::EQSVLogSeverity severity, const std::vector<std::string>& lines) {
  LossWatch watch;
  for (const std::string& line : lines) watch.Take(severity, line);
  return UserErrorOf([&watch] { watch.CheckNothingLost(); });
}

const std::string kTabs = "\t\t\t\t\t\t";
const std::vector<std::string> kLosses = {
    "USBInfo plugin threw unknown exception",
    "Could not change Status Description property",
    "TUsbHubData encountered an error" + kTabs +
        "generating CIM instances for KALDO_USBHub Error Code: CIM_ERR_FAILED",
    "Port-Hub association encountered an error" + kTabs + "enumerating CIM instances for A OR B Error Code: ",
    "Port-Hub association encountered an error" + kTabs +
        "when collecting dependent properties. Error Code: CIM_ERR_FAILED",
    "KALDO_USBConnection association encountered an error" + kTabs +
        "when collecting antecedent properties. Error Code: ",
};

TEST(LossWatchTest, KnowsEveryLineThatSaysThatSomethingWasLost) {
  for (const std::string& line : kLosses) {
    EXPECT_THAT(LossError(ILogger::kStatus, {line}),
                StartsWith("the inventory is incomplete: the plug-in logged 1 failure, the first: "));
  }
  EXPECT_THAT(LossError(ILogger::kStatus, kLosses),
              HasSubstr(" logged 6 failures, the first: USBInfo plugin threw unknown "
                        "exception; "));
}

TEST(LossWatchTest, TakesNoOtherLineForALoss) {
  const std::vector<std::string> harmless = {
      "KALDO_USBConnection association encountered an error" + kTabs +
          "when collecting dependent properties. Error Code: CIM_ERR_NO_SUCH_PROPERTY",
      "Could not read usb device file ",
      "x can't match the data",
      "device says: USBInfo plugin threw unknown exception",
      "an error" + kTabs + "generating CIM instances for ",
      "",
  };
  EXPECT_EQ(LossError(ILogger::kStatus, harmless), "");
  // Strings of devices are logged at the debug level and may be anything.
  EXPECT_EQ(LossError(ILogger::kDebug, kLosses), "");
}

/// A root hub of two ports, and a device on the first of them.
constexpr const char* kSmallList =
    "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  2 Spd=12   MxCh= 0\n"
    "S:  SerialNumber=x\n";

/// The inventory of a list as text while one of the host's calls throws; "error" when it failed. Calls are
/// counted from the plug-in's first log line on, when the module has been loaded.
class PartialInventoryTest : public CliTest {
 protected:
  template <typename Fail>
  std::string CollectFailing(std::size_t number, Fail fail) {
    fCalls = 0;
    fWasFailed = false;
    HostSeam::SetObserver([&](const HostCall& call) {
      if (fCalls == 0 && call.operation != HostOperation::kWriteLog) return;
      if (fCalls++ != number || call.operation == HostOperation::kWriteLog) return;
      fWasFailed = true;
      fail(call.operation);
    });
    std::string outcome;
    try {
      outcome = Collect();
    } catch (const cli::UserError&) {
      outcome = "error";
    } catch (const std::bad_alloc&) {
      outcome = "error";
    }
    HostSeam::SetObserver(nullptr);
    return outcome;
  }
  std::string Collect() const {
    cli::Source source;
    source.devices = "list";
    source.plugin = MODULE_PATH;
    cli::LogWriter silent("", cli::LogSeverity::kError, cli::LogFormat::kText);
    const cli::Inventory inventory = cli::CollectFrom(kSmallList, source, cli::AllClasses(), silent);
    return cli::FindOutputFormat("json").render(inventory, {});
  }
  bool WasFailed() const { return fWasFailed; }
  std::size_t Calls() const { return fCalls; }

 private:
  bool fWasFailed = false;
  std::size_t fCalls = 0;
};

TEST_F(PartialInventoryTest, IsAnErrorWheneverTheHostLacksMemory) {
  const std::string whole = CollectFailing(SIZE_MAX, [](HostOperation) {});
  const std::size_t all = Calls();
  std::size_t errors = 0;
  for (std::size_t number = 0; number < all; ++number) {
    const std::string outcome = CollectFailing(number, [](HostOperation) { throw std::bad_alloc(); });
    EXPECT_TRUE(outcome == "error" || (!WasFailed() && outcome == whole)) << "call " << number;
    errors += outcome == "error" ? 1U : 0U;
  }
  EXPECT_GT(errors, 100U);
}

TEST_F(PartialInventoryTest, IsAnErrorWheneverTheHostFailsAnInstanceOrALink) {
  const std::string whole = CollectFailing(SIZE_MAX, [](HostOperation) {});
  const std::size_t all = Calls();
  std::size_t errors = 0;
  for (std::size_t number = 0; number < all; ++number) {
    const std::string outcome = CollectFailing(number, [](HostOperation operation) {
      // A failure to make the keys' values is not logged, and reading the list is not checked by the log.
      static const std::set<HostOperation> kOfInstances = {
          HostOperation::kGetClass,    HostOperation::kCreateInstance,   HostOperation::kEnumerateInstances,
          HostOperation::kCommit,      HostOperation::kGetObjectPath,    HostOperation::kGetProperty,
          HostOperation::kSetProperty, HostOperation::kGetPropertyValue, HostOperation::kGetPropertyText};
      if (kOfInstances.count(operation) == 0) return;
      standin::Throw(standin::StatusCode::kFailed);
    });
    EXPECT_TRUE(outcome == "error" || outcome == whole) << "call " << number;
    errors += outcome == "error" ? 1U : 0U;
  }
  EXPECT_GT(errors, 50U);
}

/// Ports that take some ten mebibytes.
std::string LargeList() {
  std::string list;
  for (int bus = 1; bus <= 4; ++bus) {
    list += "T:  Bus=0" + std::to_string(bus) +
            " Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh=255\n"
            "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n";
  }
  return list;
}

TEST(MemoryLimit, EndsInAnErrorOrInTheWholeInventory) {
  if (SANITIZED) GTEST_SKIP() << "the sanitizers take more address space than there is";
  constexpr std::size_t kStep = 3;
  constexpr std::size_t kMostMebibytes = 100;
  const std::string list = LargeList();
  const std::vector<std::string> arguments = {"--devices", "-",        "--system-name",
                                              "testhost",  "--format", "table"};
  const std::string whole = Command(arguments).Input(list).Run().output;
  int failures = 0;
  int successes = 0;
  for (std::size_t limit = kStep; successes < 2 && limit < kMostMebibytes; limit += kStep) {
    const std::string option = "--as=" + std::to_string(limit << 20U);
    const CommandResult result = Command(arguments).Through({"/usr/bin/prlimit", option}).Input(list).Run();
    EXPECT_EQ(result.output, result.status == 0 ? whole : "") << limit << " MiB";
    if (result.status == 0) {
      ++successes;
    } else if (result.status == 2) {
      ++failures;
      EXPECT_EQ(Lines(result.errors).size(), 1U) << result.errors;
    } else {
      EXPECT_EQ(failures + successes, 0) << "status " << result.status << " with " << limit << " MiB";
    }
  }
  EXPECT_EQ(successes, 2);
  EXPECT_GT(failures, 1) << "no limit was hit while the plug-in ran";
}

}  // namespace
}  // namespace usbinfo_test
