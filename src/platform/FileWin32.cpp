#include "platform/File.h"

#include "platform/Refusal.h"

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
    static_assert(sizeof(std::size_t) == sizeof(DWORD), "one call of the system takes any count");
    if (!IsOpen() || IsRefused(Resource::FileRead)) return 0;
    DWORD got = 0;
    if (!ReadFile(HandleFrom(handle_), to, static_cast<DWORD>(bytes), &got, nullptr)) return 0;
    return got;
}

} // namespace z3d::platform
