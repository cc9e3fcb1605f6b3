// One ray per output pixel: its ends, its cut with the crop box, and the depth indexes it is sampled at.
#pragma once

#include "reference/ReferenceFrame.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace z3d::reference {

struct Ray {
    // View coordinates of the pixel.
    double px;
    double py;
    // k0 and k1: the first and the last output depth index inside the crop box.
    std::int64_t firstDepth;
    std::int64_t lastDepth;
};

// The ray through output column i and view row j; nothing when it has no depth inside the crop box.
std::optional<Ray> TraceRay(const Frame& frame, int i, int j);

// What a mode does with one ray that meets the crop box; `pixel` holds the initial value in its three floats.
using RayRule = std::function<void(const Ray& ray, float* pixel)>;

// Fills the pixels, top row of the view first. The outermost `border` rows and columns are left as they are.
void ForEachRay(const Frame& frame, float initialValue, int border, std::vector<float>& pixels,
                const RayRule& rule);

} // namespace z3d::reference
