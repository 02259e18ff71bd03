// Loading plug-in modules and driving them as a host does; a module that cannot be used says why and leaves
// nothing behind.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/TQSVException.h"
#include "standin/HostSeam.h"
#include "standin/PluginModule.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/Allocations.h"
#include "tests/support/HostTest.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/system/Processes.h"

namespace {

using standin::PluginError;
using standin::PluginModule;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class PluginModuleTest : public usbinfo_test::HostTest {
 protected:
  /// The texts of all log lines.
  std::vector<std::string> Texts() const {
    std::vector<std::string> texts;
    for (const auto& line : log) texts.push_back(line.text);
    return texts;
  }

  /// The text of the PluginError that loading the module throws; empty when it can be loaded.
  static std::string ErrorOfLoading(const std::string& path) {
    try {
      const PluginModule module(path);
    } catch (const PluginError& error) {
      return error.what();
    }
    return "";
  }

  /// Records the log, and throws where `line` is logged.
  void FailWhenLogged(const std::string& line) {
    host.CoreLogger().SetSink([this, line](auto severity, const std::string& text) {
      log.push_back({severity, text});
      if (text == line) throw std::runtime_error("failed at " + line);
    });
  }

  static bool IsLoaded(const char* path) {
    void* const handle = ::dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr) ::dlclose(handle);
    return handle != nullptr;
  }
};

TEST_F(PluginModuleTest, LoadsAModuleWithThePluginThatItRegisters) {
  PluginModule module(RECORDING_MODULE);
  EXPECT_EQ(module.Lifecycle().GetType(), 7);
  EXPECT_EQ(module.Lifecycle().GetName(), "Recording");
  EXPECT_EQ(module.Lifecycle().GetVersion(), "1.2");
  EXPECT_EQ(module.Lifecycle().GetInterfaceVersion(), "3.4");
  EXPECT_THAT(host.Plugins(), ElementsAre(&module.Lifecycle()));
  EXPECT_THAT(Texts(), ElementsAre("created"));
}

TEST_F(PluginModuleTest, DrivesAWholeRoundInOrder) {
  PluginModule module(RECORDING_MODULE);
  log.clear();
  module.Collect({"KALDO_USBPort", "KALDO_USBController", "KALDO_USBConnection"});
  EXPECT_THAT(Texts(),
              ElementsAre("Init", "GetData KALDO_USBPort KALDO_USBController KALDO_USBConnection", "DeInit"));
}

TEST_F(PluginModuleTest, AsksForUnknownAndRepeatedNamesAllTheSame) {
  PluginModule module(RECORDING_MODULE);
  log.clear();
  module.Collect({"KALDO_USBControllerHasHub", "KALDO_USBHub", "Nonsense", "KALDO_USBHub"});
  EXPECT_THAT(
      Texts(),
      ElementsAre("Init", "GetData KALDO_USBControllerHasHub KALDO_USBHub Nonsense KALDO_USBHub", "DeInit"));
}

TEST_F(PluginModuleTest, AsksForNothingWhenNothingIsNamed) {
  PluginModule module(RECORDING_MODULE);
  log.clear();
  module.Collect({});
  EXPECT_THAT(Texts(), ElementsAre("Init", "GetData", "DeInit"));
}

TEST_F(PluginModuleTest, DeInitializesAfterARequestThatThrows) {
  PluginModule module(RECORDING_MODULE);
  log.clear();
  FailWhenLogged("GetData KALDO_USBHub");
  EXPECT_THROW(module.Collect({"KALDO_USBHub"}), std::runtime_error);
  EXPECT_THAT(Texts(), ElementsAre("Init", "GetData KALDO_USBHub", "DeInit"));
}

TEST_F(PluginModuleTest, PassesOnTheFirstOfTwoFailures) {
  PluginModule module(RECORDING_MODULE);
  host.CoreLogger().SetSink([](auto, const std::string& text) {
    if (text == "GetData" || text == "DeInit") throw std::runtime_error("failed at " + text);
  });
  try {
    module.Collect({});
    FAIL() << "nothing thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "failed at GetData");
  }
}

TEST_F(PluginModuleTest, DoesNotDeInitializeWhatCouldNotBeInitialized) {
  PluginModule module(RECORDING_MODULE);
  log.clear();
  FailWhenLogged("Init");
  EXPECT_THROW(module.Collect({}), std::runtime_error);
  EXPECT_THAT(Texts(), ElementsAre("Init"));
}

TEST_F(PluginModuleTest, PassesQueriesToThePlugin) {
  PluginModule module(RECORDING_MODULE);
  log.clear();
  std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> classes = {usbinfo_test::ClassOf("KALDO_USBHub")};
  module.Queries().GetData(host.Cimv2(), classes);
  EXPECT_THAT(Texts(), ElementsAre("GetData KALDO_USBHub"));
}

TEST_F(PluginModuleTest, HasThePluginDeleteItselfOnceAndUnloadsTheModule) {
  {
    const PluginModule module(RECORDING_MODULE);
    EXPECT_TRUE(IsLoaded(RECORDING_MODULE));
    log.clear();
  }
  EXPECT_THAT(Texts(), ElementsAre("PrepareForUnload", "destroyed"));
  EXPECT_THAT(host.Plugins(), IsEmpty());
  EXPECT_FALSE(IsLoaded(RECORDING_MODULE));
}

TEST_F(PluginModuleTest, ForgetsThePluginBeforeItGoes) {
  std::vector<std::size_t> known;
  auto module = std::make_unique<PluginModule>(RECORDING_MODULE);
  host.CoreLogger().SetSink([&](auto, const std::string&) { known.push_back(host.Plugins().size()); });
  module.reset();
  EXPECT_THAT(known, ElementsAre(0U, 0U));
}

TEST_F(PluginModuleTest, UnloadsAModuleWhosePluginFailsToGo) {
  auto module = std::make_unique<PluginModule>(RECORDING_MODULE);
  // Keeps the module mapped, so that the test can delete what the plug-in left.
  void* const handle = ::dlopen(RECORDING_MODULE, RTLD_NOW | RTLD_NOLOAD);
  std::unique_ptr<NKESTA20::IPluginCallbacks> left(&module->Lifecycle());
  log.clear();
  FailWhenLogged("PrepareForUnload");
  module.reset();
  EXPECT_THAT(log, ElementsAre(usbinfo_test::LogLine{usbinfo_test::kStatus, "PrepareForUnload"},
                               usbinfo_test::LogLine{NKESTA20::ILogger::kWarning,
                                                     std::string(RECORDING_MODULE) +
                                                         ": the plug-in failed when it was unloaded"}));
  EXPECT_THAT(host.Plugins(), IsEmpty());
  left.reset();
  EXPECT_EQ(::dlclose(handle), 0);
  EXPECT_FALSE(IsLoaded(RECORDING_MODULE));
}

TEST_F(PluginModuleTest, RefusesAPluginThatAnswersNoQueriesAndFailsToGo) {
  FailWhenLogged("PrepareForUnload");
  EXPECT_EQ(ErrorOfLoading(UNQUERIED_MODULE),
            std::string(UNQUERIED_MODULE) + ": the module registers no plug-in that answers queries");
  EXPECT_THAT(host.Plugins(), IsEmpty());
  EXPECT_FALSE(IsLoaded(UNQUERIED_MODULE));
}

TEST_F(PluginModuleTest, LeavesNothingBehindWhenMemoryIsShortAfterTheRegistration) {
  usbinfo_test::IdlePlugin other;
  host.Register(&other);
  host.Register(&other);  // so that there is room for one more
  host.Forget(&other);
  std::unique_ptr<usbinfo_test::Allocations::Failure> failure;
  standin::HostSeam::SetObserver([&failure](const standin::HostCall& call) {
    if (call.operation != standin::HostOperation::kRegisterPlugin) return;
    failure = std::make_unique<usbinfo_test::Allocations::Failure>(0, [] {});
  });
  EXPECT_THROW(const PluginModule module(RECORDING_MODULE), std::bad_alloc);
  failure.reset();
  EXPECT_THAT(Texts(), ElementsAre("created", "PrepareForUnload", "destroyed"));
  EXPECT_THAT(host.Plugins(), IsEmpty());
  EXPECT_FALSE(IsLoaded(RECORDING_MODULE));
}

TEST_F(PluginModuleTest, KeepsThePluginsThatWereThereBefore) {
  usbinfo_test::IdlePlugin other;
  host.Register(&other);
  { const PluginModule module(RECORDING_MODULE); }
  EXPECT_NE(ErrorOfLoading(SILENT_MODULE), "");
  EXPECT_NE(ErrorOfLoading(UNQUERIED_MODULE), "");
  EXPECT_THAT(host.Plugins(), ElementsAre(&other));
}

TEST_F(PluginModuleTest, LoadsAModuleAfreshEveryTime) {
  for (int round = 0; round < 3; ++round) {
    log.clear();
    { const PluginModule module(RECORDING_MODULE); }
    EXPECT_THAT(Texts(), ElementsAre("created", "PrepareForUnload", "destroyed"));
  }
}

TEST_F(PluginModuleTest, RefusesASecondLoadingAndKeepsTheFirst) {
  PluginModule module(RECORDING_MODULE);
  EXPECT_NE(ErrorOfLoading(RECORDING_MODULE), "");
  log.clear();
  module.Collect({"KALDO_USBHub"});
  EXPECT_THAT(Texts(), ElementsAre("Init", "GetData KALDO_USBHub", "DeInit"));
}

TEST_F(PluginModuleTest, SaysWhichFileIsMissing) {
  EXPECT_THAT(ErrorOfLoading("/no/such/module.so"),
              AllOf(HasSubstr("/no/such/module.so"), Not(HasSubstr("\n"))));
}

TEST_F(PluginModuleTest, SaysWhichFileIsNoModule) {
  const usbinfo_test::TemporaryFolder directory;
  for (const char* text : {"", "#!/bin/sh\necho no module\n", "\177ELF"}) {
    const std::string path = directory.File("module.so", text);
    EXPECT_THAT(ErrorOfLoading(path), AllOf(HasSubstr(path), Not(HasSubstr("\n"))));
  }
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(PluginModuleTest, RefusesAModuleThatRegistersNothing) {
  EXPECT_EQ(ErrorOfLoading(SILENT_MODULE),
            std::string(SILENT_MODULE) + ": the module registers no plug-in that answers queries");
  EXPECT_FALSE(IsLoaded(SILENT_MODULE));
}

TEST_F(PluginModuleTest, RefusesAModuleThatTheHostCannotRegister) {
  host.SetPluginManager(nullptr);
  EXPECT_NE(ErrorOfLoading(UNQUERIED_MODULE), "");
  EXPECT_FALSE(IsLoaded(UNQUERIED_MODULE));
}

TEST_F(PluginModuleTest, RefusesAPluginThatAnswersNoQueriesAndLetsItGo) {
  EXPECT_EQ(ErrorOfLoading(UNQUERIED_MODULE),
            std::string(UNQUERIED_MODULE) + ": the module registers no plug-in that answers queries");
  EXPECT_THAT(Texts(), ElementsAre("PrepareForUnload"));
  EXPECT_THAT(host.Plugins(), IsEmpty());
  EXPECT_FALSE(IsLoaded(UNQUERIED_MODULE));
}

/// In a child, since the loader keeps its lock when a module's initialization throws.
TEST_F(PluginModuleTest, PassesOnWhatTheModulesInitializationThrows) {
  const int exitCode = usbinfo_test::ExitOfChild([] {
    const std::string status = usbinfo_test::StatusOf([] { const PluginModule module(FAILING_MODULE); });
    return status == "CIM_ERR_ACCESS_DENIED" ? 0 : 1;
  });
  EXPECT_EQ(exitCode, 0);
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

}  // namespace
