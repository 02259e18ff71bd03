// The core logger: every line reaches the sink as it was written, and without a sink lines are dropped.
#include <gmock/gmock.h>

#include <string>

#include "host/TRootObject.h"
#include "standin/Logger.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::ILogger;
using NKESTA20::TRootObject;
using ::testing::ElementsAre;
using usbinfo_test::LogLine;

class LoggerTest : public usbinfo_test::HostTest {};

TEST_F(LoggerTest, HandsOnEveryLineAsItIs) {
  ILogger* const logger = TRootObject::GetCoreLogger();
  logger->Write(ILogger::kVerbose, "one\t\ttwo\n");
  logger->Write(ILogger::kError, "");
  logger->Write(ILogger::kWarning, "same");
  logger->Write(ILogger::kWarning, "same");
  EXPECT_THAT(
      log, ElementsAre(LogLine{4, "one\t\ttwo\n"}, LogLine{0, ""}, LogLine{1, "same"}, LogLine{1, "same"}));
}

TEST_F(LoggerTest, NumbersTheSeveritiesFromErrorToVerbose) {
  EXPECT_EQ(static_cast<int>(ILogger::kError), 0);
  EXPECT_EQ(static_cast<int>(ILogger::kWarning), 1);
  EXPECT_EQ(static_cast<int>(ILogger::kStatus), 2);
  EXPECT_EQ(static_cast<int>(ILogger::kDebug), 3);
  EXPECT_EQ(static_cast<int>(ILogger::kVerbose), 4);
}

TEST_F(LoggerTest, DropsLinesWithoutASink) {
  host.CoreLogger().SetSink(nullptr);
  TRootObject::GetCoreLogger()->Write(ILogger::kError, "dropped");
  EXPECT_TRUE(log.empty());
}

TEST_F(LoggerTest, WritesToTheLatestSinkOnly) {
  std::string text;
  host.CoreLogger().SetSink([&text](ILogger::EQSVLogSeverity, const std::string& line) { text += line; });
  TRootObject::GetCoreLogger()->Write(ILogger::kError, "line");
  EXPECT_EQ(text, "line");
  EXPECT_TRUE(log.empty());
}

TEST_F(LoggerTest, ReservedSlotWritesNothing) {
  TRootObject::GetCoreLogger()->Reserved();
  EXPECT_TRUE(log.empty());
}

TEST_F(LoggerTest, PassesOnWhatTheSinkThrows) {
  host.CoreLogger().SetSink([](ILogger::EQSVLogSeverity, const std::string&) { throw 42; });
  EXPECT_THROW(TRootObject::GetCoreLogger()->Write(ILogger::kError, "line"), int);
  host.CoreLogger().SetSink(nullptr);
}

}  // namespace
