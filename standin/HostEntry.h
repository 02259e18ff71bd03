// How an operation of the stand-in calls the observer of HostSeam. Without one, which is the usual case, this
// costs one comparison: the subject's text is only made for an observer.
#pragma once

#include <string>

#include "standin/HostSeam.h"

namespace standin {

class HostEntry {
 public:
  static void Pass(HostOperation operation) {
    if (fIsWatched) Report(operation, std::string());
  }
  static void Pass(HostOperation operation, const std::string& subject) {
    if (fIsWatched) Report(operation, subject);
  }
  /// `makeSubject` gives the subject as a std::string.
  template <typename MakeSubject>
  static void PassWith(HostOperation operation, const MakeSubject& makeSubject) {
    if (fIsWatched) Report(operation, makeSubject());
  }

 private:
  friend class HostSeam;
  static void Report(HostOperation operation, const std::string& subject);

  static bool fIsWatched;
};

}  // namespace standin
