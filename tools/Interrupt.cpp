#include "Interrupt.h"

#include <windows.h>

#include <atomic>

#include "Failure.h"

namespace z3d::tools {

namespace {

std::atomic<bool> interrupted = false;

// Runs on a thread of its own. False hands the event to the system, which ends the process.
BOOL WINAPI OnConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) return FALSE;
    return interrupted.exchange(true) ? FALSE : TRUE;
}

} // namespace

void WatchForInterrupt() { SetConsoleCtrlHandler(OnConsoleEvent, TRUE); }

bool Interrupted() { return interrupted; }

void StopIfInterrupted() {
    if (Interrupted()) throw Failure("interrupted", kExitInterrupted);
}

} // namespace z3d::tools
