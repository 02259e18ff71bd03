// The page for a browser, as a document: its frame, what it shows of every item, and that no string leaves
// its text. Tests with a browser are in tests/page.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <string>

#include "cli/format/RenderOptions.h"
#include "cli/format/html/HtmlFormat.h"
#include "cli/format/html/PageAssets.h"
#include "cli/model/FromHost.h"
#include "cli/model/Kinds.h"
#include "cli/model/UsbIds.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/InventoryBuilder.h"
#include "tests/cli/support/ShownText.h"
#include "tests/cli/support/XmlDocument.h"

using NKESTA20::TCIMValue;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace usbinfo_test {
namespace {

constexpr const char* kRoot = "Bus 01  Device   1";
constexpr const char* kUsed = "Device connected";
constexpr const char* kFree = "No device connected";

class HtmlFormatTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderHtml(Collected(), {}); }
  std::vector<std::string> Select(const std::string& path) const {
    return XmlDocument(Render()).Select(path);
  }
  std::size_t Count(const std::string& path) const { return XmlDocument(Render()).Count(path); }

  Path AddPortOn(Path hub, const std::string& identifier, unsigned long speed, const char* status) {
    Path port = AddPort(identifier, speed, status);
    Associate("KALDO_USBPortOnHub", hub, port);
    return port;
  }
  /// A controller, its root hub with a used port 00 and a free port 01, a mouse.
  void AddSmallMachine() {
    AddController(kRoot, "Host");
    Path hub = AddHub(kRoot, "Host", 2);
    Path used = AddPortOn(hub, "Bus 01  Device   1 Port 00", 480000000, kUsed);
    AddPortOn(hub, "Bus 01  Device   1 Port 01", 5000000000, kFree);
    Path mouse = CommitEntity("KALDO_USBDevice", "Bus 01  Device   2",
                              {{"Description", TCIMValue("Mouse")},
                               {"Manufacturer", TCIMValue("Maker")},
                               {"SerialNumber", TCIMValue("Not Available")},
                               {"USBVersion", TCIMValue(static_cast<unsigned short>(110))},
                               {"VendorID", TCIMValue(static_cast<unsigned short>(0x046D))},
                               {"USBDeviceID", TCIMValue(static_cast<unsigned short>(0xC077))},
                               {"Speed", TCIMValue(static_cast<unsigned char>(1))}});
    Associate("KALDO_USBConnection", used, mouse);
  }
};

TEST_F(HtmlFormatTest, SaysThatNothingWasFoundInAnEmptyInventory) {
  EXPECT_THAT(Select("/html/body/main/p"), ElementsAre("No USB device found."));
  EXPECT_THAT(Select("//p[@class='counts']"),
              ElementsAre("0 controllers, 0 hubs, 0 ports (0 free), 0 devices"));
  EXPECT_EQ(Count("//input | //button | //table | //svg | //*[@class='item']"), 0U);
}

TEST_F(HtmlFormatTest, IsHtmlInEnglishWithAPolicyThatTakesItsOwnStyleAndScriptOnly) {
  EXPECT_THAT(Render(), StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"/>\n"));
  EXPECT_THAT(Select("//meta[@http-equiv='Content-Security-Policy']/@content"),
              ElementsAre(fmt::format("default-src 'none'; style-src {}; script-src {}; base-uri 'none'; "
                                      "form-action 'none'",
                                      cli::kPageStyle.source, cli::kPageScript.source)));
  EXPECT_THAT(cli::kPageStyle.source, ::testing::MatchesRegex("'sha256-[A-Za-z0-9+/]{43}='"));
  EXPECT_THAT(Render(), HasSubstr(std::string("<style>") + cli::kPageStyle.text + "</style>"));
  EXPECT_THAT(Render(), HasSubstr(std::string("<script>") + cli::kPageScript.text + "</script>"));
}

TEST_F(HtmlFormatTest, HasAssetsThatCannotEndTheirElement) {
  for (const cli::PageAsset& asset : {cli::kPageStyle, cli::kPageScript}) {
    const std::string text = asset.text;
    EXPECT_THAT(text, StartsWith("/*<![CDATA[*/\n"));
    EXPECT_EQ(text.find("</"), std::string::npos);
    EXPECT_EQ(text.find("]]>"), text.size() - 5);
    EXPECT_EQ(text.find("url("), std::string::npos);
    EXPECT_EQ(text.find("@import"), std::string::npos);
  }
}

// The top.

TEST_F(HtmlFormatTest, CountsUnderTheMachinesName) {
  AddSmallMachine();
  EXPECT_THAT(Select("//h1"), ElementsAre("testhost"));
  EXPECT_THAT(Select("//title"), ElementsAre("testhost: USB"));
  EXPECT_THAT(Select("//p[@class='counts']"), ElementsAre("1 controller, 1 hub, 2 ports (1 free), 1 device"));
}

TEST_F(HtmlFormatTest, SaysWhatIsNotKnownOfItsOrigin) {
  AddSmallMachine();
  EXPECT_THAT(Select("//header//dt"), ElementsAre("Collected", "From", "Serial numbers", "Shown"));
  EXPECT_THAT(Select("//header//dd"),
              ElementsAre("not known", "not known", "not known whether masked", "everything"));
  EXPECT_EQ(Count("//ul[@class='findings']"), 0U);
}

TEST_F(HtmlFormatTest, SaysWhenAndFromWhereAndWhatWasDone) {
  InventoryBuilder built;
  built.AddBus(1, 1);
  built.Document()["origin"] = OriginExample();
  const XmlDocument page(cli::RenderHtml(built.Read(), {}));
  EXPECT_THAT(page.Select("//header//dd"),
              ElementsAre("2026-11-21 12:00:00 UTC", "sysfs", "masked with the key 36b7d9e49e324323",
                          "only what is selected by -d 1d6b: -s 1:3 --class KALDO_USBHub",
                          "wrong parents of 3 devices"));
  EXPECT_THAT(
      page.Select("//ul[@class='findings']/li"),
      ElementsAre("The kernel does not write lines 17, 19 of the device list, of \"Bus 01  Device   9\" "
                  "(two-t-lines). A device may have forged this."));
  EXPECT_THAT(page.Select("//footer"), ElementsAre(HasSubstr(", machine c0ffee")));
}

TEST_F(HtmlFormatTest, NamesTheOtherOriginsInWords) {
  InventoryBuilder built;
  built.AddBus(1, 1);
  nlohmann::json& origin = built.Document()["origin"] = OriginExample();
  origin["source"] = "list";
  origin["collected"] = nullptr;
  origin["masked"] = nullptr;
  origin["selection"] = nullptr;
  const auto facts = [&built] {
    return XmlDocument(cli::RenderHtml(built.Read(), {})).Select("//header//dd");
  };
  EXPECT_THAT(facts(), ElementsAre("not known", "a device list", "as the devices send them", "everything",
                                   "wrong parents of 3 devices"));
  origin["source"] = "plugin";
  origin["masked"] = {{"key", nullptr}};
  EXPECT_THAT(facts(), ElementsAre("not known", "the device list that the plug-in found",
                                   "masked with a random key", "everything", "wrong parents of 3 devices"));
}

TEST_F(HtmlFormatTest, NamesTheOptionThatLeftSocketsOut) {
  AddSmallMachine();
  cli::RenderOptions options;
  options.isOccupiedOnly = true;
  EXPECT_THAT(XmlDocument(cli::RenderHtml(Collected(), options)).Select("//header/dl/div[4]/dd"),
              ElementsAre("only what is selected by --occupied"));
}

TEST_F(HtmlFormatTest, GivesTheTotalsOfAPartWithoutCountingFreePorts) {
  AddSmallMachine();
  const cli::Inventory part = Collected().Only([](const cli::Item& item) {
    const std::string& identifier = item.String(cli::PropertyId::kDeviceID);
    return identifier == kRoot || identifier == "Bus 01  Device   1 Port 00";
  });
  const XmlDocument page(cli::RenderHtml(part, {}));
  EXPECT_THAT(page.Select("//header/dl/div[4]/dd"), ElementsAre("a part"));
  EXPECT_EQ(page.Count("//table"), 0U);
}

// The table.

TEST_F(HtmlFormatTest, HasARowForEachDeviceThatLeadsToItsPlace) {
  AddSmallMachine();
  EXPECT_THAT(Select("//table/thead/tr/th[@scope='col']"),
              ElementsAre("Name", "Vendor", "Identifier", "Serial number", "Place", "Speed"));
  EXPECT_THAT(Select("//tbody/tr/*"),
              ElementsAre("Mouse", "Maker", "046d:c077", "", "Bus 01, device 2", "1.5 Mbit/s"));
  EXPECT_THAT(Select("//tbody/tr/th[@scope='row']"), ElementsAre("Mouse"));
  EXPECT_EQ(Select("//tbody//a/@href"),
            std::vector<std::string>{"#" + Select("//li[@class='item device']/@id").front()});
}

TEST_F(HtmlFormatTest, ShowsTheKindWithItsIconWhereKindsAreKnown) {
  InventoryBuilder built;
  built.AddDevice(built.AddBus(1, 2), 0, 2);
  built.Document()["kernel"] = KernelExample();
  const XmlDocument page(cli::RenderHtml(built.Read(), {}));
  EXPECT_THAT(page.Select("//tbody/tr/*[position() < 7]"),
              ElementsAre("\nmass storage", "Stick", "Acme", "1234:5678", "S1", "1-1"));
  EXPECT_THAT(page.Select("//tbody//use/@href | //li//use/@href"),
              ElementsAre("#kind-mass-storage", "#kind-mass-storage"));
}

TEST_F(HtmlFormatTest, HasADrawingForEveryKindOnce) {
  AddSmallMachine();
  std::vector<std::string> drawings;
  for (std::string kind : cli::AllKinds()) {
    for (char& c : kind) c = c == ' ' || c == '/' ? '-' : c;
    drawings.push_back("kind-" + kind);
  }
  EXPECT_EQ(Select("//symbol/@id"), drawings);
}

TEST_F(HtmlFormatTest, ListsFreePortsInTheTableWhereTheyAreAskedFor) {
  AddSmallMachine();
  cli::RenderOptions options;
  options.listsFreeSockets = true;
  const XmlDocument page(cli::RenderHtml(Collected(), options));
  EXPECT_THAT(page.Select("//section[@id='devices']/h2"), ElementsAre("Free ports"));
  EXPECT_THAT(page.Select("//thead//th"), ElementsAre("Place", "State", "Speed"));
  EXPECT_THAT(page.Select("//tbody//tr/*"), ElementsAre("Bus 01, hub 1, port 01", "free", "5 Gbit/s"));
  EXPECT_EQ(page.Select("//tbody//th[@scope='row']/a/@href"),
            std::vector<std::string>{"#" + page.Select("//li[@class='socket free']/@id").front()});
}

// The controllers.

TEST_F(HtmlFormatTest, ShowsAControllerAndItsRootHubInOneLine) {
  AddSmallMachine();
  const std::string line = "//section[@class='bus item']/details/summary";
  EXPECT_THAT(Select(line + "/h3/span[@class='place']"), ElementsAre("Bus 01"));
  EXPECT_THAT(Select(line + "/h3/span[@class='name']/span"), ElementsAre("Host", "2 ports"));
  EXPECT_THAT(Select(line + "/span[@class='identifier']"), ElementsAre("0000:0000"));
  const std::string device = "//section/ul[@class='items']/li[@class='item device']/details/summary";
  EXPECT_THAT(Select(device + "/span[@class='place']"), ElementsAre("Port 00"));
  EXPECT_THAT(Select(device + "/span[@class='name']/span"), ElementsAre("Mouse"));
  EXPECT_THAT(Select(device + "/span[@class='identifier']"), ElementsAre("046d:c077"));
  EXPECT_THAT(Select(device + "/span[@class='speed']"), ElementsAre("1.5 Mbit/s"));
}

TEST_F(HtmlFormatTest, DrawsPortsAsSocketsThatLeadToWhatIsPluggedIn) {
  AddSmallMachine();
  EXPECT_THAT(Select("//h2"), ElementsAre("Devices and hubs", "Controllers and ports"));
  EXPECT_THAT(Select("//ul[@class='sockets']/@aria-label"), ElementsAre("Ports of Root hub"));
  EXPECT_THAT(Select("//ul[@class='sockets']/li/@class"), ElementsAre("socket used", "socket free"));
  EXPECT_THAT(Select("//li/*/span[@class='unseen']"),
              ElementsAre("Port 00: Mouse, 480 Mbit/s", "Port 01: free, 5 Gbit/s"));
  EXPECT_EQ(Select("//li[@class='socket used']/a/@href"),
            std::vector<std::string>{"#" + Select("//li[@class='item device']/@id").front()});
}

TEST_F(HtmlFormatTest, ExplainsTheMarksThatItHas) {
  AddSmallMachine();
  EXPECT_THAT(Select("//ul[@class='legend']/li"), ElementsAre("in use", "free"));
  InventoryBuilder built;
  built.AddBus(1, 2);
  built.Document()["kernel"] = KernelExample();
  for (nlohmann::json& port : built.Document()["kernel"]["ports"]) {
    port.update({{"connect", "not used"}, {"state", "free"}});
  }
  const XmlDocument page(cli::RenderHtml(built.Read(), {}));
  EXPECT_THAT(page.Select("//ul[@class='legend']/li"), ElementsAre("not used"));
  EXPECT_THAT(page.Select("//li[@class='socket not-used']//span[@class='unseen']"),
              ElementsAre("1-1: not used, 480 Mbit/s", "Port 01: not used, 480 Mbit/s"));
}

TEST_F(HtmlFormatTest, ShowsTheSpeedOfASocketOnlyWhereItDiffersFromTheHubs) {
  AddSmallMachine();
  EXPECT_THAT(Select("//section/details/summary/span[@class='speed']"), ElementsAre("480 Mbit/s"));
  EXPECT_THAT(Select("//li[contains(@class, 'socket')]//span[@class='rate']"), ElementsAre("5G"));
}

TEST_F(HtmlFormatTest, FoldsControllersWithNothingPluggedIn) {
  AddSmallMachine();
  for (const char* const bus : {"Bus 02  Device   1", "Bus 03  Device   1"}) {
    AddController(bus, "Host");
    Path hub = AddHub(bus, "Host", 1);
    AddPortOn(hub, std::string(bus) + " Port 00", 480000000, kFree);
  }
  EXPECT_THAT(Select("//details[@class='empty']/summary"),
              ElementsAre("2 controllers with nothing plugged in: Bus 02, Bus 03 (2 free ports)"));
  EXPECT_THAT(Select("//details[@class='empty']//section//h3/span[@class='place']"),
              ElementsAre("Bus 02", "Bus 03"));
  EXPECT_EQ(Count("//section[@class='bus item']"), 3U);
}

TEST_F(HtmlFormatTest, FoldsNoControllerWhosePortsAreNotAllKnown) {
  AddController(kRoot, "Host");
  Path hub = AddHub(kRoot, "Host", 1);
  AddPortOn(hub, "Bus 01  Device   1 Port 00", 480000000, kFree);
  const std::string fold = "//details[@class='empty']";
  EXPECT_EQ(XmlDocument(cli::RenderHtml(Collected(), {})).Count(fold), 1U);
  const cli::Inventory unknown =
      cli::FromHost(host, {"KALDO_USBController", "KALDO_USBHub", "KALDO_USBPort", "KALDO_USBPortOnHub"});
  EXPECT_EQ(XmlDocument(cli::RenderHtml(unknown, {})).Count(fold), 0U);
  AddDevice("Bus 02  Device   2", "Left out", 1);
  const cli::Inventory part =
      Collected().Only([](const cli::Item& item) { return item.Class() != cli::ClassId::kDevice; });
  EXPECT_EQ(XmlDocument(cli::RenderHtml(part, {})).Count(fold), 0U);
}

TEST_F(HtmlFormatTest, SpreadsCardsOverTwoColumnsInOrder) {
  InventoryBuilder built;
  for (const int bus : {1, 2, 3, 4}) {
    const std::string hub = built.AddBus(bus, 8);
    // As high as all others together.
    const int devices = bus == 1 ? 8 : 1;
    for (int port = 0; port < devices; ++port) built.AddDevice(hub, port, port + 2);
  }
  const XmlDocument page(cli::RenderHtml(built.Read(), {}));
  const std::string place = "/section/details/summary/h3/span[@class='place']";
  EXPECT_THAT(page.Select("//div[@class='column'][1]" + place), ElementsAre("Bus 01"));
  EXPECT_THAT(page.Select("//div[@class='column'][2]" + place), ElementsAre("Bus 02", "Bus 03", "Bus 04"));
}

TEST_F(HtmlFormatTest, ShowsTheFactsThatAreKnown) {
  AddSmallMachine();
  const std::string facts = "//li[@class='item device']/details/dl/div/";
  EXPECT_THAT(Select(facts + "dt"),
              ElementsAre("Name", "Vendor", "Identifier", "USB version", "Speed", "DeviceID"));
  EXPECT_THAT(Select(facts + "dd"),
              ElementsAre("Mouse", "Maker", "046d:c077", "1.10", "1.5 Mbit/s", "Bus 01  Device   2"));
}

TEST_F(HtmlFormatTest, ShowsWhatTheKernelKnowsInWords) {
  InventoryBuilder built;
  built.AddDevice(built.AddBus(1, 2), 0, 2);
  built.Document()["kernel"] = KernelExample();
  built.Document()["kernel"]["ports"][0]["connect"] = "hardwired";
  const XmlDocument page(cli::RenderHtml(built.Read(), {}));
  const std::string facts = "//li[@class='item device']/details/dl/div/";
  EXPECT_THAT(page.Select(facts + "dt"),
              ElementsAre("Kind", "Name", "Vendor", "Identifier", "Serial number", "USB version", "Revision",
                          "Configurations", "Power", "Driver", "Device number", "Device files", "Place",
                          "Speed", "Socket", "DeviceID"));
  EXPECT_THAT(page.Select(facts + "dd"),
              ElementsAre("mass storage", "Stick", "Acme", "1234:5678", "S1", "2.00", "1.00", "1", "500 mA",
                          "usb-storage", "2", "/dev/bus/usb/001/002, /dev/sda", "1-1", "1.5 Mbit/s",
                          "hard-wired", "Bus 01  Device   2"));
  EXPECT_THAT(page.Select("//h2"), ElementsAre("Devices and hubs", "Controllers and sockets"));
}

TEST_F(HtmlFormatTest, ShowsTheListedNameOfADevice) {
  AddSmallMachine();
  const cli::UsbIds names("046d  Logitech, Inc.\n\tc077  Mouse <M105>\n");
  cli::RenderOptions options;
  options.names = &names;
  const XmlDocument page(cli::RenderHtml(Collected(), options));
  EXPECT_THAT(page.Select("//dt[.='Known as']/following-sibling::dd[@data-find]"),
              ElementsAre("Mouse <M105> (Logitech, Inc.)"));
  EXPECT_EQ(page.Count("//span[@class='known']"), 0U);
}

TEST_F(HtmlFormatTest, ShowsTheListedNameOfADeviceWithoutAName) {
  CommitEntity("KALDO_USBDevice", "Bus 01  Device   2",
               {{"Description", TCIMValue("Not Available")},
                {"VendorID", TCIMValue(static_cast<unsigned short>(0x046D))},
                {"USBDeviceID", TCIMValue(static_cast<unsigned short>(0xC077))}});
  const cli::UsbIds names("046d  Logitech, Inc.\n");
  cli::RenderOptions options;
  options.names = &names;
  const XmlDocument page(cli::RenderHtml(Collected(), options));
  EXPECT_THAT(page.Select("//li//span[@class='name']/span"), ElementsAre("(no name)", "(Logitech, Inc.)"));
  EXPECT_THAT(page.Select("//tbody//th"), ElementsAre("(Logitech, Inc.)"));
}

TEST_F(HtmlFormatTest, KeepsWhatIsLinkedToNoController) {
  Path hub = AddHub("Bus 03  Device   5", "Lost hub", 1);
  AddPortOn(hub, "Bus 03  Device   5 Port 00", 12000000, kFree);
  AddPort("Bus 04  Device   5 Port 00", 12000000, kFree);
  AddDevice("Bus 03  Device   6", "Not Available", 0);
  EXPECT_THAT(Select("//section/h3"), ElementsAre("Linked to no controller"));
  EXPECT_THAT(Select("//section/ul/li/details/summary/span[@class='place']"),
              ElementsAre("Bus 03, hub 5", "Bus 04, hub 5, port 00", "Bus 03, device 6"));
  EXPECT_THAT(Select("//section/ul/li/details/summary/span[@class='name']/span[1]"),
              ElementsAre("Lost hub", "free", "(no name)"));
}

TEST_F(HtmlFormatTest, ListsAllThatIsPluggedIntoOnePort) {
  Path hub = AddHub(kRoot, "Hub", 1);
  Path port = AddPortOn(hub, "Bus 01  Device   1 Port 00", 12000000, kUsed);
  Associate("KALDO_USBConnection", port, AddDevice("Bus 01  Device   2", "One", 2));
  Associate("KALDO_USBConnection", port, AddDevice("Bus 01  Device   3", "Other", 2));
  EXPECT_THAT(Select("//li[@class='item port']/details/summary/span[@class='name']"), ElementsAre("in use"));
  EXPECT_THAT(Select("//li[@class='item port']/ul/li//span[@class='name']"), ElementsAre("One", "Other"));
}

TEST_F(HtmlFormatTest, DrawsAPortOfUnknownSpeed) {
  AddPortOn(AddHub(kRoot, "Hub", 1), "Bus 01  Device   1 Port 00", 0, kFree);
  EXPECT_THAT(Select("//li[@class='socket free']/span/span"), ElementsAre("00", "Port 00: free"));
}

TEST_F(HtmlFormatTest, StaysFlatBelowTheDeepestRow) {
  Path port =
      AddPortOn(AddHub("Bus 01  Device   0", "Hub", 1), "Bus 01  Device   0 Port 00", 12000000, kUsed);
  for (int level = 1; level < 100; ++level) {
    const std::string identifier = fmt::format("Bus 01  Device {:3}", level);
    Path hub = AddHub(identifier, "Hub", 1);
    Associate("KALDO_USBConnection", port, hub);
    port = AddPortOn(hub, identifier + " Port 00", 12000000, kUsed);
  }
  EXPECT_EQ(Count("//li[@class='item hub']"), 100U);
  EXPECT_EQ(Count("//li[contains(@class, 'item') and count(ancestor::li) > 32]"), 0U);
  EXPECT_EQ(Count("//li[contains(@class, 'item') and count(ancestor::li) = 32]"), 69U);
}

const std::vector<ShownText> kTexts = {
    {"Script", "<script>alert(1)</script>", "&lt;script&gt;alert(1)&lt;/script&gt;"},
    {"Attribute", "\"><img src=x onerror=alert(1)>", "&quot;&gt;&lt;img src=x onerror=alert(1)&gt;"},
    {"Apostrophe", "' onclick='x", "&#39; onclick=&#39;x"},
    {"Entity", "&lt;&#27;", "&amp;lt;&amp;#27;"},
    {"Comment", "<!-- -->", "&lt;!-- --&gt;"},
    {"SectionEnd", "]]>", "]]&gt;"},
    {"Control", "\x1B[31m\x7F\t", "\\x1b[31m\\x7f\\x09"},
    {"SecondControlSet", "\xC2\x9B", "\\xc2\\x9b"},
    {"NoUtf8", "a\xFFz", "a\\xffz"},
    {"DirectionMark", "a\xE2\x80\xAEz", "a\\xe2\\x80\\xaez"},
    {"ZeroWidth", "a\xE2\x80\x8Bz", "a\\xe2\\x80\\x8bz"},
    {"SpelledZeroWidth", "a\\xe2\\x80\\x8bz", "a\\\\xe2\\\\x80\\\\x8bz"},
    {"LineSeparator", "a\xE2\x80\xA8z", "a\\xe2\\x80\\xa8z"},
    {"Newline", "a\nz", "a\\nz"},
    {"BrokenCharacter", "a\xF0\x9F\x98z", "a\\xf0\\x9f\\x98z"},
    {"NoCharacter", "a\xEF\xBF\xBFz", "a\\xef\\xbf\\xbfz"},
    {"Letters", "M\xC3\xA4us", "M\xC3\xA4us"},
};

class HtmlTextTest : public HtmlFormatTest, public testing::WithParamInterface<ShownText> {};

TEST_P(HtmlTextTest, StaysATextInElementsAndAttributes) {
  Path port = AddPortOn(AddHub(kRoot, GetParam().bytes, 1), "Bus 01  Device   1 Port 00", 12000000, kUsed);
  Associate("KALDO_USBConnection", port, AddDevice("Bus 01  Device   2", GetParam().bytes, 1));
  EXPECT_THAT(Render(), HasSubstr("<span data-find=\"\">" + GetParam().shown + "</span>"));
  EXPECT_THAT(Render(), HasSubstr(" title=\"Port 00: " + GetParam().shown + ", 12 Mbit/s\""));
  EXPECT_THAT(Render(), HasSubstr(" aria-label=\"Ports of " + GetParam().shown + "\""));
}

INSTANTIATE_TEST_SUITE_P(Strings, HtmlTextTest, testing::ValuesIn(kTexts),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace usbinfo_test
