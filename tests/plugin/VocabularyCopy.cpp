#include "tests/plugin/VocabularyCopy.h"

#include "plugin/Vocabulary.h"

namespace usbinfo_test {

const std::string& NameInAnotherFile() {
  return kName;
}

const std::string& ClassUsbPortInAnotherFile() {
  return kClassUsbPort;
}

}  // namespace usbinfo_test
