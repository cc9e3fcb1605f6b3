// Tells a test what stands in the viewer's windows, as JSON. Only looks: pressing and typing is the test's part.
// Usage: viewer_probe [clipboard]
#include <windows.h>

#include <commctrl.h>
#include <tlhelp32.h>

#include <cstdio>
#include <string>

#include "Text.h"

namespace {

constexpr wchar_t kProgram[] = L"zentra-view.exe";
constexpr size_t kLongestText = 8192;

std::string Json(const std::wstring& text) {
    std::string quoted = "\"";
    for (const char letter : z3d::tools::Narrow(text)) {
        if (letter == '"' || letter == '\\') quoted += '\\';
        if (letter == '\n') quoted += "\\n";
        if (static_cast<unsigned char>(letter) >= ' ') quoted += letter;
    }
    return quoted + "\"";
}

std::wstring TextOf(HWND window) {
    std::wstring text(kLongestText, L'\0');
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_ABORTIFHUNG, 5000, &length);
    text.resize(length);
    return text;
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

DWORD ProcessOf(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process;
}

// The text of a part lies in the other process.
std::wstring StatusPart(HWND bar, WPARAM part) {
    const HANDLE process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, ProcessOf(bar));
    constexpr size_t kBytes = kLongestText * sizeof(wchar_t);
    void* const there = VirtualAllocEx(process, nullptr, kBytes, MEM_COMMIT, PAGE_READWRITE);
    std::wstring text(kLongestText, L'\0');
    const LRESULT length = SendMessageW(bar, SB_GETTEXTW, part, reinterpret_cast<LPARAM>(there));
    ReadProcessMemory(process, there, text.data(), kBytes, nullptr);
    VirtualFreeEx(process, there, 0, MEM_RELEASE);
    CloseHandle(process);
    text.resize(LOWORD(length));
    return text;
}

void PrintStatus(HWND bar) {
    std::printf(", \"parts\": [");
    for (WPARAM part = 0; part < 5; ++part)
        std::printf("%s%s", part == 0 ? "" : ", ", Json(StatusPart(bar, part)).c_str());
    std::printf("]");
}

BOOL CALLBACK PrintWindow(HWND window, LPARAM) {
    RECT place = {};
    GetWindowRect(window, &place);
    std::printf(
        ",\n {\"id\": %d, \"class\": %s, \"text\": %s, \"place\": [%ld, %ld, %ld, %ld], \"enabled\": %d, "
        "\"visible\": %d, \"checked\": %d",
        GetDlgCtrlID(window), Json(ClassOf(window)).c_str(), Json(TextOf(window)).c_str(), place.left,
        place.top, place.right - place.left, place.bottom - place.top, IsWindowEnabled(window),
        IsWindowVisible(window),
        ClassOf(window) == L"Button" ? static_cast<int>(SendMessageW(window, BM_GETCHECK, 0, 0)) : 0);
    if (ClassOf(window) == STATUSCLASSNAMEW) PrintStatus(window);
    std::printf("}");
    return TRUE;
}

BOOL CALLBACK PrintIfOurs(HWND window, LPARAM process) {
    if (ProcessOf(window) != static_cast<DWORD>(process) || !IsWindowVisible(window)) return TRUE;
    PrintWindow(window, 0);
    EnumChildWindows(window, PrintWindow, 0);
    return TRUE;
}

DWORD RunningProcess() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    DWORD found = 0;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry))
        if (lstrcmpiW(entry.szExeFile, kProgram) == 0) found = entry.th32ProcessID;
    CloseHandle(snapshot);
    return found;
}

int PrintClipboard() {
    if (!OpenClipboard(nullptr)) return 1;
    const HANDLE block = GetClipboardData(CF_UNICODETEXT);
    if (block == nullptr) return 1;
    const std::wstring text = static_cast<const wchar_t*>(GlobalLock(block));
    std::printf("%s\n", Json(text).c_str());
    CloseClipboard();
    return 0;
}

} // namespace

int main(int count, char**) {
    if (count > 1) return PrintClipboard();
    const DWORD process = RunningProcess();
    std::printf("[{\"id\": 0, \"class\": \"process\", \"text\": \"%lu\", \"place\": [0, 0, 0, 0]}", process);
    if (process != 0) EnumWindows(PrintIfOurs, static_cast<LPARAM>(process));
    std::printf("]\n");
    return 0;
}
