// Scratch of the primitives for the time of a scope.
#pragma once

#include "primitives/Buffers.h"

#include <memory>

namespace z3d::compose {

struct FreeScratch {
    void operator()(void* image) const { primitives::ImageFree(image); }
};

// Uninitialised; empty when memory is short.
template <class Sample>
using ScratchImage = std::unique_ptr<Sample[], FreeScratch>;

} // namespace z3d::compose
