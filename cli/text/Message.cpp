#include "cli/text/Message.h"

#include <iostream>

#include "cli/text/Text.h"

namespace cli {

namespace {

constexpr std::size_t kMostBytes = 2000;
constexpr std::size_t kBytesOfEnd = 500;

/// The position of the first character that begins at `at` or after it, and not in an escape like "\x7c".
std::size_t CharacterFrom(const std::string& text, std::size_t at) {
  constexpr std::size_t kEscape = 4;
  for (std::size_t before = 1; before < kEscape; ++before) {
    if (text.compare(at - before, 2, "\\x") != 0) continue;
    at += kEscape - before;
    break;
  }
  while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) ++at;
  return at;
}

std::string& ProgramName() {
  static std::string name = "usbinfo";
  return name;
}

}  // namespace

void NameProgram(const std::string& name) {
  ProgramName() = name;
}

std::string WithoutMiddle(const std::string& message) {
  if (message.size() <= kMostBytes) return message;
  return message.substr(0, CharacterFrom(message, kMostBytes - kBytesOfEnd)) + " [...] " +
         message.substr(CharacterFrom(message, message.size() - kBytesOfEnd));
}

void PrintMessage(const std::string& message) {
  std::cerr << ProgramName() << ": " << EscapeForTerminal(WithoutMiddle(message)) << "\n";
}

}  // namespace cli
