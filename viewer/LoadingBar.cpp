#include "LoadingBar.h"

#include <commctrl.h>

#include "Commands.h"
#include "Screen.h"

namespace z3d::viewer {

namespace {

constexpr int kSteps = 1000;

HWND MakeChild(HWND parent, const wchar_t* kind, const wchar_t* text, DWORD style, Command command) {
    return CreateWindowExW(0, kind, text, WS_CHILD | style, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(command)), GetModuleHandleW(nullptr),
                           nullptr);
}

} // namespace

LoadingBar::LoadingBar(HWND parent)
    : label_(MakeChild(parent, L"STATIC", L"", SS_LEFT | SS_NOPREFIX | SS_ENDELLIPSIS, Command{})),
      bar_(MakeChild(parent, PROGRESS_CLASSW, L"", PBS_SMOOTH, Command{})),
      cancel_(MakeChild(parent, L"BUTTON", L"Cancel", BS_PUSHBUTTON | WS_TABSTOP, Command::CancelLoad)) {
    SendMessageW(bar_, PBM_SETRANGE32, 0, kSteps);
}

int LoadingBar::Height(int dotsPerInch) { return Scaled(34, dotsPerInch); }

void LoadingBar::Place(int top, int width, int dotsPerInch) {
    const int gap = Scaled(8, dotsPerInch);
    const int button = Scaled(86, dotsPerInch);
    const int text = std::min(Scaled(240, dotsPerInch), width / 3);
    const int height = Scaled(26, dotsPerInch);
    const int line = Scaled(18, dotsPerInch);
    const int middle = top + Height(dotsPerInch) / 2;
    MoveWindow(label_, gap, middle - line / 2, text, line, TRUE);
    MoveWindow(bar_, text + 2 * gap, middle - line / 2, std::max(0, width - text - button - 4 * gap), line,
               TRUE);
    MoveWindow(cancel_, width - button - gap, middle - height / 2, button, height, TRUE);
}

void LoadingBar::SetFont(HFONT font) {
    for (const HWND child : {label_, bar_, cancel_})
        SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
}

void LoadingBar::Show(const std::string& name, double done) {
    SetText(label_, "Loading " + name);
    SendMessageW(bar_, PBM_SETPOS, static_cast<WPARAM>(done * kSteps), 0);
    SetVisible(true);
}

void LoadingBar::Hide() { SetVisible(false); }

void LoadingBar::SetVisible(bool visible) {
    if (shown_ == visible) return;
    shown_ = visible;
    for (const HWND child : {label_, bar_, cancel_})
        ShowWindow(child, visible ? SW_SHOW : SW_HIDE);
}

} // namespace z3d::viewer
