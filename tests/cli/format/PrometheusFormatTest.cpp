// Metrics: what they count, what a device's series says of it, and that Prometheus takes them whatever the
// devices and the lists say.
#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "cli/format/DeviceColumns.h"
#include "cli/format/PrometheusFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/FromKernel.h"
#include "cli/model/Kinds.h"
#include "cli/model/Selection.h"
#include "cli/model/Sockets.h"
#include "kernel/DeviceListWriter.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/Exposition.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/InventoryBuilder.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/kernel/RecordedMachine.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

constexpr const char* kDesktop =
    R"(# HELP usbinfo_devices Devices and hubs, without root hubs; one of several kinds counts for each.
# TYPE usbinfo_devices gauge
usbinfo_devices{kind="hub"} 1
usbinfo_devices{kind="keyboard"} 1
usbinfo_devices{kind="mouse"} 2
usbinfo_devices{kind="input"} 0
usbinfo_devices{kind="mass storage"} 2
usbinfo_devices{kind="audio"} 1
usbinfo_devices{kind="video"} 0
usbinfo_devices{kind="printer"} 0
usbinfo_devices{kind="scanner/camera"} 0
usbinfo_devices{kind="network"} 0
usbinfo_devices{kind="serial"} 0
usbinfo_devices{kind="modem"} 0
usbinfo_devices{kind="smart card"} 0
usbinfo_devices{kind="wireless"} 0
usbinfo_devices{kind="bluetooth"} 0
usbinfo_devices{kind="vendor-specific"} 0
usbinfo_devices{kind="other"} 0
usbinfo_devices{kind="unknown"} 0
# HELP usbinfo_sockets Sockets in each state; ports, where it is not known which of them share a socket.
# TYPE usbinfo_sockets gauge
usbinfo_sockets{state="free"} 19
usbinfo_sockets{state="in use"} 7
usbinfo_sockets{state="not used"} 0
usbinfo_sockets{state="unknown"} 0
# HELP usbinfo_device_info A device or hub; the value is always 1.
# TYPE usbinfo_device_info gauge
usbinfo_device_info{place="1-3",vid="0409",pid="55aa",kind="hub",vendor="QEMU",product="QEMU USB Hub"} 1
usbinfo_device_info{place="1-3.1",vid="0627",pid="0001",kind="keyboard",vendor="QEMU",product="QEMU USB Keyboard"} 1
usbinfo_device_info{place="1-3.2",vid="0627",pid="0001",kind="mouse",vendor="QEMU",product="QEMU USB Mouse"} 1
usbinfo_device_info{place="1-4",vid="46f4",pid="0002",kind="audio",vendor="QEMU",product="QEMU USB Audio"} 1
usbinfo_device_info{place="2-1",vid="46f4",pid="0001",kind="mass storage",vendor="QEMU",product="QEMU USB HARDDRIVE"} 1
usbinfo_device_info{place="2-2",vid="46f4",pid="0003",kind="mass storage",vendor="QEMU",product="USB Attached SCSI HBA"} 1
usbinfo_device_info{place="4-1",vid="056a",pid="0000",kind="mouse",vendor="QEMU",product="Wacom PenPartner"} 1
# HELP usbinfo_devices_omitted Devices and hubs that are too many for usbinfo_device_info.
# TYPE usbinfo_devices_omitted gauge
usbinfo_devices_omitted 0
# HELP usbinfo_suspect Places in the device list that a device may have forged.
# TYPE usbinfo_suspect gauge
usbinfo_suspect 0
)";

CommandResult PrintMetrics(std::vector<std::string> options, const std::string& list) {
  for (const char* option : {"-", "--devices", "prometheus", "--format"}) {
    options.insert(options.begin(), option);
  }
  return Command(std::move(options)).Input(list).Run();
}

Exposition MetricsOf(const InventoryBuilder& machine) {
  return ReadExposition(cli::RenderPrometheus(machine.Read(), {}));
}

/// The labels of the only device.
MetricLabels OnlyDevice(const Exposition& metrics) {
  const MetricSamples& devices = metrics.at("usbinfo_device_info");
  EXPECT_EQ(devices.size(), 1U);
  return devices.begin()->first;
}

/// What the kernel knows of a device, as a saved inventory has it.
json KnownFactsOf(const std::string& device, const json& name, const json& kinds) {
  json facts = KernelExample()["devices"][0];
  facts.update({{"device", device}, {"name", name}, {"kinds", kinds}});
  return facts;
}

/// A machine with one bus of eight ports, of which the kernel knows devices.
struct MeteredMachine : InventoryBuilder {
  MeteredMachine() : root(AddBus(1, 8)) {
    Document()["kernel"] = {{"devices", json::array()}, {"ports", json::array()}};
  }

  void Plug(int port, const json& name, const json& kinds, const json& product = "Item") {
    const std::string device = AddDevice(root, port, port + 2);
    json facts = KnownFactsOf(device, name, kinds);
    facts["product"] = product;
    Document()["kernel"]["devices"].push_back(facts);
  }

  std::string root;
};

TEST(PrometheusFormat, PrintsTheCountsAndTheDevicesOfADesktopMachine) {
  const CommandResult result =
      RunUsbinfo({"--format", "prometheus", "--devices", CapturePath("vm-desktop-debugfs")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, kDesktop);
  EXPECT_EQ(result.errors, "");
}

class RecordedMetricsTest : public CliTest {};

// The tree of this machine counts 12 hubs, of which 8 are root hubs, 12 devices and 68 sockets (52 free).
TEST_F(RecordedMetricsTest, CountSocketsAndNotTheirPorts) {
  const kernel::Topology topology = UnpackedSysfs(ReadRecord("machine")).Read();
  Collect(kernel::WriteDeviceList(topology));
  cli::Inventory inventory = Collected();
  inventory.SetKernel(cli::FromKernel(topology, inventory));
  const Exposition metrics = ReadExposition(cli::RenderPrometheus(inventory, {}));
  EXPECT_EQ(metrics.at("usbinfo_sockets"), (MetricSamples{{{{"state", "free"}}, "52"},
                                                          {{{"state", "in use"}}, "16"},
                                                          {{{"state", "not used"}}, "0"},
                                                          {{{"state", "unknown"}}, "0"}}));
  EXPECT_EQ(metrics.at("usbinfo_device_info").size(), 16U);
  EXPECT_EQ(ValueOf(metrics, "usbinfo_devices", {{"kind", "hub"}}), "4");
  EXPECT_EQ(ValueOf(metrics, "usbinfo_devices", {{"kind", "mass storage"}}), "3");
}

TEST(PrometheusFormat, CountsADeviceForEachOfItsKinds) {
  MeteredMachine machine;
  machine.Plug(0, "1-1", {"mass storage", "keyboard"});
  machine.Plug(1, "1-2", {"mass storage"});
  machine.Plug(2, "1-3", json::array());
  const Exposition metrics = MetricsOf(machine);
  for (const std::string& kind : cli::AllKinds()) {
    const char* const expected = kind == "mass storage" ? "2" : kind == "keyboard" ? "1" : "0";
    EXPECT_EQ(ValueOf(metrics, "usbinfo_devices", {{"kind", kind}}), expected) << kind;
  }
  EXPECT_EQ(ValueOf(metrics, "usbinfo_devices", {{"kind", "unknown"}}), "1");
  std::multiset<std::string> kinds;
  for (const auto& [labels, value] : metrics.at("usbinfo_device_info")) kinds.insert(labels.at("kind"));
  EXPECT_EQ(kinds, (std::multiset<std::string>{"keyboard, mass storage", "mass storage", "unknown"}));
}

TEST(PrometheusFormat, HasEverySeriesOfTheCountsForAMachineWithoutUsb) {
  const CommandResult result = PrintMetrics({}, "");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: no USB device found: "));
  const Exposition metrics = ReadExposition(result.output);
  EXPECT_EQ(metrics.at("usbinfo_devices").size(), cli::AllKinds().size() + 1);
  EXPECT_EQ(metrics.at("usbinfo_sockets").size(), 4U);
  EXPECT_THAT(metrics.at("usbinfo_device_info"), testing::IsEmpty());
  for (const char* metric :
       {"usbinfo_devices", "usbinfo_sockets", "usbinfo_devices_omitted", "usbinfo_suspect"}) {
    EXPECT_THAT(metrics.at(metric), testing::Each(testing::Pair(testing::_, "0"))) << metric;
  }
}

TEST(PrometheusFormat, SaysWhenTheDevicesWereReadAndHowManyPlacesAreSuspect) {
  MeteredMachine machine;
  json& origin = machine.Document()["origin"] = OriginExample();
  origin["selection"] = nullptr;
  Exposition metrics = MetricsOf(machine);
  EXPECT_EQ(ValueOf(metrics, "usbinfo_collected_timestamp_seconds"), "1795262400");
  EXPECT_EQ(ValueOf(metrics, "usbinfo_suspect"), "1");
  origin["collected"] = "2026-02-30T12:00:00Z";
  EXPECT_EQ(MetricsOf(machine).count("usbinfo_collected_timestamp_seconds"), 0U);
  origin["collected"] = nullptr;
  EXPECT_EQ(MetricsOf(machine).count("usbinfo_collected_timestamp_seconds"), 0U);
  origin = nullptr;
  EXPECT_EQ(MetricsOf(machine).count("usbinfo_suspect"), 0U);
}

TEST(PrometheusFormat, CountsThePlacesOfASuspectList) {
  const CommandResult result = PrintMetrics({}, DeviceListWith("x\nT:  Bus=01"));
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.errors, HasSubstr("a device may have forged this"));
  EXPECT_EQ(ValueOf(ReadExposition(result.output), "usbinfo_suspect"), "2");
}

TEST(PrometheusFormat, KnowsNoStateOfFreeSocketsWithoutTheConnections) {
  const CommandResult result =
      PrintMetrics({"--request", "KALDO_USBHub,KALDO_USBPort"}, HarmlessDeviceList());
  const Exposition metrics = ReadExposition(result.output);
  EXPECT_EQ(ValueOf(metrics, "usbinfo_sockets", {{"state", "free"}}), "0");
  EXPECT_NE(ValueOf(metrics, "usbinfo_sockets", {{"state", "unknown"}}), "0");
}

TEST(PrometheusFormat, ShowsADevicesStringsOnOneLineAndEscaped) {
  MeteredMachine machine;
  machine.Plug(0, "1-1", {"mouse"},
               "a\"b\\c\n\x1B\t\xE2\x80\xAE"
               "d} 2");
  EXPECT_THAT(cli::RenderPrometheus(machine.Read(), {}),
              HasSubstr(R"(usbinfo_device_info{place="1-1",vid="1234",pid="5678",kind="mouse",vendor="Acme",)"
                        R"(product="a\"b\\\\c\\n\\x1b\\x09\\xe2\\x80\\xaed} 2"} 1)"
                        "\n"));
}

TEST(PrometheusFormat, CutsAStringThatIsLongerThanAnyDevicesBetweenTwoCharacters) {
  const std::string umlaut = "\xC3\xA4";
  const auto repeated = [](const std::string& text, int times) {
    std::string result;
    for (int time = 0; time < times; ++time) result += text;
    return result;
  };
  const auto shown = [](const std::string& product) {
    MeteredMachine machine;
    machine.Plug(0, "1-1", {"mouse"}, product);
    return OnlyDevice(MetricsOf(machine)).at("product");
  };
  EXPECT_EQ(shown(repeated(umlaut, 128)), repeated(umlaut, 128));
  EXPECT_EQ(shown(repeated(umlaut, 129)), repeated(umlaut, 128) + "...");
  EXPECT_EQ(shown(repeated("\x1B", 129)), repeated("\\x1b", 128) + "...");
  EXPECT_EQ(shown(repeated(umlaut, 500000)), repeated(umlaut, 128) + "...");
}

TEST(PrometheusFormat, TellsDevicesApartThatAListHasInOnePlace) {
  MeteredMachine machine;
  for (const int port : {0, 1, 2}) machine.Plug(port, "1-1", {"mouse"});
  const std::string text = cli::RenderPrometheus(machine.Read(), {});
  for (const char* place : {"{place=\"1-1\",", "{place=\"1-1 (2)\",", "{place=\"1-1 (3)\","}) {
    EXPECT_THAT(text, HasSubstr(place));
  }
}

TEST(PrometheusFormat, LeavesOutTheSeriesOfDevicesThatAreTooMany) {
  InventoryBuilder machine;
  for (int bus = 1; bus <= 9; ++bus) {
    const std::string root = machine.AddBus(bus, 112);
    for (int port = 0; port < 112; ++port) machine.AddDevice(root, port, port + 2);
  }
  const Exposition metrics = MetricsOf(machine);
  EXPECT_EQ(metrics.at("usbinfo_device_info").size(), 1000U);
  EXPECT_EQ(ValueOf(metrics, "usbinfo_devices_omitted"), "8");
  EXPECT_EQ(ValueOf(metrics, "usbinfo_devices", {{"kind", "unknown"}}), "1008");
}

TEST(PrometheusFormat, HasSerialNumbersOnlyWhenAskedFor) {
  const std::string capture = CapturePath("vm-desktop-debugfs");
  const auto run = [&capture](std::vector<std::string> options) {
    for (const char* option : {capture.c_str(), "--devices", "prometheus", "--format"}) {
      options.insert(options.begin(), option);
    }
    return RunUsbinfo(std::move(options)).output;
  };
  EXPECT_THAT(run({}), Not(HasSubstr("STICK01")));
  EXPECT_THAT(run({}), Not(HasSubstr("serial=")));
  EXPECT_THAT(run({"--with-serials"}), HasSubstr(",product=\"QEMU USB HARDDRIVE\",serial=\"STICK01\"} 1\n"));
  EXPECT_THAT(run({"--with-serials", "--mask-serials"}),
              AllOf(Not(HasSubstr("STICK01")), HasSubstr(",serial=\"masked-")));
}

TEST(PrometheusFormat, RefusesAPartOfAnInventory) {
  const TemporaryFolder folder;
  const std::string part = folder.File("part.json");
  const std::string capture = CapturePath("vm-desktop-debugfs");
  RunUsbinfo({"--devices", capture, "-d", "0627:", "-j", "--output", part});
  const CommandResult ofPart = RunUsbinfo({"--devices", part, "--format", "prometheus"});
  EXPECT_EQ(ofPart.status, 2);
  EXPECT_EQ(ofPart.output, "");
  EXPECT_EQ(
      ofPart.errors,
      "usbinfo: the inventory is a part of a machine's, whose counts would pass for those of the whole; "
      "save it without a selection, or use another format\n");
  const cli::Inventory withoutPorts =
      MeteredMachine().Read().Only([](const cli::Item& item) { return item.Class() != cli::ClassId::kPort; });
  EXPECT_THROW(cli::RenderPrometheus(withoutPorts, {}), cli::UserError);
}

/// A machine of devices and hubs plugged in at random, of which the kernel knows something or not, in places
/// that are often the same.
InventoryBuilder RandomMeteredMachine(unsigned int seed) {
  std::mt19937 random(seed);
  const auto below = [&random](std::size_t limit) { return random() % limit; };
  const std::vector<HostileString>& strings = HostileStrings();
  const std::vector<json> names = {"1-1", "1-1.2", "usb1", nullptr};
  MeteredMachine machine;
  std::vector<std::string> hubs = {machine.root};
  for (int number = 2; number < 16; ++number) {
    const Model model = {strings[below(strings.size())].asUtf8, "S"};
    const std::string hub = hubs[below(hubs.size())];
    const auto port = static_cast<int>(below(3));
    const bool isHub = below(3) == 0;
    const std::string item =
        isHub ? machine.AddHub(hub, port, number, 3, model) : machine.AddDevice(hub, port, number, model);
    if (isHub) hubs.push_back(item);
    json kinds = json::array();
    for (std::size_t kind = 0; kind < below(4); ++kind) kinds.push_back(cli::AllKinds()[below(17)]);
    if (below(4) != 0)
      machine.Document()["kernel"]["devices"].push_back(
          KnownFactsOf(item, names[below(names.size())], kinds));
  }
  return machine;
}

/// What each row of the table of devices must have among the metrics.
void ExpectASeriesForEachRow(const cli::Inventory& inventory) {
  const std::string text = cli::RenderPrometheus(inventory, {});
  EXPECT_FALSE(ActsOnTerminal(text) || HasDirectionMark(text));
  const Exposition metrics = ReadExposition(text);
  std::set<std::string> places;
  std::multiset<std::string> kinds;
  for (const auto& [labels, value] : metrics.at("usbinfo_device_info")) {
    EXPECT_TRUE(places.insert(labels.at("place")).second) << labels.at("place");
    kinds.insert(labels.at("kind"));
  }
  const cli::Sockets sockets(inventory);
  std::multiset<std::string> expected;
  for (const cli::SocketNode* const row : cli::DeviceRows(sockets, {})) {
    const std::string kind = cli::DeviceColumns()[1].text(sockets, *row);
    expected.insert(kind.empty() ? "unknown" : kind);
  }
  EXPECT_EQ(kinds, expected);
  for (const auto& [labels, value] : metrics.at("usbinfo_devices")) {
    const std::string kind = ", " + labels.at("kind") + ",";
    EXPECT_EQ(value, std::to_string(std::count_if(expected.begin(), expected.end(), [&](const auto& each) {
                return (", " + each + ",").find(kind) != std::string::npos;
              })));
  }
}

TEST(PrometheusFormat, HasASeriesOfItsOwnForEveryDeviceOfRandomMachines) {
  constexpr unsigned int kMachines = 100;
  for (unsigned int seed = 0; seed < kMachines; ++seed) {
    SCOPED_TRACE(seed);
    ExpectASeriesForEachRow(RandomMeteredMachine(seed).Read());
  }
}

class CaptureMetricsTest : public CliTest, public testing::WithParamInterface<std::string> {};

TEST_P(CaptureMetricsTest, HaveASeriesOfItsOwnForEveryDevice) {
  Collect(ReadFile(CapturePath(GetParam())));
  ExpectASeriesForEachRow(Collected());
}

INSTANTIATE_TEST_SUITE_P(Captures, CaptureMetricsTest, testing::ValuesIn(CaptureNames()),
                         [](const auto& row) { return ToTestName(row.param); });

}  // namespace
}  // namespace usbinfo_test
