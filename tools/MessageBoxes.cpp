#include "MessageBoxes.h"

#include <windows.h>

namespace z3d::tools {

namespace {

// A box whose window cannot be made fails like a call without a desktop.
LRESULT CALLBACK RefuseWindows(int code, WPARAM first, LPARAM second) {
    return code == HCBT_CREATEWND ? 1 : CallNextHookEx(nullptr, code, first, second);
}

} // namespace

NoMessageBoxes::NoMessageBoxes()
    : hook_(SetWindowsHookExW(WH_CBT, RefuseWindows, nullptr, GetCurrentThreadId())) {}

NoMessageBoxes::~NoMessageBoxes() {
    if (hook_ != nullptr) UnhookWindowsHookEx(static_cast<HHOOK>(hook_));
}

} // namespace z3d::tools
