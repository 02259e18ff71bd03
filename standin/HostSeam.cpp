#include "standin/HostSeam.h"

#include <utility>

#include "standin/HostEntry.h"

namespace standin {

namespace {

HostSeam::Observer& CurrentObserver() {
  static HostSeam::Observer observer;
  return observer;
}

}  // namespace

bool HostEntry::fIsWatched = false;

void HostEntry::Report(HostOperation operation, const std::string& subject) {
  CurrentObserver()(HostCall{operation, subject});
}

void HostSeam::SetObserver(Observer observer) {
  CurrentObserver() = std::move(observer);
  HostEntry::fIsWatched = static_cast<bool>(CurrentObserver());
}

}  // namespace standin
