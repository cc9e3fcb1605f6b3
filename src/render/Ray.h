// The ray of one output pixel: where it enters and leaves the crop box, and where its samples lie.
#pragma once

#include <cstdint>

namespace z3d::render {

class ProjectionRenderer;

// The samples of a ray: output depth indexes first..last.
struct DepthRange {
    std::int32_t first;
    std::int32_t last;
    bool IsEmpty() const { return first > last; }
};

class Ray {
public:
    // The ray through output column i and row j.
    Ray(const ProjectionRenderer& renderer, std::int32_t i, std::int32_t j);

    // The part of the ray inside the crop box; empty when it misses the box.
    DepthRange Trim();

    // The sample point at output depth index k, in volume index space.
    void PointAt(std::int32_t k, float (&point)[3]) const;

private:
    bool FindEnds();
    void ClipAtFace(int axis, float plane);

    const ProjectionRenderer& renderer_;
    double px_, py_;   // view coordinates of the pixel
    float entry_[3];   // the ray's point one voxel before the view box, in centred volume space: x, y, z
    float exit_[3];    // and one voxel behind it
    float depthStart_; // view depth of the nearest and of the farthest hit on a face of the crop box
    float depthEnd_;
};

} // namespace z3d::render
