// Prints what is being waited for when a command of the machine takes long, so that a silent terminal does
// not look like a hung program. A separate thread measures the time; it ends with the command.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "cli/collect/ForwardingSystem.h"

namespace cli {

class WaitingNotice : public ForwardingSystem {
 public:
  using Notify = std::function<void(const std::string& line)>;

  /// Calls `notify` with one line, from another thread, when a command is not done after `patience`; once
  /// only, however many commands there are. Exceptions of `notify` are dropped.
  WaitingNotice(std::unique_ptr<standin::OperatingSystem> next, std::chrono::milliseconds patience,
                Notify notify);

  std::string SpawnProcess(const std::string& command, int seconds) override;

 private:
  std::chrono::milliseconds fPatience;
  Notify fNotify;
  bool fIsNotified = false;
};

}  // namespace cli
