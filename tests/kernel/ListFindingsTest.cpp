// What is reported as forged or damaged in device lists.
#include <gmock/gmock.h>

#include "kernel/ListFindings.h"
#include "tests/support/HostTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace kernel {

void PrintTo(const ListFinding& finding, std::ostream* out) {
  *out << NameOf(finding.code) << " " << finding.bus << "/" << finding.number << ":";
  for (const std::size_t line : finding.lines) *out << " " << line;
}

}  // namespace kernel

namespace usbinfo_test {
namespace {

using Code = kernel::ListFinding::Code;

/// Device 9 of bus 1, with `strings` where its strings stand, from line 4 on.
std::string RecordWith(const std::string& strings) {
  return "T:  Bus=01 Lev=01 Prnt=01 Port=02 Cnt=01 Dev#=  9 Spd=12   MxCh= 0\n"
         "D:  Ver= 2.00 Cls=00(>ifc ) Sub=00 Prot=00 MxPS= 8 #Cfgs=  1\n"
         "P:  Vendor=0627 ProdID=0001 Rev= 0.00\n" +
         strings + "C:* #Ifs= 1 Cfg#= 1 Atr=a0 MxPwr=100mA\n";
}

TEST(Findings, ThereAreNoneInAnyCapture) {
  for (const std::string& path : CapturePaths()) {
    EXPECT_THAT(kernel::FindingsIn(ReadFile(path)), IsEmpty()) << path;
  }
}

TEST(Findings, ThereAreNoneInWhatStringsMayHold) {
  EXPECT_THAT(
      kernel::FindingsIn(RecordWith("S:  Manufacturer=T:  Bus=02 Product=x\nS:  Product=D:\nnoise T:\n"
                                    "S:  SerialNumber=\n")),
      IsEmpty());
  EXPECT_THAT(kernel::FindingsIn(""), IsEmpty());
  EXPECT_THAT(kernel::FindingsIn("noise\nS:  Product=a\nS:  Product=b\n"), IsEmpty());
}

TEST(Findings, AreLinesThatAStringForges) {
  EXPECT_THAT(kernel::FindingsIn(RecordWith("S:  Product=a\nT:  Bus=02 Dev#=  1\n")),
              ElementsAre(kernel::ListFinding{Code::kTwoTopologyLines, {1, 5}, "01", "9"},
                          kernel::ListFinding{Code::kLineBehindString, {5}, "01", "9"}));
  EXPECT_THAT(kernel::FindingsIn(RecordWith("S:  Product=a\nD:  Ver= 2.00\nP:  Vendor=046d\n")),
              ElementsAre(kernel::ListFinding{Code::kTwoDescriptorLines, {2, 5}, "01", "9"},
                          kernel::ListFinding{Code::kTwoProductLines, {3, 6}, "01", "9"},
                          kernel::ListFinding{Code::kLineBehindString, {5, 6}, "01", "9"}));
  EXPECT_THAT(kernel::FindingsIn(RecordWith("S:  Manufacturer=a\nS:  Product=b\nS:  Manufacturer=c\n")),
              ElementsAre(kernel::ListFinding{Code::kTwoStrings, {4, 6}, "01", "9"}));
}

TEST(Findings, AreForgedLinesWithoutAColon) {
  EXPECT_THAT(kernel::FindingsIn(RecordWith("S:  Product=a\nP Vendor=046d ProdID=c077\n")),
              ElementsAre(kernel::ListFinding{Code::kTwoProductLines, {3, 5}, "01", "9"},
                          kernel::ListFinding{Code::kLineBehindString, {5}, "01", "9"}));
  EXPECT_THAT(kernel::FindingsIn(RecordWith("S:  Manufacturer=a\nSProduct=b\nS:  Product=c\n")),
              ElementsAre(kernel::ListFinding{Code::kTwoStrings, {5, 6}, "01", "9"}));
}

TEST(Findings, AreStringsThatTheKernelDoesNotWrite) {
  EXPECT_THAT(kernel::FindingsIn(RecordWith("S:  Manufacturer=a\nS:  The Product=b\n")),
              ElementsAre(kernel::ListFinding{Code::kLineBehindString, {5}, "01", "9"}));
}

TEST(Findings, AreTwoDevicesHoweverTheirNumberIsWritten) {
  EXPECT_THAT(kernel::FindingsIn(RecordWith("S:  Product=a\n") + "\nT: bus=1 dev#=09\n"),
              ElementsAre(kernel::ListFinding{Code::kTwoDevices, {1, 7}, "01", "9"}));
}

TEST(Findings, AreTwoDevicesOfOneNumber) {
  const std::string record = RecordWith("S:  Product=a\n");
  EXPECT_THAT(kernel::FindingsIn(record + "\n" + record + "\n\n" + record),
              ElementsAre(kernel::ListFinding{Code::kTwoDevices, {1, 7, 14}, "01", "9"}));
}

TEST(Findings, HaveNamesOfTheirOwn) {
  std::vector<std::string_view> names;
  for (const Code code : {Code::kTwoTopologyLines, Code::kTwoDescriptorLines, Code::kTwoProductLines,
                          Code::kLineBehindString, Code::kTwoStrings, Code::kTwoDevices}) {
    names.push_back(kernel::NameOf(code));
  }
  EXPECT_THAT(names, ElementsAre("two-t-lines", "two-d-lines", "two-p-lines", "line-behind-string",
                                 "two-strings", "two-devices"));
}

}  // namespace
}  // namespace usbinfo_test
