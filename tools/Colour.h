#pragma once

#include <cstdint>

namespace z3d::tools {

struct Colour {
    uint8_t red, green, blue;
};

} // namespace z3d::tools
