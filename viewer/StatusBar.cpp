#include "StatusBar.h"

#include <commctrl.h>

#include "Screen.h"
#include "Text.h"

namespace z3d::viewer {

StatusBar::StatusBar(HWND parent)
    : window_(CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                              parent, nullptr, GetModuleHandleW(nullptr), nullptr)) {}

int StatusBar::Height() const {
    RECT area = {};
    GetWindowRect(window_, &area);
    return area.bottom - area.top;
}

// Parts of fixed width on the right: numbers that change must not push each other about.
void StatusBar::Place(int width, int dotsPerInch) {
    SendMessageW(window_, WM_SIZE, 0, 0);
    constexpr int kWidths[] = {120, 75, 105, 210};
    int ends[5] = {};
    int end = width;
    for (int part = 4; part >= 0; --part) {
        ends[part] = end;
        if (part > 0) end -= Scaled(kWidths[part - 1], dotsPerInch);
    }
    SendMessageW(window_, SB_SETPARTS, 5, reinterpret_cast<LPARAM>(ends));
}

void StatusBar::Show(const StatusTexts& texts) {
    ShowPart(0, texts.message);
    ShowPart(1, texts.size);
    ShowPart(2, texts.time);
    ShowPart(3, texts.speed);
    ShowPart(4, texts.value);
}

void StatusBar::ShowPart(size_t part, const std::string& text) {
    if (shown_[part] == text) return;
    shown_[part] = text;
    SendMessageW(window_, SB_SETTEXTW, part, reinterpret_cast<LPARAM>(tools::Wide(text).c_str()));
}

} // namespace z3d::viewer
