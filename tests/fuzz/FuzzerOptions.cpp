// Part of every fuzzer: what the address sanitizer keeps per allocation. Short call chains and a small store
// of freed blocks are enough to find a fault, and more than double the pace.

extern "C" const char* __asan_default_options();  // NOLINT: the sanitizer's name for it

extern "C" const char* __asan_default_options() {
  return "malloc_context_size=2:quarantine_size_mb=4:max_malloc_fill_size=0";
}
