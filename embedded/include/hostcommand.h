// What this host gives a command that was started from a shell, beyond the classic API. Modules
// that are to run in other hosts ask with acedGetString and its like, which the same words answer.
#pragma once

#include <string>
#include <vector>

#include "hostapi.h"

namespace hostx {

/// The words behind "--" of `quoin run`, all of them, whatever prompts they have answered; they
/// count as used then. Empty where no command was started so.
HOST_API std::vector<std::wstring> commandArguments();

}  // namespace hostx
