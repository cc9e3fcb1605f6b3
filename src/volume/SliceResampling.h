// Slices with another width and height.
#pragma once

#include "frame/LockedImage.h"
#include "frame/Owned.h"
#include "primitives/BilinearResize.h"
#include "primitives/Region.h"

#include <cstdint>
#include <optional>

namespace z3d::volume {

// Resamples slices of one size (1 to 65535 each way) and of 1 or 4 bytes per pixel, bytes or floats. Bilinear; a
// slice's first column and first row do not contribute, and what the resize leaves unwritten at the right and at the
// bottom is zero.
class SliceResampler {
public:
    SliceResampler(primitives::ImageSize size, primitives::ImageSize newSize, std::uint32_t bytesPerPixel);

    // A new unlocked image of the new size, in the slice's format. The slice is left as it is, unlocked. Null when
    // memory is short.
    frame::OwnedImage Resample(Image2D* slice);

private:
    template <class Passes>
    void RunOn(std::optional<primitives::BilinearResize<Passes>>& resize, const frame::LockedImage& from,
               const frame::LockedImage& to);

    primitives::ImageSize size_;
    primitives::ImageSize newSize_;
    std::uint32_t bytesPerPixel_;
    primitives::Axis columns_;
    primitives::Axis rows_;
    // One of the two, or neither: a slice of one column or row lies outside of what contributes.
    std::optional<primitives::BilinearResize<primitives::BytePasses>> bytes_;
    std::optional<primitives::BilinearResize<primitives::FloatPasses>> floats_;
};

} // namespace z3d::volume
