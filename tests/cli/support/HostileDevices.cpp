#include "tests/cli/support/HostileDevices.h"

#include <algorithm>
#include <functional>

#include "cli/text/MapCharacters.h"

using namespace std::string_literals;

namespace usbinfo_test {

namespace {

// The replacement character, U+FFFD.
const std::string kBad = "\xEF\xBF\xBD";

std::string TwoDigits(std::size_t number) {
  const std::string digits = std::to_string(number);
  return digits.size() < 2 ? "0" + digits : digits;
}

std::string RootHub(std::size_t ports) {
  return "T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= " + std::to_string(ports) +
         "\nD:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 #Cfgs=  1\n"
         "P:  Vendor=1d6b ProdID=0002 Rev= 6.01\n"
         "S:  Product=Root\n"
         "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n"
         "E:  Ad=81(I) Atr=03(Int.) MxPS=   4 Ivl=256ms\n\n";
}

std::string RecordOf(std::size_t port, const std::string& text) {
  const std::string number = std::to_string(port + 2);
  return "T:  Bus=01 Lev=01 Prnt=01 Port=" + TwoDigits(port) +
         " Cnt=01 Dev#=" + std::string(3 - number.size(), ' ') + number +
         " Spd=12   MxCh= 0\n"
         "D:  Ver= 2.00 Cls=00(>ifc ) Sub=00 Prot=00 MxPS= 8 #Cfgs=  1\n"
         "P:  Vendor=0627 ProdID=0001 Rev= 0.00\n"
         "S:  Manufacturer=" +
         text + "\nS:  Product=" + text + "\nS:  SerialNumber=" + text +
         "\nI:* If#= 0 Alt= 0 #EPs= 1 Cls=03(HID  ) Sub=01 Prot=01 Driver=usbhid\n"
         "E:  Ad=81(I) Atr=03(Int.) MxPS=   8 Ivl=10ms\n\n";
}

std::string Machine(const std::function<std::string(const HostileString&)>& text) {
  std::string list = RootHub(HostileStrings().size());
  std::size_t port = 0;
  for (const HostileString& hostile : HostileStrings()) list += RecordOf(port++, text(hostile));
  return list;
}

std::string Repeated(const std::string& text, std::size_t times) {
  std::string repeated;
  for (std::size_t time = 0; time < times; ++time) repeated += text;
  return repeated;
}

/// A string that every format can hold.
HostileString Same(const char* name, const std::string& bytes) {
  return {name, bytes, bytes, bytes};
}

}  // namespace

const std::vector<HostileString>& HostileStrings() {
  static const std::vector<HostileString> strings = {
      {"Colour", "\x1B[31mred\x1B[0m", "\x1B[31mred\x1B[0m", kBad + "[31mred" + kBad + "[0m"},
      {"Title", "\x1B]0;title\x07", "\x1B]0;title\x07", kBad + "]0;title" + kBad},
      {"Backspaces", "good\x08\x08\x08\x08" + "evil"s, "good\x08\x08\x08\x08" + "evil"s,
       "good" + kBad + kBad + kBad + kBad + "evil"},
      Same("CarriageReturn", "good\revil"),
      Same("Tab", "a\tb"),
      Same("Delete", "a\x7F" + "b"s),
      {"Zero", "a\0b"s, "a\0b"s, "a" + kBad + "b"},
      Same("SecondControlSet", "\xC2\x9B" + "31mred\xC2\x85"s),
      {"LoneControlByte", "\x9B" + "31mred"s, kBad + "31mred", kBad + "31mred"},
      {"NoUtf8", "\xFF\xFE\xC0\x80", kBad + kBad + kBad + kBad, kBad + kBad + kBad + kBad},
      {"Surrogate", "\xED\xA0\x80", kBad + kBad + kBad, kBad + kBad + kBad},
      {"NoCharacters", "\xEF\xBF\xBE\xEF\xBF\xBF", "\xEF\xBF\xBE\xEF\xBF\xBF", kBad + kBad},
      Same("DirectionMarks", "\xE2\x80\xAEtxt.exe\xE2\x80\xAC\xE2\x81\xA6"),
      {"MarkAfterABrokenByte", "\xF0\xE2\x80\xAEtxt.exe", kBad + "\xE2\x80\xAEtxt.exe",
       kBad + "\xE2\x80\xAEtxt.exe"},
      Same("ZeroWidth", "in\xE2\x80\x8Bvisible\xE2\x80\x8D\xC2\xAD\xE3\x85\xA4"),
      Same("Tags", "a\xF3\xA0\x81\x81\xF3\xA0\x81\xBF"),
      Same("VariationSelectors", "a\xEF\xB8\x8F\xF3\xA0\x84\x80"),
      Same("ManyMarks", "a" + Repeated("\xCC\x8D", 200)),
      Same("LineSeparators", "a\xE2\x80\xA8" + "b\xE2\x80\xA9"s),
      Same("Markup", "</VALUE></PROPERTY><PROPERTY NAME=\"x\">"),
      Same("Entities", "&lt;&amp;&#27;&#x9b;\"'"),
      Same("SectionEnd", "]]><![CDATA["),
      Same("Comment", "--><!--"),
      Same("Json", "\"}],\"KALDO_USBHub\":[{\"a\":\"\\"),
      Same("Escapes", "\\n\\x1b\\u001b\\\\"),
      Same("Mof", "\"; }; instance of KALDO_USBHub { DeviceID = \"forged\"; };"),
      Same("Shell", "$(id) `id` ${IFS} ;|& 'x' >y #"),
      Same("LineOfTheList", "T:  Bus=09 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  9 Spd=480  MxCh= 4"),
      Same("LinesOfTheLog", "\\nerror: forged\\n{\"severity\":0,\"text\":\"forged\"}"),
      Same("Path", "\",SystemName=\"other"),
      Same("Tree", "|-Port 00 `-Root hub"),
      Same("Format", "%s%n%100000d{}{0}"),
  };
  return strings;
}

std::string HostileDeviceList() {
  return Machine([](const HostileString& hostile) { return hostile.bytes; });
}

std::string HarmlessDeviceList() {
  return Machine([](const HostileString&) { return "harmless"; });
}

std::string DeviceListWith(const std::string& deviceString) {
  return RootHub(1) + RecordOf(0, deviceString);
}

std::string AsUtf8(const std::string& text) {
  return cli::MapCharacters(text,
                            [](const cli::Character& character, bool /*isUnprintable*/, std::string& out) {
                              out += character.isValid ? character.bytes : cli::kReplacement;
                            });
}

bool ActsOnTerminal(const std::string& text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if ((byte < 0x20 && byte != '\n') || byte == 0x7F) return true;
    const bool isSecondSet = at > 0 && text[at - 1] == '\xC2' && byte >= 0x80 && byte < 0xA0;
    if (isSecondSet) return true;
  }
  return false;
}

bool HasDirectionMark(const std::string& text) {
  const std::vector<std::string> marks = {"\xD8\x9C",     "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xAA",
                                          "\xE2\x80\xAB", "\xE2\x80\xAC", "\xE2\x80\xAD", "\xE2\x80\xAE",
                                          "\xE2\x81\xA6", "\xE2\x81\xA7", "\xE2\x81\xA8", "\xE2\x81\xA9"};
  return std::any_of(marks.begin(), marks.end(),
                     [&text](const std::string& mark) { return text.find(mark) != std::string::npos; });
}

bool HidesCharacters(const std::string& text) {
  const std::vector<std::string> hidden = {"\xE2\x80\x8B",         "\xE2\x80\x8D", "\xC2\xAD",
                                           "\xE3\x85\xA4",         "\xEF\xB8\x8F", "\xF3\xA0",
                                           Repeated("\xCC\x8D", 5)};
  return std::any_of(hidden.begin(), hidden.end(),
                     [&text](const std::string& part) { return text.find(part) != std::string::npos; });
}

}  // namespace usbinfo_test
