// The module's border as the file itself shows it: what it needs, what it leaves for the loading process to
// supply, and what it lets the process see.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "tests/module/BinaryTools.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

namespace usbinfo_test {
namespace {

/// What a host supplies, and all that the module may ask of it.
const std::set<std::string> kSuppliedByTheHost = {
    "NKESTA20::TCIMReference::TCIMReference()",
    "NKESTA20::TCIMReference::operator=(NKESTA20::TCIMReference const&)",
    "NKESTA20::TCIMReference::operator==(NKESTA20::TCIMReference const&) const",
    "NKESTA20::TCIMReference::~TCIMReference()",
    "NKESTA20::TCIMSchemaHelper::GetSystemCreationClassName[abi:cxx11]"
    "(boost::shared_ptr<NKESTA20::ICIMNamespace>)",
    "NKESTA20::TCIMSchemaHelper::GetSystemName[abi:cxx11](boost::shared_ptr<NKESTA20::ICIMNamespace>)",
    "NKESTA20::TCIMSchemaHelper::kContextName[abi:cxx11]",
    "NKESTA20::TCIMSchemaHelper::kPluginNSPName[abi:cxx11]",
    "NKESTA20::TCIMValue::IsNull() const",
    "NKESTA20::TCIMValue::TCIMType::TCIMType(NKESTA20::TCIMValue::TCIMType::ECIMType)",
    "NKESTA20::TCIMValue::TCIMValue()",
    "NKESTA20::TCIMValue::TCIMValue(NKESTA20::TCIMReference&)",
    "NKESTA20::TCIMValue::TCIMValue(NKESTA20::TCIMValue const&)",
    "NKESTA20::TCIMValue::TCIMValue(NKESTA20::TCIMValue::TCIMType, unsigned int, "
    "std::vector<NKESTA20::TCIMValue, std::allocator<NKESTA20::TCIMValue> > const&)",
    "NKESTA20::TCIMValue::TCIMValue(char const*)",
    "NKESTA20::TCIMValue::TCIMValue(std::string const&)",
    "NKESTA20::TCIMValue::TCIMValue(unsigned char)",
    "NKESTA20::TCIMValue::TCIMValue(unsigned long)",
    "NKESTA20::TCIMValue::TCIMValue(unsigned short)",
    "NKESTA20::TCIMValue::operator std::string() const",
    "NKESTA20::TCIMValue::operator unsigned short() const",
    "NKESTA20::TCIMValue::operator=(NKESTA20::TCIMValue const&)",
    "NKESTA20::TCIMValue::~TCIMValue()",
    "NKESTA20::TOSSpecific::CaptureFile(std::string)",
    "NKESTA20::TOSSpecific::FileExists(std::string)",
    "NKESTA20::TOSSpecific::SpawnProcess(std::string, int)",
    "NKESTA20::TPluginManagerNamespace::RegisterPlugin(NKESTA20::IPluginCallbacks*)",
    "NKESTA20::TQSVStatusCode::TranslateStatusCode[abi:cxx11]() const",
    "NKESTA20::TRootObject::GetCoreLogger()",
    "NKESTA20::TRootObject::GetPluginManager()",
};

const std::set<std::string> kRuntimeLibraries = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6",
                                                 "ld-linux-x86-64.so.2"};

bool IsSanitizerRuntime(const std::string& library) {
  return SANITIZED && (library.rfind("libasan.so.", 0) == 0 || library.rfind("libubsan.so.", 0) == 0);
}

bool IsDefined(const Symbol& symbol) {
  return symbol.kind != 'U' && symbol.kind != 'w' && symbol.kind != 'v';
}

/// The exported names that begin with `prefix`, without it.
std::set<std::string> ExportedNames(const std::string& prefix) {
  std::set<std::string> names;
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    if (IsDefined(symbol) && symbol.name.rfind(prefix, 0) == 0)
      names.insert(symbol.name.substr(prefix.size()));
  }
  return names;
}

TEST(BinaryBorder, NeedsBoostThreadAndTheRuntimeAlone) {
  std::vector<std::string> others;
  for (const std::string& library : NeededLibraries(MODULE_PATH)) {
    if (kRuntimeLibraries.count(library) == 0 && !IsSanitizerRuntime(library)) others.push_back(library);
  }
  EXPECT_THAT(others, ElementsAre(StartsWith("libboost_thread.so.")));
}

TEST(BinaryBorder, NeedsTheRuntimeLibraries) {
  EXPECT_THAT(NeededLibraries(MODULE_PATH), ::testing::IsSupersetOf({"libstdc++.so.6", "libc.so.6"}));
}

TEST(BinaryBorder, LooksForLibrariesNowhereElse) {
  for (const std::string& line : LinesOf("readelf -dW '" MODULE_PATH "'")) {
    EXPECT_THAT(line, Not(HasSubstr("PATH)"))) << "a search path of its own";
  }
}

TEST(BinaryBorder, AsksTheHostForNothingOutsideTheContract) {
  std::set<std::string> asked;
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    if (IsDefined(symbol) || symbol.name.find("NKESTA20::") == std::string::npos) continue;
    EXPECT_EQ(kSuppliedByTheHost.count(symbol.name), 1U) << symbol.name;
    asked.insert(symbol.name);
  }
  EXPECT_GE(asked.size(), 20U);
}

TEST(BinaryBorder, NeverNamesTheStandIn) {
  for (const Symbol& symbol : AllSymbols(MODULE_PATH)) {
    EXPECT_THAT(symbol.name, Not(HasSubstr("standin::")));
  }
}

TEST(BinaryBorder, ShowsTheIntegerAsThirtyTwoZeroBits) {
  std::vector<char> kinds;
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    if (symbol.name == "NKESTA20::gStarted") kinds.push_back(symbol.kind);
  }
  EXPECT_THAT(kinds, ElementsAre('B')) << "in the section that starts as zeros";
  std::vector<std::string> entries;
  for (const std::string& line : LinesOf("readelf --dyn-syms -W '" MODULE_PATH "'")) {
    if (line.find(" _ZN8NKESTA208gStartedE") != std::string::npos) entries.push_back(line);
  }
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_THAT(entries[0], ::testing::ContainsRegex(" 4 OBJECT  *GLOBAL  *DEFAULT "));
}

TEST(BinaryBorder, ShowsOnlyTheIntegerAndTheIdentityOfHostTypes) {
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    if (!IsDefined(symbol) || symbol.name == "NKESTA20::gStarted") continue;
    const bool isIdentity = symbol.name.rfind("typeinfo for NKESTA20::", 0) == 0 ||
                            symbol.name.rfind("typeinfo name for NKESTA20::", 0) == 0;
    EXPECT_TRUE(isIdentity) << symbol.name;
    const std::string type = symbol.name.substr(symbol.name.rfind(':') + 1);
    EXPECT_TRUE(std::filesystem::exists(SOURCE_DIR "/host/" + type + ".h")) << type << " is no host type";
  }
}

TEST(BinaryBorder, ShowsTheIdentityOfWhatIsThrownAndCast) {
  const std::set<std::string> types = ExportedNames("typeinfo for NKESTA20::");
  EXPECT_THAT(types,
              ::testing::IsSupersetOf({"ICIMNamespace", "IPluginBasicQueryCallbacks", "IPluginCallbacks",
                                       "TPluginManagerNamespace", "TQSVException"}));
  EXPECT_EQ(ExportedNames("typeinfo name for NKESTA20::"), types);
}

TEST(BinaryBorder, HasNoUniqueSymbolThatWouldKeepItLoaded) {
  std::vector<std::string> unique;
  for (const Symbol& symbol : AllSymbols(MODULE_PATH)) {
    if (symbol.kind == 'u') unique.push_back(symbol.name);
  }
  EXPECT_THAT(unique, IsEmpty());
}

}  // namespace
}  // namespace usbinfo_test
