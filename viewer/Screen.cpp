#include "Screen.h"

#include <bit>

#include "Text.h"

namespace z3d::viewer {

namespace {

// Windows 10 knows the resolution of each screen; older ones have one for all.
using GetDpi = UINT(WINAPI*)(HWND);

GetDpi FindGetDpi() {
    return std::bit_cast<GetDpi>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow"));
}

int SystemDotsPerInch() {
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dots;
}

} // namespace

int DotsPerInch(HWND window) {
    static const GetDpi getDpi = FindGetDpi();
    const int dots = getDpi != nullptr ? static_cast<int>(getDpi(window)) : 0;
    return dots > 0 ? dots : SystemDotsPerInch();
}

HFONT MessageFont(int dotsPerInch) {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    LOGFONTW& font = metrics.lfMessageFont;
    font.lfHeight = MulDiv(font.lfHeight, dotsPerInch, SystemDotsPerInch());
    return CreateFontIndirectW(&font);
}

void SetText(HWND control, const std::string& text) {
    if (TextOf(control) != text) SetWindowTextW(control, tools::Wide(text).c_str());
}

std::string TextOf(HWND control) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
    return tools::Narrow(text);
}

void RegisterWindowClass(const wchar_t* name, WNDPROC procedure, UINT style, HBRUSH background) {
    WNDCLASSEXW type = {};
    type.cbSize = sizeof type;
    type.style = style;
    type.lpfnWndProc = procedure;
    type.hInstance = GetModuleHandleW(nullptr);
    type.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    type.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    type.hbrBackground = background;
    type.lpszClassName = name;
    RegisterClassExW(&type);
}

} // namespace z3d::viewer
