// A module that any loader can load and that registers nothing with the host.

namespace {

__attribute__((used)) int unused = 0;

}  // namespace
