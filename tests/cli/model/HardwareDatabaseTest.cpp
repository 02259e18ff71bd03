// The names of udev's hardware database: those that it has, those that it lacks, and machines without it.
#include <gtest/gtest.h>

#include "cli/model/HardwareDatabase.h"
#include "cli/model/UsbIds.h"

using cli::HardwareDatabase;

namespace usbinfo_test {
namespace {

TEST(HardwareDatabase, GivesTheNamesOfVendorsAndProducts) {
  const cli::UsbIds names(HardwareDatabase::Open(FAKE_UDEV));
  EXPECT_EQ(names.Vendor(0x0ABC), "Makers");
  EXPECT_EQ(names.Product(0x0ABC, 0x00EF), "Thing");
  EXPECT_EQ(names.Product(0x0ABC, 0x0001), "");
  EXPECT_EQ(names.Vendor(0x0001), "");
  EXPECT_EQ(names.Product(0x0001, 0x00EF), "");
}

TEST(HardwareDatabase, IsNoneWithoutALibraryThatReadsIt) {
  EXPECT_EQ(HardwareDatabase::Open("/nonexistent/libudev.so.1"), nullptr);
  EXPECT_EQ(HardwareDatabase::Open("libm.so.6"), nullptr);
}

}  // namespace
}  // namespace usbinfo_test
