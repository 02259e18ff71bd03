#include "cli/text/Text.h"

#include <langinfo.h>

#include <algorithm>
#include <clocale>
#include <sstream>
#include <utility>

#include "cli/text/MapCharacters.h"

namespace cli {

namespace {

/// The character set of the environment has been asked for and not been loaded yet.
bool isCharacterSetDue = false;

constexpr char32_t kBeyondAscii = 0x80;

class TerminalPolicy {
 public:
  explicit TerminalPolicy(bool isUtf8) : fIsUtf8(isUtf8) {}

  void operator()(const Character& character, bool isUnprintable, std::string& out) const {
    if (character.code == U'\\') {
      out += "\\\\";
    } else if (character.code == U'\n') {
      out += "\\n";
    } else if (character.code == U'\t' || IsShown(character, isUnprintable)) {
      out += character.bytes;
    } else {
      AppendByteEscapes(character.bytes, out);
    }
  }

 private:
  bool IsShown(const Character& character, bool isUnprintable) const {
    return !isUnprintable && (fIsUtf8 || character.code < kBeyondAscii);
  }

  bool fIsUtf8;
};

std::string Quote(std::string_view text, bool isUtf8) {
  const auto policy = [terminal = TerminalPolicy(isUtf8)](const Character& character, bool isUnprintable,
                                                          std::string& out) {
    if (character.code == U'"') {
      out += "\\\"";
    } else if (character.code == U'\t') {
      out += "\\t";
    } else {
      terminal(character, isUnprintable, out);
    }
  };
  std::string quoted = "\"";
  AppendMapped(text, policy, quoted);
  quoted += '"';
  return quoted;
}

void AppendForMof(const Character& character, bool isUnprintable, std::string& out) {
  if (!character.isValid) {
    out += kReplacement;
  } else if (character.code == U'\\' || character.code == U'"') {
    out.append("\\").append(character.bytes);
  } else if (character.code == U'\n') {
    out += "\\n";
  } else if (character.code == U'\t') {
    out += "\\t";
  } else if (isUnprintable) {
    AppendUtf16Escape("\\x", character.code, out);
  } else {
    out += character.bytes;
  }
}

}  // namespace

void UseCharacterSetOfEnvironment() {
  isCharacterSetDue = true;
}

bool IsLocaleUtf8() {
  // Numbers keep the form that programs expect.
  if (std::exchange(isCharacterSetDue, false)) static_cast<void>(std::setlocale(LC_CTYPE, ""));
  return std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
}

std::string ToLower(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

std::string EscapeForTerminal(std::string_view text) {
  return MapCharacters(text, TerminalPolicy(IsLocaleUtf8()));
}

std::string EscapeForDocument(std::string_view text) {
  return MapCharacters(text, [terminal = TerminalPolicy(true)](const Character& character, bool isUnprintable,
                                                               std::string& out) {
    if (character.code == U'\t') {
      AppendByteEscapes(character.bytes, out);
    } else {
      terminal(character, isUnprintable, out);
    }
  });
}

std::string QuoteForTerminal(std::string_view text) {
  return Quote(text, IsLocaleUtf8());
}

std::string QuoteForDocument(std::string_view text) {
  return Quote(text, true);
}

std::string InCharacterSetOfLocale(std::string_view text) {
  if (IsLocaleUtf8()) return std::string(text);
  return MapCharacters(text, [](const Character& character, bool /*isUnprintable*/, std::string& out) {
    if (character.code < kBeyondAscii) {
      out += character.bytes;
    } else {
      AppendByteEscapes(character.bytes, out);
    }
  });
}

std::string EscapeForMof(std::string_view text) {
  return MapCharacters(text, AppendForMof);
}

std::vector<std::string> SplitAtCommas(const std::string& text) {
  std::vector<std::string> parts;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, ',');) parts.push_back(part);
  return parts;
}

void AddOnce(std::string text, std::vector<std::string>& texts) {
  if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(std::move(text));
}

}  // namespace cli
