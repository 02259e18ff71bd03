#include "store/ResultList.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>

#include "cli/model/JsonValues.h"
#include "cli/text/CsvText.h"
#include "cli/text/JsonWriter.h"

namespace store {

namespace {

/// Calls the function of an overloaded set that fits the value.
template <typename... Functions>
struct Overloaded : Functions... {
  using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

std::string TextOf(const Cell& cell) {
  return std::visit(
      Overloaded{
          [](std::monostate) { return std::string(); }, [](const std::string& text) { return text; },
          [](const std::vector<std::string>& texts) { return fmt::format("{}", fmt::join(texts, ", ")); },
          [](Time time) { return FormatTime(time.seconds); },
          [](auto number) { return fmt::format("{}", number); }},
      cell);
}

void Write(cli::JsonWriter& json, const Cell& cell) {
  std::visit(
      Overloaded{[&](std::monostate) { json.Null(); }, [&](const std::string& text) { json.String(text); },
                 [&](const std::vector<std::string>& texts) { cli::WriteTexts(json, texts); },
                 [&](Time time) { json.String(FormatTime(time.seconds)); },
                 [&](double number) { json.Decimal(number); },
                 [&](std::int64_t number) { json.Number(static_cast<std::uint64_t>(number)); }},
      cell);
}

/// "lastReport" as "LAST REPORT".
std::string Title(const std::string& name) {
  std::string title;
  for (const char c : name) {
    const auto letter = static_cast<unsigned char>(c);
    if (std::isupper(letter) != 0) title += ' ';
    title += static_cast<char>(std::toupper(letter));
  }
  return title;
}

}  // namespace

const std::vector<std::string>& ResultList::Formats() {
  static const std::vector<std::string> formats = {"table", "json", "csv"};
  return formats;
}

std::string ResultList::Render(const std::string& format, const cli::Surface& surface) const {
  if (format == "json") return Json();
  return format == "csv" ? Csv() : Table(surface);
}

std::string ResultList::Table(const cli::Surface& surface) const {
  constexpr std::size_t kLeastWidth = 4;
  using Kind = cli::TextTable::Kind;
  cli::TextTable table(surface);
  for (const ResultColumn& column : fColumns) {
    if (column.isForPrograms) continue;
    table.AddColumn(
        {Title(column.name), column.isNumber ? Kind::kRight : Kind::kLeft, column.importance, kLeastWidth});
  }
  for (const std::vector<Cell>& cells : fRows) {
    const cli::TextTable::Row row = table.AddRow();
    std::size_t shown = 0;
    for (std::size_t index = 0; index < cells.size(); ++index) {
      if (!fColumns[index].isForPrograms) table.SetCell(row, shown++, TextOf(cells[index]));
    }
  }
  return table.Print();
}

std::string ResultList::Json() const {
  cli::JsonWriter json(cli::JsonWriter::Layout::kIndented);
  json.BeginObject();
  cli::WriteMember(json, "schema", "usbinfo." + fName + "/1");
  cli::WriteList(json, fName, fRows, [&](const std::vector<Cell>& cells) {
    json.BeginObject();
    for (std::size_t index = 0; index < cells.size(); ++index) {
      json.Key(fColumns[index].name);
      Write(json, cells[index]);
    }
    json.EndObject();
  });
  json.EndObject();
  return json.Take() + "\n";
}

std::string ResultList::Csv() const {
  std::vector<std::string> names;
  names.reserve(fColumns.size());
  for (const ResultColumn& column : fColumns) names.push_back(column.name);
  std::string text = cli::CsvLine(names);
  for (const std::vector<Cell>& cells : fRows) {
    std::vector<std::string> texts;
    std::transform(cells.begin(), cells.end(), std::back_inserter(texts), TextOf);
    text += cli::CsvLine(texts);
  }
  return text;
}

}  // namespace store
