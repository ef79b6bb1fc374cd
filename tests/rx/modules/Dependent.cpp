// No module itself, but linked against one: the symbols of its dependency are not its own.
extern "C" int messageCount(int message);
extern "C" __attribute__((visibility("default"))) int dependentCount() {
  return messageCount(1);
}
