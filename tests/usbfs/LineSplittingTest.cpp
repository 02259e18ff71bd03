// How a text falls into lines: where they end, how many are processed, and what type each is.
// The cutter needs no host, so neither do these tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/usbfs/CutText.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using usbinfo_test::CutText;
using usbinfo_test::TopologyLine;

TEST(LineSplitting, EmptyTextIsOneLineOfNoType) {
  const CutText cut("");
  EXPECT_THAT(cut.unmatched, ElementsAre(""));
  EXPECT_THAT(cut.records, IsEmpty());
}

TEST(LineSplitting, TheEmptyPieceAfterTheFinalNewlineIsALineOfNoType) {
  EXPECT_THAT(CutText("x\n").unmatched, ElementsAre("x", ""));
  EXPECT_THAT(CutText("x").unmatched, ElementsAre("x"));
}

TEST(LineSplitting, ABlankLineIsOfTypeNewline) {
  EXPECT_THAT(CutText("x\n\n\ny").unmatched, ElementsAre("x", "\n", "\n", "y"));
  EXPECT_THAT(CutText("x\n\n").unmatched, ElementsAre("x", "\n", ""));
}

TEST(LineSplitting, ANewlineAtTheStartCostsTheLastLine) {
  EXPECT_THAT(CutText("\n").unmatched, ElementsAre("\n"));
  EXPECT_THAT(CutText("\nx").unmatched, ElementsAre("\n"));
  EXPECT_THAT(CutText("\nx\n").unmatched, ElementsAre("\n", "x"));
  EXPECT_THAT(CutText("\n\n").unmatched, ElementsAre("\n", "\n"));
  EXPECT_THAT(CutText("\nx\ny\nz").unmatched, ElementsAre("\n", "x", "y"));
}

TEST(LineSplitting, ATextThatBeginsWithANewlineClosesTheRecordAtItsLastCountedLine) {
  const CutText cut("\n" + TopologyLine(" 1") +
                    "\nD:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 #Cfgs=  1");
  ASSERT_THAT(cut.records, SizeIs(1));
  EXPECT_EQ(cut.records[0].getTopology()->getDeviceBusNumber(), "  1");
  EXPECT_EQ(cut.records[0].getDescriptor()->getVersion(), "");
  EXPECT_EQ(cut.records[0].getDescriptor()->getConfigs(), "");
  EXPECT_THAT(cut.unmatched, ElementsAre("\n"));
}

TEST(LineSplitting, TheNewlineIsNoPartOfTheLine) {
  const CutText cut("T:  MxCh= 6\nS:  Product=Hub\nP:  Rev= 1.00\nE:\n");
  ASSERT_THAT(cut.records, SizeIs(1));
  EXPECT_EQ(cut.records[0].getTopology()->getConnections(), " 6");
  EXPECT_EQ(cut.records[0].getDeviceInfo()->getproduct(), "Hub");
  EXPECT_EQ(cut.records[0].getProduct()->getRevision(), " 1.00");
}

TEST(LineSplitting, ALineKeepsItsFirstAndItsLastCharacter) {
  const CutText cut("Tbus=1lev=");
  ASSERT_THAT(cut.records, SizeIs(1));
  EXPECT_EQ(cut.records[0].getTopology()->getBus(), "1");
}

TEST(LineSplitting, TheTypeIsTheFirstCharacterAlone) {
  EXPECT_THAT(CutText("Bus\nEnd\nError: usb\n T:\n\t\n").unmatched,
              ElementsAre("B", "E", "E", " ", "\t", ""));
}

TEST(LineSplitting, TypesAreMatchedWithTheirCapitals) {
  EXPECT_THAT(CutText("t:\ns:\nd:\np:\ni:\nc:").unmatched, ElementsAre("t", "s", "d", "p", "i", "c"));
}

TEST(LineSplitting, LinesThatAParserTakesAreNotReported) {
  EXPECT_THAT(CutText("S:\nD:\nP:\nI:\nC:\nT:").unmatched, IsEmpty());
}

TEST(LineSplitting, TypesMayBeAnyByte) {
  const std::string nul(1, '\0');
  EXPECT_THAT(CutText("\xC3\xA9\n" + nul + "x\n\x1B[0m\n\xFF").unmatched,
              ElementsAre("\xC3", nul, "\x1B", "\xFF"));
}

TEST(LineSplitting, ACarriageReturnIsACharacterLikeAnyOther) {
  const CutText cut(TopologyLine(" 1") + "\r\n\r\nS:  Product=Hub\r\n");
  ASSERT_THAT(cut.records, SizeIs(1));
  EXPECT_EQ(cut.records[0].getTopology()->getConnections(), " 0\r");
  EXPECT_EQ(cut.records[0].getDeviceInfo()->getproduct(), "Hub\r");
  EXPECT_THAT(cut.unmatched, ElementsAre("\r", ""));
}

TEST(LineSplitting, ANulByteDoesNotEndTheText) {
  const CutText cut(std::string("x\0y\n", 4) + TopologyLine(" 1"));
  EXPECT_THAT(cut.unmatched, ElementsAre("x"));
  EXPECT_THAT(cut.records, SizeIs(1));
}

TEST(LineSplitting, WhatTheHandlerThrowsLeaves) {
  EXPECT_THROW(CutDeviceList("B:", [](const std::string&) { throw std::runtime_error("stop"); }),
               std::runtime_error);
}

TEST(LineSplitting, TextsAreCutIndependently) {
  const CutText first(TopologyLine(" 1") + "\nE:\nS:  Product=left over");
  const CutText second(TopologyLine(" 2"));
  ASSERT_THAT(second.records, SizeIs(1));
  EXPECT_EQ(second.records[0].getDeviceInfo()->getproduct(), "Not Available");
  EXPECT_EQ(second.records[0].getTopology()->getDeviceBusNumber(), "  2");
}

}  // namespace
