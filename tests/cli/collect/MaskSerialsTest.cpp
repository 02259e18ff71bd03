// --mask-serials: hashes stand where serial numbers stood, in every format and in the log, and nothing else
// tells them. What a serial number is on a line is worked out here once more.
#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"
#include "cli/collect/MaskingSystem.h"
#include "cli/format/OutputFormat.h"
#include "host/TQSVException.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/RunCommand.h"

using namespace std::string_literals;
using cli::MaskSerials;
using cli::SerialMask;
using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

namespace usbinfo_test {
namespace {

constexpr const char* kDebugfsList = "/sys/kernel/debug/usb/devices";

/// `list` with every serial number replaced by what `replace` gives for it.
std::string ReplaceSerials(const std::string& list,
                           const std::function<std::string(const std::string&)>& replace) {
  std::string replaced;
  std::size_t start = 0;
  for (std::size_t end = 0; end != std::string::npos; start = end + 1) {
    end = list.find('\n', start);
    const std::string line = list.substr(start, end == std::string::npos ? end : end - start);
    std::string lower = line;
    for (char& letter : lower)
      letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter);
    const std::size_t key = lower.find("serialnumber=");
    const std::size_t last = line.find_last_not_of(" \t\r");
    const std::size_t value = key + 13;
    const bool hasSerial = key != std::string::npos && last != std::string::npos && last >= value;
    replaced += hasSerial ? line.substr(0, value) + replace(line.substr(value, last + 1 - value)) : line;
    if (end != std::string::npos) replaced += '\n';
  }
  return replaced;
}

std::set<std::string> SerialsOf(const std::string& list) {
  std::set<std::string> serials;
  ReplaceSerials(list, [&serials](const std::string& serial) {
    serials.insert(serial);
    return std::string();
  });
  return serials;
}

/// Serial lines as no kernel writes them: letters of both cases, a line within the number, other fields and
/// keywords in it, blanks and control characters at its end, no value, lines of other types.
std::string ListOfForgedSerials() {
  std::string list = DeviceListWith("a name");
  const std::string real = "S:  SerialNumber=a name\n";
  const std::string forged =
      "S:  SERIALNUMBER=secret-one\nS:  serialNumber=secret-two \t\r\n"
      "S:  SerialNumber=secret-three SerialNumber=secret-four\n"
      "S:  SerialNumber=\nS:  SerialNumber= \t \r\n"
      "S:  Manufacturer=maker SerialNumber=secret-five\n"
      "Q:  SerialNumber=secret-six\n   SerialNumber=secret-seven\n"
      "S:  SerialNumber= secret\x1B[31m\x08-eight\x7F\xFF\xC2\x9B\n"
      "S:  SerialNumber=secret-\0-nine\n"s +
      "S:  SerialNumber=secret-last\r\n";
  return list.replace(list.find(real), real.size(), forged) + "\nSerialNumber=secret-at-the-end";
}

/// Every list to be tried, by a name.
std::vector<std::pair<std::string, std::string>> Lists() {
  std::vector<std::pair<std::string, std::string>> lists;
  for (const std::string& name : CaptureNames()) lists.emplace_back(name, ReadFile(CapturePath(name)));
  lists.emplace_back("hostile strings", HostileDeviceList());
  lists.emplace_back("forged serial numbers", ListOfForgedSerials());
  std::string returns = ReadFile(CapturePath("vm-desktop-debugfs"));
  lists.emplace_back("carriage returns", std::regex_replace(returns, std::regex("\n"), "\r\n"));
  return lists;
}

/// What the command prints and logs for `list`, masked with the key "key".
CommandResult RunMasked(const std::string& list, std::vector<std::string> options) {
  const TemporaryFolder folder;
  const std::vector<std::string> common = {
      "--devices",      "-",          "--system-name",          "testhost",
      "--mask-serials", "--mask-key", folder.File("key", "key")};
  options.insert(options.begin(), common.begin(), common.end());
  return Command(options).Input(list).Run();
}

/// All that the command lets out about `list`: every format, the tree with its details, too, and the log of
/// everything.
std::string EverythingToldOf(const std::string& list) {
  std::string told;
  for (const cli::OutputFormat& format : cli::OutputFormats()) {
    told += RunMasked(list, {"--format", format.name}).output;
  }
  return told + RunMasked(list, {"-v"}).output + RunMasked(list, {"--log-level", "verbose"}).errors +
         RunMasked(list, {"--log-level", "verbose", "--log-format", "json"}).errors;
}

std::string WithoutMasks(const std::string& text) {
  return std::regex_replace(text, std::regex("masked-[0-9a-f]{16}"), "masked");
}

TEST(SerialMaskTest, IsTheHashThatTheStandardsDescribe) {
  EXPECT_EQ(SerialMask("Jefe").Mask("what do ya want for nothing?"), "masked-5bdcc146bf60754e");
  EXPECT_EQ(SerialMask(std::string(20, '\x0B')).Mask("Hi There"), "masked-b0344c61d8db3853");
  EXPECT_EQ(
      SerialMask(std::string(131, '\xAA')).Mask("Test Using Larger Than Block-Size Key - Hash Key First"),
      "masked-60e431591ee0b67f");
}

TEST(SerialMaskTest, TakesAllBytesOfKeyAndSerialNumber) {
  EXPECT_NE(SerialMask("key").Mask("a\0b"s), SerialMask("key").Mask("a\0c"s));
  EXPECT_NE(SerialMask("key\0a"s).Mask("a"), SerialMask("key\0b"s).Mask("a"));
  EXPECT_NE(SerialMask("key").Mask("a"), SerialMask("key\n").Mask("a"));
}

TEST(SerialMaskTest, KeepsItsRandomKeyForTheRun) {
  EXPECT_EQ(SerialMask::OfThisRun().Mask("a"), SerialMask::OfThisRun().Mask("a"));
  EXPECT_NE(SerialMask::OfThisRun().Mask("a"), SerialMask::OfThisRun().Mask("b"));
}

TEST(SerialMaskTest, TakesAKeyOfAMebibyteAndNoLongerOne) {
  const TemporaryFolder folder;
  const std::string longest = folder.File("longest", std::string(1 << 20, 'k'));
  const std::string tooLong = folder.File("long", std::string((1 << 20) + 1, 'k'));
  EXPECT_EQ(SerialMask::OfKeyFile(longest).Mask("a"), SerialMask(std::string(1 << 20, 'k')).Mask("a"));
  EXPECT_THAT(UserErrorOf([&tooLong] { SerialMask::OfKeyFile(tooLong); }), HasSubstr("File too large"));
}

TEST(MaskedText, HasTheMaskFromTheFieldToTheEndOfTheLine) {
  const SerialMask mask("key");
  const std::string hash = mask.Mask("abc");
  EXPECT_EQ(MaskSerials("S:  SerialNumber=abc\nS:  Product=p\n", mask),
            "S:  SerialNumber=" + hash + "\nS:  Product=p\n");
  EXPECT_EQ(MaskSerials("SERIALnumber=abc", mask), "SERIALnumber=" + hash);
  EXPECT_EQ(MaskSerials("S:  SerialNumber=abc \t \r\nX", mask), "S:  SerialNumber=" + hash + "\nX");
  EXPECT_EQ(MaskSerials("SerialNumber=a SerialNumber=b", mask),
            "SerialNumber=" + mask.Mask("a SerialNumber=b"));
  EXPECT_EQ(MaskSerials("SerialNumber=a\0b\n"s, mask), "SerialNumber=" + mask.Mask("a\0b"s) + "\n");
  EXPECT_EQ(MaskSerials("SerialNumber= abc", mask), "SerialNumber=" + mask.Mask(" abc"));
  EXPECT_EQ(MaskSerials("SerialNumber=a\n\nSerialNumber=abc\n", mask),
            "SerialNumber=" + mask.Mask("a") + "\n\nSerialNumber=" + hash + "\n");
}

TEST(MaskedText, IsTheSameWhereThereIsNoSerialNumber) {
  const SerialMask mask("key");
  for (const std::string& text :
       {""s, "\n"s, "S:  SerialNumber=\n"s, "S:  SerialNumber= \t\r\nX"s, "SerialNumber="s,
        "SerialNumber = a"s, "Serial\nNumber=a"s, "Serial\0Number=a"s, "SERIALNUMBE\xC5\x98=a"s}) {
    EXPECT_EQ(MaskSerials(text, mask), text);
  }
}

TEST(MaskedText, ReplacesEverySerialNumberOfEveryList) {
  const SerialMask mask("key");
  for (const auto& [name, list] : Lists()) {
    EXPECT_EQ(MaskSerials(list, mask),
              ReplaceSerials(list, [&mask](const std::string& serial) { return mask.Mask(serial); }))
        << name;
  }
}

TEST(MaskSerialsOption, LetsNothingOutButTheMasks) {
  for (const auto& [name, list] : Lists()) {
    const std::string other =
        ReplaceSerials(list, [](const std::string& serial) { return serial + "other"; });
    EXPECT_EQ(WithoutMasks(EverythingToldOf(list)), WithoutMasks(EverythingToldOf(other))) << name;
  }
}

TEST(MaskSerialsOption, TellsNoSerialNumberThatIsNothingElse) {
  for (const auto& [name, list] : Lists()) {
    const std::string rest = ReplaceSerials(list, [](const std::string&) { return std::string(); });
    const std::string told = EverythingToldOf(list);
    for (const std::string& serial : SerialsOf(list)) {
      if (serial.size() < 4 || rest.find(serial) != std::string::npos) continue;
      EXPECT_THAT(told, Not(HasSubstr(serial))) << name;
    }
  }
}

TEST(MaskSerialsOption, TellsNoPartOfAForgedSerialNumber) {
  EXPECT_THAT(EverythingToldOf(ListOfForgedSerials()), Not(HasSubstr("secr")));
  EXPECT_THAT(EverythingToldOf(DeviceListWith("a\nS:  SerialNumber=secret Product=secret")),
              Not(HasSubstr("secr")));
}

/// Puts the text of `plain` where `masked` has a mask, which may stand behind "SerialNumber=" alone.
void UndoMasks(json& masked, const json& plain) {
  const std::regex whole("masked-[0-9a-f]{16}");
  for (auto& property : masked.items()) {
    if (!property.value().is_string()) continue;
    const std::string before = plain[property.key()];
    const std::string after = property.value();
    const std::size_t field = before.find("SerialNumber=");
    const bool isSerial = property.key() == "SerialNumber" && std::regex_match(after, whole);
    const bool holdsSerial = field != std::string::npos && std::regex_match(after.substr(field + 13), whole);
    if (isSerial || holdsSerial) property.value() = before;
  }
}

TEST(MaskSerialsOption, LeavesTheRestOfTheJsonDocumentAsItIs) {
  for (const auto& [name, list] : Lists()) {
    json masked = json::parse(RunMasked(list, {"--format", "json"}).output);
    const json plain =
        json::parse(Command({"--devices", "-", "--system-name", "testhost", "--format", "json"})
                        .Input(list)
                        .Run()
                        .output);
    for (auto& item : masked["classes"].items()) {
      const json& before = plain["classes"][item.key()];
      ASSERT_EQ(item.value().size(), before.size());
      for (std::size_t index = 0; index < before.size(); ++index)
        UndoMasks(item.value()[index], before[index]);
    }
    EXPECT_EQ(masked, plain) << name;
  }
}

TEST(MaskSerialsOption, MasksEverySerialNumberOfTheInventory) {
  const std::regex form("masked-[0-9a-f]{16}");
  for (const auto& [name, list] : Lists()) {
    const json classes = json::parse(RunMasked(list, {"--format", "json"}).output)["classes"];
    for (const auto& instances : classes) {
      for (const json& instance : instances) {
        const std::string serial = instance.value("SerialNumber", "Not Available");
        EXPECT_TRUE(serial == "Not Available" || std::regex_match(serial, form)) << name << " " << serial;
      }
    }
  }
}

TEST(MaskSerialsOption, KeepsTheProductThatAWordInTheSerialNumberWouldWipeOut) {
  std::string list = DeviceListWith("a name");
  const std::string serial = "SerialNumber=a name";
  list.replace(list.find(serial), serial.size(), "SerialNumber=My Product 1");
  const auto product = [](const CommandResult& result) {
    return json::parse(result.output)["classes"]["KALDO_USBDevice"][0]["Description"];
  };
  EXPECT_EQ(product(RunMasked(list, {"--format", "json"})), "a name");
  EXPECT_NE(product(Command({"--devices", "-", "--format", "json"}).Input(list).Run()), "a name");
}

std::string JsonWithKey(const std::string& key) {
  const TemporaryFolder folder;
  return RunUsbinfo({"--devices", CapturePath("vm-desktop-debugfs"), "--mask-serials", "--mask-key",
                     folder.File("key", key), "--format", "json"})
      .output;
}

TEST(MaskSerialsOption, MasksAlikeUnderOneKeyAndOtherwiseUnderAnother) {
  EXPECT_EQ(JsonWithKey("one"), JsonWithKey("one"));
  EXPECT_NE(JsonWithKey("one"), JsonWithKey("two"));
  EXPECT_NE(JsonWithKey("one"), JsonWithKey("one\n"));
}

TEST(MaskSerialsOption, MasksAlikeWhateverPrintedTheList) {
  const std::string kernel =
      RunMasked(ReadFile(CapturePath("vm-desktop-debugfs")), {"--format", "json"}).output;
  const std::string script =
      RunMasked(ReadFile(CapturePath("vm-desktop-usb-devices")), {"--format", "json"}).output;
  const std::string keyboard = SerialMask("key").Mask("68284-0000:00:01.0-3.1");
  EXPECT_THAT(kernel, HasSubstr(keyboard));
  EXPECT_THAT(script, HasSubstr(keyboard));
}

TEST(MaskSerialsOption, DrawsANewKeyForEveryRunUnlessOneIsGiven) {
  const std::vector<std::string> arguments = {"--devices", CapturePath("vm-desktop-debugfs"),
                                              "--mask-serials", "--format", "json"};
  const std::string first = RunUsbinfo(arguments).output;
  const std::string second = RunUsbinfo(arguments).output;
  EXPECT_NE(first, second);
  EXPECT_EQ(WithoutMasks(first), WithoutMasks(second));
  // Two root hubs of this machine have one serial number.
  const json hubs = json::parse(first)["classes"]["KALDO_USBHub"];
  EXPECT_EQ(hubs[0]["SerialNumber"], hubs[2]["SerialNumber"]);
}

TEST(MaskSerialsOption, ReadsTheKeyFromStandardInput) {
  const CommandResult result = Command({"--devices", CapturePath("vm-desktop-debugfs"), "--system-name",
                                        "testhost", "--mask-serials", "--mask-key", "-", "--format", "json"})
                                   .Input("key")
                                   .Run();
  EXPECT_EQ(result.output,
            RunMasked(ReadFile(CapturePath("vm-desktop-debugfs")), {"--format", "json"}).output);
}

TEST(MaskSerialsOption, GoesWithASelectionAndARequest) {
  const CommandResult result = RunMasked(ReadFile(CapturePath("vm-desktop-debugfs")),
                                         {"--request", "KALDO_USBDevice", "-s", "1:4", "--format", "jsonl"});
  const std::vector<std::string> lines = Lines(result.output);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(json::parse(lines[0])["properties"]["SerialNumber"],
            SerialMask("key").Mask("68284-0000:00:01.0-3.1"));
}

/// The plug-in on a recorded machine behind the mask.
class MaskingSystemTest : public CliTest {
 protected:
  void CollectMasked(const std::function<void(FakeOperatingSystem&)>& furnish) {
    auto fake = std::make_unique<FakeOperatingSystem>(&calls);
    furnish(*fake);
    host.SetOperatingSystem(std::make_unique<cli::MaskingSystem>(std::move(fake), SerialMask("key")));
    host.SetSystemName("testhost");
    CollectThroughModule();
  }
  std::string Rendered() const { return cli::FindOutputFormat("json").render(Collected(), {}); }
};

TEST_F(MaskingSystemTest, MasksTheFilesOfTheMachineAsAGivenList) {
  const std::string list = ReadFile(CapturePath("vm-desktop-debugfs"));
  CollectMasked([&list](FakeOperatingSystem& fake) { fake.files[kDebugfsList] = list; });
  EXPECT_EQ(Rendered(), RunMasked(list, {"--format", "json"}).output);
}

TEST_F(MaskingSystemTest, MasksTheOutputOfACommandAheadOfTheLog) {
  const std::string list = ReadFile(CapturePath("vm-desktop-usb-devices"));
  CollectMasked([&list](FakeOperatingSystem& fake) { fake.outputs["usb-devices"] = list; });
  EXPECT_EQ(Rendered(), RunMasked(list, {"--format", "json"}).output);
  const std::string masked = MaskSerials(list, SerialMask("key"));
  EXPECT_THAT(log, testing::Contains(LogLine{kDebug, masked}));
  for (const LogLine& line : log) {
    for (const std::string& serial : SerialsOf(list)) EXPECT_THAT(line.text, Not(HasSubstr(serial)));
  }
}

TEST_F(MaskingSystemTest, HandsQuestionsAndFailuresOn) {
  auto fake = std::make_unique<FakeOperatingSystem>(&calls);
  fake->files["there"] = "text";
  cli::MaskingSystem system(std::move(fake), SerialMask("key"));
  EXPECT_TRUE(system.FileExists("there"));
  EXPECT_FALSE(system.FileExists("missing"));
  EXPECT_EQ(system.CaptureFile("there"), "text");
  EXPECT_EQ(system.SpawnProcess("command", 7), "");
  EXPECT_THROW(system.CaptureFile("missing"), NKESTA20::TQSVException);
  EXPECT_THAT(calls, testing::ElementsAre("exists there", "exists missing", "capture there",
                                          "spawn command 7", "capture missing"));
}

}  // namespace
}  // namespace usbinfo_test
