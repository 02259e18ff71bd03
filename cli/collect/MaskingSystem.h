// Masks the serial numbers in every device list on its way from the machine, or from a given list, to the
// plug-in. So neither the inventory nor the log ever has them.
#pragma once

#include <memory>
#include <string>

#include "cli/collect/ForwardingSystem.h"
#include "cli/collect/SerialMask.h"

namespace cli {

/// `text` with the mask in place of what follows the first "SerialNumber=" of a line, whatever the case of
/// its letters, up to the line's end. Blanks and carriage returns at that end do not count and go; a line
/// that has nothing else there stays as it is.
std::string MaskSerials(const std::string& text, const SerialMask& mask);

class MaskingSystem : public ForwardingSystem {
 public:
  MaskingSystem(std::unique_ptr<standin::OperatingSystem> behind, SerialMask mask);

  std::string CaptureFile(const std::string& path) override;
  std::string SpawnProcess(const std::string& command, int seconds) override;

 private:
  SerialMask fMask;
};

}  // namespace cli
