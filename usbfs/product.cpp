#include "usbfs/product.h"

void product::Initialize(std::string line) {
  vendor = getString(line, "vendor=", " prodid");
  productId = getString(line, "prodid=", " rev");
  revision = getString(line, "rev=", "\n");
}
