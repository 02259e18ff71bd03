// The providers' logging: severities, and the two cases in which a line is suppressed.
// The fixture owns a provider that may write and one that must not.
#include <functional>
#include <string>
#include <vector>

#include "tests/provider/ProviderTest.h"

namespace {

using NKESTA20::ICIMClass;
using NKESTA20::ILogger;
using standin::HostOperation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using usbinfo_test::LogLine;
using usbinfo_test::OperationsDuring;
using usbinfo_test::PlainProvider;

class TUsbLog : public usbinfo_test::ProviderTest {
 protected:
  static void WriteAtEverySeverity(const TUsb& provider, const std::string& text) {
    provider.WriteError(text);
    provider.WriteWarning(text);
    provider.WriteStatus(text);
    provider.WriteDebug(text);
    provider.WriteVerbose(text);
    provider.Write(text, ILogger::kError);
    provider.Write(text, ILogger::kVerbose);
  }

  PlainProvider loud{boost::shared_ptr<ICIMClass>(), &handle};
  PlainProvider silent{boost::shared_ptr<ICIMClass>(), nullptr};
};

TEST_F(TUsbLog, EachShortcutWritesAtItsOwnSeverity) {
  loud.WriteError("error");
  loud.WriteWarning("warning");
  loud.WriteStatus("status");
  loud.WriteDebug("debug");
  loud.WriteVerbose("verbose");
  EXPECT_THAT(log, ElementsAre(LogLine{0, "error"}, LogLine{1, "warning"}, LogLine{2, "status"},
                               LogLine{3, "debug"}, LogLine{4, "verbose"}));
}

TEST_F(TUsbLog, WriteHandsOnTheSeverityGiven) {
  for (int severity = 4; severity >= 0; --severity) {
    loud.Write("line", static_cast<ILogger::EQSVLogSeverity>(severity));
  }
  EXPECT_THAT(log, ElementsAre(LogLine{4, "line"}, LogLine{3, "line"}, LogLine{2, "line"}, LogLine{1, "line"},
                               LogLine{0, "line"}));
}

TEST_F(TUsbLog, EveryByteOfTheTextIsWritten) {
  const std::string text = std::string(" a\n\0", 4) + "\t\xC3\xA9 ";
  loud.WriteStatus(text);
  loud.WriteStatus("\n");
  EXPECT_THAT(log, ElementsAre(LogLine{2, text}, LogLine{2, "\n"}));
}

TEST_F(TUsbLog, NullHandleSuppressesEverySeverityWithoutTouchingTheHost) {
  EXPECT_THAT(OperationsDuring([this] { WriteAtEverySeverity(silent, "line"); }), IsEmpty());
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(TUsbLog, EmptyTextIsSuppressedWithoutTouchingTheHost) {
  EXPECT_THAT(OperationsDuring([this] { WriteAtEverySeverity(loud, ""); }), IsEmpty());
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(TUsbLog, ALineFetchesTheCoreLoggerAndWritesOnce) {
  EXPECT_THAT(OperationsDuring([this] { loud.WriteDebug("line"); }),
              ElementsAre(HostOperation::kGetCoreLogger, HostOperation::kWriteLog));
}

TEST_F(TUsbLog, ProvidersBuiltWithoutAHandleAreSilent) {
  const PlainProvider bare;
  const PlainProvider classOnly{boost::shared_ptr<ICIMClass>()};
  WriteAtEverySeverity(bare, "line");
  WriteAtEverySeverity(classOnly, "line");
  EXPECT_THAT(log, IsEmpty());
}

}  // namespace
