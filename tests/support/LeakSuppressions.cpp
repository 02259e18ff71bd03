// Part of every test program. Those that link the plug-in's own objects create its plug-in object at their
// start and, being no host, never ask it to go; the leak checker is told so.

extern "C" const char* __lsan_default_suppressions();  // NOLINT: the sanitizer's name for it

extern "C" const char* __lsan_default_suppressions() {
  return "leak:CreatePluginObject\n";
}
