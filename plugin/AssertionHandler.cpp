// Handles null pointers from the host: turns the pointer library's assertion, which would otherwise end the
// host's process, into an exception. While a provider runs, the dispatcher's catch-all catches it.
#include <boost/assert.hpp>
#include <stdexcept>
#include <string>

namespace boost {

void assertion_failed(const char* expression, const char* function, const char*, long) {
  throw std::logic_error(std::string("assertion failed: ") + expression + " in " + function);
}

}  // namespace boost
