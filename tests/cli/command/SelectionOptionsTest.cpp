// -d, -s and --class through the real command: what each format prints, what the tree's heading counts, and
// the message when nothing matched.
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/cli/support/XmlDocument.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace usbinfo_test {
namespace {

const std::vector<std::string> kClasses = {"KALDO_USBController", "KALDO_USBHub",
                                           "KALDO_USBPort",       "KALDO_USBDevice",
                                           "KALDO_USBPortOnHub",  "KALDO_USBConnection"};

CommandResult RunOn(const std::string& path, const std::vector<std::string>& options) {
  std::vector<std::string> arguments = {"--devices", path, "--system-name", "testhost"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return Command(arguments).Set("LC_ALL", "C").Run();
}

CommandResult RunOnDesktop(const std::vector<std::string>& options) {
  return RunOn(CapturePath("vm-desktop-debugfs"), options);
}

json ClassesOf(const CommandResult& result) {
  return json::parse(result.output)["classes"];
}

/// The identifiers of all instances in a JSON document, the associations' left out.
std::vector<std::string> Identifiers(const json& classes) {
  std::vector<std::string> identifiers;
  for (const auto& instances : classes) {
    for (const json& instance : instances) identifiers.push_back(instance.value("DeviceID", "association"));
  }
  return identifiers;
}

std::vector<std::string> SelectedOnDesktop(std::vector<std::string> options) {
  options.insert(options.end(), {"--format", "json"});
  return Identifiers(ClassesOf(RunOnDesktop(options)));
}

/// "1:3" of "Bus 01  Device   3", with the digits and blanks of the list.
std::string PlaceOf(const std::string& identifier) {
  unsigned bus = 0;
  unsigned device = 0;
  EXPECT_EQ(std::sscanf(identifier.c_str(), "Bus %u Device %u", &bus, &device), 2) << identifier;
  return std::to_string(bus) + ":" + std::to_string(device);
}

std::string IdsOf(const json& instance) {
  char text[16];
  std::snprintf(text, sizeof text, "%x:%04X", instance["VendorID"].get<unsigned>(),
                instance["USBDeviceID"].get<unsigned>());
  return text;
}

/// The hubs and devices in `classes` whose property `name` equals that of `model`.
json AllLike(const json& classes, const json& model, const std::vector<std::string>& names) {
  json expected = classes;
  for (const auto& item : classes.items()) {
    json& kept = expected[item.key()] = json::array();
    if (item.key() != "KALDO_USBHub" && item.key() != "KALDO_USBDevice") continue;
    for (const json& instance : item.value()) {
      const bool isLike = std::all_of(names.begin(), names.end(), [&](const std::string& name) {
        return instance.value(name, json()) == model.value(name, json());
      });
      if (isLike) kept.push_back(instance);
    }
  }
  return expected;
}

class SelectionOnCapture : public testing::TestWithParam<std::string> {};

TEST_P(SelectionOnCapture, FindsEveryHubAndDeviceByItsPlaceAndItsIds) {
  const std::string path = CapturePath(GetParam());
  const json all = ClassesOf(RunOn(path, {"--format", "json"}));
  for (const char* const name : {"KALDO_USBHub", "KALDO_USBDevice"}) {
    for (const json& item : all[name]) {
      const std::string place = PlaceOf(item["DeviceID"]);
      EXPECT_EQ(ClassesOf(RunOn(path, {"-s", place, "--format", "json"})), AllLike(all, item, {"DeviceID"}))
          << place;
      const std::string ids = IdsOf(item);
      EXPECT_EQ(ClassesOf(RunOn(path, {"-d", ids, "--format", "json"})),
                AllLike(all, item, {"VendorID", "USBDeviceID"}))
          << ids;
    }
  }
}

TEST_P(SelectionOnCapture, PrintsEachClassByItself) {
  const std::string path = CapturePath(GetParam());
  const json all = ClassesOf(RunOn(path, {"--format", "json"}));
  for (const std::string& name : kClasses) {
    const CommandResult result = RunOn(path, {"--class", name, "--format", "json"});
    EXPECT_EQ(result.status, all[name].empty() ? 1 : 0);
    json expected = all;
    for (const auto& item : all.items()) {
      if (item.key() != name) expected[item.key()] = json::array();
    }
    EXPECT_EQ(ClassesOf(result), expected);
  }
}

INSTANTIATE_TEST_SUITE_P(Captures, SelectionOnCapture, testing::ValuesIn(CaptureNames()),
                         [](const auto& row) { return ToTestName(row.param); });

TEST(SelectionOptions, TakeTheFormsOfTheUsualTools) {
  EXPECT_THAT(SelectedOnDesktop({"-d", "0627:"}), ElementsAre("Bus 01  Device   4", "Bus 01  Device   5"));
  EXPECT_THAT(SelectedOnDesktop({"-d0409:55aa"}), ElementsAre("Bus 01  Device   2"));
  EXPECT_THAT(SelectedOnDesktop({"-d", "0x409:0X55AA"}), ElementsAre("Bus 01  Device   2"));
  EXPECT_THAT(SelectedOnDesktop({"-s", "2:"}),
              UnorderedElementsAre("Bus 02  Device   1", "Bus 02  Device   2", "Bus 02  Device   3"));
  EXPECT_THAT(SelectedOnDesktop({"-s", "3"}), ElementsAre("Bus 01  Device   3", "Bus 02  Device   3"));
  EXPECT_THAT(SelectedOnDesktop({"-s", ":003"}), ElementsAre("Bus 01  Device   3", "Bus 02  Device   3"));
  EXPECT_THAT(SelectedOnDesktop({"-s002:03"}), ElementsAre("Bus 02  Device   3"));
  EXPECT_EQ(SelectedOnDesktop({"-s", ":"}).size(), 11U);
}

TEST(SelectionOptions, TakeTheNamesOfTheKernel) {
  EXPECT_THAT(SelectedOnDesktop({"-s", "1-3.1"}), ElementsAre("Bus 01  Device   4"));
  EXPECT_THAT(SelectedOnDesktop({"-s", "1-3"}), ElementsAre("Bus 01  Device   2"));
  EXPECT_THAT(SelectedOnDesktop({"-s", "usb2"}), ElementsAre("Bus 02  Device   1"));
  EXPECT_THAT(SelectedOnDesktop({"-s", "1-3.3"}), IsEmpty());
  const json origin = json::parse(RunOnDesktop({"-s", "1-3.1", "--format", "json"}).output)["origin"];
  EXPECT_EQ(origin["selection"]["places"], json::array({"1-3.1"}));
}

TEST(SelectionOptions, TakeProductsOfAnyVendorAndSeveralIds) {
  EXPECT_THAT(SelectedOnDesktop({"-d", ":55aa"}), ElementsAre("Bus 01  Device   2"));
  EXPECT_THAT(SelectedOnDesktop({"-d", "0627:", "-d", ":55aa"}),
              UnorderedElementsAre("Bus 01  Device   2", "Bus 01  Device   4", "Bus 01  Device   5"));
  EXPECT_THAT(SelectedOnDesktop({"-d", "0627:", "-d", "0627:"}),
              ElementsAre("Bus 01  Device   4", "Bus 01  Device   5"));
}

TEST(SelectionOptions, MustAllHold) {
  EXPECT_THAT(SelectedOnDesktop({"-d", "46f4:", "-s", "2:"}),
              ElementsAre("Bus 02  Device   2", "Bus 02  Device   3"));
  EXPECT_THAT(SelectedOnDesktop({"-s", "1:", "--class", "KALDO_USBHub"}),
              ElementsAre("Bus 01  Device   1", "Bus 01  Device   2"));
  EXPECT_THAT(SelectedOnDesktop({"-s", "1:", "-d", "1d6b:", "--class", "KALDO_USBDevice"}), IsEmpty());
  EXPECT_THAT(SelectedOnDesktop({"-s", "1:", "--class", "KALDO_USBPort"}), IsEmpty());
}

TEST(SelectionOptions, TakeSeveralClassesInTheOrderOfTheInventory) {
  const std::vector<std::string> both =
      SelectedOnDesktop({"--class", "KALDO_USBHub", "--class", "KALDO_USBController"});
  EXPECT_EQ(both.size(), 9U);
  EXPECT_EQ(SelectedOnDesktop({"--class", "KALDO_USBController", "--class", "KALDO_USBHub"}), both);
  EXPECT_EQ(SelectedOnDesktop({"--class", "KALDO_USBHub", "--class", "KALDO_USBHub"}).size(), 5U);
}

TEST(SelectionOptions, TakeClassesByShortNamesInAnyCase) {
  for (const auto& [name, className] :
       {std::pair("device", "KALDO_USBDevice"), std::pair("PORT", "KALDO_USBPort"),
        std::pair("Hub", "KALDO_USBHub"), std::pair("controller", "KALDO_USBController"),
        std::pair("kaldo_usbport", "KALDO_USBPort"), std::pair("portonhub", "KALDO_USBPortOnHub"),
        std::pair("Connection", "KALDO_USBConnection")}) {
    const std::string wanted = RunOnDesktop({"--class", className, "-j"}).output;
    EXPECT_NE(wanted, RunOnDesktop({"-j"}).output);
    EXPECT_EQ(RunOnDesktop({"--class", name, "-j"}).output, wanted) << name;
  }
}

TEST(ColumnsOption, TakesNamesInAnyCase) {
  const std::vector<std::string> table = {"--format", "table", "--class", "device", "--columns"};
  const auto run = [&table](const char* columns) {
    std::vector<std::string> all = table;
    all.emplace_back(columns);
    return RunOnDesktop(all).output;
  };
  const std::string wanted = run("SerialNumber,Name");
  EXPECT_THAT(wanted, HasSubstr("SerialNumber"));
  EXPECT_EQ(run("serialnumber,NAME"), wanted);
}

TEST(SelectionOptions, MayStandOnEitherSideOfShow) {
  const std::string wanted = RunOnDesktop({"-s", "1:4", "--class", "KALDO_USBDevice"}).output;
  EXPECT_NE(wanted, "");
  EXPECT_EQ(RunOnDesktop({"show", "-s", "1:4", "--class", "KALDO_USBDevice"}).output, wanted);
  EXPECT_EQ(RunOnDesktop({"-s", "1:4", "--class", "KALDO_USBDevice", "show"}).output, wanted);
}

TEST(SelectionOptions, ApplyToEveryTypedFormatAlike) {
  const std::vector<std::string> options = {"-s", "1:4", "--format"};
  const auto run = [&options](const char* format) {
    std::vector<std::string> all = options;
    all.emplace_back(format);
    return RunOnDesktop(all).output;
  };
  const std::vector<std::string> lines = Lines(run("jsonl"));
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(json::parse(lines[0])["properties"]["DeviceID"], "Bus 01  Device   4");
  const XmlDocument document(run("cimxml"));
  EXPECT_TRUE(document.IsValidCim());
  EXPECT_THAT(document.Select("//INSTANCE/PROPERTY[@NAME='DeviceID']/VALUE"),
              ElementsAre("Bus 01  Device   4"));
  const std::string mof = run("mof");
  EXPECT_EQ(mof.find("instance of KALDO_USBDevice"), mof.rfind("instance of "));
}

TEST(SelectionOptions, ReadABusOfThreeDigits) {
  std::string list = ReadFile(CapturePath("proc-manufacturer-keyword"));
  const std::size_t bus = list.find("Bus=01");
  ASSERT_NE(bus, std::string::npos);
  list.replace(bus, 6, "Bus=123");
  const auto status = [&list](const std::string& place) {
    return Command({"--devices", "-", "-s", place}).Input(list).Run().status;
  };
  EXPECT_EQ(status("123:"), 0);
  EXPECT_EQ(status("123:4"), 0);
  EXPECT_EQ(status("12:"), 1);
  EXPECT_EQ(status("23:"), 1);
}

constexpr const char* kKeyboardTree =
    R"(testhost: 1 of 4 controllers, 2 of 5 hubs, 2 of 26 ports, 1 of 6 devices

USB       KIND       DEVICE                ID             SPEED
usb1      controller xHCI Host Controller  1d6b:0002 480 Mbit/s
`-1-3     hub        QEMU USB Hub, 8 ports 0409:55aa  12 Mbit/s
  `-1-3.1 keyboard   QEMU USB Keyboard     0627:0001  12 Mbit/s
)";

constexpr const char* kRootHubTree =
    R"(testhost: 1 of 4 controllers, 1 of 5 hubs, 0 of 26 ports, 0 of 6 devices

USB  KIND       DEVICE               ID             SPEED
usb2 controller xHCI Host Controller 1d6b:0003   5 Gbit/s
)";

constexpr const char* kUnlinkedTree =
    R"(testhost: 0 of 4 controllers, 0 of 5 hubs, 0 of 26 ports, 1 of 6 devices

USB              KIND         DEVICE                ID             SPEED
Bus 02, device 3 mass storage USB Attached SCSI HBA 46f4:0003   5 Gbit/s
)";

TEST(SelectionInTheTree, ComesWithItsPathAndSaysHowMuchIsLeftOut) {
  EXPECT_EQ(RunOnDesktop({"-s", "1:4"}).output, kKeyboardTree);
  EXPECT_EQ(RunOnDesktop({"-d", "1d6b:0003"}).output, kRootHubTree);
  EXPECT_EQ(RunOn(CapturePath("vm-desktop-usb-devices"), {"--as-is", "-s", "2:3"}).output, kUnlinkedTree);
}

TEST(SelectionInTheTree, OfAClassIsAFlatList) {
  const std::vector<std::string> hubs = Lines(RunOnDesktop({"--class", "KALDO_USBHub"}).output);
  ASSERT_EQ(hubs.size(), 8U);
  EXPECT_EQ(hubs[0], "testhost: 0 of 4 controllers, 5 hubs, 0 of 26 ports, 0 of 6 devices");
  for (std::size_t line = 3; line < hubs.size(); ++line) EXPECT_THAT(hubs[line], HasSubstr(" hub "));
  const std::vector<std::string> ports = Lines(RunOnDesktop({"--class", "KALDO_USBPort", "-v"}).output);
  EXPECT_EQ(ports.size(), 29U);
  EXPECT_EQ(ports[0], "testhost: 0 of 4 controllers, 0 of 5 hubs, 26 ports (19 free), 0 of 6 devices");
}

TEST(SelectionInTheTree, OfAssociationsAloneSaysThatNoRowIsTheirs) {
  for (const char* const name : {"KALDO_USBPortOnHub", "KALDO_USBConnection"}) {
    const CommandResult result = RunOnDesktop({"--class", name});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
              "testhost: 0 of 4 controllers, 0 of 5 hubs, 0 of 26 ports, 0 of 6 devices\n\n"
              "Associations alone have no rows in a tree.\n");
  }
}

TEST(SelectionOfNothing, IsReportedInOneLine) {
  const auto errors = [](const std::vector<std::string>& options) {
    const CommandResult result = RunOnDesktop(options);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    return result.errors;
  };
  EXPECT_EQ(errors({"-d", "dead:beef"}),
            "usbinfo: nothing matches \"-d dead:beef\"; leave that out to see what there is\n");
  EXPECT_EQ(errors({"-s", "99"}),
            "usbinfo: nothing matches \"-s :99\"; leave that out to see what there is\n");
  EXPECT_EQ(
      errors({"-d", "1d6b:", "-s", "4:1", "--class", "KALDO_USBDevice"}),
      "usbinfo: nothing matches \"-d 1d6b: -s 4:1 --class KALDO_USBDevice\"; leave that out to see what "
      "there is\n");
}

TEST(SelectionOfNothing, PrintsTheEmptyDocumentForPrograms) {
  const CommandResult result = RunOnDesktop({"-d", "dead:", "--format", "json"});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(Lines(result.errors).size(), 1U);
  const json classes = ClassesOf(result);
  for (const std::string& name : kClasses) EXPECT_EQ(classes[name], json::array()) << name;
  const CommandResult xml = RunOnDesktop({"-d", "dead:", "--format", "cimxml"});
  EXPECT_EQ(xml.status, 1);
  EXPECT_TRUE(XmlDocument(xml.output).IsValidCim());
  EXPECT_EQ(RunOnDesktop({"-d", "dead:", "--format", "jsonl"}).output, "");
  const CommandResult mof = RunOnDesktop({"-d", "dead:", "--format", "mof"});
  EXPECT_EQ(mof.status, 1);
  EXPECT_THAT(mof.output, HasSubstr("class KALDO_USBConnection"));
  EXPECT_THAT(mof.output, testing::Not(HasSubstr("instance of ")));
}

TEST(SelectionOfNothing, LeavesTheOldOutputWhereItWas) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  EXPECT_EQ(RunOnDesktop({"-d", "dead:", "--output", path}).status, 1);
  EXPECT_EQ(ReadFile(path), "old");
}

TEST(SelectionOfNothing, OnAnEmptyMachineIsReportedAsTheEmptyMachine) {
  const CommandResult result = RunUsbinfo({"--devices", "/dev/null", "-d", "1d6b:"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, testing::StartsWith("usbinfo: no USB device found: /dev/null lists none"));
}

TEST(SelectionOfARequest, TakesFromWhatWasRequested) {
  const std::string request = "KALDO_USBHub,KALDO_USBDevice";
  EXPECT_THAT(SelectedOnDesktop({"--request", request, "-s", "1:4"}), ElementsAre("Bus 01  Device   4"));
  EXPECT_THAT(SelectedOnDesktop({"--request", request, "--class", "KALDO_USBPort"}), IsEmpty());
  EXPECT_EQ(RunOnDesktop({"--request", request, "-s", "1:4"}).output,
            "testhost: 0 controllers, 0 of 5 hubs, 0 ports, 1 of 6 devices\n\n"
            "USB   KIND     DEVICE            ID             SPEED\n"
            "1-3.1 keyboard QEMU USB Keyboard 0627:0001  12 Mbit/s\n");
}

TEST(SelectionOfARequest, IsNotBlamedWhereTheRequestBroughtNothing) {
  const CommandResult result = RunOnDesktop({"--request", "nope", "-s", "1:4"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("the requested classes have no instance"));
}

}  // namespace
}  // namespace usbinfo_test
