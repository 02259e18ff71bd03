// The check on the form of source files, over files made up to fail it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/architecture/FileForm.h"
#include "tests/support/TemporaryFolder.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace usbinfo_test {
namespace {

std::vector<std::string> Check(const std::string& file, const std::string& text) {
  TemporaryFolder tree;
  tree.File(file, text);
  return BadlyFormedFiles(tree.Path(), "host");
}

TEST(FileForm, AcceptsACommentAndThePragma) {
  EXPECT_THAT(Check("host/A.h", "// What it is.\n#pragma once\n"), IsEmpty());
  EXPECT_THAT(Check("host/A.h", "/* What it is. */\n#pragma once\n"), IsEmpty());
  EXPECT_THAT(Check("host/A.cpp", "// What it is.\n"), IsEmpty());
}

TEST(FileForm, RefusesAFileThatOpensWithoutAComment) {
  EXPECT_THAT(Check("host/A.cpp", "#include <map>\n// Late.\n"),
              ElementsAre("host/A.cpp: does not open with a comment"));
  EXPECT_THAT(Check("host/A.cpp", "\n// Late.\n"), ElementsAre("host/A.cpp: does not open with a comment"));
  EXPECT_THAT(Check("host/A.cpp", ""), ElementsAre("host/A.cpp: does not open with a comment"));
}

TEST(FileForm, RefusesACommentThatSaysNothing) {
  EXPECT_THAT(Check("host/A.cpp", "//\nint a;\n"), ElementsAre("host/A.cpp: does not open with a comment"));
}

TEST(FileForm, RefusesAHeaderWithoutThePragma) {
  EXPECT_THAT(Check("host/A.h", "// What it is.\n"), ElementsAre("host/A.h: lacks #pragma once"));
  EXPECT_THAT(Check("host/A.h", "// What it is.\n// #pragma once\n"),
              ElementsAre("host/A.h: lacks #pragma once"));
}

TEST(FileForm, ReportsEveryFileOfTheFolderAlone) {
  TemporaryFolder tree;
  tree.File("host/B.h", "int b;\n");
  tree.File("host/deeper/A.cpp", "int a;\n");
  tree.File("cli/A.cpp", "int a;\n");
  EXPECT_THAT(BadlyFormedFiles(tree.Path(), "host"),
              ElementsAre("host/B.h: does not open with a comment", "host/B.h: lacks #pragma once",
                          "host/deeper/A.cpp: does not open with a comment"));
}

}  // namespace
}  // namespace usbinfo_test
