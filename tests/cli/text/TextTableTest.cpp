// Tables for people: foreign text in a cell, the place of colours, the lines of a tree, and how a table fits
// a terminal.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/text/TextTable.h"
#include "tests/cli/support/CliTest.h"

using cli::Importance;
using cli::Surface;
using cli::TextTable;
using cli::Tone;
using Kind = cli::TextTable::Kind;

namespace usbinfo_test {
namespace {

constexpr Surface kFile = {};
constexpr Surface kColoredFile = {std::nullopt, true, false};

TextTable TwoColumns(const Surface& surface) {
  TextTable table(surface);
  table.AddColumn({"A", Kind::kLeft, Importance::kMain, 1});
  table.AddColumn({"B", Kind::kLeft, Importance::kMain, 1});
  return table;
}

std::string PrintRow(const std::string& first, const std::string& second, const Surface& surface, Tone tone) {
  TextTable table = TwoColumns(surface);
  const TextTable::Row row = table.AddRow();
  table.SetCell(row, 0, first);
  table.SetCell(row, 1, second);
  table.SetTone(row, tone);
  return Lines(table.Print()).at(1);
}

std::string PrintPlain(const std::string& first, const std::string& second) {
  return PrintRow(first, second, kFile, Tone::kPlain);
}

TEST(TextTable, PadsNoRowAtItsEnd) {
  EXPECT_EQ(PrintPlain("a", ""), "a");
  EXPECT_EQ(PrintPlain("a", "b  "), "a b");
  EXPECT_EQ(PrintPlain("", ""), "");
}

TEST(TextTable, ColoursCellsThatHoldSomething) {
  EXPECT_EQ(PrintRow("a", "b", kColoredFile, Tone::kHub), "\x1B[36ma\x1B[0m \x1B[36mb\x1B[0m");
  EXPECT_EQ(PrintRow("a", "b", kColoredFile, Tone::kPlain), "a b");
  EXPECT_EQ(PrintRow("a", "b", kFile, Tone::kHub), "a b");
  EXPECT_EQ(PrintRow("a", "", kColoredFile, Tone::kFree), "\x1B[2ma\x1B[0m");
  EXPECT_EQ(PrintRow("a", "  ", kColoredFile, Tone::kFree), "\x1B[2ma\x1B[0m");
  EXPECT_EQ(PrintRow(" ", "b", kColoredFile, Tone::kFree), "  \x1B[2mb\x1B[0m");
  EXPECT_EQ(PrintRow("a", "b  ", kColoredFile, Tone::kHeading), "\x1B[1ma\x1B[0m \x1B[1mb\x1B[0m");
}

TEST(TextTable, SpellsEscapesOfForeignTextBesideItsOwnColours) {
  EXPECT_EQ(PrintRow("\x1B[0m", "\x1B[31m", kColoredFile, Tone::kFree),
            "\x1B[2m\\x1b[0m\x1B[0m \x1B[2m\\x1b[31m\x1B[0m");
}

TEST(TextTable, SpellsWhateverCouldLeaveItsCell) {
  const CharacterSet characters("C.UTF-8");
  EXPECT_EQ(PrintPlain("a\nb", std::string("a\0b", 3)), "a\\nb a\\x00b");
  EXPECT_EQ(PrintPlain("a\tb", "a\\n"), "a\\x09b a\\\\n");
  EXPECT_EQ(PrintPlain("\xE2\x80\xAEz", "\xFF"), "\\xe2\\x80\\xaez \\xff");
  // U+0378 stands for no character.
  EXPECT_EQ(PrintPlain("a", "\xCD\xB8"), "a \\xcd\\xb8");
}

/// The tree of these depths, its rows labelled by their numbers.
std::string PrintTree(const std::vector<std::size_t>& depths, const Surface& surface) {
  TextTable table(surface);
  table.AddColumn({"A", Kind::kTree, Importance::kIdentifier, 1});
  for (const std::size_t depth : depths) {
    const TextTable::Row row = table.AddRow(depth);
    table.SetCell(row, 0, std::to_string(row));
    table.SetTone(row, Tone::kHub);
  }
  return table.Print();
}

TEST(TextTable, LeadsALineFromEachRowToThoseBelowIt) {
  EXPECT_EQ(PrintTree({0, 1, 2, 3, 2, 1, 2, 0, 1}, kFile),
            "A\n0\n|-1\n| |-2\n| | `-3\n| `-4\n`-5\n  `-6\n7\n`-8\n");
  EXPECT_EQ(PrintTree({0, 1, 2, 1, 2}, {std::nullopt, false, true}), "A\n0\n├─1\n│ └─2\n└─3\n  └─4\n");
}

TEST(TextTable, ColoursNoLinesOfATree) {
  EXPECT_EQ(PrintTree({0, 1}, kColoredFile), "A\n\x1B[36m0\x1B[0m\n`-1\n");
}

TEST(TextTable, ShowsATreeOfAnyDepthInCellsOfBoundedWidth) {
  std::vector<std::size_t> depths;
  for (std::size_t depth = 0; depth < 5000; ++depth) depths.push_back(depth);
  const std::vector<std::string> lines = Lines(PrintTree(depths, kFile));
  EXPECT_EQ(lines.at(1 + 126), std::string(250, ' ') + "`-126");
  EXPECT_EQ(lines.at(1 + 4999), std::string(255, ' ') + "~");
}

TEST(TextTable, GivesACellAsManyLinesAsItWasGiven) {
  TextTable table = TwoColumns(kFile);
  const TextTable::Row row = table.AddRow();
  table.SetCell(row, 0, "a");
  table.SetLines(row, 1, {"one\ntwo", std::string("th\0ree", 6), "", "four\x1B"});
  EXPECT_EQ(table.Print(), "A B\na one\\ntwo\n  th\\x00ree\n\n  four\\x1b\n");
}

/// A hub with a line more than its name, the last of the tree or not.
std::string PrintHub(bool isLast, std::size_t width) {
  TextTable table({width, false, false});
  table.AddColumn({"USB", Kind::kTree, Importance::kIdentifier, 1});
  table.AddColumn({"DEVICE", Kind::kLeft, Importance::kMain, 6});
  table.AddColumn({"ID", Kind::kLeft, Importance::kIdentifier, 1});
  table.AddRow();
  const TextTable::Row hub = table.AddRow(1);
  table.SetLines(hub, 1, {"A hub of my own", "serial number 1234"});
  table.SetCell(hub, 2, "1d6b:0002");
  table.AddRow(2);
  if (!isLast) table.AddRow(1);
  return table.Print();
}

TEST(TextTable, DrawsTheLinesOfTheTreeBesideFurtherLines) {
  EXPECT_EQ(PrintHub(true, 80),
            "USB  DEVICE             ID\n"
            "\n"
            "`-   A hub of my own    1d6b:0002\n"
            "  |  serial number 1234\n"
            "  `-\n");
  EXPECT_EQ(PrintHub(false, 80),
            "USB  DEVICE             ID\n"
            "\n"
            "|-   A hub of my own    1d6b:0002\n"
            "| |  serial number 1234\n"
            "| `-\n"
            "`-\n");
}

TEST(TextTable, GivesFurtherLinesTheRoomToTheRight) {
  EXPECT_THAT(PrintHub(true, 24), testing::HasSubstr("`-   A hub of~ 1d6b:0002\n"
                                                     "  |  serial number 1234\n"));
  EXPECT_THAT(PrintHub(true, 22), testing::HasSubstr("`-   A hub ~ 1d6b:0002\n"
                                                     "  |  serial number 12~\n"));
  EXPECT_THAT(PrintHub(true, 20), testing::HasSubstr("`-   1d6b:0002\n  `-\n"));
}

TEST(TextTable, CutsACellThatIsWiderThanAnyDeviceCanMakeIt) {
  EXPECT_EQ(PrintPlain(std::string(256, 'x'), "b"), std::string(256, 'x') + " b");
  EXPECT_EQ(PrintPlain("a", std::string(257, 'x')), "a " + std::string(255, 'x') + "~");
  EXPECT_EQ(PrintRow("a", std::string(257, 'x'), {std::nullopt, false, true}, Tone::kPlain),
            "a " + std::string(255, 'x') + "…");
  EXPECT_EQ(PrintRow("a", std::string(257, 'x'), {1000, false, false}, Tone::kPlain),
            "a " + std::string(255, 'x') + "~");
}

TEST(TextTable, MarksALongTextOfFewColumns) {
  const CharacterSet characters("C.UTF-8");
  std::string marks = "e";
  for (int mark = 0; mark < 5000; ++mark) marks += "\xCC\x81";
  const std::string printed = PrintRow("a", marks + "z", {std::nullopt, false, true}, Tone::kPlain);
  EXPECT_THAT(printed, testing::EndsWith("…"));
  EXPECT_LE(printed.size(), 17 * TextTable::kWidestCell);
}

TEST(TextTable, GrowsWithItsRowsAndNotWithItsLongestText) {
  TextTable table = TwoColumns(kFile);
  constexpr std::size_t kRows = 1000;
  for (std::size_t row = 0; row < kRows; ++row) {
    table.AddRow();
    table.SetCell(row, 1, "b");
  }
  table.SetCell(0, 0, std::string(1'000'000, 'x'));
  table.SetLines(1, 1, {"b", std::string(1'000'000, 'x')});
  EXPECT_LE(table.Print().size(), (kRows + 2) * (TextTable::kWidestCell + sizeof(" b\n")));
}

TEST(TextTable, CutsWideCharactersWhole) {
  const CharacterSet characters("C.UTF-8");
  const auto printed = [](std::size_t width) {
    return PrintRow("字字字", "b", {width, false, true}, Tone::kPlain);
  };
  EXPECT_EQ(printed(8), "字字字 b");
  EXPECT_EQ(printed(7), "字字… b");
  EXPECT_EQ(printed(6), "字…  b");
  EXPECT_EQ(printed(5), "字… b");
}

struct NarrowColumn {
  const char* title;
  Importance importance;
  /// In the order of the rows; without blanks, so that a line can be split into cells again.
  std::vector<std::string> cells;
};

const std::vector<NarrowColumn>& NarrowColumns() {
  static const std::vector<NarrowColumn> columns = {
      {"DEV", Importance::kIdentifier, {"1", "22", "127"}},
      {"ID", Importance::kIdentifier, {"1d6b:0002", "0627:0001", "0627:0001"}},
      {"SPEED", Importance::kUseful, {"480Mbit/s", "12Mbit/s", "12Mbit/s"}},
      {"PRODUCT", Importance::kMain, {"xHCI-Host-Controller", "Keyboard", "Mouse"}},
      {"SERIAL", Importance::kIdentifier, {"0000:00:01.0", "0123456789ABCDEF-1", "0123456789ABCDEF-2"}},
      {"KNOWN-AS", Importance::kMinor, {"Root-Hub", "Some-Keyboard-of-a-Maker", "Some-Mouse-of-a-Maker"}}};
  return columns;
}

std::string PrintNarrow(std::size_t width) {
  TextTable table({width, false, false});
  for (const NarrowColumn& column : NarrowColumns()) {
    table.AddColumn({column.title, Kind::kLeft, column.importance, 9});
  }
  for (TextTable::Row row = 0; row < NarrowColumns().front().cells.size(); ++row) {
    table.AddRow();
    for (std::size_t column = 0; column < NarrowColumns().size(); ++column) {
      table.SetCell(row, column, NarrowColumns()[column].cells[row]);
    }
  }
  return table.Print();
}

std::vector<std::string> Cells(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// The columns whose titles are shown, even if cut.
std::vector<NarrowColumn> ColumnsOf(const std::string& titles) {
  std::vector<NarrowColumn> columns;
  for (const std::string& title : Cells(titles)) {
    for (const NarrowColumn& column : NarrowColumns()) {
      if (title == column.title) columns.push_back(column);
    }
  }
  return columns;
}

TEST(TextTable, OnATerminalOfAnyWidthMarksEachCutAndKeepsIdentifiersLongest) {
  for (std::size_t width = 20; width <= 120; ++width) {
    SCOPED_TRACE(fmt::format("{}\n{}", width, PrintNarrow(width)));
    const std::vector<std::string> lines = Lines(PrintNarrow(width));
    const std::vector<NarrowColumn> columns = ColumnsOf(lines.front());
    bool hasLessThanIdentifiers = false;
    for (const NarrowColumn& column : columns) {
      hasLessThanIdentifiers |= column.importance != Importance::kIdentifier;
    }
    ASSERT_EQ(lines.size(), 4U);
    for (const std::string& line : lines) EXPECT_LE(line.size(), width);
    for (std::size_t row = 0; row + 1 < lines.size(); ++row) {
      const std::vector<std::string> cells = Cells(lines[row + 1]);
      ASSERT_EQ(cells.size(), columns.size());
      for (std::size_t column = 0; column < cells.size(); ++column) {
        const std::string& whole = columns[column].cells[row];
        if (cells[column] == whole) continue;
        EXPECT_EQ(cells[column], whole.substr(0, cells[column].size() - 1) + "~");
        EXPECT_FALSE(columns[column].importance == Importance::kIdentifier && hasLessThanIdentifiers);
      }
    }
  }
}

TEST(TextTable, LeavesOutWhatMattersLeastFirst) {
  const auto titles = [](std::size_t width) { return Cells(Lines(PrintNarrow(width)).front()); };
  EXPECT_THAT(titles(91), testing::ElementsAre("DEV", "ID", "SPEED", "PRODUCT", "SERIAL", "KNOWN-AS"));
  EXPECT_THAT(titles(62), testing::ElementsAre("DEV", "ID", "SPEED", "PRODUCT", "SERIAL", "KNOWN-AS"));
  EXPECT_THAT(titles(61), testing::ElementsAre("DEV", "ID", "SPEED", "PRODUCT", "SERIAL"));
  EXPECT_THAT(titles(51), testing::ElementsAre("DEV", "ID", "PRODUCT", "SERIAL"));
  EXPECT_THAT(titles(41), testing::ElementsAre("DEV", "ID", "SERIAL"));
  EXPECT_THAT(titles(22), testing::ElementsAre("DEV", "ID"));
}

TEST(TextTable, TonesATextAndEndsTheTone) {
  EXPECT_EQ(cli::Toned("a", Tone::kHeading), "\x1B[1ma\x1B[0m");
  EXPECT_EQ(cli::Toned("a", Tone::kPlain), "a");
}

}  // namespace
}  // namespace usbinfo_test
