#pragma once

#include "posix/CrashHost.h"
#include "posix/TextBuffer.h"

#include <span>

namespace vorli::linuxhost {

/// Opens the program's own file and keeps it open, because it may be replaced on disk while the program runs.
void rememberOwnProgram();

/// Writes one line for each frame: its number, the program or library, the address within its file and, where
/// the function is known, its name and the offset into it, as in
/// "3   vorli 0x1f2a4 _ZN5vorli11AppDelegate9polishNowEv + 36". An address outside of all modules is written
/// as "???". Safe in a signal handler.
void describeFrames(std::span<const posix::StackFrame> frames, posix::TextBuffer& text);

}  // namespace vorli::linuxhost
