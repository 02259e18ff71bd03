// The host's stock enumeration callback: it collects what is enumerated.
#pragma once

#include <boost/shared_ptr.hpp>
#include <vector>

namespace NKESTA20 {

template <typename T>
class TAddToVectorCallback {
 public:
  /// `list` must outlive the callback and its copies.
  explicit TAddToVectorCallback(std::vector<boost::shared_ptr<T>>& list) : fList(&list) {}

  /// Appends `item`; always true, so that the enumeration goes on.
  bool operator()(boost::shared_ptr<T> item) {
    fList->push_back(item);
    return true;
  }

 private:
  std::vector<boost::shared_ptr<T>>* fList;
};

}  // namespace NKESTA20
