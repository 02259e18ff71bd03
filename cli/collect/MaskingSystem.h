// Masks the serial numbers in every device list before the plug-in reads it, whether it comes from the
// machine or from a file. So neither the inventory nor the log ever has them.
#pragma once

#include <memory>
#include <string>

#include "cli/collect/ForwardingSystem.h"
#include "cli/collect/SerialMask.h"

namespace cli {

/// `text` with the mask in place of what follows the first "SerialNumber=" of a line, whatever the case of
/// its letters, up to the line's end. Blanks and carriage returns at the line's end are removed; a line that
/// has nothing else there is not changed, nor are the strings of root hubs (see RootHubStrings).
std::string MaskSerials(const std::string& text, const SerialMask& mask);

class MaskingSystem : public ForwardingSystem {
 public:
  MaskingSystem(std::unique_ptr<standin::OperatingSystem> next, SerialMask mask);

  std::string CaptureFile(const std::string& path) override;
  std::string SpawnProcess(const std::string& command, int seconds) override;

 private:
  SerialMask fMask;
};

}  // namespace cli
