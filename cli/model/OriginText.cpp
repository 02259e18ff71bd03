#include "cli/model/OriginText.h"

#include <fmt/format.h>

#include "cli/model/DeviceText.h"

namespace cli {

namespace {

void AddOptions(const char* option, const std::vector<std::string>& values,
                std::vector<std::string>& options) {
  for (const std::string& value : values) options.push_back(fmt::format("{} {}", option, value));
}

}  // namespace

std::string SourceOf(const Origin& origin) {
  if (origin.source == "list") return "a device list";
  return origin.source == "plugin" ? "the device list that the plug-in found" : origin.source;
}

std::string TimeOf(const Origin& origin) {
  if (!origin.collected) return "not known";
  std::string time = *origin.collected;
  const std::size_t t = time.find('T');
  if (t != std::string::npos) time[t] = ' ';
  if (time.ends_with('Z')) time.replace(time.size() - 1, 1, " UTC");
  return time;
}

std::string MaskingOf(const Origin& origin) {
  if (!origin.masked) return "as the devices send them";
  return origin.masked->key ? "masked with the key " + *origin.masked->key : "masked with a random key";
}

std::vector<std::string> OptionsOf(const SelectedBy& selection) {
  std::vector<std::string> options;
  AddOptions("-d", selection.ids, options);
  AddOptions("-s", selection.places, options);
  AddOptions("--class", selection.classes, options);
  return options;
}

std::string Describe(const Finding& finding) {
  const char* const noun = finding.lines.size() == 1 ? "line" : "lines";
  return fmt::format("{} {} of the device list, of \"{}\" ({})", noun, fmt::join(finding.lines, ", "),
                     finding.device, finding.code);
}

std::string DescribeForgery(const Finding& finding) {
  return fmt::format("the kernel does not write {}; a device may have forged this", Describe(finding));
}

std::string Describe(const Repair& repair) {
  const std::string devices = Count(repair.count, "device");
  if (repair.code == "parent") return "wrong parents of " + devices;
  if (repair.code == "stale-interface") return "interfaces of " + devices + " without a configuration";
  return repair.code + " of " + devices;
}

}  // namespace cli
