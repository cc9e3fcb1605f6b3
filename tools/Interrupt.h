// Ctrl+C as a flag: the first one asks the command to stop at its next safe point, the second one kills it.
#pragma once

namespace z3d::tools {

void WatchForInterrupt();
bool Interrupted();

// Ends the command with exit code 130 once Ctrl+C was pressed.
void StopIfInterrupted();

} // namespace z3d::tools
