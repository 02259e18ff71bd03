// The page for a browser, as a document: its frame, what it shows of every item, and that no string leaves
// its text. Tests with a browser are in tests/page.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <string>

#include "cli/format/RenderOptions.h"
#include "cli/format/html/HtmlFormat.h"
#include "cli/format/html/PageAssets.h"
#include "cli/model/FromHost.h"
#include "cli/model/UsbIds.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/ShownText.h"
#include "tests/cli/support/XmlDocument.h"

using NKESTA20::TCIMValue;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
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
  EXPECT_THAT(Select("//dl[@class='figures']/div/dd[1]"), ElementsAre("0", "0", "0", "0"));
  EXPECT_EQ(Count("//input | //button | //*[@class='item']"), 0U);
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

TEST_F(HtmlFormatTest, GivesFiguresUnderTheMachinesName) {
  AddSmallMachine();
  EXPECT_THAT(Select("//h1"), ElementsAre("testhost"));
  EXPECT_THAT(Select("//title"), ElementsAre("testhost: USB"));
  EXPECT_THAT(Select("//dl[@class='figures']/div/dt"), ElementsAre("Controller", "Hub", "Ports", "Device"));
  EXPECT_THAT(Select("//dl[@class='figures']/div/dd[1]"), ElementsAre("1", "1", "2", "1"));
  EXPECT_THAT(Select("//dl[@class='figures']//dd[@class='note']"), ElementsAre("1 used, 1 free"));
}

TEST_F(HtmlFormatTest, ShowsTheTotalsOfAPartWithoutCountingFreePorts) {
  AddSmallMachine();
  const cli::Inventory part = Collected().Only([](const cli::Item& item) {
    const std::string& identifier = item.String(cli::PropertyId::kDeviceID);
    return identifier == kRoot || identifier == "Bus 01  Device   1 Port 01";
  });
  const XmlDocument page(cli::RenderHtml(part, {}));
  EXPECT_THAT(page.Select("//dl[@class='figures']/div/dd[1]"), ElementsAre("1", "1", "1"));
  EXPECT_THAT(page.Select("//dl[@class='figures']//dd[@class='note']"), ElementsAre("of 2"));
  EXPECT_THAT(page.Select("//p[@class='left-out']"), ElementsAre("Left out by the selection: 1 device"));
}

TEST_F(HtmlFormatTest, ShowsASelectedClassWithoutFiguresOfTheOthers) {
  AddSmallMachine();
  const cli::Inventory devices =
      Collected().Only([](const cli::Item& item) { return item.Class() == cli::ClassId::kDevice; });
  const XmlDocument page(cli::RenderHtml(devices, {}));
  EXPECT_THAT(page.Select("//section/h2"), ElementsAre("Selected"));
  EXPECT_THAT(page.Select("//dl[@class='figures']/div/*"), ElementsAre("Device", "1"));
  EXPECT_THAT(page.Select("//p[@class='left-out']"),
              ElementsAre("Left out by the selection: 1 controller, 1 hub, 2 ports"));
}

TEST_F(HtmlFormatTest, CountsNoFreePortsWhereConnectionsWereNotCollected) {
  Path hub = AddHub(kRoot, "Host", 2);
  AddPortOn(hub, "Bus 01  Device   1 Port 00", 480000000, kFree);
  const auto noteOf = [this] {
    const cli::Inventory inventory = cli::FromHost(host, {"KALDO_USBHub", "KALDO_USBPort"});
    return XmlDocument(cli::RenderHtml(inventory, {})).Select("//dd[@class='note']");
  };
  EXPECT_THAT(noteOf(), ElementsAre("1 unknown"));
  AddPortOn(hub, "Bus 01  Device   1 Port 01", 480000000, kUsed);
  EXPECT_THAT(noteOf(), ElementsAre("1 used, 1 unknown"));
}

TEST_F(HtmlFormatTest, NestsDevicesInHubsInSections) {
  AddSmallMachine();
  EXPECT_THAT(Select("//section/details/summary/h2/span[@class='place']"), ElementsAre("Bus 01"));
  EXPECT_THAT(Select("//section/details/summary/h2/span[@class='name']/span"), ElementsAre("Host"));
  const std::string hub = "//section/ul/li[@class='item hub']";
  EXPECT_THAT(Select(hub + "/details/summary/span[@class='place']"), ElementsAre("Root hub"));
  EXPECT_THAT(Select(hub + "/details/summary/span[@class='name']/span"), ElementsAre("2 ports, 1 free"));
  const std::string device = hub + "/ul[@class='items']/li[@class='item device']/details/summary";
  EXPECT_THAT(Select(device + "/span[@class='place']"), ElementsAre("Port 00"));
  EXPECT_THAT(Select(device + "/span[@class='name']/span"), ElementsAre("Mouse"));
  EXPECT_THAT(Select(device + "/span[@class='id']"), ElementsAre("046d:c077"));
  EXPECT_THAT(Select(device + "/span[@class='speed low']"), ElementsAre("1.5 Mbit/s"));
}

TEST_F(HtmlFormatTest, DrawsPortsAsSocketsThatLeadToWhatIsPluggedIn) {
  AddSmallMachine();
  EXPECT_THAT(Select("//ul[@class='sockets']/@aria-label"), ElementsAre("Ports of Root hub"));
  EXPECT_THAT(Select("//ul[@class='sockets']/li/@class"),
              ElementsAre("socket high used", "socket super free"));
  EXPECT_THAT(Select("//li/*/span[@class='unseen']"),
              ElementsAre("Port 00: Mouse, 480 Mbit/s", "Port 01: free, 5 Gbit/s"));
  EXPECT_THAT(Select("//li/*/span[@class='rate']"), ElementsAre("480M", "5G"));
  EXPECT_EQ(Select("//li[contains(@class, 'used')]/a/@href"),
            std::vector<std::string>{"#" + Select("//li[@class='item device']/@id").front()});
}

TEST_F(HtmlFormatTest, ShowsTheFactsThatAreKnown) {
  AddSmallMachine();
  const std::string facts = "//li[@class='item device']/details/dl/div/";
  EXPECT_THAT(Select(facts + "dt"),
              ElementsAre("Product", "Manufacturer", "USB version", "Address", "Port's speed"));
  EXPECT_THAT(Select(facts + "dd"),
              ElementsAre("Mouse", "Maker", "1.10", "Bus 01  Device   2", "480 Mbit/s"));
}

TEST_F(HtmlFormatTest, FiltersByNameIdManufacturerAndSerialNumber) {
  AddSmallMachine();
  EXPECT_THAT(Select("//li[@class='item device']//*[@data-find]"),
              ElementsAre("Mouse", "046d:c077", "Mouse", "Maker"));
}

TEST_F(HtmlFormatTest, ShowsTheListedNameOfAnItem) {
  AddSmallMachine();
  const cli::UsbIds names("046d  Logitech, Inc.\n\tc077  Mouse <M105>\n");
  cli::RenderOptions options;
  options.names = &names;
  const XmlDocument page(cli::RenderHtml(Collected(), options));
  EXPECT_THAT(page.Select("//dt[.='Known as']/following-sibling::dd[@data-find]"),
              ElementsAre("Mouse <M105> (Logitech, Inc.)"));
  EXPECT_EQ(page.Count("//span[@class='known']"), 0U);
}

TEST_F(HtmlFormatTest, ShowsTheListedNameOfAnItemWithoutAName) {
  CommitEntity("KALDO_USBDevice", "Bus 01  Device   2",
               {{"Description", TCIMValue("Not Available")},
                {"VendorID", TCIMValue(static_cast<unsigned short>(0x046D))},
                {"USBDeviceID", TCIMValue(static_cast<unsigned short>(0xC077))}});
  const cli::UsbIds names("046d  Logitech, Inc.\n");
  cli::RenderOptions options;
  options.names = &names;
  const XmlDocument page(cli::RenderHtml(Collected(), options));
  EXPECT_THAT(page.Select("//span[@class='name']/span"), ElementsAre("(no name)", "(Logitech, Inc.)"));
}

TEST_F(HtmlFormatTest, ShowsTheFirstDigitOfCodes) {
  CommitEntity("KALDO_USBDevice", "Bus 01  Device   2",
               {{"ClassCode", TCIMValue(static_cast<unsigned char>('f' - '0'))}});
  EXPECT_THAT(Select("//dt[.='Class']/following-sibling::dd"), ElementsAre("f*"));
}

TEST_F(HtmlFormatTest, KeepsWhatIsLinkedToNoController) {
  Path hub = AddHub("Bus 03  Device   5", "Lost hub", 1);
  AddPortOn(hub, "Bus 03  Device   5 Port 00", 12000000, kFree);
  AddPort("Bus 04  Device   5 Port 00", 12000000, kFree);
  AddDevice("Bus 03  Device   6", "Not Available", 0);
  EXPECT_THAT(Select("//section/h2"), ElementsAre("Linked to no controller"));
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

TEST_F(HtmlFormatTest, CountsFreePortsOnlyWhereAllAreThere) {
  AddPortOn(AddHub(kRoot, "Hub", 2), "Bus 01  Device   1 Port 00", 12000000, kFree);
  EXPECT_THAT(Select("//span[@class='free-ports']"), ElementsAre("2 ports"));
}

TEST_F(HtmlFormatTest, DrawsAPortOfUnknownSpeed) {
  AddPortOn(AddHub(kRoot, "Hub", 1), "Bus 01  Device   1 Port 00", 0, kFree);
  EXPECT_THAT(Select("//li[@class='socket unknown free']/span/span"),
              ElementsAre("00", "?", "Port 00: free"));
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
