// One run of the program, from the log to the report.
#pragma once

#include "command_line.h"

namespace lesson {

/// Plays the lesson, proves that its files hold it, draws, compares clients: whatever was asked
/// for.
/// @return whether everything was kept: no line skipped, every page equal, all clients in
/// agreement.
/// @throws CannotRun
bool runLesson(const Options& options);

}  // namespace lesson
