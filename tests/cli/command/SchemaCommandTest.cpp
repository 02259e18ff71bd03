// `usbinfo schema`: both forms, to standard output and to a file, without a plug-in and without reading the
// machine.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <string>

#include "cli/format/MofFormat.h"
#include "schema/ClassSchema.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using nlohmann::ordered_json;
using ::testing::HasSubstr;

namespace usbinfo_test {
namespace {

TEST(Schema, PrintsTheMofDeclarationsByDefault) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"schema"}, {"schema", "--format", "mof"}}) {
    const CommandResult result = RunUsbinfo(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, cli::RenderMofSchema());
    EXPECT_EQ(result.errors, "");
  }
}

TEST(Schema, PrintsEveryClassAndPropertyAsJson) {
  const CommandResult result = RunUsbinfo({"schema", "--format", "json"});
  EXPECT_EQ(result.status, 0);
  const ordered_json document = ordered_json::parse(result.output);
  EXPECT_EQ(document["schema"], "usbinfo.classes/1");
  EXPECT_EQ(document["namespace"], "root/cimv2");
  auto entry = document["classes"].begin();
  for (const schema::ClassSchema& schema : schema::ServedClasses()) {
    EXPECT_EQ(entry.key(), schema.name);
    EXPECT_EQ((*entry)["properties"].size(), schema.properties.size());
    ++entry;
  }
  EXPECT_EQ(entry, document["classes"].end());
}

TEST(Schema, ShowsTypeArrayKeyAndTargetOfAProperty) {
  const ordered_json classes =
      ordered_json::parse(RunUsbinfo({"schema", "--format", "json"}).output)["classes"];
  EXPECT_EQ(classes["KALDO_USBPort"]["kind"], "entity");
  EXPECT_EQ(classes["KALDO_USBPort"]["properties"]["StatusDescriptions"].dump(),
            R"({"type":"string","isArray":true,"isKey":false})");
  EXPECT_EQ(classes["KALDO_USBPort"]["properties"]["DeviceID"].dump(),
            R"({"type":"string","isArray":false,"isKey":true})");
  EXPECT_EQ(classes["KALDO_USBConnection"]["kind"], "association");
  EXPECT_EQ(classes["KALDO_USBConnection"]["properties"]["Dependent"].dump(),
            R"({"type":"reference","isArray":false,"isKey":true,"class":"KALDO_USBElement"})");
}

TEST(Schema, WritesAFileInstead) {
  const TemporaryFolder folder;
  const CommandResult result = RunUsbinfo({"schema", "--output", folder.File("schema.mof")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(ReadFile(folder.File("schema.mof")), cli::RenderMofSchema());
}

TEST(Schema, ReportsAnOutputThatCannotBeWritten) {
  const TemporaryFolder folder;
  const CommandResult result = RunUsbinfo({"schema", "--output", folder.File("missing/schema.mof")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, HasSubstr("missing/schema.mof: No such file or directory"));
}

TEST(Schema, RefusesOptionsThatAreNotItsOwn) {
  const CommandResult before = RunUsbinfo({"--devices", "list", "schema"});
  EXPECT_EQ(before.status, 2);
  EXPECT_EQ(before.errors,
            "usbinfo: --devices is not supported by usbinfo schema; see usbinfo schema --help\n");
  const CommandResult afterSubcommand = RunUsbinfo({"schema", "--devices", "list"});
  EXPECT_EQ(afterSubcommand.status, 2);
  EXPECT_EQ(afterSubcommand.output, "");
  EXPECT_EQ(RunUsbinfo({"schema", "--format", "yaml"}).errors,
            "usbinfo: --format: \"yaml\" is not one of mof, json; see usbinfo schema --help\n");
}

TEST(Schema, HasHelpOfItsOwn) {
  const CommandResult result = RunUsbinfo({"schema", "--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("usbinfo schema"));
  EXPECT_THAT(result.output, HasSubstr("--output FILE"));
  EXPECT_THAT(result.output, ::testing::Not(HasSubstr("--devices")));
}

}  // namespace
}  // namespace usbinfo_test
