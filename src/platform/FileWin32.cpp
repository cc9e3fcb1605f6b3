#include "platform/File.h"

#include "platform/Refusal.h"

#include <algorithm>

#include <windows.h>

namespace z3d::platform {
namespace {

HANDLE HandleFrom(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

HANDLE OpenForReading(const char* name) {
    if (name == nullptr || IsRefused(Resource::FileOpen)) return INVALID_HANDLE_VALUE;
    return CreateFileA(name, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
}

} // namespace

File::File(const char* name) : handle_(reinterpret_cast<std::intptr_t>(OpenForReading(name))) {
    if (IsOpen()) NoteGranted(Resource::FileOpen);
}

File::~File() {
    if (!IsOpen()) return;
    NoteReleased(Resource::FileOpen);
    CloseHandle(HandleFrom(handle_));
}

bool File::IsOpen() const { return HandleFrom(handle_) != INVALID_HANDLE_VALUE; }

std::size_t File::Read(void* to, std::size_t bytes) {
    if (!IsOpen() || IsRefused(Resource::FileRead)) return 0;
    // One call of the system takes 32 bits of a count.
    std::size_t read = 0;
    while (read < bytes) {
        const auto piece = static_cast<DWORD>(std::min<std::size_t>(bytes - read, MAXDWORD));
        DWORD got = 0;
        if (!ReadFile(HandleFrom(handle_), static_cast<char*>(to) + read, piece, &got, nullptr)) break;
        read += got;
        if (got < piece) break;
    }
    return read;
}

} // namespace z3d::platform
