// Tells on the standard error what goes on inside, for whoever looks for a mistake: QUOIN_TRACE=1
// tells all, QUOIN_TRACE=loader,store,saver some. Each line says since when and whose it is:
//   quoin trace    12.3 ms store: plan.dxf: 1234 records in 5 blocks
#pragma once

#include <string>

namespace quoin::os {

enum class Traced {
  Loader,  // the module loader: libraries opened, messages sent and what modules return
  Store,   // reading: files, codecs, records
  Saver,   // writing: records kept and changed, files replaced
};

/// Whether the environment asks for it; looked up once a process.
bool isTraced(Traced subject);

/// Writes one line; control characters, which names of files may have, show as "?".
void writeTrace(Traced subject, const std::string& text);

/// Writes what `text()` returns where the subject is traced; else costs a comparison.
template <class Text>
void trace(Traced subject, Text text) {
  if (isTraced(subject)) {
    writeTrace(subject, text());
  }
}

}  // namespace quoin::os
