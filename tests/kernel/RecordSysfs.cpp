// Prints what there is in /sys about USB devices, as a record for tests/data/sysfs: record-sysfs [CONTROLLER]
#include <iostream>

#include "tests/kernel/SysfsRecord.h"

int main(int count, char** arguments) {
  std::cout << usbinfo_test::ToText(usbinfo_test::RecordSysfs("/sys", count > 1 ? arguments[1] : ""));
}
