// Devices choose their strings: no format lets one forge structure, inject markup or send control characters
// to a terminal. Every output of the real command is read back.
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/text/LogWriter.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/cli/support/XmlDocument.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

CommandResult RunOn(const std::string& list, std::vector<std::string> options,
                    const std::string& locale = "C.UTF-8") {
  for (const char* option : {"testhost", "--system-name", "-", "--devices"}) {
    options.insert(options.begin(), option);
  }
  return Command(std::move(options)).Input(list).Set("LC_ALL", locale).Run();
}

std::size_t CountOf(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(HostileStrings, AreReadBackFromJsonAsTheyWereSent) {
  const CommandResult result = RunOn(HostileDeviceList(), {"--format", "json"});
  EXPECT_EQ(result.status, 0);
  const json devices = json::parse(result.output)["classes"]["KALDO_USBDevice"];
  ASSERT_EQ(devices.size(), HostileStrings().size());
  for (std::size_t index = 0; index < devices.size(); ++index) {
    const HostileString& hostile = HostileStrings()[index];
    for (const char* property : {"Description", "Manufacturer", "SerialNumber"}) {
      EXPECT_EQ(devices[index][property], hostile.asUtf8) << hostile.name << " " << property;
    }
  }
}

TEST(HostileStrings, LeaveTheRestOfTheJsonDocumentAsItIs) {
  json hostile = json::parse(RunOn(HostileDeviceList(), {"--format", "json"}).output);
  json harmless = json::parse(RunOn(HarmlessDeviceList(), {"--format", "json"}).output);
  for (json* document : {&hostile, &harmless}) {
    for (json& device : (*document)["classes"]["KALDO_USBDevice"]) {
      for (const char* property : {"Description", "Manufacturer", "SerialNumber"}) device.erase(property);
    }
    if ((*document)["kernel"].is_null()) continue;
    for (json& device : (*document)["kernel"]["devices"]) {
      for (const char* string : {"manufacturer", "product", "serial"}) device.erase(string);
    }
  }
  EXPECT_EQ(hostile, harmless);
}

TEST(HostileStrings, AreReadBackFromXmlAsFarAsXmlCanHoldThem) {
  const CommandResult result = RunOn(HostileDeviceList(), {"--format", "cimxml"});
  EXPECT_EQ(result.status, 0);
  const XmlDocument document(result.output);
  EXPECT_TRUE(document.IsValidCim());
  for (const char* property : {"Description", "Manufacturer", "SerialNumber"}) {
    const auto values =
        document.Select(std::string("//INSTANCE[@CLASSNAME='KALDO_USBDevice']/PROPERTY[@NAME='")
                            .append(property)
                            .append("']/VALUE"));
    ASSERT_EQ(values.size(), HostileStrings().size());
    for (std::size_t index = 0; index < values.size(); ++index) {
      EXPECT_EQ(values[index], HostileStrings()[index].asXml)
          << HostileStrings()[index].name << " " << property;
    }
  }
}

TEST(HostileStrings, AddNoElementToTheXmlDocument) {
  const XmlDocument hostile(RunOn(HostileDeviceList(), {"--format", "cimxml"}).output);
  const XmlDocument harmless(RunOn(HarmlessDeviceList(), {"--format", "cimxml"}).output);
  EXPECT_EQ(hostile.Count("//*"), harmless.Count("//*"));
  EXPECT_EQ(hostile.Select("//@*"), harmless.Select("//@*"));
  EXPECT_EQ(hostile.Count("//comment() | //processing-instruction()"), 0U);
}

TEST(HostileStrings, SendNothingToATerminalThroughAnyFormat) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    for (const char* format : {"tree", "table", "json", "jsonl", "mof", "dot", "html", "prometheus"}) {
      EXPECT_FALSE(ActsOnTerminal(RunOn(HostileDeviceList(), {"--format", format}, locale).output))
          << format << " " << locale;
    }
  }
  // Tabs are allowed in XML text.
  std::string xml = RunOn(HostileDeviceList(), {"--format", "cimxml"}).output;
  xml.erase(std::remove(xml.begin(), xml.end(), '\t'), xml.end());
  EXPECT_FALSE(ActsOnTerminal(xml));
}

TEST(HostileStrings, AddNoLineToTheTreeAndTakeNoneAway) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    const auto hostile = Lines(RunOn(HostileDeviceList(), {}, locale).output);
    const auto harmless = Lines(RunOn(HarmlessDeviceList(), {}, locale).output);
    ASSERT_EQ(hostile.size(), harmless.size());
    EXPECT_EQ(hostile.front(), harmless.front());
    for (std::size_t line = 5; line < hostile.size(); ++line) {
      EXPECT_THAT(hostile[line], testing::EndsWith(" 0627:0001  12 Mbit/s"));
      const std::size_t name = harmless[line].find("harmless");
      EXPECT_EQ(hostile[line].substr(0, name), harmless[line].substr(0, name));
    }
  }
}

TEST(HostileStrings, AddNoLineToTheTableAndTakeNoneAway) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    const auto hostile = Lines(RunOn(HostileDeviceList(), {"--format", "table"}, locale).output);
    const auto harmless = Lines(RunOn(HarmlessDeviceList(), {"--format", "table"}, locale).output);
    ASSERT_EQ(hostile.size(), harmless.size());
    for (std::size_t line = 0; line < hostile.size(); ++line) {
      const std::size_t name = harmless[line].find("harmless");
      if (name == std::string::npos) continue;
      EXPECT_EQ(hostile[line].substr(0, name), harmless[line].substr(0, name));
    }
  }
}

TEST(HostileStrings, AddNoLineToTheDetailsAndTakeNoneAway) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    const auto hostile = Lines(RunOn(HostileDeviceList(), {"-v"}, locale).output);
    const auto harmless = Lines(RunOn(HarmlessDeviceList(), {"-v"}, locale).output);
    ASSERT_EQ(hostile.size(), harmless.size());
    for (std::size_t line = 7; line < hostile.size(); ++line) {
      const std::size_t name = harmless[line].find("harmless");
      EXPECT_EQ(hostile[line].substr(0, name), harmless[line].substr(0, name));
    }
  }
}

TEST(HostileStrings, NeitherTurnTheReadingDirectionNorHideFromPeople) {
  for (const HostileString& hostile : HostileStrings()) {
    for (const char* form : {"--format=tree", "--format=table", "-v"}) {
      const std::string text = RunOn(DeviceListWith(hostile.bytes), {form}).output;
      EXPECT_FALSE(HasDirectionMark(text) || HidesCharacters(text)) << hostile.name << " " << form;
      EXPECT_FALSE(ActsOnTerminal(text)) << hostile.name << " " << form;
    }
    for (const char* form : {"json", "jsonl", "cimxml", "mof", "dot", "html", "csv", "prometheus"}) {
      const std::string text = RunOn(DeviceListWith(hostile.bytes), {"--format", form}).output;
      EXPECT_FALSE(HasDirectionMark(text) || HidesCharacters(text)) << hostile.name << " " << form;
    }
  }
}

TEST(HostileStrings, ShowInTheTreeWithWhatFollowsAZeroByte) {
  EXPECT_THAT(RunOn(DeviceListWith(std::string("front\0back", 10)), {}).output,
              HasSubstr(" front\\x00back "));
}

TEST(HostileStrings, AreSpelledInTheTree) {
  EXPECT_THAT(RunOn(DeviceListWith("\x1B[31mred"), {}).output, HasSubstr(" \\x1b[31mred "));
  EXPECT_THAT(RunOn(DeviceListWith("a\xFFz"), {}).output, HasSubstr(" a\\xffz "));
  EXPECT_THAT(RunOn(DeviceListWith("a\rz"), {}).output, HasSubstr(" a\\x0dz "));
}

TEST(HostileStrings, StayInTheirColumnsWhereTheBusOrTheNumberIsForged) {
  std::string list = HarmlessDeviceList();
  const std::string bus = "Bus=01 Lev=01";
  list.replace(list.find(bus), bus.size(), "Bus=\x1B[2J\"<&> Lev=01");
  EXPECT_FALSE(ActsOnTerminal(RunOn(list, {}).output));
  const json devices = json::parse(RunOn(list, {"--format", "json"}).output)["classes"]["KALDO_USBDevice"];
  EXPECT_EQ(devices[0]["DeviceID"], "Bus \x1B[2J\"<&>  Device   2");
  const XmlDocument document(RunOn(list, {"--format", "cimxml"}).output);
  EXPECT_TRUE(document.IsValidCim());
  const auto keys = document.Select(
      "//VALUE.NAMEDOBJECT/INSTANCENAME[@CLASSNAME='KALDO_USBDevice']/KEYBINDING[@NAME='DeviceID']/KEYVALUE");
  EXPECT_THAT(keys, testing::Contains("Bus \xEF\xBF\xBD[2J\"<&>  Device   2"));
}

TEST(HostileStrings, StayOnTheirLineInTheTextLog) {
  const std::string list = "\x1B[2J\n\nQ\n\xFF\n" + HarmlessDeviceList();
  const CommandResult result = RunOn(list, {"--log-level", "status"});
  EXPECT_FALSE(ActsOnTerminal(result.errors));
  EXPECT_THAT(result.errors, StartsWith("status: \\x1b can't match the data\n"
                                        "status: \\n can't match the data\n"
                                        "status: Q can't match the data\n"
                                        "status: \\xff can't match the data\n"));
}

TEST(HostileStrings, StayOnTheirLineInTheJsonLog) {
  const CommandResult result =
      RunOn("\x1B[2J\n\n" + HarmlessDeviceList(), {"--log-level", "status", "--log-format", "json"});
  EXPECT_FALSE(ActsOnTerminal(result.errors));
  const std::vector<std::string> lines = Lines(result.errors);
  ASSERT_GE(lines.size(), 2U);
  EXPECT_EQ(json::parse(lines[0]), json({{"severity", 2}, {"text", "\x1B can't match the data"}}));
  EXPECT_EQ(json::parse(lines[1]), json({{"severity", 2}, {"text", "\n can't match the data"}}));
}

/// The lines that the log has after each hostile string was written to it.
std::vector<std::string> LogOfHostileStrings(cli::LogFormat format) {
  const TemporaryFolder folder;
  cli::LogWriter log(folder.File("log"), cli::LogSeverity::kStatus, format);
  for (const HostileString& hostile : HostileStrings()) log.Write(cli::LogSeverity::kStatus, hostile.bytes);
  log.Finish();
  return Lines(ReadFile(folder.File("log")));
}

TEST(HostileStrings, TakeOneLineEachOfTheTextLog) {
  const std::vector<std::string> lines = LogOfHostileStrings(cli::LogFormat::kText);
  ASSERT_EQ(lines.size(), HostileStrings().size());
  for (std::size_t index = 0; index < lines.size(); ++index) {
    std::string line = lines[index];
    EXPECT_THAT(line, StartsWith("status: "));
    line.erase(std::remove(line.begin(), line.end(), '\t'), line.end());
    EXPECT_FALSE(ActsOnTerminal(line) || HasDirectionMark(line) || HidesCharacters(line))
        << HostileStrings()[index].name;
  }
}

TEST(HostileStrings, AreReadBackFromTheJsonLogAsTheyWereSent) {
  const std::vector<std::string> lines = LogOfHostileStrings(cli::LogFormat::kJson);
  ASSERT_EQ(lines.size(), HostileStrings().size());
  for (std::size_t index = 0; index < lines.size(); ++index) {
    const HostileString& hostile = HostileStrings()[index];
    EXPECT_EQ(json::parse(lines[index]), json({{"severity", 2}, {"text", hostile.asUtf8}})) << hostile.name;
  }
}

TEST(HostileStrings, WithANewlineForgeALineOfTheListAndNothingOfAnyFormat) {
  const std::string forged = "x\n\nT:  Bus=09 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  9 Spd=480  MxCh= 0\nQ";
  const json devices = json::parse(RunOn(DeviceListWith(forged), {"--format", "json"}).output)["classes"];
  std::vector<std::string> identifiers;
  for (const json& device : devices["KALDO_USBDevice"]) identifiers.push_back(device["DeviceID"]);
  EXPECT_THAT(identifiers, testing::ElementsAre("Bus 01  Device   2", "Bus 09  Device   9"));
  const XmlDocument document(RunOn(DeviceListWith(forged), {"--format", "cimxml"}).output);
  EXPECT_TRUE(document.IsValidCim());
  EXPECT_EQ(document.Count("//INSTANCE[@CLASSNAME='KALDO_USBDevice']"), 2U);
  EXPECT_FALSE(ActsOnTerminal(RunOn(DeviceListWith(forged), {}).output));
}

TEST(HostileStrings, InARequestStayOnTheirLineInTheLog) {
  const CommandResult result = RunOn(
      HarmlessDeviceList(), {"--request", "A\x1B[2J\nerror: forged,KALDO_USBHub", "--log-level", "verbose"});
  EXPECT_THAT(result.errors, HasSubstr("debug: TUSBInfoCallbacks::GetData - Received request for class "
                                       "A\\x1b[2J\\nerror: forged.\n"));
  EXPECT_FALSE(ActsOnTerminal(result.errors));
}

TEST(HostileStrings, InTheSystemNameForgeNothing) {
  const std::vector<std::string> arguments = {"--devices", "-", "--system-name", "a\n\x1B[2J\"<&>",
                                              "--format"};
  const auto run = [&arguments](const char* format) {
    std::vector<std::string> all = arguments;
    all.emplace_back(format);
    return Command(all).Input(HarmlessDeviceList()).Run().output;
  };
  EXPECT_EQ(Lines(run("tree")).size(), Lines(RunOn(HarmlessDeviceList(), {}).output).size());
  EXPECT_FALSE(ActsOnTerminal(run("tree")));
  EXPECT_EQ(json::parse(run("json"))["system"]["name"], "a\n\x1B[2J\"<&>");
  const XmlDocument document(run("cimxml"));
  EXPECT_THAT(document.Select("//PROPERTY[@NAME='SystemName']/VALUE"),
              testing::Each("a\n\xEF\xBF\xBD[2J\"<&>"));
}

TEST(HostileStrings, InAFileNameStayOnTheirLine) {
  const CommandResult result = RunUsbinfo({"--devices", "/missing\nusbinfo: all is well\x1B[2J"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: cannot read /missing\\nusbinfo: all is well\\x1b[2J: "));
  EXPECT_EQ(CountOf(result.errors, "\n"), 1U);
}

TEST(HostileStrings, InAWrongOptionStayOnTheirLine) {
  const CommandResult result = RunUsbinfo({"--format", "a\nb\x1B[2J"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: --format: \"a\\nb\\x1b[2J\" is not one of "));
  EXPECT_FALSE(ActsOnTerminal(result.errors));
}

}  // namespace
}  // namespace usbinfo_test
