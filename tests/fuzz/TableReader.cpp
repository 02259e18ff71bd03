#include "tests/fuzz/TableReader.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <sstream>
#include <vector>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/LinkModel.h"
#include "tests/fuzz/Utf8.h"

using cli::ClassId;
using cli::PropertyId;

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
const char* TitlesOf(ClassId classId) {
  static const std::map<ClassId, const char*> kTitles = {
      {ClassId::kController, "BUS CONTROLLER"},
      {ClassId::kHub, "BUS DEV ID PORTS PRODUCT MAKER SERIAL"},
      {ClassId::kPort, "BUS HUB PORT SPEED STATUS"},
      {ClassId::kDevice, "BUS DEV ID SPEED PRODUCT MAKER SERIAL"},
      {ClassId::kPortOnHub, "BUS HUB PORT NAME OF THE HUB"},
      {ClassId::kConnection, "BUS HUB PORT DEV PLUGGED IN"}};
  return kTitles.at(classId);
}

std::string WithSingleBlanks(const std::string& line) {
  std::istringstream words(line);
  std::string text;
  for (std::string word; words >> word;) text += (text.empty() ? "" : " ") + word;
  return text;
}

std::string IdOf(const cli::Item& item) {
  char id[16];
  static_cast<void>(std::snprintf(id, sizeof id, "%04x:%04x",
                                  static_cast<unsigned>(item.Number(PropertyId::kVendorID)),
                                  static_cast<unsigned>(item.Number(PropertyId::kUSBDeviceID))));
  return id;
}

/// What a row must hold between blanks, whatever stands in its other cells.
std::string NumbersOf(const cli::Item& item) {
  if (item.Class() == ClassId::kHub) return IdOf(item);
  if (item.Class() != ClassId::kDevice) return std::string();
  static const std::map<std::uint64_t, std::string> kSpeeds = {
      {1, " 1.5 Mbit/s"}, {2, " 12 Mbit/s"}, {3, " 480 Mbit/s"}, {4, " 5+ Gbit/s"}};
  const auto speed = kSpeeds.find(item.Number(PropertyId::kSpeed));
  return IdOf(item) + (speed == kSpeeds.end() ? std::string() : speed->second);
}

void CheckRow(const std::string& row, const cli::Item& item) {
  const std::string spaced = " " + WithSingleBlanks(row) + " ";
  const std::string numbers = NumbersOf(item);
  Require(numbers.empty() || spaced.find(" " + numbers + " ") != std::string::npos,
          "a row of the table shows the numbers of its instance");
  if (item.Class() != ClassId::kPort) return;
  const std::string status =
      item.Text(PropertyId::kStatusDescriptions) == "{No device connected}" ? " free " : " in use ";
  Require(spaced.size() >= status.size() &&
              spaced.compare(spaced.size() - status.size(), status.size(), status) == 0,
          "a port's row ends with its state");
}

void CheckSection(LineReader& lines, const cli::ItemsOfClass& ofClass) {
  const std::size_t count = ofClass.items.size();
  RequireEqual(
      lines.Next(),
      ofClass.schema->name + ": " + std::to_string(count) + (count == 1 ? " instance" : " instances"),
      "a section's heading");
  RequireEqual(WithSingleBlanks(lines.Next()), TitlesOf(ofClass.schema->id), "a section's titles");
  for (const cli::Item& item : ofClass.items) CheckRow(lines.Next(), item);
}

}  // namespace

void CheckClassTables(const std::string& document, const cli::Inventory& inventory) {
  constexpr std::size_t kMostColumns = 7;
  RequireFitForTable(document, kMostColumns);
  LineReader lines(document);
  bool isFirst = true;
  for (const cli::ItemsOfClass& ofClass : inventory.Classes()) {
    if (ofClass.items.empty()) continue;
    if (!isFirst) RequireEqual(lines.Next(), "", "the line between two sections");
    isFirst = false;
    CheckSection(lines, ofClass);
  }
  Require(lines.IsAtEnd(), "nothing follows the last section");
}

void CheckTable(const std::string& document, const cli::Inventory& inventory) {
  constexpr std::size_t kColumns = 8;
  RequireFitForTable(document, kColumns);
  const std::vector<LinkedItem> items = ListedItems(inventory);
  LineReader lines(document);
  RequireEqual(WithSingleBlanks(lines.Next()), "PLACE KIND NAME VENDOR ID SERIAL SPEED DRIVER",
               "the titles of the table");
  std::vector<std::string> rows;
  while (!lines.IsAtEnd()) rows.push_back(" " + WithSingleBlanks(lines.Next()) + " ");
  RequireCount(rows.size(), items.size(), "rows of the table");
  for (const LinkedItem& item : items) {
    const std::string id = " " + item.Id() + " ";
    const auto withId = [&id](const std::string& row) { return row.find(id) != std::string::npos; };
    const auto alike = std::count_if(items.begin(), items.end(),
                                     [&](const LinkedItem& other) { return other.Id() == item.Id(); });
    Require(std::count_if(rows.begin(), rows.end(), withId) >= alike, "the table has a row per device");
  }
}

}  // namespace usbinfo_test
