// Tells a test what stands in the viewer's windows, as JSON, or what is on the clipboard. Pressing and typing is the
// test's part; only what no key and no button of a single display can do is done here: dropping files.
// Usage: viewer_probe [clipboard | drop file ...]
#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>
#include <shlobj.h>
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
    if (ClassOf(window) == PROGRESS_CLASSW)
        std::printf(", \"position\": %d", static_cast<int>(SendMessageW(window, PBM_GETPOS, 0, 0)));
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

// As a bitmap has them: the bottom row first, blue, green, red, each row filled up to a multiple of four bytes.
void PrintBitmap(HANDLE block) {
    const auto* const bytes = static_cast<const unsigned char*>(GlobalLock(block));
    const auto& header = *reinterpret_cast<const BITMAPINFOHEADER*>(bytes);
    std::printf("{\"size\": [%ld, %ld], \"bytes\": \"", header.biWidth, header.biHeight);
    for (size_t i = 0; i < header.biSizeImage; ++i)
        std::printf("%02x", bytes[header.biSize + i]);
    std::printf("\"}\n");
}

int PrintClipboard() {
    if (!OpenClipboard(nullptr)) return 1;
    if (const HANDLE text = GetClipboardData(CF_UNICODETEXT); text != nullptr)
        std::printf("%s\n", Json(static_cast<const wchar_t*>(GlobalLock(text))).c_str());
    else if (const HANDLE bitmap = GetClipboardData(CF_DIB); bitmap != nullptr)
        PrintBitmap(bitmap);
    CloseClipboard();
    return 0;
}

// What a drop gives to a program: a head, then the names, each with its zero, and one more zero.
std::string Dropped(wchar_t** names, int count) {
    std::wstring list;
    for (int i = 0; i < count; ++i)
        list.append(names[i]).push_back(L'\0');
    list.push_back(L'\0');
    DROPFILES head = {};
    head.pFiles = sizeof head;
    head.fWide = TRUE;
    std::string block(reinterpret_cast<const char*>(&head), sizeof head);
    return block.append(reinterpret_cast<const char*>(list.data()), list.size() * sizeof(wchar_t));
}

// The address of a fixed block is its handle. It lies in the other process, which knows it by that.
int Drop(wchar_t** names, int count) {
    const HWND window = FindWindowW(L"ZentraView", nullptr);
    const std::string block = Dropped(names, count);
    const HANDLE process = OpenProcess(PROCESS_ALL_ACCESS, FALSE, ProcessOf(window));
    void* const there = VirtualAllocEx(process, nullptr, block.size(), MEM_COMMIT, PAGE_READWRITE);
    const bool written = WriteProcessMemory(process, there, block.data(), block.size(), nullptr) != 0;
    const bool posted =
        written && PostMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(there), 0) != 0;
    CloseHandle(process);
    return posted ? 0 : 1;
}

} // namespace

int main() {
    // Else places would be told as if every display had 96 dots per inch.
    SetProcessDPIAware();
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (count > 2) return Drop(words + 2, count - 2);
    if (count > 1) return PrintClipboard();
    const DWORD process = RunningProcess();
    std::printf("[{\"id\": 0, \"class\": \"process\", \"text\": \"%lu\", \"place\": [0, 0, 0, 0]}", process);
    if (process != 0) EnumWindows(PrintIfOurs, static_cast<LPARAM>(process));
    std::printf("]\n");
    return 0;
}
