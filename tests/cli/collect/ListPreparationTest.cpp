// What is done to a device list on its way to the plug-in, and what is noted of it.
#include <gmock/gmock.h>

#include <memory>
#include <utility>

#include "cli/collect/ListPreparation.h"
#include "cli/collect/MachineId.h"
#include "cli/collect/PreparingSystem.h"
#include "tests/cli/support/CliTest.h"
#include "tests/support/FakeOperatingSystem.h"
#include "tests/support/TemporaryFolder.h"

using testing::HasSubstr;
using testing::Not;

namespace usbinfo_test {
namespace {

const char* const kList =
    "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\nE:  Ad=81(I)\nI:* If#= 1\n\n"
    "T:  Bus=01 Lev=01 Prnt=07 Port=00 Cnt=01 Dev#=  2 Spd=12   MxCh= 0\nS:  SerialNumber=S1\nT:  Bus=09\n";

TEST(PrepareList, MendsTheListAndLeavesOutWhatThePluginWouldMisread) {
  const cli::PreparedList list = cli::PrepareList(kList, {});
  std::string whole = kList;
  whole.replace(whole.find("Prnt=07"), 7, "Prnt=01");
  EXPECT_EQ(list.whole, whole);
  EXPECT_EQ(list.read, whole.erase(whole.find("I:* If#= 1\n"), 11));
  EXPECT_EQ(list.repairs, (kernel::ListRepairs{.parents = 1, .staleInterfaces = 0}));
}

TEST(PrepareList, ChangesNothingWhereThatIsAsked) {
  const cli::PreparedList list = cli::PrepareList(kList, {.isAsIs = true, .mask = std::nullopt});
  EXPECT_EQ(list.whole, kList);
  EXPECT_EQ(list.read, kList);
  EXPECT_EQ(list.repairs, kernel::ListRepairs());
}

TEST(PrepareList, FindsWhatIsForgedAndMasksSerialNumbersEitherWay) {
  for (const bool isAsIs : {false, true}) {
    const cli::PreparedList list = cli::PrepareList(kList, {isAsIs, cli::SerialMask::OfThisRun()});
    EXPECT_EQ(list.findings.size(), 2U);
    EXPECT_THAT(list.whole, Not(HasSubstr("S1")));
    EXPECT_THAT(list.read, HasSubstr("SerialNumber=masked-"));
  }
}

/// What the plug-in gets from a machine where usb-devices prints `output`, and what is noted.
std::pair<std::string, cli::ListOnItsWay> Spawned(const std::string& output, bool isAsIs) {
  std::vector<std::string> calls;
  auto machine = std::make_unique<FakeOperatingSystem>(&calls);
  machine->outputs["usb-devices"] = output;
  const auto onItsWay = std::make_shared<cli::ListOnItsWay>();
  cli::PreparingSystem system(std::move(machine), {isAsIs, std::nullopt}, onItsWay);
  std::string given = system.SpawnProcess("usb-devices", 300);
  return {std::move(given), *onItsWay};
}

TEST(PreparingSystem, WithholdsAListWithTheWordThatThePluginTakesForAMissingCommand) {
  const std::string list = "T:  Bus=01\nS:  Product=command-not-found\n";
  const auto [given, onItsWay] = Spawned(list, false);
  EXPECT_EQ(given, "");
  EXPECT_TRUE(onItsWay.isWithheld);
  EXPECT_EQ(onItsWay.list->read, list);
  EXPECT_EQ(Spawned(list, true).first, list);
}

TEST(PreparingSystem, PassesAShellsMessageOn) {
  const std::string message = "sh: command-not-found\n";
  const auto [given, onItsWay] = Spawned(message, false);
  EXPECT_EQ(given, message);
  EXPECT_FALSE(onItsWay.isWithheld);
}

TEST(MachineIdHash, IsTheHmacThatTheStandardsDescribe) {
  const TemporaryFolder folder;
  // printf usbinfo/machine/v1 | openssl dgst -sha256 -hmac 0123456789abcdef0123456789abcdef
  EXPECT_EQ(cli::MachineIdHash(folder.File("id", "0123456789abcdef0123456789abcdef\n")),
            "cf33ce00472226fd7b094599ec260a0b");
  for (const char* const text :
       {"", "uninitialized\n", "00000000000000000000000000000000\n", "0123456789ABCDEF0123456789ABCDEF\n"}) {
    EXPECT_EQ(cli::MachineIdHash(folder.File("id", text)), std::nullopt) << text;
  }
  EXPECT_EQ(cli::MachineIdHash(folder.File("missing")), std::nullopt);
}

}  // namespace
}  // namespace usbinfo_test
