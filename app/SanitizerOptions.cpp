// In sanitized builds only: what the pictures' libraries (Cairo, fontconfig) keep for the whole
// process hangs on data of theirs that is gone once the client module has been unloaded, and
// would be told as leaked at the end. The tests of each part look for leaks of our own.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "detect_leaks=0";
}
