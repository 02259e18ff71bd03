// --mask-serials: hashes replace serial numbers in every format and in the log, and nothing else shows them.
// The test finds serial numbers and root hubs in the lists by its own code.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "cli/collect/ListMask.h"
#include "cli/collect/PreparingSystem.h"
#include "cli/format/OutputFormat.h"
#include "cli/format/RenderOptions.h"
#include "host/TQSVException.h"
#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/InventoryBuilder.h"
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

constexpr const char* kKey = "0123456789abcdef";

const SerialMask& Mask() {
  static const SerialMask mask = SerialMask::OfKey(kKey);
  return mask;
}

bool IsBlank(const std::string& line) {
  return line.find_first_not_of(" \t\r") == std::string::npos;
}

/// Whether the line of that number is a string of a root hub: before it come strings, the "P:" line of a root
/// hub, lines of its descriptor and its "T:" line, and before that, blank lines aside, no string.
bool IsOfRootHub(const std::vector<std::string>& lines, std::size_t number) {
  const auto goBackOver = [&](const char* types) {
    while (number > 0 && std::string(types).find(lines[number].substr(0, 1)) != std::string::npos &&
           lines[number].substr(1, 1) == ":") {
      --number;
    }
  };
  if (lines[number].rfind("S:", 0) != 0) return false;
  goBackOver("S");
  if (!std::regex_search(lines[number], std::regex("^P:.* Vendor=1d6b "))) return false;
  --number;
  goBackOver("BD");
  if (!std::regex_search(lines[number], std::regex("^T:.* Lev=00 "))) return false;
  if (number == 0) return true;
  if (!IsBlank(lines[number - 1])) return false;
  while (number > 0 && IsBlank(lines[number - 1])) --number;
  return number == 0 || lines[number - 1].rfind("S:", 0) != 0;
}

std::vector<std::string> SplitAtNewlines(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t start = 0;
  for (std::size_t end = 0; end != std::string::npos; start = end + 1) {
    end = text.find('\n', start);
    lines.push_back(text.substr(start, end == std::string::npos ? end : end - start));
  }
  return lines;
}

/// `list` with every serial number that is to be masked replaced by what `replace` gives for it.
std::string ReplaceSerials(const std::string& list,
                           const std::function<std::string(const std::string&)>& replace) {
  std::string replaced;
  const std::vector<std::string> lines = SplitAtNewlines(list);
  for (std::size_t number = 0; number < lines.size(); ++number) {
    const std::string& line = lines[number];
    std::string lower = line;
    for (char& letter : lower)
      letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter);
    const std::size_t key = lower.find("serialnumber=");
    const std::size_t last = line.find_last_not_of(" \t\r");
    const std::size_t value = key + 13;
    const bool hasSerial = key != std::string::npos && last != std::string::npos && last >= value;
    replaced += hasSerial && !IsOfRootHub(lines, number)
                    ? line.substr(0, value) + replace(line.substr(value, last + 1 - value))
                    : line;
    if (number + 1 < lines.size()) replaced += '\n';
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

/// What the command prints and logs for `list`, masked with a key of the run.
CommandResult RunMasked(const std::string& list, std::vector<std::string> options) {
  std::vector<std::string> common = {"--devices", "-", "--mask-serials"};
  // A saved inventory keeps its system's name.
  if (list.substr(0, 1) != "{") common.insert(common.end(), {"--system-name", "testhost"});
  options.insert(options.begin(), common.begin(), common.end());
  return Command(options).Input(list).Run();
}

/// The path of a file that holds `key` and that nobody else can read.
std::string KeyFile(const TemporaryFolder& folder, const std::string& key) {
  const std::string path = folder.File("key", key);
  std::filesystem::permissions(path, std::filesystem::perms{0600});
  return path;
}

/// The same, masked with kKey.
CommandResult RunWithKey(const std::string& list, std::vector<std::string> options) {
  const TemporaryFolder folder;
  options.emplace_back("--mask-key");
  options.push_back(KeyFile(folder, kKey));
  return RunMasked(list, options);
}

/// Everything that the command prints about `list`: every format, the tree with its details, and the verbose
/// log.
std::string EverythingPrintedOf(const std::string& list) {
  std::string printed;
  for (const cli::OutputFormat& format : cli::OutputFormats()) {
    printed += RunMasked(list, {"--format", format.name}).output;
  }
  printed += RunMasked(list, {"--format", "prometheus", "--with-serials"}).output;
  return printed + RunMasked(list, {"-v"}).output + RunMasked(list, {"--log-level", "verbose"}).errors +
         RunMasked(list, {"--log-level", "verbose", "--log-format", "json"}).errors;
}

std::string WithoutMasks(const std::string& text) {
  return std::regex_replace(text, std::regex("masked-[0-9a-f]{16}"), "masked");
}

// Computed with other programs: the key is stretched by argon2id_hash_raw(2, 65536, 1, ...) of libargon2 to
// 32 bytes with the salt "usbinfo/masks/v1", then hmac.new(stretched, text, hashlib.sha256) of Python is cut
// to 16 digits.
TEST(SerialMaskTest, IsTheHashThatTheStandardsDescribe) {
  EXPECT_EQ(Mask().Mask("68284-0000:00:01.0-3.1"), "masked-4c28e90b3753ecb8");
  EXPECT_EQ(Mask().Mask(""), "masked-4e527c3747459197");
  EXPECT_EQ(Mask().Fingerprint(), "36b7d9e49e324323");
  const SerialMask longest = SerialMask::OfKey(std::string(1 << 20, 'k'));
  EXPECT_EQ(longest.Mask("68284-0000:00:01.0-3.1"), "masked-343ece3d048725a9");
  EXPECT_EQ(longest.Fingerprint(), "ce6a799186810f76");
}

TEST(SerialMaskTest, TakesAllBytesOfKeyAndSerialNumber) {
  EXPECT_NE(Mask().Mask("a\0b"s), Mask().Mask("a\0c"s));
  EXPECT_NE(SerialMask::OfKey("0123456789abcde\0a"s).Mask("a"),
            SerialMask::OfKey("0123456789abcde\0b"s).Mask("a"));
  EXPECT_NE(Mask().Mask("a"), SerialMask::OfKey(kKey + "\n"s).Mask("a"));
}

TEST(SerialMaskTest, KeepsItsRandomKeyForTheRun) {
  EXPECT_EQ(SerialMask::OfThisRun().Mask("a"), SerialMask::OfThisRun().Mask("a"));
  EXPECT_NE(SerialMask::OfThisRun().Mask("a"), SerialMask::OfThisRun().Mask("b"));
  EXPECT_EQ(SerialMask::OfThisRun().Fingerprint(), std::nullopt);
}

TEST(SerialMaskTest, TakesKeysFrom16BytesToAMebibyte) {
  const TemporaryFolder folder;
  const auto maskOf = [&](const std::string& key) {
    return SerialMask::OfKeyFile(KeyFile(folder, key)).Mask("a");
  };
  EXPECT_EQ(maskOf(kKey), Mask().Mask("a"));
  EXPECT_EQ(maskOf(std::string(1 << 20, 'k')), SerialMask::OfKey(std::string(1 << 20, 'k')).Mask("a"));
  EXPECT_THAT(UserErrorOf([&] { maskOf(std::string(15, 'k')); }),
              HasSubstr(" has 15 bytes, but needs at least 16"));
  EXPECT_THAT(UserErrorOf([&] { maskOf(std::string((1 << 20) + 1, 'k')); }),
              HasSubstr(" has more than 1 MiB; "));
}

TEST(SerialMaskTest, ReadsItsKeyFromAFifoThatIsWrittenInPieces) {
  const TemporaryFolder folder;
  const std::string fifo = folder.File("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  std::thread writer([&fifo] {
    const sys::FileDescriptor file = sys::OpenFile(fifo, O_WRONLY);
    for (const char* byte = kKey; *byte != '\0'; ++byte) sys::WriteAll(file.Get(), std::string(1, *byte));
  });
  const SerialMask mask = SerialMask::OfKeyFile(fifo);
  writer.join();
  EXPECT_EQ(mask.Mask("a"), Mask().Mask("a"));
}

TEST(RootHubStrings, FollowTheLinesThatTheKernelWritesItself) {
  const std::string top = "T:  Bus=01 Lev=00 Prnt=00\n";
  const std::string middle = "B:  Alloc=0\nD:  Ver= 2.00\n";
  const std::string vendor = "P:  Vendor=1d6b ProdID=0002\n";
  const auto keeps = [](const std::string& text) {
    return MaskSerials(text + "S:  SerialNumber=0000:00:14.0\n", Mask()).find("0000:00:14.0") !=
           std::string::npos;
  };
  const std::string hub = top + middle + vendor;
  for (const std::string& text :
       {hub, "\n" + hub, top + vendor, hub + "S:  Manufacturer=Linux\nS:  Product=xHCI\n",
        "T:  Bus=01 Lev=01 Prnt=00\nP:  Vendor=0781 \nS:  Product=x\nC:* #Ifs= 1\n \r\n" + hub}) {
    EXPECT_TRUE(keeps(text)) << text;
  }
  for (const std::string& text :
       {top + middle, middle + vendor, vendor + top, "T:  Bus=01 Lev=01 Prnt=00\n" + vendor,
        top + "P:  Vendor=0781 ProdID=0002\n", top + "P:  Vendor=0781 ProdID=0002\n" + vendor,
        "S:  Product=x\n" + hub, "S:  Product=x\n\n\n" + hub, hub + "E:  Ad=81(I)\n", hub + "\n",
        hub + "T:  Bus=01 Lev=01 Prnt=00\n",
        "T:  Bus=01 Lev=01 Prnt=00\nP:  Vendor=0781 \nS:  Product=x\n" + hub, hub + "Q: \n", " " + hub}) {
    EXPECT_FALSE(keeps(text)) << text;
  }
}

TEST(MaskedText, HasTheMaskFromTheFieldToTheEndOfTheLine) {
  const SerialMask& mask = Mask();
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
  const SerialMask& mask = Mask();
  for (const std::string& text :
       {""s, "\n"s, "S:  SerialNumber=\n"s, "S:  SerialNumber= \t\r\nX"s, "SerialNumber="s,
        "SerialNumber = a"s, "Serial\nNumber=a"s, "Serial\0Number=a"s, "SERIALNUMBE\xC5\x98=a"s}) {
    EXPECT_EQ(MaskSerials(text, mask), text);
  }
}

TEST(MaskedText, ReplacesEverySerialNumberOfEveryList) {
  const SerialMask& mask = Mask();
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
    EXPECT_EQ(WithoutMasks(EverythingPrintedOf(list)), WithoutMasks(EverythingPrintedOf(other))) << name;
  }
}

TEST(MaskSerialsOption, ShowsNoSerialNumberThatIsNothingElse) {
  for (const auto& [name, list] : Lists()) {
    const std::string rest = ReplaceSerials(list, [](const std::string&) { return std::string(); });
    const std::string printed = WithoutMasks(EverythingPrintedOf(list));
    for (const std::string& serial : SerialsOf(list)) {
      if (serial.size() < 4 || rest.find(serial) != std::string::npos) continue;
      EXPECT_THAT(printed, Not(HasSubstr(serial))) << name;
    }
  }
}

TEST(MaskSerialsOption, ShowsNoPartOfAForgedSerialNumber) {
  EXPECT_THAT(EverythingPrintedOf(ListOfForgedSerials()), Not(HasSubstr("secr")));
  EXPECT_THAT(EverythingPrintedOf(DeviceListWith("a\nS:  SerialNumber=secret Product=secret")),
              Not(HasSubstr("secr")));
}

/// Puts the text of `plain` where `masked` has a mask, which is allowed after "SerialNumber=" only.
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
    EXPECT_EQ(masked["classes"], plain["classes"]) << name;
    EXPECT_EQ(masked["system"], plain["system"]) << name;
  }
}

TEST(MaskSerialsOption, MasksEverySerialNumberOfTheInventory) {
  const std::regex form("masked-[0-9a-f]{16}");
  for (const auto& [name, list] : Lists()) {
    const json classes = json::parse(RunMasked(list, {"--format", "json"}).output)["classes"];
    for (const auto& instances : classes) {
      for (const json& instance : instances) {
        if (instance.value("HubDepth", 1) == 0 && instance.value("VendorID", 0) == 0x1D6B) continue;
        const std::string serial = instance.value("SerialNumber", "Not Available");
        EXPECT_TRUE(serial == "Not Available" || std::regex_match(serial, form)) << name << " " << serial;
      }
    }
  }
}

/// A saved inventory of a root hub and a device whose facts are a root hub's by number alone.
json InventoryWithFacts() {
  InventoryBuilder machine;
  const std::string hub = machine.AddBus(1, 1, "0000:00:14.0");
  machine.AddDevice(hub, 0, 2, {"Stick", "S1"});
  json& document = machine.Document();
  document["origin"] = OriginExample();
  document["kernel"] = {{"devices", json::array()}, {"ports", json::array()}};
  const std::pair<const char*, const char*> facts[] = {
      {"usb1", "0000:00:14.0"}, {"1-1", "S1"}, {"1-1", ""}, {"1-1", nullptr}};
  for (const auto& [name, serial] : facts) {
    json device = KernelExample()["devices"][0];
    device.update({{"device", hub}, {"name", name}, {"serial", serial == nullptr ? json() : json(serial)}});
    document["kernel"]["devices"].push_back(device);
  }
  return document;
}

TEST(MaskSerialsOption, MasksWhatTheKernelKnowsInASavedInventoryAndSaysSo) {
  const json plain = InventoryWithFacts();
  json expected = plain;
  expected["classes"]["KALDO_USBDevice"][0]["SerialNumber"] = Mask().Mask("S1");
  expected["kernel"]["devices"][1]["serial"] = Mask().Mask("S1");
  expected["origin"]["masked"] = {{"key", "36b7d9e49e324323"}};
  EXPECT_EQ(json::parse(RunWithKey(plain.dump(), {"--format", "json"}).output), expected);
  EXPECT_EQ(json::parse(RunMasked(plain.dump(), {"--format", "json"}).output)["origin"]["masked"],
            json({{"key", nullptr}}));
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
                     KeyFile(folder, key), "--format", "json"})
      .output;
}

TEST(MaskSerialsOption, MasksAlikeUnderOneKeyAndOtherwiseUnderAnother) {
  const std::string one(16, '1');
  EXPECT_EQ(JsonWithKey(one), JsonWithKey(one));
  EXPECT_NE(JsonWithKey(one), JsonWithKey(std::string(16, '2')));
  EXPECT_NE(JsonWithKey(one), JsonWithKey(one + "\n"));
}

TEST(MaskSerialsOption, MasksAlikeWhateverPrintedTheList) {
  const std::string kernel =
      RunWithKey(ReadFile(CapturePath("vm-desktop-debugfs")), {"--format", "json"}).output;
  const std::string script =
      RunWithKey(ReadFile(CapturePath("vm-desktop-usb-devices")), {"--format", "json"}).output;
  const std::string keyboard = Mask().Mask("68284-0000:00:01.0-3.1");
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
}

TEST(MaskSerialsOption, ReadsTheKeyFromStandardInput) {
  const CommandResult result = Command({"--devices", CapturePath("vm-desktop-debugfs"), "--system-name",
                                        "testhost", "--mask-serials", "--mask-key", "-", "--format", "json"})
                                   .Input(kKey)
                                   .Run();
  EXPECT_EQ(result.output,
            RunWithKey(ReadFile(CapturePath("vm-desktop-debugfs")), {"--format", "json"}).output);
}

TEST(MaskSerialsOption, GoesWithASelectionAndARequest) {
  const CommandResult result = RunWithKey(ReadFile(CapturePath("vm-desktop-debugfs")),
                                          {"--request", "KALDO_USBDevice", "-s", "1:4", "--format", "jsonl"});
  const std::vector<std::string> lines = Lines(result.output);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(json::parse(lines[0])["properties"]["SerialNumber"], Mask().Mask("68284-0000:00:01.0-3.1"));
}

TEST(MaskKeyOption, WarnsOfAKeyThatOthersCanRead) {
  const TemporaryFolder folder;
  const std::string key = KeyFile(folder, kKey);
  for (const auto& [mode, isShared] : {std::pair(0600, false), {0640, true}, {0602, true}, {0400, false}}) {
    std::filesystem::permissions(key, std::filesystem::perms(mode));
    const CommandResult result =
        RunUsbinfo({"--devices", CapturePath("vm-desktop-debugfs"), "--mask-serials", "--mask-key", key});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, isShared ? "usbinfo: other users can read or write the key in " + key +
                                            "; run \"chmod 600\" on it\n"
                                      : "");
  }
}

/// What a usb-devices script of the test sees of the command that waits for it: the inherited limit on core
/// files, and whether the command's memory may be read.
std::string ProtectionOf(std::vector<std::string> options) {
  const TemporaryFolder folder;
  folder.ShareWithAll();
  folder.Script("usb-devices",
                "caller=$PPID\n"
                "while read -r pid name state caller_of rest < /proc/$caller/stat && [ \"$name\" != "
                "'(usbinfo)' ]; do caller=$caller_of; done\n"
                "{ ulimit -H -c; [ -r /proc/$caller/environ ] && echo open || echo closed; } > '" +
                    folder.File("seen") + "'");
  Command(std::move(options)).AsOrdinaryUser().Set("PATH", folder.Path()).Run();
  return ReadFile(folder.File("seen"));
}

TEST(MaskSerialsOption, LeavesNoCoreFileAndNoWayForADebugger) {
  if (::access("/proc/bus/usb/devices", F_OK) == 0) GTEST_SKIP() << "this machine has a list of usbfs";
  EXPECT_EQ(ProtectionOf({"--source", "plugin", "--mask-serials"}), "0\nclosed\n");
  EXPECT_THAT(ProtectionOf({"--source", "plugin"}), testing::EndsWith("\nopen\n"));
}

std::unique_ptr<standin::OperatingSystem> MaskedSystem(std::unique_ptr<standin::OperatingSystem> machine) {
  return std::make_unique<cli::PreparingSystem>(std::move(machine), cli::ListTreatment{true, Mask()},
                                                std::make_shared<cli::ListOnItsWay>());
}

/// The plug-in on a recorded machine whose lists are masked.
class MaskedMachineTest : public CliTest {
 protected:
  void CollectMasked(const std::function<void(FakeOperatingSystem&)>& furnish) {
    auto fake = std::make_unique<FakeOperatingSystem>(&calls);
    furnish(*fake);
    machine = fake.get();
    host.SetOperatingSystem(MaskedSystem(std::move(fake)));
    host.SetSystemName("testhost");
    CollectThroughModule();
  }
  json Classes() const { return ClassesIn(cli::FindOutputFormat("json").render(Collected(), {})); }
  static json ClassesIn(const std::string& inventory) { return json::parse(inventory)["classes"]; }
};

TEST_F(MaskedMachineTest, MasksTheFilesOfTheMachineAsAGivenList) {
  const std::string list = ReadFile(CapturePath("vm-desktop-debugfs"));
  CollectMasked([&list](FakeOperatingSystem& fake) { fake.files[kDebugfsList] = list; });
  EXPECT_EQ(Classes(), ClassesIn(RunWithKey(list, {"--as-is", "--format", "json"}).output));
}

TEST_F(MaskedMachineTest, MasksTheOutputOfACommandBeforeTheLog) {
  const std::string list = ReadFile(CapturePath("vm-desktop-usb-devices"));
  CollectMasked([&list](FakeOperatingSystem& fake) { fake.outputs["usb-devices"] = list; });
  EXPECT_EQ(Classes(), ClassesIn(RunWithKey(list, {"--as-is", "--format", "json"}).output));
  const std::string masked = MaskSerials(list, Mask());
  EXPECT_THAT(log, testing::Contains(LogLine{kDebug, masked}));
  for (const LogLine& line : log) {
    for (const std::string& serial : SerialsOf(list)) EXPECT_THAT(line.text, Not(HasSubstr(serial)));
  }
}

TEST_F(MaskedMachineTest, HandsQuestionsAndFailuresOn) {
  auto fake = std::make_unique<FakeOperatingSystem>(&calls);
  fake->files["there"] = "text";
  const auto masked = MaskedSystem(std::move(fake));
  standin::OperatingSystem& system = *masked;
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
