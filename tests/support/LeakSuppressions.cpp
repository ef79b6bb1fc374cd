// In sanitized builds only: what the pictures' fonts library keeps for the whole process is no
// leak of ours.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\n";
}
