#include "tests/fuzz/ReadBack.h"

#include <algorithm>
#include <clocale>
#include <regex>

#include "cli/format/OutputFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/UsbIds.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/CimXmlReader.h"
#include "tests/fuzz/CsvReader.h"
#include "tests/fuzz/DotReader.h"
#include "tests/fuzz/HtmlReader.h"
#include "tests/fuzz/JsonReader.h"
#include "tests/fuzz/MofReader.h"
#include "tests/fuzz/PolicyReader.h"
#include "tests/fuzz/PrometheusReader.h"
#include "tests/fuzz/TableReader.h"
#include "tests/fuzz/TreeReader.h"
#include "tests/fuzz/Utf8.h"

namespace usbinfo_test {

namespace {

/// `text` without what sets a colour; other escapes stay.
std::string WithoutColors(const std::string& text) {
  static const std::regex kColor("\x1B\\[[0-9]+m");
  return std::regex_replace(text, kColor, "");
}

void CheckTablesOfClasses(const cli::Inventory& inventory) {
  cli::RenderOptions options{false};
  options.showsClasses = true;
  CheckClassTables(cli::FindOutputFormat("table").render(inventory, options), inventory);
}

/// Colours add nothing but themselves; details and names add lines and cells that are as harmless as the
/// rest.
void CheckExtras(const cli::OutputFormat& format, const cli::Inventory& inventory) {
  cli::RenderOptions options{false};
  const std::string plain = format.render(inventory, options);
  options.color = cli::Color::kAlways;
  RequireEqual(WithoutColors(format.render(inventory, options)), plain, "a format without its colours");
  const cli::UsbIds names("0000  \x1B[2Jv\xFF\n\t0000  p\x9B\n1d6b  \xE2\x80\xAE\n");
  options.names = &names;
  options.isVerbose = true;
  RequireFitForTerminal(WithoutColors(format.render(inventory, options)), false);
}

void CheckList(const std::string& document, const cli::Inventory& inventory) {
  RequireEqual(document, inventory.DeviceList().value_or(""), "the device list");
}

}  // namespace

const FormatReader& FindFormatReader(const std::string& format) {
  static const std::vector<FormatReader> readers = {
      {"tree", {"C", "C.UTF-8"}, CheckTree},   {"json", {"C.UTF-8"}, CheckJson},
      {"jsonl", {"C.UTF-8"}, CheckJsonLines},  {"cimxml", {"C.UTF-8"}, CheckCimXml},
      {"mof", {"C.UTF-8"}, CheckMof},          {"dot", {"C.UTF-8"}, CheckDot},
      {"html", {"C.UTF-8"}, CheckHtml},        {"csv", {"C.UTF-8"}, CheckCsv},
      {"table", {"C", "C.UTF-8"}, CheckTable}, {"list", {"C.UTF-8"}, CheckList},
      {"usbguard", {"C.UTF-8"}, CheckPolicy},  {"prometheus", {"C.UTF-8"}, CheckPrometheus},
  };
  const auto found = std::find_if(readers.begin(), readers.end(),
                                  [&format](const FormatReader& reader) { return reader.format == format; });
  if (found == readers.end()) throw BrokenInvariant("nothing reads the format " + format + " back");
  return *found;
}

cli::Inventory InputOf(const std::string& format, const cli::Inventory& inventory) {
  return format == "usbguard" || format == "prometheus" ? WithFacts(inventory) : inventory;
}

void CheckEveryFormat(const cli::Inventory& result) {
  // Not a terminal, so that nothing is cut at its width.
  const cli::RenderOptions options{false};
  for (const cli::OutputFormat& format : cli::OutputFormats()) {
    const FormatReader& reader = FindFormatReader(format.name);
    const cli::Inventory inventory = InputOf(format.name, result);
    if (format.name == "usbguard" && !HasAllFacts(inventory)) continue;
    if (inventory.IsEmpty() && !format.isMachineReadable) continue;
    for (const char* locale : reader.locales) {
      Require(std::setlocale(LC_CTYPE, locale) != nullptr, "the machine has the locale");
      reader.check(format.render(inventory, options), inventory);
      if (!format.isMachineReadable) CheckExtras(format, inventory);
      if (format.name == "table") CheckTablesOfClasses(inventory);
    }
  }
  static_cast<void>(std::setlocale(LC_CTYPE, "C"));
}

void CheckHarmless(const cli::Inventory& inventory) {
  cli::RenderOptions options{false};
  options.color = cli::Color::kNever;
  for (const bool isVerbose : {false, true}) {
    options.isVerbose = isVerbose;
    for (const cli::OutputFormat& format : cli::OutputFormats()) {
      if (format.name != "csv" && format.isMachineReadable) continue;
      std::string text = format.render(inventory, options);
      if (format.name == "csv") text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
      RequireFitForTerminal(text, false);
    }
  }
}

}  // namespace usbinfo_test
