#include "sdk/selftest/Library.h"

#include <vector>

namespace z3d::sdk {

namespace {

constexpr wchar_t kName[] = L"Zentra3DRendering.dll";

std::wstring PathOf(HMODULE module) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

// In the code page of the console; what that lacks becomes a question mark.
std::string Narrow(const std::wstring& text) {
    std::string narrow(4 * text.size() + 1, '\0');
    const int length = WideCharToMultiByte(CP_OEMCP, 0, text.data(), static_cast<int>(text.size()),
                                           narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(length));
    return narrow;
}

const char* Explain(DWORD error) {
    switch (error) {
    case ERROR_MOD_NOT_FOUND:
    case ERROR_FILE_NOT_FOUND:
        return "it was not found: put it into the folder of the program that uses it";
    case ERROR_BAD_EXE_FORMAT:
        return "the file is not a " SELFTEST_BITS "-bit DLL, or is damaged: this is a " SELFTEST_BITS
               "-bit program, and takes " SELFTEST_BITS "-bit DLLs only";
    case ERROR_ACCESS_DENIED:
        return "access to the file is denied";
    default:
        return "Windows could not load it";
    }
}

} // namespace

Library::Library(const wchar_t* path) : module_(LoadLibraryW(path != nullptr ? path : kName)), error_(0) {
    if (module_ == nullptr) error_ = GetLastError();
}

Library::~Library() {
    if (module_ != nullptr) FreeLibrary(module_);
}

std::string Library::Error() const {
    return std::string(Explain(error_)) + " (error " + std::to_string(error_) + ")";
}

std::string Library::Path() const { return Narrow(PathOf(module_)); }

std::string Library::Version() const {
    const std::wstring path = PathOf(module_);
    std::vector<unsigned char> resource(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    void* fixed = nullptr;
    UINT length = 0;
    if (resource.empty()
        || GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()) == 0
        || VerQueryValueW(resource.data(), L"\\", &fixed, &length) == 0)
        return {};
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(fixed);
    return std::to_string(HIWORD(info.dwFileVersionMS)) + "." + std::to_string(LOWORD(info.dwFileVersionMS))
           + "." + std::to_string(HIWORD(info.dwFileVersionLS));
}

} // namespace z3d::sdk
