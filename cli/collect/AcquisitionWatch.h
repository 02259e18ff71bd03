// Watches how the plug-in gets this machine's device list. The plug-in makes an empty inventory when it could
// not get the list, as a host expects; a user must not mistake that for a machine without USB.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/collect/EmptyAdvice.h"
#include "cli/collect/ForwardingSystem.h"

namespace cli {

/// What became of the attempts to get the list.
struct Acquisition {
  /// The file that exists and could not be read, with the reason; empty when there was none.
  std::string unreadableFile;
  /// How the command that prints the list ended; nothing when it did not run to its end.
  std::optional<int> commandStatus;
  bool hasCommandOutput = false;
  /// Why the command was not run to its end; empty when it was, or was not needed.
  std::string commandFailure;
  /// Why the list was refused; empty when it was not.
  std::string refusal;
};

/// Throws UserError when `acquisition` failed on a machine of these facts. It has not failed where the
/// machine has no USB devices to list.
void CheckAcquisition(const Acquisition& acquisition, const MachineFacts& facts);

class AcquisitionWatch : public ForwardingSystem {
 public:
  /// Records in `acquisition` what happens. A list beyond the limits is refused, see ListLimits, unless
  /// `noLimits`: the plug-in is then given none.
  AcquisitionWatch(std::unique_ptr<standin::OperatingSystem> machine,
                   std::shared_ptr<Acquisition> acquisition, bool noLimits);

  std::string CaptureFile(const std::string& path) override;
  /// Has the shell append the command's exit status to the output, and removes it from there.
  std::string SpawnProcess(const std::string& command, int seconds) override;

 private:
  std::string TakeExitStatus(std::string output);
  std::string WithinLimits(std::string list);

  std::shared_ptr<Acquisition> fAcquisition;
  bool fNoLimits;
};

}  // namespace cli
