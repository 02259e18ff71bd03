// The stand-in's seam; see the header.
#include "standin/HostSeam.h"

#include <utility>

namespace standin {

namespace {

HostSeam::Observer& CurrentObserver() {
  static HostSeam::Observer observer;
  return observer;
}

}  // namespace

void HostSeam::SetObserver(Observer observer) {
  CurrentObserver() = std::move(observer);
}

void HostSeam::Enter(HostOperation operation, const std::string& subject) {
  const Observer& observer = CurrentObserver();
  if (observer) observer(HostCall{operation, subject});
}

}  // namespace standin
