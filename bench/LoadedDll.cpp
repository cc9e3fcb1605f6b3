#include "LoadedDll.h"

#include <windows.h>

#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace z3d::bench {

LoadedDll::LoadedDll(const std::string& path, const std::string& tag) {
    const std::string name = "zentra_bench_" + std::to_string(GetCurrentProcessId()) + "_" + tag + ".dll";
    copy_ = (std::filesystem::temp_directory_path() / name).string();
    std::filesystem::copy_file(path, copy_, std::filesystem::copy_options::overwrite_existing);
    module_ = LoadLibraryA(copy_.c_str());
    if (module_ != nullptr && Take(GlobalAlloc3D, "GlobalAlloc3D") && Take(GlobalLock3D, "GlobalLock3D")
        && Take(GlobalUnlock3D, "GlobalUnlock3D") && Take(GlobalFree3D, "GlobalFree3D")
        && Take(GetRotProjection, "GetRotProjection") && Take(GetRGBImage, "GetRGBImage")
        && Take(CreateRotateMatrix, "CreateRotateMatrix")) {
        return;
    }
    Release();
    throw std::runtime_error(path + " cannot be loaded, or lacks a function that is measured");
}

LoadedDll::~LoadedDll() { Release(); }

void LoadedDll::Release() {
    if (module_ != nullptr) FreeLibrary(static_cast<HMODULE>(module_));
    std::error_code ignored;
    std::filesystem::remove(copy_, ignored);
}

template <class Function>
bool LoadedDll::Take(Function& function, const char* name) {
    const auto address = GetProcAddress(static_cast<HMODULE>(module_), name);
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(address));
    return function != nullptr;
}

} // namespace z3d::bench
