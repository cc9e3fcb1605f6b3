// What every primitive answers, except the allocators and releasers of Buffers.h.
#pragma once

#include <cstdint>

namespace z3d::primitives {

// Arguments are checked before anything is written; the first fault found decides. The order of the checks is
// part of each primitive's contract: null pointers, then sizes, then steps, unless its header says otherwise.
enum Status : std::int32_t {
    StatusNoError = 0,
    StatusNoOverlap = 1,  // resize: the rectangle starts outside the source; nothing was done
    StatusSizeError = -6, // a size below 1, a negative origin, or rows longer than the address space
    StatusNullPointer = -8,
    StatusMemoryError = -9,         // resize: no scratch memory
    StatusRangeError = -13,         // a value range whose maximum is not above its minimum
    StatusStepError = -14,          // a row step below 1
    StatusInterpolationError = -22, // an unknown interpolation code
    StatusFactorError = -23,        // a resize factor that is not above 0
};

} // namespace z3d::primitives
