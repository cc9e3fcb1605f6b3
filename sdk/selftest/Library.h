// The DLL as it was loaded: where from, which version, and its functions by name.
#pragma once

#include "Zentra3DRendering.h"

#include <windows.h>

#include <string>

namespace z3d::sdk {

class Library {
public:
    // Null: by its name, in the places where Windows looks for every program's DLLs.
    explicit Library(const wchar_t* path);
    ~Library();
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    bool Loaded() const { return module_ != nullptr; }
    // Why it could not be loaded, in words, with the system's number.
    std::string Error() const;

    std::string Path() const;
    // From the file's version resource; empty when there is none.
    std::string Version() const;

    bool Has(const char* name) const { return GetProcAddress(module_, name) != nullptr; }
    // The function of this name; null when it is missing. `Function` is the type of the header's declaration.
    template <class Function>
    Function* Get(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
    }

private:
    HMODULE module_;
    DWORD error_;
};

} // namespace z3d::sdk
