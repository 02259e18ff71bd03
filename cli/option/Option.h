// One option of a command. The parser, the help, the manual page and the shell completions are made from it.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace cli {

/// One of the words that an option takes.
struct Choice {
  std::string name;
  /// A few words of plain text; empty where the name says it all.
  std::string description = {};
};

struct Option {
  /// With their dashes; the long one last.
  std::vector<std::string> names;
  /// The value's name in all texts; empty for an option without one. Shells complete "FILE" with file names.
  std::string value = {};
  /// One sentence of plain text without its period.
  std::string help = {};
  /// The default, as text; empty where it is obvious.
  std::string defaultValue = {};
  /// The words that texts list and shells offer for the value; none where it is free.
  std::vector<Choice> choices = {};
  /// The value is a list of such words, separated by commas.
  bool isList = false;
  bool isRepeatable = false;
  /// Another option that this one requires; empty for none.
  std::string requiredOption = {};
  /// When it is given, the rest of the command line is neither checked nor stored.
  bool isExclusive = false;
  /// It is left out of all texts.
  bool isHidden = false;
  /// The paragraph in the manual page, as mdoc source; the choices follow it.
  std::string manual = {};
  /// Takes the value, once for each time the option is given. Throws UsageError, which says what the value
  /// must be: "must not be empty".
  std::function<void(const std::string& value)> store = {};

  bool TakesValue() const { return !value.empty(); }
  const std::string& LastName() const { return names.back(); }
};

}  // namespace cli
