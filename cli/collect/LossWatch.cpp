#include "cli/collect/LossWatch.h"

#include <fmt/format.h>

#include "cli/text/UserError.h"

using NKESTA20::ILogger;

namespace cli {

namespace {

bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

/// What was lost according to `text`; empty when nothing was.
std::string_view LossOf(std::string_view text) {
  for (const std::string_view whole :
       {"USBInfo plugin threw unknown exception", "Could not change Status Description property"}) {
    if (text == whole) return whole;
  }
  // Names of providers and associations come before them, tabs after them.
  constexpr std::string_view kError = " encountered an error";
  const std::size_t error = text.find(kError);
  if (error == std::string_view::npos) return {};
  text.remove_prefix(error + kError.size());
  text.remove_prefix(std::min(text.find_first_not_of('\t'), text.size()));
  for (const std::string_view start : {"generating CIM instances for ", "enumerating CIM instances for "}) {
    if (StartsWith(text, start)) return start.substr(0, start.find(" for "));
  }
  // A record at level 0 that is not a hub has no parent and lacks the properties that come from one.
  constexpr std::string_view kReading = "when collecting ";
  if (StartsWith(text, kReading) && !EndsWith(text, " Error Code: CIM_ERR_NO_SUCH_PROPERTY")) {
    return "collecting properties";
  }
  return {};
}

}  // namespace

void LossWatch::Take(ILogger::EQSVLogSeverity severity, std::string_view text) {
  if (severity != ILogger::kStatus) return;
  const std::string_view loss = LossOf(text);
  if (loss.empty()) return;
  if (fLosses++ == 0) fFirst = loss;
}

void LossWatch::CheckNothingLost() const {
  if (fLosses == 0) return;
  throw UserError(fmt::format(
      "the inventory is incomplete: the plug-in logged {} failure{}, the first: {}; if memory is short, "
      "allow for more, else see the log with --log-level status",
      fLosses, fLosses == 1 ? "" : "s", fFirst));
}

}  // namespace cli
