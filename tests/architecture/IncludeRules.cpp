// The table of layers and its application; see the header.
#include "tests/architecture/IncludeRules.h"

#include <regex>
#include <set>
#include <string_view>

#include "tests/architecture/SourceText.h"

namespace usbinfo_test {

namespace {

constexpr const char* kVocabulary = "plugin/Vocabulary.h";

struct Layer {
  std::string folder;
  /// Other folders, whole, or single headers, that this one may include.
  std::set<std::string> mayInclude;
  /// Part of the module: Boost and the standard headers are all it may know besides.
  bool isPlugin;
};

const std::vector<Layer>& Layers() {
  static const std::vector<Layer> kLayers = {
      {"host", {}, true},
      {"provider", {"host"}, true},
      {"usbfs", {"provider", "host", kVocabulary}, true},
      {"inventory", {"usbfs", "provider", "host", kVocabulary}, true},
      {"association", {"provider", "host", kVocabulary}, true},
      {"plugin", {"inventory", "association", "provider", "host"}, true},
      {"system", {}, false},
      {"schema", {"host"}, false},
      {"standin", {"host", "schema", "system"}, false},
      {"cli", {"standin", "schema", "system", "host"}, false},
  };
  return kLayers;
}

/// The headers of the standard, those it takes over from C included, each between blanks.
constexpr std::string_view kStandardHeaders =
    " algorithm any array atomic bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits "
    "clocale "
    "cmath codecvt complex condition_variable csetjmp csignal cstdarg cstddef cstdint cstdio cstdlib cstring "
    "ctime "
    "cuchar cwchar cwctype deque exception execution filesystem forward_list fstream functional future "
    "initializer_list iomanip ios iosfwd iostream istream iterator limits list locale map memory "
    "memory_resource "
    "mutex new numeric optional ostream queue random ratio regex scoped_allocator set shared_mutex sstream "
    "stack "
    "stdexcept streambuf string string_view system_error thread tuple type_traits typeindex typeinfo "
    "unordered_map "
    "unordered_set utility valarray variant vector assert.h ctype.h errno.h fenv.h float.h inttypes.h "
    "limits.h "
    "locale.h math.h setjmp.h signal.h stdarg.h stddef.h stdint.h stdio.h stdlib.h string.h time.h uchar.h "
    "wchar.h "
    "wctype.h ";

bool IsStandardHeader(const std::string& name) {
  return name.find(' ') == std::string::npos &&
         kStandardHeaders.find(" " + name + " ") != std::string_view::npos;
}

std::string FirstComponent(const std::string& name) {
  const std::size_t slash = name.find('/');
  return slash == std::string::npos ? std::string() : name.substr(0, slash);
}

bool IsFolderOfTheTree(const std::string& folder) {
  static const std::set<std::string> kOthers = {"tests", "bench", "fuzz"};
  for (const Layer& layer : Layers()) {
    if (layer.folder == folder) return true;
  }
  return kOthers.count(folder) != 0;
}

/// What is wrong with `name` being included, between quotes or not, by a file of `layer`; empty when nothing
/// is.
std::string Complaint(const Layer& layer, const std::string& file, const std::string& name, bool quoted) {
  if (name.empty()) return "the name of an include must be written out";
  if (file == kVocabulary && (name != "string" || quoted)) return "the vocabulary includes only <string>";
  if (std::regex_search(name, std::regex("(^|/)\\.\\.?/"))) return name + " is not a path from the top";
  const std::string folder = FirstComponent(name);
  if (IsFolderOfTheTree(folder)) {
    const bool allowed =
        folder == layer.folder || layer.mayInclude.count(folder) != 0 || layer.mayInclude.count(name) != 0;
    return allowed ? std::string() : layer.folder + " may not include " + name;
  }
  if (quoted) return name + " is not a path from the top";
  if (!layer.isPlugin || folder == "boost" || IsStandardHeader(name)) return std::string();
  return layer.folder + " may not use the library behind <" + name + ">";
}

void CheckFile(const Layer& layer, const std::filesystem::path& root, const std::string& file,
               std::vector<std::string>& violations) {
  static const std::regex kDirective(R"(\s*#\s*(?:include|include_next|import)\b\s*(.*))");
  static const std::regex kName(R"re((?:<([^>]*)>|"([^"]*)")\s*)re");
  const std::vector<std::string> lines = Lines(WithoutComments(ReadSource(root / file)));
  for (std::size_t number = 0; number < lines.size(); ++number) {
    std::smatch directive;
    if (!std::regex_match(lines[number], directive, kDirective)) continue;
    const std::string target = directive[1];
    std::smatch name;
    const bool isPlain = std::regex_match(target, name, kName);
    const bool quoted = isPlain && name[2].matched;
    const std::string complaint = Complaint(layer, file,
                                            !isPlain ? std::string()
                                            : quoted ? name[2].str()
                                                     : name[1].str(),
                                            quoted);
    if (complaint.empty()) continue;
    violations.push_back(file + ":" + std::to_string(number + 1) + ": " + complaint);
  }
}

}  // namespace

std::vector<std::string> IncludeRules::Folders() {
  std::vector<std::string> folders;
  for (const Layer& layer : Layers()) folders.push_back(layer.folder);
  return folders;
}

std::vector<std::string> IncludeRules::Violations() const {
  std::vector<std::string> violations;
  for (const Layer& layer : Layers()) {
    for (const std::string& file : SourceFiles(fRoot, layer.folder))
      CheckFile(layer, fRoot, file, violations);
  }
  return violations;
}

}  // namespace usbinfo_test
