// The core logger: it passes every line to the program that runs the host. The host owns it.
#pragma once

#include <functional>
#include <string>

#include "host/ILogger.h"
#include "standin/Export.h"

namespace standin {

class USBINFO_STANDIN_EXPORT Logger : public NKESTA20::ILogger {
 public:
  using Sink = std::function<void(EQSVLogSeverity severity, const std::string& text)>;

  void Reserved() override {}
  void Write(EQSVLogSeverity severity, const std::string& text) override;

  /// Gets every line from now on; an empty sink drops them.
  void SetSink(Sink sink) { fSink = std::move(sink); }

 private:
  Sink fSink;
};

}  // namespace standin
