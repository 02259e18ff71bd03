#include "standin/Logger.h"

#include "standin/HostEntry.h"

namespace standin {

void Logger::Write(EQSVLogSeverity severity, const std::string& text) {
  HostEntry::Pass(HostOperation::kWriteLog, text);
  if (fSink) fSink(severity, text);
}

}  // namespace standin
