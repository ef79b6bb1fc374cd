#include "embedded/ed/InputPrompts.h"

namespace quoin::ed {

void InputPrompts::notifyEntityEnd(AcEdInputContextReactor&, Prompt, PromptReply&, const ACHAR*) {}

}  // namespace quoin::ed
