// A host that throws while the module registers: the exception leaves the load and reaches whoever loads, and
// the object that could not register is freed. The dynamic linker does not expect that: it takes the module
// for initialized from then on. Each test therefore spends a process of its own.
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

#include "host/TQSVException.h"
#include "standin/StatusCode.h"
#include "tests/module/ModuleTest.h"
#include "tests/support/Allocations.h"

using NKESTA20::TQSVException;
using standin::HostOperation;
using ::testing::ExitedWithCode;

namespace usbinfo_test {
namespace {

// How a child process reports.
constexpr int kAsExpected = 17;
constexpr int kOtherwise = 18;
constexpr int kNothingLeftToFail = 19;

[[noreturn]] void Report(bool asExpected) {
  std::_Exit(asExpected ? kAsExpected : kOtherwise);
}

/// Loads the module. dlopen is declared not to throw; calling it through a volatile pointer keeps the
/// compiler from dropping the handlers of an exception.
void* Load() {
  void* (*volatile const open)(const char*, int) = ::dlopen;
  return open(MODULE_PATH, RTLD_NOW | RTLD_LOCAL);
}

class ThrowingLoadDeathTest : public ModuleTest {
 protected:
  static void FailOn(HostOperation operation, const std::function<void()>& fail) {
    standin::HostSeam::SetObserver([=](const standin::HostCall& call) {
      if (call.operation == operation) fail();
    });
  }

  /// Loads while `operation` throws a host exception. As expected: that exception comes out with its text,
  /// one block was made, the object, and none is left.
  [[noreturn]] static void LoadWhileHostFails(HostOperation operation) {
    FailOn(operation, [] { standin::Throw(standin::StatusCode::kAccessDenied); });
    const std::size_t live = Allocations::Live();
    const std::size_t made = Allocations::Made();
    try {
      Load();
    } catch (TQSVException& error) {
      const bool isFreed = Allocations::Live() == live && Allocations::Made() == made + 1;
      Report(isFreed && std::string(error.what()) == "CIM_ERR_ACCESS_DENIED");
    }
    Report(false);
  }

  /// Loads while registering throws a number; as expected if that comes out and `check` then holds.
  template <typename Check>
  [[noreturn]] static void LoadWhileRegisteringThrows(Check check) {
    FailOn(HostOperation::kRegisterPlugin, [] { throw 7; });
    try {
      Load();
    } catch (int number) {
      standin::HostSeam::SetObserver(nullptr);
      Report(number == 7 && check());
    }
    Report(false);
  }
};

/// How a child process that does `work` ends.
template <typename Work>
int ExitCodeOf(Work work) {
  const pid_t child = ::fork();
  if (child == 0) work();
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Loads while the allocation of that number fails. As expected: std::bad_alloc comes out. The last
/// allocation was tried when the load goes through.
[[noreturn]] void LoadShortOfMemory(std::size_t allocation) {
  bool isTried = false;
  const Allocations::Failure failure(allocation, [&isTried] { isTried = true; });
  try {
    Load();
  } catch (const std::bad_alloc&) {
    Report(isTried);
  }
  std::_Exit(isTried ? kOtherwise : kNothingLeftToFail);
}

/// True when loading through the stand-in fails with `Exception`.
template <typename Exception>
bool PluginModuleThrows() {
  try {
    const standin::PluginModule module(MODULE_PATH);
  } catch (Exception&) {
    return true;
  }
  return false;
}

TEST_F(ThrowingLoadDeathTest, ARefusedRegistrationReachesTheLoaderAndFreesTheObject) {
  EXPECT_EXIT(LoadWhileHostFails(HostOperation::kRegisterPlugin), ExitedWithCode(kAsExpected), "");
}

TEST_F(ThrowingLoadDeathTest, AManagerThatCannotBeHadReachesTheLoaderAndFreesTheObject) {
  EXPECT_EXIT(LoadWhileHostFails(HostOperation::kGetPluginManager), ExitedWithCode(kAsExpected), "");
}

TEST_F(ThrowingLoadDeathTest, AnExceptionOfAnyTypeReachesTheLoaderAndNothingIsRegistered) {
  EXPECT_EXIT(LoadWhileRegisteringThrows([this] { return host.Plugins().empty() && log.empty(); }),
              ExitedWithCode(kAsExpected), "");
}

TEST_F(ThrowingLoadDeathTest, AFurtherLoadCreatesNoPlugin) {
  EXPECT_EXIT(LoadWhileRegisteringThrows([this] { return Load() != nullptr && host.Plugins().empty(); }),
              ExitedWithCode(kAsExpected), "");
}

TEST_F(ThrowingLoadDeathTest, AFurtherLoadThroughTheStandInIsRefused) {
  EXPECT_EXIT(LoadWhileRegisteringThrows(PluginModuleThrows<standin::PluginError>),
              ExitedWithCode(kAsExpected), "");
}

TEST_F(ThrowingLoadDeathTest, AnyAllocationThatFailsReachesTheLoader) {
  // Each constant of each of the module's files takes its own memory.
  constexpr std::size_t kMoreThanThereAre = 10000;
  std::size_t allocation = 0;
  int exitCode = kAsExpected;
  for (; exitCode == kAsExpected && allocation < kMoreThanThereAre; ++allocation) {
    exitCode = ExitCodeOf([allocation] { LoadShortOfMemory(allocation); });
  }
  EXPECT_EQ(exitCode, kNothingLeftToFail) << "allocation " << allocation - 1;
  EXPECT_GT(allocation, 40U);
}

TEST_F(ThrowingLoadDeathTest, TheStandInPassesTheExceptionOn) {
  FailOn(HostOperation::kRegisterPlugin, [] { standin::Throw(standin::StatusCode::kAccessDenied); });
  EXPECT_EXIT(Report(PluginModuleThrows<TQSVException>()), ExitedWithCode(kAsExpected), "");
}

}  // namespace
}  // namespace usbinfo_test
