// The line at the bottom of the window.
#pragma once

#include <windows.h>

#include <array>
#include <string>

namespace z3d::viewer {

struct StatusTexts {
    std::string message, size, time, speed, value;
};

class StatusBar {
public:
    explicit StatusBar(HWND parent);

    HWND Window() const { return window_; }
    int Height() const;
    // After the parent's size or the resolution has changed.
    void Place(int width, int dotsPerInch);
    void SetFont(HFONT font) { SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE); }
    void Show(const StatusTexts& texts);

private:
    void ShowPart(size_t part, const std::string& text);

    HWND window_;
    std::array<std::string, 5> shown_;
};

} // namespace z3d::viewer
