// Sizes of things on screens of any resolution.
#pragma once

#include <windows.h>

#include <exception>
#include <string>

namespace z3d::viewer {

// Dots per inch of the screen that a window is on; 96 is the size that layouts are written in.
int DotsPerInch(HWND window);

inline int Scaled(int length, int dotsPerInch) { return MulDiv(length, dotsPerInch, 96); }

// The system's font for messages, at that resolution. The caller owns it.
HFONT MessageFont(int dotsPerInch);

// Sets the text of a control, unless it has it already: writing it again would flicker.
void SetText(HWND control, const std::string& text);
std::string TextOf(HWND control);

// Registers a class of windows that hand their messages to `procedure`.
void RegisterWindowClass(const wchar_t* name, WNDPROC procedure, UINT style, HBRUSH background);

// The object whose window this is: kept in the window's user data from WM_NCCREATE on.
template <class Owner>
Owner* OwnerOf(HWND window, UINT message, LPARAM second) {
    if (message == WM_NCCREATE) {
        const auto* const creation = reinterpret_cast<const CREATESTRUCTW*>(second);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(creation->lpCreateParams));
    }
    return reinterpret_cast<Owner*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

// Runs what a message asks for. No exception may cross the system's frames: what is left of memory that is short is
// a beep, and the state as it was.
template <class Work>
LRESULT Guarded(const Work& work) {
    try {
        return work();
    } catch (const std::exception&) {
        MessageBeep(MB_ICONERROR);
        return 0;
    }
}

} // namespace z3d::viewer
