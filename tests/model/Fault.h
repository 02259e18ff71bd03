// One fault of a run: which of the run's host calls it strikes, and what is thrown. The same fault is given
// to the plug-in's run and to the model of it, whose outcomes must then agree.
#pragma once

#include <cstddef>

namespace usbinfo_test {

enum class FaultKind {
  kHostException,      // TQSVException, CIM_ERR_FAILED
  kStandardException,  // a std::exception that is not the host's
  kForeignException,   // not a std::exception
};

struct Fault {
  enum class Moment {
    kInCall,       // the call itself throws, before it does anything
    kRightBefore,  // the plug-in throws when all that it does before the call is done
    kRightAfter,   // the plug-in throws in the first step that it takes after the call
  };

  /// The call's number, from 0.
  std::size_t call;
  FaultKind kind;
  Moment moment = Moment::kInCall;
};

}  // namespace usbinfo_test
