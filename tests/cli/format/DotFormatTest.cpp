// The graph for Graphviz: its nodes and edges as text, and strings of devices in labels.
#include <gmock/gmock.h>

#include <string>

#include "cli/format/DotFormat.h"
#include "cli/format/RenderOptions.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/ShownText.h"

using NKESTA20::TCIMValue;
using ::testing::HasSubstr;
using ::testing::Not;

namespace usbinfo_test {
namespace {

constexpr const char* kHub = "Bus 01  Device   1";
constexpr const char* kPort = "Bus 01  Device   1 Port 00";

class DotFormatTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderDot(Collected(), {}); }
  /// The lines of nodes and edges.
  std::string Statements() const {
    std::string statements;
    for (const std::string& line : Lines(Render())) {
      const bool isOfNode = line.rfind("  n", 0) == 0 && line.rfind("  node", 0) != 0;
      if (isOfNode || line.rfind("  f", 0) == 0) statements += line + "\n";
    }
    return statements;
  }
  void AddControllerWithHub() {
    AddController(kHub, "Host");
    Path hub = AddHub(kHub, "Host", 2);
    Path port = AddPort(kPort, 480000000, "Device connected");
    Associate("KALDO_USBPortOnHub", hub, port);
    Associate("KALDO_USBPortOnHub", hub,
              AddPort("Bus 01  Device   1 Port 01", 480000000, "No device connected"));
    Associate("KALDO_USBConnection", port, AddDevice("Bus 01  Device   2", "Mouse", 2));
  }
};

TEST_F(DotFormatTest, IsAnEmptyDigraphForAnEmptyInventory) {
  EXPECT_EQ(Render(), "digraph usb {\n}\n");
}

TEST_F(DotFormatTest, DrawsEveryItemAndEveryLinkAndTheFreePortsAsOneNode) {
  AddControllerWithHub();
  EXPECT_EQ(
      Statements(),
      "  n0 [class=\"controller\", label=\"Bus 01\\nHost\", fillcolor=\"#24364b\", fontcolor=\"#ffffff\"];\n"
      "  n1 [class=\"hub\", label=\"Root hub\\n0000:0000, 2 ports\", fillcolor=\"#dde8f5\"];\n"
      "  f1 [class=\"port free\", label=\"+1 free\", shape=plaintext, style=\"\", "
      "fontcolor=\"#667080\", fontsize=8, height=0.16, margin=\"0.03,0\"];\n"
      "  n2 [class=\"port used\", label=\"Port 00\\n480 Mbit/s\", fontsize=9];\n"
      "  n3 [class=\"device\", label=\"Mouse\\n0000:0000, 12 Mbit/s\", fillcolor=\"#e3f1e4\"];\n"
      "  n0 -> n1;\n"
      "  n1 -> n2;\n"
      "  n1 -> f1 [color=\"#d3d8df\"];\n"
      "  n2 -> n3;\n");
}

TEST_F(DotFormatTest, RunsFromLeftToRightUnderTheSummary) {
  AddControllerWithHub();
  EXPECT_THAT(Render(), HasSubstr("rankdir=LR"));
  EXPECT_THAT(Render(), HasSubstr("label=\"testhost: 1 controller, 1 hub, 2 ports (1 free), 1 device\""));
}

TEST_F(DotFormatTest, ShowsWhereItemsWithoutAControllerAre) {
  AddHub("Bus 03  Device   5", "Lost hub", 1);
  AddPort("Bus 03  Device   5 Port 00", 12000000, "No device connected");
  AddDevice("Bus 03  Device   6", "Lost mouse", 1);
  EXPECT_THAT(Statements(), HasSubstr("label=\"Bus 03, hub 5\\nLost hub\\n0000:0000, 1 port\""));
  EXPECT_THAT(Statements(), HasSubstr("label=\"Bus 03, hub 5, port 00 free\""));
  EXPECT_THAT(Statements(), HasSubstr("label=\"Bus 03, device 6\\nLost mouse\\n0000:0000, 1.5 Mbit/s\""));
  EXPECT_THAT(Statements(), Not(HasSubstr("->")));
}

TEST_F(DotFormatTest, NamesTheTopmostLastForGraphvizDrawsBottomUp) {
  AddController("Bus 01  Device   1", "First");
  AddController("Bus 02  Device   1", "Second");
  const std::string text = Statements();
  EXPECT_LT(text.find("Second"), text.find("First"));
}

TEST_F(DotFormatTest, LeavesOutASpeedThatIsNotKnown) {
  AddDevice("Bus 01  Device   2", "Mouse", 0);
  EXPECT_THAT(Statements(), HasSubstr("label=\"Bus 01, device 2\\nMouse\\n0000:0000\""));
}

const std::vector<ShownText> kLabels = {
    {"Quote", "a\"b", "a\\\"b"},
    {"QuoteAndBracket", "\"];x->y;//", "\\\"];x->y;//"},
    // Each backslash is doubled for people and once more for Graphviz.
    {"Backslash", "a\\", R"(a\\\\)"},
    {"EscapeOfTheName", "\\N\\G\\E", R"(\\\\N\\\\G\\\\E)"},
    {"EscapedNewline", "a\\nb\\lc", R"(a\\\\nb\\\\lc)"},
    {"Newline", "a\nb", R"(a\\nb)"},
    {"Entity", "&lt;&#27;&", "&amp;lt;&amp;#27;&amp;"},
    {"HtmlLikeLabel", "<<b>x</b>>", "<<b>x</b>>"},
    {"Control", "\x1B[31m\x7F\t", R"(\\x1b[31m\\x7f\\x09)"},
    {"SecondControlSet", "\xC2\x9B", R"(\\xc2\\x9b)"},
    {"NoUtf8", "a\xFFz", R"(a\\xffz)"},
    {"ZeroWidth", "a\xE2\x80\x8Bz", R"(a\\xe2\\x80\\x8bz)"},
    {"DirectionMark", "a\xE2\x80\xAEz", R"(a\\xe2\\x80\\xaez)"},
    {"NoCharacter", "a\xEF\xBF\xBFz", R"(a\\xef\\xbf\\xbfz)"},
    {"Letters", "M\xC3\xA4us", "M\xC3\xA4us"},
};

class DotLabelTest : public DotFormatTest, public testing::WithParamInterface<ShownText> {};

TEST_P(DotLabelTest, ShowsTheStringAndNothingElse) {
  AddDevice("Bus 01  Device   2", GetParam().bytes, 1);
  EXPECT_EQ(Statements(), "  n0 [class=\"device\", label=\"Bus 01, device 2\\n" + GetParam().shown +
                              "\\n0000:0000, 1.5 Mbit/s\", fillcolor=\"#e3f1e4\"];\n");
}

INSTANTIATE_TEST_SUITE_P(Strings, DotLabelTest, testing::ValuesIn(kLabels),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace usbinfo_test
