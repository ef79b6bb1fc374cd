#include "embedded/os/Trace.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace quoin::os {
namespace {

constexpr std::array<std::string_view, 3> kNames{"loader", "store", "saver"};

struct Wanted {
  std::array<bool, kNames.size()> subjects{};
  std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
};

Wanted readEnvironment() {
  Wanted wanted;
  const char* const value = std::getenv("QUOIN_TRACE");
  std::string_view rest = value ? value : "";
  while (!rest.empty()) {
    const std::string_view name = rest.substr(0, rest.find(','));
    rest.remove_prefix(std::min(rest.size(), name.size() + 1));
    const auto known = std::find(kNames.begin(), kNames.end(), name);
    if (name == "1") {
      wanted.subjects.fill(true);
    } else if (known != kNames.end()) {
      wanted.subjects[static_cast<std::size_t>(known - kNames.begin())] = true;
    } else if (!name.empty()) {
      std::fputs("quoin trace: QUOIN_TRACE is 1, or some of loader,store,saver\n", stderr);
    }
  }
  return wanted;
}

const Wanted& wanted() {
  static const Wanted read = readEnvironment();
  return read;
}

}  // namespace

bool isTraced(Traced subject) {
  return wanted().subjects[static_cast<std::size_t>(subject)];
}

void writeTrace(Traced subject, const std::string& text) {
  const std::chrono::duration<double, std::milli> since =
      std::chrono::steady_clock::now() - wanted().begin;
  std::string shown = text;
  std::replace_if(
      shown.begin(), shown.end(), [](char letter) { return letter >= 0 && letter < ' '; }, '?');
  const std::string_view name = kNames[static_cast<std::size_t>(subject)];
  std::fprintf(stderr, "quoin trace %8.1f ms %.*s: %s\n", since.count(),
               static_cast<int>(name.size()), name.data(), shown.c_str());
}

}  // namespace quoin::os
