// The DLL as a host meets it: loaded from the folder of this program, every function taken by its name.
#pragma once

#include "Zentra3DRendering.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace z3d::test {

// An exported name, with the size of its arguments as the module definition has it.
struct ExportedName {
    const char* name;
    std::size_t argumentBytes;
};

// All names of the module definition, in its order.
std::span<const ExportedName> ExportedNames();

// Loads the DLL on the first call. Null when the DLL or the name is not there.
const void* AddressOf(const char* name);

// Every export under its own name, with the type that the public header declares.
struct Library {
#define Z3D_EXPORT(name, bytes) decltype(&::name) name;
#include "ExportList.inc"
#undef Z3D_EXPORT
};

// Ends the program when an export is missing.
const Library& TheLibrary();

} // namespace z3d::test
