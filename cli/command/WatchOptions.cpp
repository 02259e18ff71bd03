#include "cli/command/WatchOptions.h"

#include <chrono>
#include <utility>

#include "cli/command/SourceOptions.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/UsageError.h"
#include "cli/option/Values.h"

namespace cli {

namespace {

constexpr std::chrono::minutes kLongestSettle{1};
constexpr std::chrono::hours kLongestTimeout{24 * 366};

Option BaselineOption(WatchOptions& options) {
  return {.names = {"--baseline"},
          .value = "FILE",
          .help = "Compare with this JSON inventory or device list first; - is standard input",
          .defaultValue = "what the machine has at the start",
          .manual = R"(Compare this machine with the inventory in this file first, and print what differs at
once.
The file holds a JSON inventory of the whole machine, or a device list.
A single dash is standard input.
The default is what the machine has when the watch begins.)",
          .store = StoreText(options.baseline)};
}

Option PolicyOption(WatchOptions& options) {
  return {.names = {"--policy"},
          .value = "FILE",
          .help = "Report devices that this policy does not allow; - is standard input",
          .manual = R"(Report devices that the rules in this file do not allow, at the start and when they
come or change.
Nothing is done to them.
The rules are those of
.Cm check ;
they are read once.
A device that came and went is not held against them.
A single dash is standard input.)",
          .store = StoreText(options.policy)};
}

Option DefaultOfPolicyOption(std::string& target) {
  Option option = DefaultTargetOption(target);
  option.requiredOption = "--policy";
  return option;
}

Option SettleOption(WatchSettings& settings) {
  return {.names = {"--settle"},
          .value = "TIME",
          .help = "Look at the machine when nothing has happened for this time: 500ms, 2s",
          .defaultValue = "500ms",
          .manual = R"(Look at the machine when no event has come for this time, which is given as for
.Fl -timeout
and is one minute at most.
Where events go on and on, the machine is looked at after ten times as long.)",
          .store = [&settings](const std::string& text) {
            settings.settle = ParseDuration(text, kLongestSettle);
          }};
}

std::vector<Option> EndOptions(WatchSettings& settings) {
  return {{.names = {"--count"},
           .value = "N",
           .help = "End after N reports",
           .manual = "End after this many reports.",
           .store = StoreCount(settings.count)},
          {.names = {"--timeout"},
           .value = "TIME",
           .help = "End after this time: 90 for 90 seconds, 500ms, 10m, 2h",
           .manual = R"(End after this time, a whole number of seconds, or one with
.Li ms ,
.Li s ,
.Li m ,
.Li h
or
.Li d
after it, and 366 days at most.
What has happened by then is still printed.)",
           .store = [&settings](const std::string& text) {
             settings.timeout = ParseDuration(text, kLongestTimeout);
           }}};
}

}  // namespace

std::vector<Option> WatchOptionTable(WatchOptions& options) {
  std::vector<Option> table = {FormatOption(options.format, {{"text"}, {"jsonl", "an object per line"}}),
                               ColorOption(options.color),
                               BaselineOption(options),
                               PolicyOption(options),
                               DefaultOfPolicyOption(options.defaultTarget),
                               SettleOption(options.settings)};
  for (Option& option : EndOptions(options.settings)) table.push_back(std::move(option));
  table.push_back(IgnoreOption(options.settings.ignored));
  table.push_back(AllowSuspectOption("Compare", options.allowsSuspect));
  table.push_back(WayOption(options.source.way));
  table.push_back(AsIsOption(options.source.isAsIs));
  for (Option& option : MaskOptions(options.source, KeyInput::kFile)) table.push_back(std::move(option));
  for (Option& option : ListOptions(options.source)) table.push_back(std::move(option));
  return table;
}

void CheckWatchOptions(const WatchOptions& options) {
  if (options.source.maskKey == "-") {
    throw UsageError("--mask-key: the key is read for every look at the machine, so name a file");
  }
  if (options.baseline == "-" && options.policy == "-") {
    throw UsageError("standard input holds one file: name another for --baseline or --policy");
  }
}

}  // namespace cli
