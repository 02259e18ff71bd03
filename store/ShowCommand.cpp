#include "store/ShowCommand.h"

#include <fmt/format.h>

#include <limits>
#include <set>

#include "cli/format/OutputFormat.h"
#include "cli/format/RenderOptions.h"
#include "cli/model/Inventory.h"
#include "cli/model/UsbIds.h"
#include "cli/option/CommonOptions.h"
#include "cli/option/Values.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Output.h"
#include "store/DatabaseLocation.h"
#include "store/Message.h"
#include "store/OpenStore.h"
#include "store/ReportReader.h"

namespace store {

namespace {

/// All but the device list, which an inventory does not hold.
std::vector<cli::Choice> FormatsOfInventories() {
  std::vector<cli::Choice> choices;
  for (const cli::OutputFormat& format : cli::OutputFormats()) {
    if (format.name != "list") choices.push_back({format.name, format.description});
  }
  return choices;
}

std::set<std::uint16_t> VendorsOf(const cli::Inventory& inventory) {
  std::set<std::uint16_t> vendors;
  for (const std::vector<cli::Item>* const items : {&inventory.Hubs(), &inventory.Devices()}) {
    for (const cli::Item& item : *items) {
      vendors.insert(static_cast<std::uint16_t>(item.Number(schema::PropertyId::kVendorID)));
    }
  }
  return vendors;
}

std::string Render(const cli::Inventory& inventory, const cli::OutputFormat& format,
                   const ShowOptions& options) {
  const std::optional<cli::UsbIds> names =
      format.showsNames ? cli::UsbIds::OfThisMachine(VendorsOf(inventory)) : std::nullopt;
  cli::RenderOptions rendering;
  rendering.isStandardOutput = cli::IsStandardOutput(options.output);
  rendering.color = cli::ColorOf(options.color);
  rendering.isVerbose = options.isVerbose;
  rendering.names = names ? &*names : nullptr;
  return format.render(inventory, rendering);
}

/// The message for a host without a report at that time.
std::string DescribeNothing(Database& database, const ShowOptions& options) {
  if (HasHost(database, options.host)) {
    return fmt::format("{} had no report by then; leave --at out to see the last one", options.host);
  }
  return DescribeNoHost(options.host);
}

}  // namespace

std::vector<cli::Operand> ShowOperands(ShowOptions& options) {
  return {
      {.name = "HOST", .help = "The name of the host", .isText = true, .store = StoreHostName(options.host)}};
}

std::vector<cli::Option> ShowOptionTable(ShowOptions& options) {
  const std::vector<cli::Choice> formats = FormatsOfInventories();
  options.format = formats.front().name;
  return {DatabaseOption(options.database),
          AtOption(options.at),
          cli::FormatOption(options.format, formats),
          {.names = {"-v", "--verbose"},
           .help = "Show all that is known of each item in the tree",
           .manual = "Show all that is known of each hub and device in the tree.",
           .store = cli::StoreTrue(options.isVerbose)},
          cli::ColorOption(options.color),
          cli::OutputOption(options.output)};
}

void CheckShow(const ShowOptions& options) {
  if (options.isVerbose && options.format != "tree") {
    throw cli::UsageError("-v is for the tree: leave it out, or use --format tree");
  }
}

int RunShow(const ShowOptions& options, const Clock& clock) {
  const auto database = OpenStore(FindDatabase(options.database, options.output), Access::kExisting);
  const Seconds at = options.at ? options.at->At(clock.Now()) : std::numeric_limits<Seconds>::max();
  const std::optional<cli::Inventory> inventory = ReadReport(*database, options.host, at);
  if (!inventory) {
    PrintMessage(DescribeNothing(*database, options));
    return cli::kNothingFound;
  }
  const cli::OutputFormat& format = cli::FindOutputFormat(options.format);
  cli::WriteOutput(options.output, Render(*inventory, format, options));
  return cli::kPrinted;
}

}  // namespace store
