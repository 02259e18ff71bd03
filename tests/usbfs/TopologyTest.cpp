// The "T" line: which of its eight values keep the blanks around them, and what a missing field takes along.
// Fields are compared all at once, so that none changes unseen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "usbfs/topology.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// The eight fields in the order in which they stand in the line.
std::vector<std::string> Fields(const topology& parser) {
  return {parser.getBus(),   parser.getLevel(),          parser.getParentDevice(),
          parser.getPort(),  parser.getDeviceLevelNum(), parser.getDeviceBusNumber(),
          parser.getSpeed(), parser.getConnections()};
}

std::vector<std::string> FieldsOfLine(const std::string& line) {
  topology parser;
  parser.Initialize(line);
  return Fields(parser);
}

TEST(Topology, IsEmptyWhenBuilt) {
  EXPECT_THAT(Fields(topology()), Each(""));
}

TEST(Topology, KeepsTrailingBlanksOfBusCountAndSpeedOnly) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 6"),
              ElementsAre("01 ", "00", "00", "00", "00 ", "  1", "480  ", " 6"));
}

TEST(Topology, EachGetterReadsItsOwnField) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=11 Lev=12 Prnt=13 Port=14 Cnt=15 Dev#=16 Spd=1.7 MxCh=18"),
              ElementsAre("11 ", "12", "13", "14", "15 ", "16", "1.7 ", "18"));
}

TEST(Topology, MatchesNamesInAnyCase) {
  EXPECT_THAT(FieldsOfLine("t:  BUS=01 lev=02 PRNT=03 port=04 CNT=05 dev#=06 SPD=12 mxch=7"),
              ElementsAre("01 ", "02", "03", "04", "05 ", "06", "12 ", "7"));
}

TEST(Topology, KeepsEveryBlankOfTheValues) {
  EXPECT_THAT(FieldsOfLine("T:  Bus= 1  Lev= 2  Prnt= 3  Port= 4  Cnt= 5  Dev#= 6  Spd= 7  MxCh= 8  "),
              ElementsAre(" 1  ", " 2 ", " 3 ", " 4 ", " 5  ", " 6 ", " 7  ", " 8  "));
}

TEST(Topology, WithoutMaximumChildrenTheSpeedIsEmptyToo) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  "),
              ElementsAre("01 ", "00", "00", "00", "00 ", "  1", "", ""));
}

TEST(Topology, WithoutTheBlankBeforeTheCountThePortIsEmpty) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Lev=00 Prnt=00 Port=00Cnt=00 Dev#=  1 Spd=480  MxCh= 6"),
              ElementsAre("01 ", "00", "00", "", "00 ", "  1", "480  ", " 6"));
}

TEST(Topology, WithoutTheBlankBeforeTheParentTheLevelIsEmpty) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Lev=00Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 6"),
              ElementsAre("01 ", "", "00", "00", "00 ", "  1", "480  ", " 6"));
}

TEST(Topology, WithoutTheBlankBeforeThePortTheParentIsEmpty) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Lev=00 Prnt=00Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 6"),
              ElementsAre("01 ", "00", "", "00", "00 ", "  1", "480  ", " 6"));
}

TEST(Topology, WithoutTheBlankBeforeTheSpeedTheDeviceNumberIsEmpty) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1Spd=480  MxCh= 6"),
              ElementsAre("01 ", "00", "00", "00", "00 ", "", "480  ", " 6"));
}

TEST(Topology, BusCountAndSpeedNeedNoBlankAfterThem) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01Lev=00 Prnt=00 Port=00 Cnt=00Dev#=  1 Spd=480MxCh= 6"),
              ElementsAre("01", "00", "00", "00", "00", "  1", "480", " 6"));
}

TEST(Topology, WithoutALevelTheBusIsEmptyToo) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 6"),
              ElementsAre("", "", "00", "00", "00 ", "  1", "480  ", " 6"));
}

TEST(Topology, WithoutADeviceNumberTheCountIsEmptyToo) {
  EXPECT_THAT(FieldsOfLine("T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Spd=480  MxCh= 6"),
              ElementsAre("01 ", "00", "00", "00", "", "", "480  ", " 6"));
}

TEST(Topology, ASecondLineReplacesEveryField) {
  topology parser;
  parser.Initialize("T:  Bus=11 Lev=12 Prnt=13 Port=14 Cnt=15 Dev#=16 Spd=1.7 MxCh=18");
  parser.Initialize("T:  Bus=21 Lev=22 Prnt=23");
  EXPECT_THAT(Fields(parser), ElementsAre("21 ", "22", "", "", "", "", "", ""));
  parser.Initialize("");
  EXPECT_THAT(Fields(parser), Each(""));
}

}  // namespace
