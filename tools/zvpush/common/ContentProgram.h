// Running a command in zvpush-content, the companion program that links the content side (Pango,
// Cairo, FFmpeg). zvpush itself stays small because the service extension runs in it.
#pragma once

#include "common/Command.h"

namespace zvpush {

// Replaces this process with zvpush-content (found next to this program) running the command with
// the same arguments. Returns only when that program cannot be started (exit code 1, one line).
int runContentProgram(const std::string& command, const Args& args);

}  // namespace zvpush
