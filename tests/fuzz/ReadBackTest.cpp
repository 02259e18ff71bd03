// The checks themselves: each reader takes what its format makes, and refuses the same with one thing
// changed. Every format of the command has a reader.
#include <gmock/gmock.h>

#include <clocale>
#include <string>
#include <vector>

#include "cli/format/OutputFormat.h"
#include "cli/format/RenderOptions.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/CimXmlReader.h"
#include "tests/fuzz/PluginTarget.h"
#include "tests/fuzz/ReadBack.h"
#include "tests/fuzz/ReadPath.h"
#include "tests/fuzz/TableReader.h"
#include "tests/fuzz/Utf8.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {
namespace {

const std::string kList =
    "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 2\n"
    "S:  Product=Root & <hub>\n"
    "C:* #Ifs= 1 Cfg#= 1 Atr=e0 MxPwr=  0mA\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n"
    "T:  Bus=01 Lev=01 Prnt=01 Port=01 Cnt=01 Dev#=  2 Spd=12   MxCh= 0\n"
    "P:  Vendor=0627 ProdID=0001 Rev= 0.00\n"
    "S:  Product=a\xFFz\n"
    "C:* #Ifs= 1 Cfg#= 1 Atr=a0 MxPwr=100mA\n"
    "I:* If#= 0 Alt= 0 #EPs= 1 Cls=03(HID  ) Sub=01 Prot=02 Driver=usbhid\n\n";

std::string Changed(std::string text, const std::string& part, const std::string& replacement) {
  const std::size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return at == std::string::npos ? text : text.replace(at, part.size(), replacement);
}

class ReadBackTest : public testing::Test {
 protected:
  ReadBackTest() { static_cast<void>(std::setlocale(LC_CTYPE, "C.UTF-8")); }
  ~ReadBackTest() override { static_cast<void>(std::setlocale(LC_CTYPE, "C")); }

  std::string Render(const std::string& format) const {
    return cli::FindOutputFormat(format).render(InputOf(format, run.Result()), cli::RenderOptions{false});
  }
  /// True when the reader takes `document` for the inventory in that format.
  bool Takes(const std::string& format, const std::string& document) const {
    try {
      FindFormatReader(format).check(document, InputOf(format, run.Result()));
    } catch (const std::exception&) {
      return false;
    }
    return true;
  }
  bool TakesWith(const std::string& format, const std::string& part, const std::string& replacement) const {
    return Takes(format, Changed(Render(format), part, replacement));
  }

  const PluginRun run{kList};
};

TEST_F(ReadBackTest, HasAReaderForEveryFormat) {
  for (const cli::OutputFormat& format : cli::OutputFormats()) {
    EXPECT_NO_THROW(FindFormatReader(format.name)) << format.name;
    EXPECT_TRUE(Takes(format.name, Render(format.name))) << format.name;
  }
}

TEST_F(ReadBackTest, RefusesAFormatThatNothingReads) {
  EXPECT_THROW(FindFormatReader("parchment"), BrokenInvariant);
}

TEST_F(ReadBackTest, OfJsonRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("json", "Root & <hub>", "Root"));
  EXPECT_FALSE(TakesWith("json", "\\ufffd", ""));
  EXPECT_FALSE(TakesWith("json", "Root & <hub>", "Root & <hub>\x7F"));
  EXPECT_FALSE(TakesWith("json", "\"HubDepth\": 0", "\"HubDepth\": 1"));
  EXPECT_FALSE(TakesWith("json", "\"HubDepth\": 0", "\"HubDepth\": \"0\""));
  EXPECT_FALSE(TakesWith("json", "\"HubDepth\"", "\"Hubdepth\""));
  EXPECT_FALSE(TakesWith("json", "No device connected", "Device connected"));
  EXPECT_FALSE(TakesWith("json", "usbinfo.inventory/2", "usbinfo.inventory/1"));
  EXPECT_FALSE(Takes("json", Render("json") + "}"));
}

TEST_F(ReadBackTest, OfPoliciesRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("usbguard", "Root & <hub>", "Root"));
  EXPECT_FALSE(TakesWith("usbguard", "\\xff", ""));
  EXPECT_FALSE(TakesWith("usbguard", "with-interface 03:01:02", "with-interface 03:01:01"));
  EXPECT_FALSE(TakesWith("usbguard", "allow id", "block id"));
  EXPECT_FALSE(Takes("usbguard", Render("usbguard") + "allow\n"));
  EXPECT_FALSE(Takes("usbguard", Render("usbguard") + "bogus"));
}

TEST_F(ReadBackTest, OfMetricsRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("prometheus", "\\\\xff", ""));
  EXPECT_FALSE(TakesWith("prometheus", "\\\\xff", "\\\\xfe"));
  EXPECT_FALSE(TakesWith("prometheus", "{kind=\"hub\"} 0", "{kind=\"hub\"} 1"));
  EXPECT_FALSE(TakesWith("prometheus", "usbinfo_devices{kind=\"hub\"} 0\n", ""));
  EXPECT_FALSE(TakesWith("prometheus", "{state=\"free\"} 1", "{state=\"free\"} 2"));
  EXPECT_FALSE(TakesWith("prometheus", "vid=\"0627\"", "vid=\"0628\""));
  EXPECT_FALSE(TakesWith("prometheus", "place=\"1-2\"", "place=\"\""));
  EXPECT_FALSE(TakesWith("prometheus", "usbinfo_devices_omitted 0", "usbinfo_devices_omitted 1"));
  EXPECT_FALSE(TakesWith("prometheus", "# TYPE usbinfo_devices gauge", "# TYPE usbinfo_devices counter"));
  EXPECT_FALSE(TakesWith("prometheus", "# HELP usbinfo_devices ", "# "));
  EXPECT_FALSE(Takes("prometheus", Render("prometheus") + "usbinfo_devices_omitted 0\n"));
  EXPECT_FALSE(Takes("prometheus", Render("prometheus") + Render("prometheus")));
}

TEST_F(ReadBackTest, OfXmlRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("cimxml", "Root &amp; &lt;hub&gt;", "Root"));
  EXPECT_FALSE(TakesWith("cimxml", "Root &amp;", "Root &"));
  EXPECT_FALSE(TakesWith("cimxml", "Root &amp;", "Root \xC2\x85&amp;"));
  EXPECT_FALSE(TakesWith("cimxml", "TYPE=\"uint16\"", "TYPE=\"uint8\""));
  EXPECT_FALSE(TakesWith("cimxml", "NAME=\"HubDepth\"", "NAME=\"HubHeight\""));
  EXPECT_FALSE(TakesWith("cimxml", "<KEYVALUE VALUETYPE=\"string\"", "<KEYVALUE VALUETYPE=\"numeric\""));
  EXPECT_FALSE(TakesWith("cimxml", "<VALUE>No device connected</VALUE>", ""));
  EXPECT_FALSE(TakesWith("cimxml", "<DECLARATION>", "<DECLARATION VERSION=\"1\">"));
  EXPECT_FALSE(Takes("cimxml", "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.4\"/>"));
}

TEST_F(ReadBackTest, OfJsonLinesRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("jsonl", "\"HubDepth\":0", "\"HubDepth\":1"));
  EXPECT_FALSE(TakesWith("jsonl", "\"class\":\"KALDO_USBPort\"", "\"class\":\"KALDO_USBHub\""));
  EXPECT_FALSE(TakesWith("jsonl", "KALDO_USBController.", "KALDO_USBHub."));
  EXPECT_FALSE(TakesWith("jsonl", "\"host\":\"", "\"host\":\"x"));
  EXPECT_FALSE(TakesWith("jsonl", "}\n", "}"));
  EXPECT_FALSE(Takes("jsonl", Render("jsonl") + "{}\n"));
}

TEST_F(ReadBackTest, OfMofRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("mof", "Root & <hub>", "Root"));
  EXPECT_FALSE(TakesWith("mof", "Root & <hub>\"", "Root & <hub>"));
  EXPECT_FALSE(TakesWith("mof", "Root & <hub>", "Root \x1B& <hub>"));
  EXPECT_FALSE(TakesWith("mof", "HubDepth = 0", "HubDepth = 1"));
  EXPECT_FALSE(TakesWith("mof", "HubDepth = 0", "HubDepth = \"0\""));
  EXPECT_FALSE(TakesWith("mof", "{\"No device connected\"}", "\"No device connected\""));
  EXPECT_FALSE(TakesWith("mof", "/root/cimv2:", ""));
  EXPECT_FALSE(TakesWith("mof", "instance of KALDO_USBHub", "instance of KALDO_USBPort"));
  EXPECT_FALSE(Takes("mof", Render("mof") + "instance of KALDO_USBHub {};"));
}

TEST_F(ReadBackTest, OfTheGraphRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("dot", "Root &amp; <hub>", "Root"));
  EXPECT_FALSE(TakesWith("dot", "Root &amp; <hub>", "Root & <hub>"));
  EXPECT_FALSE(TakesWith("dot", "Root &amp; <hub>", "Root &amp; <hub>\\N"));
  EXPECT_FALSE(TakesWith("dot", "Root &amp; <hub>", "Root &amp; <hub>\x1B"));
  EXPECT_FALSE(TakesWith("dot", "Root &amp; <hub>\"", "Root &amp; <hub>\", label=\"\""));
  EXPECT_FALSE(TakesWith("dot", "0000:0000", "0000:0001"));
  EXPECT_FALSE(TakesWith("dot", "port free", "port used"));
  EXPECT_FALSE(TakesWith("dot", "  n0 -> n1;\n", ""));
  EXPECT_FALSE(TakesWith("dot", "  n0 -> n1;\n", "  n0 -> n1;\n  n0 -> n1;\n"));
  EXPECT_FALSE(TakesWith("dot", "  n0 -> n1;", "  n0 -> n2;"));
  EXPECT_FALSE(Takes("dot", Render("dot") + "}\n"));
}

TEST_F(ReadBackTest, OfThePageRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("html", "<span data-find=\"\">Root &amp; &lt;hub&gt;", "<span data-find=\"\">Root"));
  EXPECT_FALSE(TakesWith("html", "Root &amp; &lt;hub&gt;", "Root & &lt;hub&gt;"));
  EXPECT_FALSE(TakesWith("html", "Root &amp; &lt;hub&gt;", "Root &amp; <hub/>"));
  EXPECT_FALSE(TakesWith("html", "Root &amp; &lt;hub&gt;", "Root &amp; &lt;hub&gt;\xE2\x80\xAE"));
  EXPECT_FALSE(TakesWith("html", ">Bus 01  Device   2<", ">Bus 01  Device   3<"));
  EXPECT_FALSE(TakesWith("html", "class=\"item device\"", "class=\"item hub\""));
  EXPECT_FALSE(TakesWith("html", "socket free", "socket used"));
  EXPECT_FALSE(TakesWith("html", "<h1>", "<h1 onclick=\"x()\">"));
  EXPECT_FALSE(TakesWith("html", "href=\"#i", "href=\"//i"));
  EXPECT_FALSE(TakesWith("html", "href=\"#i", "href=\"#kind-hub\" class=\"i"));
  EXPECT_FALSE(TakesWith("html", "id=\"kind-hub\"", "id=\"kind-mouse\""));
  EXPECT_FALSE(TakesWith("html", "</h1>", "</h1><svg><use href=\"#i0\"/></svg>"));
  EXPECT_FALSE(TakesWith("html", "</h1>", "</h1><svg><image/></svg>"));
  EXPECT_FALSE(TakesWith("html", "</h1>", "</h1><img/>"));
  EXPECT_FALSE(TakesWith("html", "</h1>", "</h1><script></script>"));
  EXPECT_FALSE(Takes("html", Changed(Render("html"), "<!DOCTYPE html>", "")));
}

TEST_F(ReadBackTest, OfThePagesTableRefusesWhatDiffers) {
  const std::string page = Render("html");
  const std::size_t begin = page.find("<tbody>");
  const std::size_t end = page.find("</tbody>");
  ASSERT_NE(end, std::string::npos);
  const std::string table = page.substr(begin, end - begin);
  const std::string row = table.substr(table.find("<tr>"));
  const auto takes = [&](const std::string& part, const std::string& replacement) {
    return Takes("html", Changed(page, table, Changed(table, part, replacement)));
  };
  EXPECT_TRUE(takes("<tbody>", "<tbody>"));
  EXPECT_FALSE(takes("a\\xffz", "axz"));
  EXPECT_FALSE(takes("0627:0001", "0627:0002"));
  EXPECT_FALSE(takes("12 Mbit/s", "480 Mbit/s"));
  EXPECT_FALSE(takes("href=\"#i", "href=\"#i0\" class=\"x"));
  EXPECT_FALSE(takes("class=\"serial\"", "class=\"vendor\""));
  EXPECT_FALSE(takes(row, ""));
  EXPECT_FALSE(takes(row, row + row));
}

TEST_F(ReadBackTest, OfTheTreeRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("tree", "1 controller", "2 controllers"));
  EXPECT_FALSE(TakesWith("tree", "(1 free)", "(2 free)"));
  EXPECT_FALSE(TakesWith("tree", "Port 00", "Port 00\n"));
  EXPECT_FALSE(TakesWith("tree", "Port 00", std::string(1200, 'x')));
  for (const char* mark :
       {"\x1B", "\t", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "\xE2\x80\xA8", "\xE2\x80\x8B", "\xFF"}) {
    EXPECT_FALSE(TakesWith("tree", "Port 00", std::string(mark) + "Port 00")) << testing::PrintToString(mark);
  }
  EXPECT_TRUE(TakesWith("tree", "Port 00", "P\xC3\xB6rt 00"));
  static_cast<void>(std::setlocale(LC_CTYPE, "C"));
  EXPECT_FALSE(TakesWith("tree", "Port 00", "P\xC3\xB6rt 00"));
}

TEST_F(ReadBackTest, OfTheTableRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("table", "KIND", "KINDS"));
  EXPECT_FALSE(TakesWith("table", "0627:0001", "0627:0002"));
  EXPECT_FALSE(Takes("table", Render("table") + "\n"));
  EXPECT_FALSE(TakesWith("table", "Bus 01", std::string(2200, 'x')));
  for (const char* mark : {"\x1B", "\t", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "\xE2\x80\x8B", "\xFF"}) {
    EXPECT_FALSE(TakesWith("table", "Bus 01", std::string("Bus ") + mark)) << testing::PrintToString(mark);
  }
  static_cast<void>(std::setlocale(LC_CTYPE, "C"));
  EXPECT_FALSE(TakesWith("table", "Bus 01", "B\xC3\xBCs 01"));
}

TEST_F(ReadBackTest, OfTheTablesOfClassesRefusesWhatDiffers) {
  cli::RenderOptions options{false};
  options.showsClasses = true;
  const std::string tables = cli::FindOutputFormat("table").render(run.Result(), options);
  EXPECT_NO_THROW(CheckClassTables(tables, run.Result()));
  const std::pair<const char*, const char*> changes[] = {
      {"KALDO_USBPort: 2 instances", "KALDO_USBPort: 3 instances"},
      {"KALDO_USBDevice: 1 instance", "KALDO_USBDevice: 1 instances"},
      {"BUS HUB PORT", "BUS PORT"},
      {"0000:0000", "0000:0001"},
      {"12 Mbit/s", "480 Mbit/s"},
      {" free\n", " in use\n"},
      {" free\n", " free\n\n"},
      {"\n\n", "\n"},
      {"Root &", "Root \x1B"}};
  for (const auto& [part, replacement] : changes) {
    EXPECT_THROW(CheckClassTables(Changed(tables, part, replacement), run.Result()), BrokenInvariant) << part;
  }
}

TEST_F(ReadBackTest, OfCsvRefusesWhatDiffers) {
  EXPECT_FALSE(TakesWith("csv", "place,kind", "kind,place"));
  EXPECT_FALSE(TakesWith("csv", "0627:0001", "0627:0002"));
  EXPECT_FALSE(TakesWith("csv", "\r\n", "\n"));
  EXPECT_FALSE(TakesWith("csv", "a\\xffz", "=a\\xffz"));
  EXPECT_FALSE(TakesWith("csv", "a\\xffz", "a\\xffz,"));
  EXPECT_FALSE(TakesWith("csv", "a\\xffz", "\"a\\xffz"));
  EXPECT_FALSE(Takes("csv", Render("csv") + "\r\n"));
}

TEST(SecondReading, RefusesTheInventoryOfAnotherList) {
  const PluginRun run(kList);
  EXPECT_NO_THROW(CheckInventory(run, kList));
  EXPECT_THROW(CheckInventory(run, Changed(kList, "MxCh= 2", "MxCh= 3")), BrokenInvariant);
  EXPECT_THROW(CheckInventory(run, Changed(kList, "Port=01", "Port=00")), BrokenInvariant);
  EXPECT_THROW(CheckInventory(run, Changed(kList, "Dev#=  2", "Dev#=  3")), BrokenInvariant);
  EXPECT_THROW(CheckInventory(run, kList + "Q\n"), BrokenInvariant);
}

TEST(SecondReading, RefusesAnInventoryOfWhichOnePropertyDiffers) {
  const std::string list =
      "D:  Ver= 2.00 Cls=ff(vend.) Sub=01 Prot=02 MxPS= 8 #Cfgs=  1\n"
      "P:  Vendor=046d ProdID=c077 Rev=72.00\n"
      "S:  Manufacturer=maker\n"
      "S:  SerialNumber=serial\n" +
      kList;
  const PluginRun run(list);
  EXPECT_NO_THROW(CheckInventory(run, list));
  for (const std::string field : {"Ver= 2", "Cls=f", "Sub=0", "Prot=0", "#Cfgs=  1", "Vendor=0", "ProdID=c",
                                  "Manufacturer=m", "SerialNumber=s", "Product=R", "Spd=4", "Spd=1"}) {
    const std::string other = field.substr(0, field.size() - 1) + "7";
    EXPECT_THROW(CheckInventory(run, Changed(list, field, other)), BrokenInvariant) << field;
  }
}

TEST(Utf8Model, ReplacesTheLongestPiecesOfBrokenCharacters) {
  const std::string bad = "\xEF\xBF\xBD";
  EXPECT_EQ(ReplaceBrokenUtf8("\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"),
            "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(ReplaceBrokenUtf8("a\xF0\x9F\x98z"), "a" + bad + "z");
  EXPECT_EQ(ReplaceBrokenUtf8("\xED\xA0\x80"), bad + bad + bad);
  EXPECT_EQ(ReplaceBrokenUtf8("\xC0\x80\xF5\xE0\x9F"), bad + bad + bad + bad + bad);
  EXPECT_EQ(ReplaceBrokenUtf8("\xF4\x90\xE2\x82"), bad + bad + bad);
  std::vector<std::uint32_t> characters;
  const auto take = [&characters](std::uint32_t character) { characters.push_back(character); };
  ForEachCharacter("z\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", take);
  EXPECT_THAT(characters, testing::ElementsAre(0x7A, 0xE4, 0x20AC, 0x1F600));
  EXPECT_THROW(ForEachCharacter("\xC3", take), BrokenInvariant);
}

TEST(Utf8Model, SpellsWhatIsNotShown) {
  EXPECT_EQ(AsShown("a\tb\x7F\xC2\x9B\xE2\x80\xAE\xE2\x80\xA9\xEF\xBF\xBF\xFFz\xC3\xA4\\\n"),
            R"(a\x09b\x7f\xc2\x9b\xe2\x80\xae\xe2\x80\xa9\xef\xbf\xbf\xffz)"
            "\xC3\xA4"
            R"(\\\n)");
  const std::pair<const char*, const char*> invisible[] = {{"\xC2\xAD", R"(\xc2\xad)"},
                                                           {"\xE2\x80\x8B", R"(\xe2\x80\x8b)"},
                                                           {"\xE2\x81\xA5", R"(\xe2\x81\xa5)"},
                                                           {"\xE3\x85\xA4", R"(\xe3\x85\xa4)"},
                                                           {"\xF3\xA0\x80\xA0", R"(\xf3\xa0\x80\xa0)"}};
  for (const auto& [bytes, shown] : invisible) EXPECT_EQ(AsShown(bytes), shown);
}

TEST(Utf8Model, SpellsWhatTheCharactersBeforeItMakeBad) {
  const std::string mark = "\xCC\x81";
  const std::string selector = "\xEF\xB8\x8F";
  const std::string heart = "\xE2\x9D\xA4";
  EXPECT_EQ(AsShown("a" + mark + mark + mark + mark + mark + mark + "b" + mark),
            "a" + mark + mark + mark + mark + R"(\xcc\x81\xcc\x81b)" + mark);
  EXPECT_EQ(AsShown(heart + selector + selector + "a" + selector + "\xFF" + selector),
            heart + selector + R"(\xef\xb8\x8fa\xef\xb8\x8f\xff\xef\xb8\x8f)");
}

TEST(PathModel, TakesPathsApart) {
  const ReadPath path = ParsePath("Class.A=\"a.=,\\\"\\\\\",B=\"\"");
  EXPECT_EQ(path.className, "Class");
  EXPECT_THAT(path.keys, testing::ElementsAre(testing::Pair("A", "a.=,\"\\"), testing::Pair("B", "")));
  for (const char* const broken : {"Class", "Class.A", "Class.A=a", "Class.A=\"a", "Class.A=\"a\\",
                                   "Class.A=\"a\"x", "Class.A=\"a\".B=\"b\""}) {
    EXPECT_THROW(ParsePath(broken), BrokenInvariant) << broken;
  }
}

TEST(XmlModel, ReplacesWhatXmlCannotHold) {
  EXPECT_EQ(AsXmlHoldsIt("a\t\r\x1B\x7F\xEF\xBF\xBEz"), "a\t\r\xEF\xBF\xBD\x7F\xEF\xBF\xBDz");
}

}  // namespace
}  // namespace usbinfo_test
