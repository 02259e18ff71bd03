#include "cli/collect/Collection.h"

#include <fmt/format.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "cli/collect/AcquisitionWatch.h"
#include "cli/collect/DeviceListText.h"
#include "cli/collect/Hardening.h"
#include "cli/collect/InventoryMask.h"
#include "cli/collect/ListLimits.h"
#include "cli/collect/ListPreparation.h"
#include "cli/collect/OriginNotes.h"
#include "cli/collect/PluginRun.h"
#include "cli/collect/PreparingSystem.h"
#include "cli/collect/SystemName.h"
#include "cli/collect/UsbguardHashes.h"
#include "cli/collect/WaitingNotice.h"
#include "cli/model/FromJson.h"
#include "cli/model/FromKernel.h"
#include "cli/text/Input.h"
#include "cli/text/Message.h"
#include "cli/text/UserError.h"
#include "kernel/DeviceListReader.h"
#include "kernel/DeviceListWriter.h"
#include "kernel/SysfsReader.h"
#include "schema/ClassSchema.h"
#include "standin/GivenDeviceList.h"
#include "standin/Machine.h"
#include "system/FileDescriptor.h"

using standin::OperatingSystem;

namespace cli {

namespace {

constexpr const char* kNameOfOwnList = "the list of this machine";

SerialMask MaskOf(const Source& source) {
  // The key and the serial numbers are in memory from here on.
  ForbidCoreDumps();
  if (source.maskKey.empty()) return SerialMask::OfThisRun();
  return SerialMask::OfKeyFile(source.maskKey);
}

ListTreatment TreatmentOf(const Source& source) {
  ListTreatment treatment;
  treatment.isAsIs = source.isAsIs;
  if (source.maskSerials) treatment.mask = MaskOf(source);
  return treatment;
}

/// The machine. Where standard error is a terminal, a notice is printed when a command takes long.
std::unique_ptr<OperatingSystem> WatchedMachine(const std::shared_ptr<Acquisition>& acquisition,
                                                bool noLimits) {
  auto machine =
      std::make_unique<AcquisitionWatch>(std::make_unique<standin::Machine>(), acquisition, noLimits);
  if (::isatty(STDERR_FILENO) == 0) return machine;
  return std::make_unique<WaitingNotice>(std::move(machine), std::chrono::seconds(1),
                                         [](const std::string& line) { sys::WriteAll(STDERR_FILENO, line); });
}

/// Throws UserError for a text that is not a device list.
void CheckDeviceList(const std::string& text, const std::string& name) {
  if (IsBlank(text) || LooksLikeDeviceList(text)) return;
  throw UserError(
      fmt::format("{} holds no device list: no line begins with \"T:\"; a device list is what "
                  "/sys/kernel/debug/usb/devices or usb-devices prints",
                  name));
}

/// The system name for a list; empty for this machine's.
std::string SystemNameOf(const Source& source, bool isEmpty) {
  if (!source.systemName.empty()) return source.systemName;
  const std::optional<std::string> name = SystemNameOfList(source.devices);
  if (name) return *name;
  constexpr const char* kUnknown = "unknown";
  if (!isEmpty) {
    PrintMessage(fmt::format(
        "nothing says which system the list from {} is of, so its name is \"{}\"; give its name with "
        "--system-name NAME",
        NameOfList(source.devices), kUnknown));
  }
  return kUnknown;
}

Inventory ReadSaved(const std::string& text, const Source& source) {
  Inventory inventory = FromJson(text, NameOfList(source.devices));
  return source.maskSerials ? MaskSerials(inventory, MaskOf(source)) : inventory;
}

/// Adds what the list says besides the classes, and where it comes from.
Inventory Complete(Inventory inventory, const kernel::Topology& topology, PreparedList list,
                   const ListTreatment& treatment, const std::string& from) {
  inventory.SetKernel(FromKernel(topology, inventory));
  inventory.SetOrigin(NoteOrigin(from, list, treatment));
  inventory.SetDeviceList(std::move(list.whole));
  WarnOfRepairs(list.repairs);
  return inventory;
}

/// What the plug-in makes of a list that it finds in the place of the first file that it looks for.
Inventory RunPluginOn(const PreparedList& list, const PluginRequest& request, LogWriter& log) {
  return RunPlugin(request, std::make_unique<standin::GivenDeviceList>(list.read), log);
}

/// The serial numbers of `topology` as they stand in its list.
void TakeSerials(kernel::Topology& topology, const std::string& list) {
  const kernel::Topology masked = kernel::ReadDeviceList(list);
  for (std::size_t index = 0; index < topology.devices.size(); ++index) {
    topology.devices[index].serial = masked.devices.at(index).serial;
  }
}

bool IsSysfsMounted() {
  return ::access("/sys/bus", F_OK) == 0;
}

kernel::Topology ReadThisMachine(const kernel::SysfsParts& parts) {
  if (!IsSysfsMounted()) {
    throw UserError(
        fmt::format("cannot read {}: sysfs is not mounted; mount it on /sys, or use --source plugin",
                    kernel::kSysfsDevices));
  }
  try {
    kernel::Topology topology = kernel::ReadSysfs(kernel::kSysfsDevices, parts);
    if (topology.unreadable.empty()) return topology;
    const kernel::UnreadableDevice& device = topology.unreadable.front();
    throw UserError(fmt::format(
        "cannot read the device {} in {}: {}; use --source plugin to read the device list instead",
        device.name, kernel::kSysfsDevices, device.reason));
  } catch (const std::system_error& error) {
    throw UserError(fmt::format("cannot read {}: {}; use --source plugin to read the device list instead",
                                kernel::kSysfsDevices, error.code().message()));
  }
}

Inventory CollectFromSysfs(const Source& source, const PluginRequest& request, LogWriter& log) {
  const ListTreatment treatment = TreatmentOf(source);
  kernel::Topology topology = ReadThisMachine(
      {.nodes = source.readsNodes, .ports = source.readsPorts, .descriptors = source.makesHashes});
  const std::string text = kernel::WriteDeviceList(topology);
  if (!source.noLimits) CheckListLimits(text, kNameOfOwnList);
  PreparedList list = PrepareList(text, treatment);
  if (treatment.mask) TakeSerials(topology, list.whole);
  Inventory inventory = RunPluginOn(list, request, log);
  inventory = Complete(std::move(inventory), topology, std::move(list), treatment, "sysfs");
  if (source.makesHashes) inventory.SetKernel(WithHashes(*inventory.Kernel(), topology));
  return inventory;
}

Inventory CollectThroughPlugin(const Source& source, const PluginRequest& request, LogWriter& log) {
  const ListTreatment treatment = TreatmentOf(source);
  const auto acquisition = std::make_shared<Acquisition>();
  const auto onItsWay = std::make_shared<ListOnItsWay>();
  auto system =
      std::make_unique<PreparingSystem>(WatchedMachine(acquisition, source.noLimits), treatment, onItsWay);
  Inventory inventory = RunPlugin(request, std::move(system), log, [&acquisition] {
    CheckAcquisition(*acquisition, MachineFacts::OfThisMachine());
  });
  PreparedList list = std::move(onItsWay->list).value_or(PreparedList());
  if (onItsWay->isWithheld) inventory = RunPluginOn(list, request, log);
  const kernel::Topology topology = kernel::ReadDeviceList(list.repaired);
  return Complete(std::move(inventory), topology, std::move(list), treatment, "plugin");
}

bool ReadsSysfs(const Source& source) {
  const Source::Way way = source.way.value_or(Source::Way::kAuto);
  if (way == Source::Way::kAuto) return IsSysfsMounted();
  return way == Source::Way::kSysfs;
}

}  // namespace

std::vector<std::string> AllClasses() {
  std::vector<std::string> names;
  for (const schema::ClassSchema& schema : schema::ServedClasses()) names.push_back(schema.name);
  return names;
}

Inventory Collect(const Source& source, const std::vector<std::string>& classNames, LogWriter& log) {
  if (source.maskKey == "-" && source.devices == "-") {
    throw UserError("--devices and --mask-key cannot both be standard input; name a file for one of them");
  }
  if (!source.devices.empty()) {
    const std::string input =
        ReadInput(source.devices, "name a file that holds a device list with --devices");
    return CollectFrom(input, source, classNames, log);
  }
  const PluginRequest request = {source.plugin, source.systemName, classNames};
  if (ReadsSysfs(source)) return CollectFromSysfs(source, request, log);
  return CollectThroughPlugin(source, request, log);
}

Inventory CollectFrom(const std::string& input, const Source& source,
                      const std::vector<std::string>& classNames, LogWriter& log) {
  if (LooksLikeJson(input)) return ReadSaved(input, source);
  const std::string name = NameOfList(source.devices);
  CheckDeviceList(input, name);
  if (!source.noLimits) CheckListLimits(input, name);
  const ListTreatment treatment = TreatmentOf(source);
  PreparedList list = PrepareList(input, treatment);
  const kernel::Topology topology = kernel::ReadDeviceList(list.repaired);
  const PluginRequest request = {source.plugin, SystemNameOf(source, IsBlank(input)), classNames};
  Inventory inventory = RunPluginOn(list, request, log);
  return Complete(std::move(inventory), topology, std::move(list), treatment, "list");
}

}  // namespace cli
