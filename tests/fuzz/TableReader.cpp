#include "tests/fuzz/TableReader.h"

#include <cstdio>
#include <map>
#include <sstream>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/Utf8.h"

namespace usbinfo_test {

namespace {

/// Takes a text apart line by line.
class LineReader {
 public:
  explicit LineReader(const std::string& text) : fText(text) {}

  bool IsAtEnd() const { return fAt == fText.size(); }
  std::string Next() {
    const std::size_t end = fText.find('\n', fAt);
    Require(end != std::string::npos, "the table ends with a newline");
    const std::string line = fText.substr(fAt, end - fAt);
    fAt = end + 1;
    return line;
  }

 private:
  const std::string& fText;
  std::size_t fAt = 0;
};

/// The titles of a class's columns, a blank between each two.
const std::string& TitlesOf(const std::string& className) {
  static const std::map<std::string, std::string> kTitles = {
      {"KALDO_USBController", "BUS CONTROLLER"},
      {"KALDO_USBHub", "BUS DEV ID PORTS PRODUCT MAKER SERIAL"},
      {"KALDO_USBPort", "BUS HUB PORT SPEED STATUS"},
      {"KALDO_USBDevice", "BUS DEV ID SPEED PRODUCT MAKER SERIAL"},
      {"KALDO_USBPortOnHub", "BUS HUB PORT NAME OF THE HUB"},
      {"KALDO_USBConnection", "BUS HUB PORT DEV PLUGGED IN"}};
  return kTitles.at(className);
}

std::string WithSingleBlanks(const std::string& line) {
  std::istringstream words(line);
  std::string text;
  for (std::string word; words >> word;) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string IdOf(const cli::InstanceView& item) {
  char id[16];
  static_cast<void>(std::snprintf(id, sizeof id, "%04x:%04x", static_cast<unsigned>(item.Number("VendorID")),
                                  static_cast<unsigned>(item.Number("USBDeviceID"))));
  return id;
}

/// What a row must hold between blanks, whatever stands in its other cells.
std::string NumbersOf(const std::string& className, const cli::InstanceView& item) {
  if (className == "KALDO_USBHub") return IdOf(item);
  if (className != "KALDO_USBDevice") return std::string();
  static const std::map<std::uint64_t, std::string> kSpeeds = {
      {1, " 1.5 Mbit/s"}, {2, " 12 Mbit/s"}, {3, " 480 Mbit/s"}, {4, " 5+ Gbit/s"}};
  const auto speed = kSpeeds.find(item.Number("Speed"));
  return IdOf(item) + (speed == kSpeeds.end() ? std::string() : speed->second);
}

void CheckRow(const std::string& row, const std::string& className, const cli::InstanceView& item) {
  const std::string spaced = " " + WithSingleBlanks(row) + " ";
  const std::string numbers = NumbersOf(className, item);
  Require(numbers.empty() || spaced.find(" " + numbers + " ") != std::string::npos,
          "a row of the table tells the numbers of its instance");
  if (className != "KALDO_USBPort") return;
  const std::string status =
      item.Text("StatusDescriptions") == "{No device connected}" ? " free " : " in use ";
  Require(spaced.size() >= status.size() &&
              spaced.compare(spaced.size() - status.size(), status.size(), status) == 0,
          "a port's row ends with its state");
}

void CheckSection(LineReader& lines, const cli::ClassView& view) {
  const std::size_t count = view.instances.size();
  RequireEqual(lines.Next(),
               view.schema.name + ": " + std::to_string(count) + (count == 1 ? " instance" : " instances"),
               "a section's heading");
  RequireEqual(WithSingleBlanks(lines.Next()), TitlesOf(view.schema.name), "a section's titles");
  for (const cli::InstanceView& item : view.instances) CheckRow(lines.Next(), view.schema.name, item);
}

}  // namespace

void CheckTable(const std::string& document, const cli::Inventory& inventory) {
  RequireFitForCharacterSet(document);
  LineReader lines(document);
  bool isFirst = true;
  for (const cli::ClassView& view : inventory.Classes()) {
    if (view.instances.empty()) continue;
    if (!isFirst) RequireEqual(lines.Next(), "", "the line between two sections");
    isFirst = false;
    CheckSection(lines, view);
  }
  Require(lines.IsAtEnd(), "nothing follows the last section");
}

}  // namespace usbinfo_test
