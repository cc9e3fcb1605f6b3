#include "render/voxels/ValueInterval.h"

namespace z3d::render {
namespace {

bool Accepts(WindowTest test, float low, float high, float value) {
    switch (test) {
    case WindowTest::Inclusive:
        return value >= low && value <= high;
    case WindowTest::Strict:
        return value > low && value < high;
    default:
        return !(value < low || value > high);
    }
}

} // namespace

ValueInterval AcceptedValues(std::int32_t largest, WindowTest test, float low, float high) {
    ValueInterval accepted = {1, 0};
    for (std::int32_t value = 0; value <= largest; ++value) {
        if (!Accepts(test, low, high, static_cast<float>(value))) continue;
        if (accepted.first > accepted.last) accepted.first = value;
        accepted.last = value;
    }
    return accepted;
}

} // namespace z3d::render
