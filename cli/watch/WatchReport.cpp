#include "cli/watch/WatchReport.h"

#include <fmt/format.h>

#include <optional>

#include "cli/diff/DiffJson.h"
#include "cli/diff/DiffText.h"
#include "cli/diff/InventoryDiff.h"
#include "cli/model/JsonValues.h"
#include "cli/model/Kinds.h"
#include "cli/policy/PolicyCheckJson.h"
#include "cli/text/JsonWriter.h"
#include "cli/text/UtcTime.h"

namespace cli {

namespace {

constexpr const char* kSchema = "usbinfo.watch/1";

std::string IdOf(const kernel::Device& device) {
  return fmt::format("{:04x}:{:04x}", device.descriptor.vendor, device.descriptor.product);
}

std::string DescribeKinds(const kernel::Device& device) {
  const std::vector<std::string> kinds = KindsOf(device);
  return kinds.empty() ? "device" : fmt::format("{}", fmt::join(kinds, ", "));
}

void WriteVisitor(JsonWriter& json, const kernel::Device& device) {
  json.BeginObject();
  WriteMember(json, "name", device.name);
  WriteMember(json, "number", std::uint64_t{device.number});
  WriteMember(json, "id", IdOf(device));
  WriteMember(json, "kinds", KindsOf(device));
  json.EndObject();
}

void WriteRefusal(JsonWriter& json, const Refusal& refusal) {
  json.BeginObject();
  WriteDevice(json, refusal.device);
  WriteMember(json, "decision",
              refusal.decision ? std::optional(std::string(NameOf(refusal.decision->target))) : std::nullopt);
  WriteRule(json, refusal.decision ? refusal.decision->rule : nullptr);
  WriteMember(json, "reason", refusal.reason);
  json.EndObject();
}

void WriteRefusals(JsonWriter& json, const std::optional<std::vector<Refusal>>& refusals) {
  if (!refusals) {
    WriteMember(json, "notAllowed", std::optional<std::string>());
    return;
  }
  WriteList(json, "notAllowed", *refusals, [&json](const Refusal& refusal) { WriteRefusal(json, refusal); });
}

std::optional<std::string> MachineOf(const InventoryDifference& difference) {
  return difference.after.origin ? difference.after.origin->machine : std::nullopt;
}

}  // namespace

bool WatchReport::IsEmpty() const {
  const bool hasRefusals = refusals && !refusals->empty();
  return difference->IsEmpty() && cameAndWent.empty() && !hasLosses && !hasRefusals;
}

std::string RenderWatchText(const WatchReport& report, bool isColored) {
  const InventoryDifference& difference = *report.difference;
  std::string text = difference.IsEmpty() ? RenderDiffHeading(difference.before, difference.after)
                                          : RenderDiffText(difference, isColored);
  for (const kernel::Device& device : report.cameAndWent) {
    text += fmt::format("* {}: {} {} came and went\n", device.name, DescribeKinds(device), IdOf(device));
  }
  for (const Refusal& refusal : report.refusals.value_or(std::vector<Refusal>())) {
    text += fmt::format("! {}\n", Describe(refusal));
  }
  if (report.hasLosses) text += "! events were lost: more devices may have come and gone\n";
  return text;
}

std::string RenderWatchJson(const WatchReport& report) {
  JsonWriter json(JsonWriter::Layout::kOneLine);
  json.BeginObject();
  json.Key("schema");
  json.String(kSchema);
  WriteMember(json, "time", FormatUtc(report.time));
  WriteMember(json, "machine", MachineOf(*report.difference));
  WriteMember(json, "sequence", report.sequence);
  json.Key("difference");
  WriteDiff(json, *report.difference);
  WriteList(json, "cameAndWent", report.cameAndWent,
            [&json](const kernel::Device& device) { WriteVisitor(json, device); });
  json.Key("eventsLost");
  json.Bool(report.hasLosses);
  WriteRefusals(json, report.refusals);
  json.EndObject();
  return json.Take() + "\n";
}

}  // namespace cli
