// In sanitized builds only. Tests of the module's inside link its objects and load the module as
// well, so that its globals are there twice; two of one size are no mistake then.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "detect_odr_violation=1";
}
