#include "exports/Library.h"

#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace z3d::test {
namespace {

constexpr ExportedName kExportedNames[] = {
#define Z3D_EXPORT(name, bytes) {#name, bytes},
#include "ExportList.inc"
#undef Z3D_EXPORT
};

const void* Require(const char* name) {
    const void* address = AddressOf(name);
    if (address == nullptr) {
        std::fprintf(stderr, "libzentra3drendering.so or its export %s is missing\n", name);
        std::exit(EXIT_FAILURE);
    }
    return address;
}

} // namespace

std::span<const ExportedName> ExportedNames() { return kExportedNames; }

const void* AddressOf(const char* name) {
    static void* const library = dlopen(ZENTRA_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    return library == nullptr ? nullptr : dlsym(library, name);
}

const Library& TheLibrary() {
    static const Library library = {
#define Z3D_EXPORT(name, bytes) reinterpret_cast<decltype(&::name)>(const_cast<void*>(Require(#name))),
#include "ExportList.inc"
#undef Z3D_EXPORT
    };
    return library;
}

} // namespace z3d::test
