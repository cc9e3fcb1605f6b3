// What the process holds, measured to the block.
#pragma once

#include "Zentra3DRendering.h"

#include <cstddef>
#include <ostream>

namespace z3d::test {

// Blocks in use in every heap of the process, and their bytes.
struct HeapUse {
    std::size_t blocks = 0;
    std::size_t bytes = 0;
    bool operator==(const HeapUse&) const = default;
};

HeapUse MeasureHeaps();

// Committed pages that belong to no file, over the whole address space.
std::size_t MeasurePrivateBytes();

// Locks on the block of an image.
unsigned LocksOn(const Image2D* image);

inline std::ostream& operator<<(std::ostream& out, const HeapUse& use) {
    return out << use.blocks << " blocks of " << use.bytes << " bytes";
}

} // namespace z3d::test
