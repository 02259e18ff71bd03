// --request: the plug-in is asked for exactly the classes named, in that order, and what it committed is
// shown.
#include <gmock/gmock.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using nlohmann::json;
using testing::ElementsAre;

namespace usbinfo_test {
namespace {

constexpr const char* kNothingRequested =
    "usbinfo: nothing to show: the requested classes have no instance; ask for hubs, ports and devices "
    "before the associations, or leave --request out to see whether there is any USB device\n";

std::string NoClass(const std::string& names) {
  return "usbinfo: the schema has no class " + names + "; the plug-in is asked for it all the same\n";
}

CommandResult Request(const std::string& names, std::vector<std::string> options = {}) {
  for (const std::string& option :
       {std::string("testhost"), std::string("--system-name"), names, std::string("--request"),
        CapturePath("vm-desktop-debugfs"), std::string("--devices")}) {
    options.insert(options.begin(), option);
  }
  return RunUsbinfo(std::move(options));
}

/// The number of instances of each class that has any.
std::map<std::string, std::size_t> Counts(const std::string& names) {
  std::map<std::string, std::size_t> counts;
  const json classes = json::parse(Request(names, {"--format", "json"}).output)["classes"];
  for (const auto& item : classes.items()) {
    if (!item.value().empty()) counts[item.key()] = item.value().size();
  }
  return counts;
}

/// The class names that the plug-in was asked for, in order.
std::vector<std::string> Asked(const std::string& names) {
  const std::string before = "debug: TUSBInfoCallbacks::GetData - Received request for class ";
  std::vector<std::string> asked;
  for (const std::string& line : Lines(Request(names, {"--log-level", "debug"}).errors)) {
    if (line.rfind(before, 0) != 0) continue;
    asked.push_back(line.substr(before.size(), line.size() - before.size() - 1));
  }
  return asked;
}

using Sizes = std::map<std::string, std::size_t>;

TEST(RequestOption, YieldsOneClassAlone) {
  EXPECT_EQ(Counts("KALDO_USBController"), (Sizes{{"KALDO_USBController", 4}}));
  EXPECT_EQ(Counts("KALDO_USBHub"), (Sizes{{"KALDO_USBHub", 5}}));
  EXPECT_EQ(Counts("KALDO_USBPort"), (Sizes{{"KALDO_USBPort", 26}}));
  EXPECT_EQ(Counts("KALDO_USBDevice"), (Sizes{{"KALDO_USBDevice", 6}}));
}

TEST(RequestOption, AsksInTheOrderGiven) {
  EXPECT_THAT(Asked("KALDO_USBPort,KALDO_USBHub"), ElementsAre("KALDO_USBPort", "KALDO_USBHub"));
  EXPECT_THAT(Asked("KALDO_USBHub,KALDO_USBPort"), ElementsAre("KALDO_USBHub", "KALDO_USBPort"));
}

TEST(RequestOption, LinksNothingThatIsNotThereYet) {
  EXPECT_EQ(
      Counts("KALDO_USBConnection,KALDO_USBPortOnHub,KALDO_USBDevice,KALDO_USBPort,KALDO_USBHub,"
             "KALDO_USBController"),
      (Sizes{
          {"KALDO_USBDevice", 6}, {"KALDO_USBPort", 26}, {"KALDO_USBHub", 5}, {"KALDO_USBController", 4}}));
  EXPECT_EQ(Counts("KALDO_USBHub,KALDO_USBPort,KALDO_USBPortOnHub"),
            (Sizes{{"KALDO_USBHub", 5}, {"KALDO_USBPort", 26}, {"KALDO_USBPortOnHub", 26}}));
  EXPECT_EQ(Counts("KALDO_USBHub,KALDO_USBPort,KALDO_USBConnection"),
            (Sizes{{"KALDO_USBHub", 5}, {"KALDO_USBPort", 26}, {"KALDO_USBConnection", 1}}));
}

TEST(RequestOption, ShowsPortsAsFreeOnlyWhereAllConnectionsWereMade) {
  for (const char* names : {"KALDO_USBPort", "KALDO_USBHub,KALDO_USBPort,KALDO_USBConnection",
                            "KALDO_USBHub,KALDO_USBPort,KALDO_USBConnection,KALDO_USBDevice",
                            "KALDO_USBHub,KALDO_USBPort,KALDO_USBDevice,KALDO_USBConnection,KALDO_USBPort"}) {
    const std::vector<std::vector<std::string>> forms = {
        {"--format", "tree"}, {"--format", "table", "--class", "port"}, {"--format", "dot"}};
    for (const std::vector<std::string>& form : forms) {
      const std::string output = Request(names, form).output;
      EXPECT_THAT(output, testing::HasSubstr("unknown")) << names << " " << form[1];
      EXPECT_THAT(output, testing::Not(testing::HasSubstr("free"))) << names << " " << form[1];
    }
  }
  EXPECT_THAT(Request("KALDO_USBHub,KALDO_USBPort,KALDO_USBDevice,KALDO_USBConnection").output,
              testing::HasSubstr(" 26 ports (19 free), "));
}

TEST(RequestOption, ServesARepeatedClassAgainWithoutDoublingIt) {
  EXPECT_EQ(Counts("KALDO_USBHub,KALDO_USBHub"), (Sizes{{"KALDO_USBHub", 5}}));
  EXPECT_THAT(Asked("KALDO_USBHub,KALDO_USBHub"), ElementsAre("KALDO_USBHub", "KALDO_USBHub"));
}

TEST(RequestOption, HandsNamesOverAsTheyAre) {
  EXPECT_THAT(Asked(" KALDO_USBHub ,nope,KALDO_USBControllerHasHub,kaldo_usbhub"),
              ElementsAre(" KALDO_USBHub ", "nope", "KALDO_USBControllerHasHub", "kaldo_usbhub"));
}

TEST(RequestOption, SaysWhyNoNameBroughtAnything) {
  for (const char* names : {"KALDO_USBPortOnHub", "KALDO_USBConnection,KALDO_USBPortOnHub"}) {
    const CommandResult result = Request(names);
    EXPECT_EQ(result.status, 1) << names;
    EXPECT_EQ(result.output, "") << names;
    EXPECT_EQ(result.errors, kNothingRequested) << names;
  }
}

TEST(RequestOption, SaysWhichNamesAreNoClassesOfTheSchema) {
  for (const char* names :
       {"nope", "KALDO_USBControllerHasHub", "kaldo_usbhub", " KALDO_USBHub", "KALDO_USBHub ", "a,b"}) {
    EXPECT_EQ(Request(names).errors, NoClass(names) + kNothingRequested) << names;
  }
  EXPECT_EQ(Request("a,KALDO_USBController,b").errors, NoClass("a,b"));
}

TEST(RequestOption, PrintsTheEmptyDocumentWhenNoNameBroughtAnything) {
  const CommandResult result = Request("nope", {"--format", "json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, NoClass("nope") + kNothingRequested);
  EXPECT_EQ(json::parse(result.output)["classes"].size(), 6U);
}

TEST(RequestOption, CountsAsSuccessWhenOneNameBroughtSomething) {
  const CommandResult result = Request("nope,KALDO_USBController,nope");
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, NoClass("nope,nope"));
  EXPECT_EQ(Lines(result.output).size(), 7U);
}

TEST(RequestOption, IsASelectionToWhatNeedsAllClasses) {
  const TemporaryFolder folder;
  const std::string policy = folder.File("rules.conf", "allow");
  const std::string saved = folder.File("saved.json");
  for (const std::string names :
       {"KALDO_USBDevice", "nope", "KALDO_USBController,KALDO_USBHub,KALDO_USBPort"}) {
    folder.File("saved.json", Request(names, {"--format", "json"}).output);
    EXPECT_EQ(json::parse(ReadFile(saved))["origin"]["selection"]["classes"][0],
              names.substr(0, names.find(',')));
    const CommandResult check = RunUsbinfo({"check", policy, saved});
    EXPECT_EQ(check.status, 2);
    EXPECT_EQ(check.errors,
              "usbinfo: " + saved +
                  " holds only a part of the inventory; save it without the options -d, -s, --class and "
                  "--request\n");
    for (const std::string format : {"prometheus", "usbguard"}) {
      for (const CommandResult& part :
           {Request(names, {"--format", format}), RunUsbinfo({"--devices", saved, "--format", format})}) {
        EXPECT_EQ(part.status, 2) << names << " " << format;
        EXPECT_EQ(part.output, "") << names << " " << format;
        EXPECT_THAT(part.errors, testing::HasSubstr("--request, or use another format\n"));
      }
    }
  }
}

TEST(RequestOption, IsAllSixClassesByDefault) {
  const std::vector<std::string> options = {"--format", "json"};
  const CommandResult result = Request(
      "KALDO_USBController,KALDO_USBHub,KALDO_USBPort,KALDO_USBDevice,"
      "KALDO_USBPortOnHub,KALDO_USBConnection",
      options);
  EXPECT_EQ(result.output, Expected("vm-desktop-debugfs.json"));
}

}  // namespace
}  // namespace usbinfo_test
