#include "primitives/Fill.h"

#include "primitives/Region.h"

#include <cstddef>
#include <cstring>

namespace z3d::primitives {

Status Set8uC1(std::uint8_t value, std::uint8_t* destination, std::int32_t destinationStep,
               std::int32_t width, std::int32_t height) {
    if (destination == nullptr) return StatusNullPointer;
    const Status status = CheckRegion(width, height, destinationStep, destinationStep, 1);
    if (status != StatusNoError) return status;

    for (std::int32_t y = 0; y < height; ++y)
        std::memset(RowAt(destination, destinationStep, y), value, static_cast<std::size_t>(width));
    return StatusNoError;
}

} // namespace z3d::primitives
