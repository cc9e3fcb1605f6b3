// The sixteen kernels, two per mode and four for the surfaces. Each fills pixels that are 0 before.
#pragma once

#include "reference/ReferenceSample.h"

#include <vector>

namespace z3d::reference {

void MaxProjectionGrey(const Scene& scene, std::vector<float>& pixels);
void MaxProjectionRgb(const Scene& scene, std::vector<float>& pixels);

void MinProjectionGrey(const Scene& scene, std::vector<float>& pixels);
void MinProjectionRgb(const Scene& scene, std::vector<float>& pixels);

void SumProjectionGrey(const Scene& scene, std::vector<float>& pixels);
void SumProjectionRgb(const Scene& scene, std::vector<float>& pixels);

void FirstSurfaceGrey(const Scene& scene, std::vector<float>& pixels);
void FirstSurfaceRgb(const Scene& scene, std::vector<float>& pixels);
// `extra` is the factor by which each further layer is attenuated.
void LayeredSurfaceGrey(const Scene& scene, std::vector<float>& pixels);
void LayeredSurfaceRgb(const Scene& scene, std::vector<float>& pixels);

// `extra` is the transparency.
void TranslucentBlendGrey(const Scene& scene, std::vector<float>& pixels);
void TranslucentBlendRgb(const Scene& scene, std::vector<float>& pixels);

void ContrastProjectionGrey(const Scene& scene, std::vector<float>& pixels);
void ContrastProjectionRgb(const Scene& scene, std::vector<float>& pixels);

void FirstHitGrey(const Scene& scene, std::vector<float>& pixels);
void FirstHitRgb(const Scene& scene, std::vector<float>& pixels);

} // namespace z3d::reference
