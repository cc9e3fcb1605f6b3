#include "File.h"

#include <windows.h>

#include "Failure.h"
#include "Text.h"

namespace z3d::tools {

namespace {

std::string Reason(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return "there is no such file";
    case ERROR_PATH_NOT_FOUND:
        return "there is no such folder";
    case ERROR_INVALID_NAME:
        return "the name is not valid";
    case ERROR_ACCESS_DENIED:
        return "access is denied";
    case ERROR_SHARING_VIOLATION:
        return "another program uses it";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return "the disk is full";
    default:
        return Format("system error %lu", error);
    }
}

bool IsFolder(const std::filesystem::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The system calls an opened folder "access denied", or worse; it deserves its own word.
Failure FileFailure(const char* what, const std::filesystem::path& path, DWORD error) {
    const std::string reason = IsFolder(path) ? "it is a folder" : Reason(error);
    return Failure(Format("cannot %s %s: %s", what, Shown(path).c_str(), reason.c_str()));
}

void CheckReplaceable(const std::filesystem::path& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) throw FileFailure("write", path, ERROR_ACCESS_DENIED);
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0)
        throw Failure("cannot write " + Shown(path) + ": it is read-only");
}

std::wstring FullName(const std::filesystem::path& path) {
    std::wstring name(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr), L'\0');
    name.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(name.size()), name.data(), nullptr));
    return name;
}

} // namespace

InputFile::InputFile(const std::filesystem::path& path)
    : path_(path),
      handle_(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                          FILE_FLAG_SEQUENTIAL_SCAN, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) throw FileFailure("open", path, GetLastError());
    LARGE_INTEGER size = {};
    if (GetFileSizeEx(handle_, &size) != 0) size_ = static_cast<uint64_t>(size.QuadPart);
}

InputFile::~InputFile() { CloseHandle(handle_); }

void InputFile::Seek(uint64_t offset) {
    LARGE_INTEGER distance = {};
    distance.QuadPart = static_cast<LONGLONG>(offset);
    if (SetFilePointerEx(handle_, distance, nullptr, FILE_BEGIN) == 0)
        throw FileFailure("read", path_, GetLastError());
}

void InputFile::Read(void* bytes, uint32_t count) {
    DWORD got = 0;
    if (ReadFile(handle_, bytes, count, &got, nullptr) == 0) throw FileFailure("read", path_, GetLastError());
    if (got != count) throw Failure("cannot read " + Shown(path_) + ": it ends early");
}

OutputFile::OutputFile(const std::filesystem::path& path) : path_(path) {
    CheckReplaceable(path);
    for (int attempt = 0; attempt < 1000; ++attempt) {
        unfinished_ = path;
        unfinished_ += Wide(Format(".%d.unfinished", attempt));
        handle_ = CreateFileW(unfinished_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ != INVALID_HANDLE_VALUE) return;
        if (GetLastError() != ERROR_FILE_EXISTS) break;
    }
    throw FileFailure("write", path, GetLastError());
}

OutputFile::~OutputFile() {
    if (handle_ != nullptr) CloseHandle(handle_);
    if (!unfinished_.empty()) DeleteFileW(unfinished_.c_str());
}

void OutputFile::Write(const void* bytes, size_t count) {
    DWORD put = 0;
    if (WriteFile(handle_, bytes, static_cast<DWORD>(count), &put, nullptr) == 0)
        throw FileFailure("write", path_, GetLastError());
    if (put != count) throw FileFailure("write", path_, ERROR_DISK_FULL);
}

void OutputFile::Commit() {
    const bool closed = CloseHandle(handle_) != 0;
    handle_ = nullptr;
    if (!closed || MoveFileExW(unfinished_.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING) == 0)
        throw FileFailure("write", path_, GetLastError());
    unfinished_.clear();
}

std::wstring ShortName(const std::filesystem::path& path) {
    std::wstring name(32768, L'\0');
    name.resize(GetShortPathNameW(path.c_str(), name.data(), static_cast<DWORD>(name.size())));
    return name.empty() ? path.native() : name;
}

bool SameFile(const std::filesystem::path& a, const std::filesystem::path& b) {
    return CompareStringOrdinal(FullName(a).c_str(), -1, FullName(b).c_str(), -1, TRUE) == CSTR_EQUAL;
}

} // namespace z3d::tools
