// What the tables for people share: what becomes of foreign text in a cell, where colours stand, and that no
// row is padded.
#include <gmock/gmock.h>

#include <string>

#include "cli/text/TextTable.h"
#include "tests/cli/support/CliTest.h"

using cli::TextTable;
using cli::Tone;

namespace usbinfo_test {
namespace {

cli::RenderOptions WithColor(cli::Color color) {
  cli::RenderOptions options{false};
  options.color = color;
  return options;
}

TextTable TwoColumns(const cli::RenderOptions& options, TextTable::Kind second = TextTable::Kind::kText) {
  TextTable table(options);
  table.AddColumn({"A", TextTable::Kind::kText, 0});
  table.AddColumn({"B", second, 0});
  return table;
}

std::string PrintRow(const std::string& first, const std::string& second, cli::Color color, Tone tone) {
  TextTable table = TwoColumns(WithColor(color));
  const TextTable::Row row = table.AddRow();
  table.SetCell(row, 0, first);
  table.SetCell(row, 1, second);
  table.SetTone(row, tone);
  return Lines(table.Print()).at(1);
}

TEST(TextTable, PadsNoRowAtItsEnd) {
  EXPECT_EQ(PrintRow("a", "", cli::Color::kNever, Tone::kPlain), "a");
  EXPECT_EQ(PrintRow("a", "b  ", cli::Color::kNever, Tone::kPlain), "a b");
  EXPECT_EQ(PrintRow("", "", cli::Color::kNever, Tone::kPlain), "");
}

TEST(TextTable, ColoursCellsThatHoldSomething) {
  EXPECT_EQ(PrintRow("a", "b", cli::Color::kAlways, Tone::kHub), "\x1B[36ma\x1B[0m \x1B[36mb\x1B[0m");
  EXPECT_EQ(PrintRow("a", "b", cli::Color::kAlways, Tone::kPlain), "a b");
  EXPECT_EQ(PrintRow("a", "b", cli::Color::kNever, Tone::kHub), "a b");
  EXPECT_EQ(PrintRow("a", "", cli::Color::kAlways, Tone::kFree), "\x1B[2ma\x1B[0m");
  EXPECT_EQ(PrintRow("a", "  ", cli::Color::kAlways, Tone::kFree), "\x1B[2ma\x1B[0m");
  EXPECT_EQ(PrintRow("a", "b  ", cli::Color::kAlways, Tone::kHeading), "\x1B[1ma\x1B[0m \x1B[1mb\x1B[0m");
}

TEST(TextTable, SpellsEscapesOfForeignTextBesideItsOwnColours) {
  EXPECT_EQ(PrintRow("\x1B[0m", "\x1B[31m", cli::Color::kAlways, Tone::kFree),
            "\x1B[2m\\x1b[0m\x1B[0m \x1B[2m\\x1b[31m\x1B[0m");
}

TEST(TextTable, ColoursNoLinesOfATree) {
  TextTable table(WithColor(cli::Color::kAlways));
  table.AddColumn({"A", TextTable::Kind::kTree, 0});
  const TextTable::Row top = table.AddRow();
  const TextTable::Row below = table.AddRow(top);
  for (const TextTable::Row row : {top, below}) {
    table.SetCell(row, 0, "x");
    table.SetTone(row, Tone::kHub);
  }
  EXPECT_EQ(table.Print(), "A\n\x1B[36mx\x1B[0m\n`-x\n");
}

TEST(TextTable, GivesACellAsManyLinesAsItWasGiven) {
  const CharacterSet characters("C.UTF-8");
  TextTable table = TwoColumns(WithColor(cli::Color::kNever), TextTable::Kind::kLines);
  const TextTable::Row row = table.AddRow();
  table.SetCell(row, 0, "a");
  table.SetLines(row, 1, {"one\ntwo", std::string("th\0ree", 6), "", "four\x1B"});
  EXPECT_EQ(table.Print(), "A B\na one\xEF\xBF\xBDtwo\n  th\xEF\xBF\xBDree\n\n  four\\x1b\n");
}

TEST(TextTable, TonesATextAndEndsTheTone) {
  EXPECT_EQ(cli::Toned("a", Tone::kHeading), "\x1B[1ma\x1B[0m");
  EXPECT_EQ(cli::Toned("a", Tone::kPlain), "a");
}

TEST(TextTable, HasRoomForNamesWhereItIsNoTerminal) {
  EXPECT_TRUE(TextTable(WithColor(cli::Color::kNever)).HasRoomForNames());
}

}  // namespace
}  // namespace usbinfo_test
