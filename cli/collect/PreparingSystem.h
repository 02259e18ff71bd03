// Prepares every device list that the plug-in gets from the machine on its own.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/collect/ForwardingSystem.h"
#include "cli/collect/ListPreparation.h"

namespace cli {

/// What became of the last list that was not empty.
struct ListOnItsWay {
  std::optional<PreparedList> list;
  /// Whether the plug-in was not given it, because it would have taken it for a shell's message that
  /// usb-devices is not installed. The list is to be given to it in another way.
  bool isWithheld = false;
};

class PreparingSystem : public ForwardingSystem {
 public:
  /// Records in `onItsWay` what the plug-in is given.
  PreparingSystem(std::unique_ptr<standin::OperatingSystem> next, ListTreatment treatment,
                  std::shared_ptr<ListOnItsWay> onItsWay);

  std::string CaptureFile(const std::string& path) override;
  /// The plug-in takes an output with the word "command-not-found" for no list. A device may have that word
  /// in a string, so a list with it is withheld, unless the treatment is to leave everything as it is.
  std::string SpawnProcess(const std::string& command, int seconds) override;

 private:
  const PreparedList& Prepare(const std::string& text);

  ListTreatment fTreatment;
  std::shared_ptr<ListOnItsWay> fOnItsWay;
};

}  // namespace cli
