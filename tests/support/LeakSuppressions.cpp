// Part of every test program. Those that link the plug-in's own objects create its plug-in object at their
// start and never delete it, since they are not hosts; the leak checker ignores it.

extern "C" const char* __lsan_default_suppressions();  // NOLINT: the sanitizer's name for it

extern "C" const char* __lsan_default_suppressions() {
  return "leak:CreatePluginObject\n";
}
