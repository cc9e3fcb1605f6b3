#include "Console.h"

#include <windows.h>

#include "Text.h"

namespace z3d::tools {

namespace {

bool IsConsole(HANDLE stream) {
    DWORD mode = 0;
    return GetConsoleMode(stream, &mode) != 0;
}

void Print(DWORD which, std::string_view text) {
    const HANDLE stream = GetStdHandle(which);
    DWORD written = 0;
    if (IsConsole(stream)) {
        const std::wstring wide = Wide(text);
        WriteConsoleW(stream, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
    } else {
        WriteFile(stream, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    }
}

} // namespace

void PrintOut(std::string_view text) { Print(STD_OUTPUT_HANDLE, text); }

void PrintError(std::string_view text) { Print(STD_ERROR_HANDLE, text); }

bool ErrorsGoToConsole() { return IsConsole(GetStdHandle(STD_ERROR_HANDLE)); }

} // namespace z3d::tools
