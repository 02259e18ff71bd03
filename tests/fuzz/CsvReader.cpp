#include "tests/fuzz/CsvReader.h"

#include <set>
#include <string_view>
#include <vector>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/LinkModel.h"
#include "tests/fuzz/Utf8.h"

using cli::PropertyId;

namespace usbinfo_test {

namespace {

using Line = std::vector<std::string>;

class CsvParser {
 public:
  explicit CsvParser(std::string_view text) : fText(text) {}

  std::vector<Line> Parse() {
    std::vector<Line> lines;
    while (!fText.empty()) lines.push_back(NextLine());
    return lines;
  }

 private:
  bool Takes(std::string_view token) {
    if (fText.substr(0, token.size()) != token) return false;
    fText.remove_prefix(token.size());
    return true;
  }

  Line NextLine() {
    Line line = {Cell()};
    while (Takes(",")) line.push_back(Cell());
    Require(Takes("\r\n"), "a line of CSV ends with a carriage return and a newline");
    return line;
  }

  std::string Cell() {
    if (Takes("\"")) return Quoted();
    std::string cell;
    while (!fText.empty() && std::string_view("\",\r\n").find(fText.front()) == std::string_view::npos) {
      cell += Advance();
    }
    return cell;
  }

  std::string Quoted() {
    std::string cell;
    while (!Takes("\"")) {
      Require(!fText.empty(), "a quoted cell of CSV ends");
      cell += Advance();
    }
    // A doubled quote stands for one, and the cell goes on.
    return Takes("\"") ? cell + '"' + Quoted() : cell;
  }

  char Advance() {
    const char c = fText.front();
    fText.remove_prefix(1);
    return c;
  }

  std::string_view fText;
};

/// What spreadsheets take for the beginning of a formula.
bool BeginsFormula(const std::string& cell) {
  return cell.find_first_of("=+-@\t\r") == 0;
}

std::string CellOf(const std::string& sent) {
  if (sent == "Not Available") return std::string();
  return (BeginsFormula(sent) ? "'" : "") + AsShown(sent);
}

/// Name, vendor, id and serial number.
Line ExpectedLine(const LinkedItem& item) {
  const auto cell = [&item](PropertyId property) { return CellOf(item.item->String(property)); };
  return {cell(PropertyId::kDescription), cell(PropertyId::kManufacturer), item.Id(),
          cell(PropertyId::kSerialNumber)};
}

}  // namespace

void CheckCsv(const std::string& document, const cli::Inventory& inventory) {
  const std::vector<Line> lines = CsvParser(document).Parse();
  const Line titles = {"place", "kind", "name", "vendor", "identifier", "serial", "speed", "driver"};
  Require(!lines.empty() && lines.front() == titles, "the titles of CSV");
  std::multiset<Line> found;
  for (std::size_t line = 1; line < lines.size(); ++line) {
    RequireCount(lines[line].size(), titles.size(), "cells of a line of CSV");
    for (const std::string& cell : lines[line]) {
      RequireFitForTerminal(cell, false);
      Require(!BeginsFormula(cell), "no cell of CSV is a formula");
    }
    found.insert({lines[line].begin() + 2, lines[line].begin() + 6});
  }
  std::multiset<Line> expected;
  for (const LinkedItem& item : ListedItems(inventory)) expected.insert(ExpectedLine(item));
  Require(found == expected, "CSV has a line per device");
}

}  // namespace usbinfo_test
