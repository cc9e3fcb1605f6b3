// A Zentra3DRendering.dll from anywhere, so that two of them can be compared in one process.
#pragma once

#include "Zentra3DRendering.h"

#include <string>

namespace z3d::bench {

class LoadedDll {
public:
    // Loads a copy of the file under a name with `tag` in it: the system takes two files of one name, or one file
    // given twice, for the same library. Throws std::runtime_error where that or one of the functions cannot be had.
    LoadedDll(const std::string& path, const std::string& tag);
    ~LoadedDll();
    LoadedDll(const LoadedDll&) = delete;
    LoadedDll& operator=(const LoadedDll&) = delete;

    decltype(&::GlobalAlloc3D) GlobalAlloc3D;
    decltype(&::GlobalLock3D) GlobalLock3D;
    decltype(&::GlobalUnlock3D) GlobalUnlock3D;
    decltype(&::GlobalFree3D) GlobalFree3D;
    decltype(&::GetRotProjection) GetRotProjection;
    decltype(&::GetRGBImage) GetRGBImage;
    decltype(&::CreateRotateMatrix) CreateRotateMatrix;

private:
    template <class Function>
    bool Take(Function& function, const char* name);
    void Release();

    std::string copy_;
    void* module_;
};

} // namespace z3d::bench
