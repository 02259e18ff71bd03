#include "store/Report.h"

#include <fmt/format.h>

#include <utility>

#include "cli/format/JsonFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/JsonValues.h"
#include "cli/model/KernelJson.h"
#include "cli/model/OriginJson.h"
#include "cli/text/JsonWriter.h"
#include "store/ColumnText.h"
#include "store/ContentHash.h"
#include "store/HostName.h"
#include "store/ItemColumns.h"
#include "store/Refusal.h"

using cli::JsonWriter;

namespace store {

namespace {

/// No two reports with such masks can be compared.
const std::string kRandomMask = "random";

template <typename Write>
std::string OneLine(Write write) {
  JsonWriter json(JsonWriter::Layout::kOneLine);
  write(json);
  return json.Take();
}

void CheckHostName(const std::string& name) {
  if (name.empty()) throw Refusal("it does not name its system; collect it with --system-name");
  if (!IsHostName(name)) {
    throw Refusal(fmt::format(
        "its system's name is no name of a host: it has control characters or more than {} bytes; collect it "
        "with --system-name",
        kLongestHostName));
  }
}

void CheckIsWhole(const cli::Inventory& inventory) {
  if (!inventory.GetOrigin() || !inventory.GetOrigin()->selection) return;
  throw Refusal(
      "it is only a part of an inventory, made with -d, -s, --class or the like; collect it without these");
}

Seconds ReadTime(const std::string& text) {
  const std::optional<Seconds> time = ParseTime(text);
  if (!time) throw Refusal(fmt::format("/origin/collected: there is no time \"{}\"", text));
  return *time;
}

Text OriginWithoutTime(const std::optional<cli::Origin>& origin) {
  if (!origin) return std::nullopt;
  cli::Origin timeless = *origin;
  timeless.collected.reset();
  return OneLine([&](JsonWriter& json) { cli::WriteOrigin(json, timeless); });
}

std::string HashOf(const StoredItem& item) {
  ContentHash hash;
  hash.Add(std::to_string(static_cast<int>(item.section)));
  hash.Add(item.content);
  for (const Parameter& column : item.columns) {
    hash.Add(std::visit([](const auto& value) { return value ? fmt::format("={}", *value) : ""; }, column));
  }
  return hash.Text();
}

}  // namespace

Report::Report(cli::Inventory inventory, std::optional<Seconds> collected,
               const std::optional<TimelessText>& text)
    : fInventory(std::move(inventory)), fOrigin(OriginWithoutTime(fInventory.GetOrigin())) {
  CheckHostName(HostName());
  CheckIsWhole(fInventory);
  const std::optional<cli::Origin>& origin = fInventory.GetOrigin();
  fSaysCollected = origin && origin->collected;
  if (!fSaysCollected && !collected) {
    throw Refusal("it does not say when it was collected; say it with --collected");
  }
  fCollected = fSaysCollected ? ReadTime(*origin->collected) : *collected;
  AddContents();
  fHash = HashOfAll();
  if (text && fSaysCollected && text->time == fCollected && Mask() != kRandomMask) fTextHash = text->hash;
}

Text Report::Machine() const {
  const std::optional<cli::Origin>& origin = fInventory.GetOrigin();
  return origin && origin->machine ? Text(ColumnText(*origin->machine)) : std::nullopt;
}

Text Report::Mask() const {
  const std::optional<cli::Origin>& origin = fInventory.GetOrigin();
  if (!origin) return std::nullopt;
  if (!origin->masked) return "none";
  return origin->masked->key ? "key:" + ColumnText(*origin->masked->key) : kRandomMask;
}

std::size_t Report::Findings() const {
  return fInventory.GetOrigin() ? fInventory.GetOrigin()->findings.size() : 0;
}

std::vector<StoredItem> Report::Items() const {
  const ItemColumns columns(fInventory);
  std::vector<StoredItem> items;
  items.reserve(fContents.size());
  for (const Content& content : fContents) {
    items.push_back({.section = content.section,
                     .content = content.json,
                     .columns = content.item == nullptr ? ItemColumns::None() : columns.Of(*content.item),
                     .hash = {}});
    items.back().hash = HashOf(items.back());
  }
  return items;
}

std::string Report::Document() const {
  return cli::RenderJson(fInventory, {});
}

void Report::AddContents() {
  for (const Section section : kClassSections) {
    for (const cli::Item& item : fInventory.Of(ClassOf(section)).items) {
      fContents.push_back(
          {section, OneLine([&](JsonWriter& json) { cli::WriteProperties(json, item); }), &item});
    }
  }
  if (!fInventory.Kernel()) return;
  for (const cli::DeviceFacts& device : fInventory.Kernel()->devices) {
    fContents.push_back({Section::kDeviceFacts,
                         OneLine([&](JsonWriter& json) { cli::WriteDeviceFacts(json, device); }), nullptr});
  }
  for (const cli::PortFacts& port : fInventory.Kernel()->ports) {
    fContents.push_back(
        {Section::kPortFacts, OneLine([&](JsonWriter& json) { cli::WritePortFacts(json, port); }), nullptr});
  }
}

std::string Report::HashOfAll() const {
  ContentHash hash;
  hash.Add(HostName());
  hash.Add(fOrigin.value_or(""));
  hash.Add(fSaysCollected ? "collected" : "");
  hash.Add(fInventory.Kernel() ? "kernel" : "");
  for (const Content& content : fContents) {
    hash.Add(std::to_string(static_cast<int>(content.section)));
    hash.Add(content.json);
  }
  return hash.Text();
}

}  // namespace store
