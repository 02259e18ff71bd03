// The rules over the tree that the products are built from: who may include whom, and how a file begins. The
// checkers themselves have tests of their own.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/architecture/FileForm.h"
#include "tests/architecture/IncludeRules.h"
#include "tests/architecture/SourceText.h"

using ::testing::IsEmpty;

namespace usbinfo_test {
namespace {

TEST(SourceTree, HasFilesInEveryFolderThatTheRulesAreAbout) {
  for (const std::string& folder : IncludeRules::Folders()) {
    EXPECT_THAT(SourceFiles(SOURCE_DIR, folder), ::testing::Not(IsEmpty())) << folder;
  }
}

TEST(SourceTree, KeepsTheIncludeRules) {
  EXPECT_THAT(IncludeRules(SOURCE_DIR).Violations(), IsEmpty());
}

TEST(SourceTree, HasAVocabularyThatIncludesStrings) {
  const std::vector<std::string> lines = Lines(ReadSource(SOURCE_DIR "/plugin/Vocabulary.h"));
  EXPECT_THAT(lines, ::testing::Contains("#include <string>"));
}

TEST(SourceTree, OpensEveryFileWithACommentAndIncludesHeadersOnce) {
  for (const std::string& folder : IncludeRules::Folders()) {
    EXPECT_THAT(BadlyFormedFiles(SOURCE_DIR, folder), IsEmpty());
  }
}

TEST(SourceTree, HasNoSourceFilesOfOtherEndings) {
  for (const std::string& folder : IncludeRules::Folders()) {
    for (const std::string& file : SourceFiles(SOURCE_DIR, folder)) {
      EXPECT_THAT(std::filesystem::path(file).extension().string(), ::testing::AnyOf(".h", ".cpp")) << file;
    }
  }
}

}  // namespace
}  // namespace usbinfo_test
