// The include rules over trees made up to break them: a checker that finds nothing proves nothing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/architecture/IncludeRules.h"
#include "tests/support/TemporaryFolder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace usbinfo_test {
namespace {

/// What the rules say about one file of a tree that holds nothing else.
std::vector<std::string> Check(const std::string& file, const std::string& text) {
  TemporaryFolder tree;
  tree.File(file, text);
  return IncludeRules(tree.Path()).Violations();
}

std::string Include(const std::string& name) {
  return "#include \"" + name + "\"\n";
}

/// The folders, the vocabulary besides, that files of `folder` may include.
std::vector<std::string> Allowed(const std::string& folder) {
  std::vector<std::string> allowed;
  for (const std::string& other : IncludeRules::Folders()) {
    if (Check(folder + "/A.cpp", Include(other + "/B.h")).empty()) allowed.push_back(other);
  }
  if (Check(folder + "/A.cpp", Include("plugin/Vocabulary.h")).empty())
    allowed.emplace_back("the vocabulary");
  return allowed;
}

TEST(IncludeRules, AreAboutEveryFolderOfTheProducts) {
  EXPECT_THAT(IncludeRules::Folders(), ElementsAre("host", "provider", "usbfs", "inventory", "association",
                                                   "plugin", "standin", "cli"));
}

TEST(IncludeRules, LetEachFolderIncludeItselfAndTheLayersBelow) {
  EXPECT_THAT(Allowed("host"), ElementsAre("host"));
  EXPECT_THAT(Allowed("provider"), ElementsAre("host", "provider"));
  EXPECT_THAT(Allowed("usbfs"), ElementsAre("host", "provider", "usbfs", "the vocabulary"));
  EXPECT_THAT(Allowed("inventory"), ElementsAre("host", "provider", "usbfs", "inventory", "the vocabulary"));
  EXPECT_THAT(Allowed("association"), ElementsAre("host", "provider", "association", "the vocabulary"));
  EXPECT_THAT(Allowed("plugin"),
              ElementsAre("host", "provider", "inventory", "association", "plugin", "the vocabulary"));
  EXPECT_THAT(Allowed("standin"), ElementsAre("host", "standin"));
  EXPECT_THAT(Allowed("cli"), ElementsAre("host", "standin", "cli"));
}

TEST(IncludeRules, SayWhereAndWhat) {
  EXPECT_THAT(Check("provider/A.h", "// A provider.\n#pragma once\n\n#include \"standin/Host.h\"\n"),
              ElementsAre("provider/A.h:4: provider may not include standin/Host.h"));
}

TEST(IncludeRules, ReportEveryBadIncludeOfATree) {
  TemporaryFolder tree;
  tree.File("usbfs/B.cpp",
            Include("cli/text/Text.h") + Include("host/ILogger.h") + Include("inventory/TUsbData.h"));
  tree.File("usbfs/deeper/A.h", Include("standin/Host.h"));
  tree.File("host/A.h", Include("provider/TUsb.h"));
  EXPECT_THAT(IncludeRules(tree.Path()).Violations(),
              ElementsAre("host/A.h:1: host may not include provider/TUsb.h",
                          "usbfs/B.cpp:1: usbfs may not include cli/text/Text.h",
                          "usbfs/B.cpp:3: usbfs may not include inventory/TUsbData.h",
                          "usbfs/deeper/A.h:1: usbfs may not include standin/Host.h"));
}

TEST(IncludeRules, KeepTheTestsOutOfTheProducts) {
  EXPECT_THAT(Check("cli/A.cpp", Include("tests/support/HostTest.h")),
              ElementsAre("cli/A.cpp:1: cli may not include tests/support/HostTest.h"));
}

TEST(IncludeRules, ReadBracketsLikeQuotes) {
  EXPECT_THAT(Check("host/A.h", "#include <standin/Host.h>\n"),
              ElementsAre("host/A.h:1: host may not include standin/Host.h"));
}

TEST(IncludeRules, ReadDirectivesHoweverTheyAreSpaced) {
  EXPECT_THAT(
      Check("host/A.h", "  #  include\t\"cli/A.h\"  \n#include<cli/B.h>// why\n#include_next \"cli/C.h\"\n"),
      ElementsAre("host/A.h:1: host may not include cli/A.h", "host/A.h:2: host may not include cli/B.h",
                  "host/A.h:3: host may not include cli/C.h"));
}

TEST(IncludeRules, SeeThroughCommentsInsideADirective) {
  EXPECT_THAT(Check("host/A.h", "/* why */ #include /* this */ \"cli/A.h\"\n"),
              ElementsAre("host/A.h:1: host may not include cli/A.h"));
}

TEST(IncludeRules, IgnoreWhatIsCommentedOut) {
  EXPECT_THAT(Check("host/A.h", "// #include \"cli/A.h\"\n/*\n#include \"cli/B.h\"\n*/\n"), IsEmpty());
}

TEST(IncludeRules, AreNotBlindedByQuotesThatLookLikeComments) {
  EXPECT_THAT(Check("host/A.h",
                    "const char* a = \"/*\"; char b = '\"'; const char* c = \"\\\"/*\";\n"
                    "#include \"cli/A.h\"\n"),
              ElementsAre("host/A.h:2: host may not include cli/A.h"));
}

TEST(IncludeRules, RefusePathsThatDoNotStartAtTheTop) {
  EXPECT_THAT(Check("plugin/A.cpp", Include("TUsb.h") + Include("../standin/Host.h") + Include("./A.h") +
                                        Include("host/../standin/Host.h")),
              ElementsAre("plugin/A.cpp:1: TUsb.h is not a path from the top",
                          "plugin/A.cpp:2: ../standin/Host.h is not a path from the top",
                          "plugin/A.cpp:3: ./A.h is not a path from the top",
                          "plugin/A.cpp:4: host/../standin/Host.h is not a path from the top"));
}

TEST(IncludeRules, RefuseNamesHiddenInMacros) {
  EXPECT_THAT(Check("plugin/A.cpp", "#include HEADER\n"),
              ElementsAre("plugin/A.cpp:1: the name of an include must be written out"));
}

TEST(IncludeRules, LetThePluginUseBoostAndTheStandardHeaders) {
  for (const std::string folder : {"host", "provider", "usbfs", "inventory", "association", "plugin"}) {
    EXPECT_THAT(Check(folder + "/A.cpp",
                      "#include <boost/shared_ptr.hpp>\n#include <map>\n#include <cstdio>\n"
                      "#include <string.h>\n"),
                IsEmpty());
  }
}

TEST(IncludeRules, KeepSystemLibrariesOutOfThePlugin) {
  for (const std::string folder : {"host", "provider", "usbfs", "inventory", "association", "plugin"}) {
    EXPECT_THAT(
        Check(folder + "/A.cpp", "#include <unistd.h>\n#include <libxml/tree.h>\n#include <boostish.h>\n"),
        ElementsAre(folder + "/A.cpp:1: " + folder + " may not use the library behind <unistd.h>",
                    folder + "/A.cpp:2: " + folder + " may not use the library behind <libxml/tree.h>",
                    folder + "/A.cpp:3: " + folder + " may not use the library behind <boostish.h>"));
  }
}

TEST(IncludeRules, LetTheStandInAndTheCommandUseSystemLibraries) {
  EXPECT_THAT(Check("standin/A.cpp", "#include <unistd.h>\n"), IsEmpty());
  EXPECT_THAT(Check("cli/A.cpp", "#include <libxml/tree.h>\n"), IsEmpty());
}

TEST(IncludeRules, LetTheVocabularyIncludeOnlyStrings) {
  EXPECT_THAT(Check("plugin/Vocabulary.h", "#include <string>\n"), IsEmpty());
  EXPECT_THAT(
      Check("plugin/Vocabulary.h", "#include <vector>\n#include \"host/HostApi.h\"\n#include \"string\"\n"),
      ElementsAre("plugin/Vocabulary.h:1: the vocabulary includes only <string>",
                  "plugin/Vocabulary.h:2: the vocabulary includes only <string>",
                  "plugin/Vocabulary.h:3: the vocabulary includes only <string>"));
}

TEST(IncludeRules, LookAtCppFilesOfAnyUsualEnding) {
  EXPECT_THAT(Check("host/A.hpp", Include("cli/A.h")),
              ElementsAre("host/A.hpp:1: host may not include cli/A.h"));
  EXPECT_THAT(Check("host/A.cc", Include("cli/A.h")),
              ElementsAre("host/A.cc:1: host may not include cli/A.h"));
  EXPECT_THAT(Check("host/A.txt", Include("cli/A.h")), IsEmpty());
}

}  // namespace
}  // namespace usbinfo_test
