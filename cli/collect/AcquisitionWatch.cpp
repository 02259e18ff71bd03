#include "cli/collect/AcquisitionWatch.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

#include "cli/collect/ListLimits.h"
#include "cli/text/UserError.h"
#include "host/TQSVException.h"
#include "standin/Machine.h"

using NKESTA20::TQSVException;

namespace cli {

namespace {

constexpr std::string_view kStatusMark = "usbinfo-exit-status ";
constexpr int kNotFoundByShell = 127;

[[noreturn]] void Fail(const std::string& reason) {
  throw UserError("cannot list the USB devices of this machine: " + reason);
}

std::string ReasonOfCommand(const Acquisition& acquisition, const MachineFacts& facts) {
  if (*acquisition.commandStatus == kNotFoundByShell) return ReasonForNoList(facts);
  return fmt::format("usb-devices failed with exit status {}; run it by itself to see why",
                     *acquisition.commandStatus);
}

}  // namespace

void CheckAcquisition(const Acquisition& acquisition, const MachineFacts& facts) {
  if (!acquisition.refusal.empty()) throw UserError(acquisition.refusal);
  if (!acquisition.commandFailure.empty()) Fail(acquisition.commandFailure);
  if (acquisition.commandStatus.value_or(0) == 0) return;
  if (!acquisition.hasCommandOutput && (!facts.hasUsb || facts.hasNoDevices)) return;
  if (!acquisition.unreadableFile.empty()) Fail(acquisition.unreadableFile);
  Fail(ReasonOfCommand(acquisition, facts));
}

AcquisitionWatch::AcquisitionWatch(std::unique_ptr<standin::OperatingSystem> machine,
                                   std::shared_ptr<Acquisition> acquisition, bool noLimits)
    : ForwardingSystem(std::move(machine)), fAcquisition(std::move(acquisition)), fNoLimits(noLimits) {}

std::string AcquisitionWatch::CaptureFile(const std::string& path) {
  try {
    return WithinLimits(ForwardingSystem::CaptureFile(path));
  } catch (const TQSVException& error) {
    fAcquisition->unreadableFile = fmt::format(
        "{} cannot be read ({}), and usb-devices prints no list; run as root, or install the package "
        "usbutils",
        path, error.what());
    throw;
  }
}

std::string AcquisitionWatch::SpawnProcess(const std::string& command, int seconds) {
  if (!fAcquisition->refusal.empty()) return std::string();
  try {
    const std::string line = fmt::format("{}\necho \"{}$?\"", command, kStatusMark);
    return WithinLimits(TakeExitStatus(ForwardingSystem::SpawnProcess(line, seconds)));
  } catch (const TQSVException&) {
    fAcquisition->commandFailure = fmt::format(
        "{} was stopped: it did not end within {} seconds, or printed more than {} MiB; run it by itself to "
        "see why",
        command, seconds, standin::Machine::kMaxOutput >> 20);
    throw;
  }
}

std::string AcquisitionWatch::TakeExitStatus(std::string output) {
  // The shell writes it last, so nothing that the command prints can replace it.
  const std::size_t mark = output.rfind(kStatusMark);
  if (mark == std::string::npos) {
    fAcquisition->commandFailure = "the shell that runs usb-devices did not come to its end; try again";
    return output;
  }
  fAcquisition->commandStatus = std::stoi(output.substr(mark + kStatusMark.size()));
  output.erase(mark);
  fAcquisition->hasCommandOutput = !output.empty();
  return output;
}

std::string AcquisitionWatch::WithinLimits(std::string list) {
  if (fNoLimits) return list;
  try {
    CheckListLimits(list, "the list of this machine");
  } catch (const UserError& error) {
    fAcquisition->refusal = error.what();
    list.clear();
  }
  return list;
}

}  // namespace cli
