#include "exports/Library.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <type_traits>

namespace z3d::test {
namespace {

// What the definition counts, that of 32 bits: a slot of 4 bytes for each argument, two for a double.
template <class Result, class... Arguments>
constexpr std::size_t ArgumentBytes(Result(__stdcall*)(Arguments...)) {
    return (std::size_t{0} + ... + (std::is_same_v<Arguments, double> ? 8 : 4));
}

// The public header and the module definition agree on every function.
#define Z3D_EXPORT(name, bytes)                                                                              \
    static_assert(ArgumentBytes(static_cast<decltype(&::name)>(nullptr)) == bytes, #name);
#include "ExportList.inc"
#undef Z3D_EXPORT

constexpr ExportedName kExportedNames[] = {
#define Z3D_EXPORT(name, bytes) {#name, bytes},
#include "ExportList.inc"
#undef Z3D_EXPORT
};

HMODULE Load() {
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, MAX_PATH);
    const std::string path(program);
    return LoadLibraryA((path.substr(0, path.rfind('\\') + 1) + "Zentra3DRendering.dll").c_str());
}

const void* Require(const char* name) {
    const void* address = AddressOf(name);
    if (address == nullptr) {
        std::fprintf(stderr, "Zentra3DRendering.dll or its export %s is missing\n", name);
        std::exit(EXIT_FAILURE);
    }
    return address;
}

} // namespace

std::span<const ExportedName> ExportedNames() { return kExportedNames; }

const void* AddressOf(const char* name) {
    static const HMODULE module = Load();
    if (module == nullptr) return nullptr;
    return reinterpret_cast<const void*>(GetProcAddress(module, name));
}

const Library& TheLibrary() {
    static const Library library = {
#define Z3D_EXPORT(name, bytes) reinterpret_cast<decltype(&::name)>(Require(#name)),
#include "ExportList.inc"
#undef Z3D_EXPORT
    };
    return library;
}

} // namespace z3d::test
