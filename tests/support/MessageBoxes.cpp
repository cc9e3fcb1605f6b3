#include "support/MessageBoxes.h"

#ifdef _WIN32
#include <atomic>
#include <chrono>
#include <thread>
#include <windows.h>
#else
#include "platform/MessageBox.h"
#endif

namespace z3d::test {

void PrintTo(const ShownBox& box, std::ostream* out) {
    *out << '"' << box.caption << "\" \"" << box.text << "\" style " << std::hex << box.style << std::dec;
}

#ifdef _WIN32
namespace {

BOOL CALLBACK KeepDialog(HWND window, LPARAM found) {
    char className[16] = {};
    GetClassNameA(window, className, sizeof className);
    if (std::string(className) != "#32770" || !IsWindowVisible(window)) return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

std::string TextOf(HWND window) {
    char text[256] = {};
    GetWindowTextA(window, text, sizeof text);
    return text;
}

struct Parts {
    std::string text;
    HICON icon = nullptr;
    int buttons = 0;
};

BOOL CALLBACK ReadPart(HWND part, LPARAM into) {
    auto& parts = *reinterpret_cast<Parts*>(into);
    char className[16] = {};
    GetClassNameA(part, className, sizeof className);
    const LONG style = GetWindowLongA(part, GWL_STYLE);
    if ((style & WS_VISIBLE) == 0) return TRUE;
    if (std::string(className) == "Button") {
        ++parts.buttons;
    } else if ((style & SS_TYPEMASK) == SS_ICON) {
        parts.icon = reinterpret_cast<HICON>(SendMessageA(part, STM_GETICON, 0, 0));
    } else {
        parts.text += TextOf(part);
    }
    return TRUE;
}

ShownBox Read(HWND dialog) {
    // Answered by the dialog's own loop, so not before the dialog is complete.
    SendMessageA(dialog, WM_NULL, 0, 0);
    Parts parts;
    EnumChildWindows(dialog, ReadPart, reinterpret_cast<LPARAM>(&parts));
    const bool isWarning = parts.icon == LoadIconA(nullptr, IDI_EXCLAMATION) && parts.buttons == 1
                           && GetDlgItem(dialog, IDOK) != nullptr;
    return {TextOf(dialog), parts.text, isWarning ? 0x30u : 1u};
}

} // namespace

ShownBox BoxShownBy(const std::function<void()>& action) {
    ShownBox box;
    std::atomic<bool> over = false;
    const DWORD thread = GetCurrentThreadId();
    std::thread watcher([&] {
        while (!over) {
            HWND dialog = nullptr;
            EnumThreadWindows(thread, KeepDialog, reinterpret_cast<LPARAM>(&dialog));
            if (dialog != nullptr) {
                box = Read(dialog);
                PostMessageA(dialog, WM_COMMAND, IDOK, 0);
                return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    action();
    over = true;
    watcher.join();
    return box;
}

#else

ShownBox BoxShownBy(const std::function<void()>& action) {
    const int before = platform::LatestMessageBox().shown;
    action();
    const platform::RecordedMessageBox& latest = platform::LatestMessageBox();
    if (latest.shown == before) return {};
    return {latest.caption, latest.text, latest.style};
}

#endif

} // namespace z3d::test
