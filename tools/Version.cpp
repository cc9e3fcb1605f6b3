#include "Version.h"

#include <windows.h>

#include <vector>

#include "Text.h"

namespace z3d::tools {

namespace {

constexpr wchar_t kLibrary[] = L"Zentra3DRendering.dll";

// From the version resource of the very file that was loaded.
std::string LibraryVersion() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(GetModuleHandleW(kLibrary), path.data(), static_cast<DWORD>(path.size())));
    std::vector<unsigned char> resource(GetFileVersionInfoSizeW(path.c_str(), nullptr));
    if (resource.empty()
        || GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()) == 0)
        return "of unknown version";
    void* fixed = nullptr;
    UINT length = 0;
    if (VerQueryValueW(resource.data(), L"\\", &fixed, &length) == 0) return "of unknown version";
    const auto& info = *static_cast<const VS_FIXEDFILEINFO*>(fixed);
    return Format("%u.%u.%u", HIWORD(info.dwFileVersionMS), LOWORD(info.dwFileVersionMS),
                  HIWORD(info.dwFileVersionLS));
}

} // namespace

std::string VersionText() {
    return "zentra " ZENTRA_VERSION " (" + Narrow(kLibrary) + " " + LibraryVersion() + ")";
}

} // namespace z3d::tools
