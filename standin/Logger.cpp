// The core logger; see the header.
#include "standin/Logger.h"

#include "standin/HostSeam.h"

namespace standin {

void Logger::Write(EQSVLogSeverity severity, const std::string& text) {
  HostSeam::Enter(HostOperation::kWriteLog, text);
  if (fSink) fSink(severity, text);
}

}  // namespace standin
