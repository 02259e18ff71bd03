// The table of readers; see the header.
#include "tests/fuzz/ReadBack.h"

#include <algorithm>
#include <clocale>

#include "cli/OutputFormat.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/CimXmlReader.h"
#include "tests/fuzz/DotReader.h"
#include "tests/fuzz/HtmlReader.h"
#include "tests/fuzz/JsonReader.h"
#include "tests/fuzz/MofReader.h"
#include "tests/fuzz/TreeReader.h"

namespace usbinfo_test {

const FormatReader& FindFormatReader(const std::string& format) {
  static const std::vector<FormatReader> readers = {
      {"tree", {"C", "C.UTF-8"}, CheckTree},  {"json", {"C.UTF-8"}, CheckJson},
      {"jsonl", {"C.UTF-8"}, CheckJsonLines}, {"cimxml", {"C.UTF-8"}, CheckCimXml},
      {"mof", {"C.UTF-8"}, CheckMof},         {"dot", {"C.UTF-8"}, CheckDot},
      {"html", {"C.UTF-8"}, CheckHtml},
  };
  const auto found = std::find_if(readers.begin(), readers.end(),
                                  [&format](const FormatReader& reader) { return reader.format == format; });
  if (found == readers.end()) throw BrokenInvariant("nothing reads the format " + format + " back");
  return *found;
}

void CheckEveryFormat(const cli::Inventory& inventory) {
  // Not a terminal, so that nothing is cut at its width.
  const cli::RenderOptions options{false};
  for (const cli::OutputFormat& format : cli::OutputFormats()) {
    const FormatReader& reader = FindFormatReader(format.name);
    if (inventory.IsEmpty() && !format.isMachineReadable) continue;
    for (const char* locale : reader.locales) {
      Require(std::setlocale(LC_CTYPE, locale) != nullptr, "the machine has the locale");
      reader.check(format.render(inventory, options), inventory);
    }
  }
  static_cast<void>(std::setlocale(LC_CTYPE, "C"));
}

}  // namespace usbinfo_test
