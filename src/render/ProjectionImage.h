// The pixels of a projection under construction.
#pragma once

#include "platform/GlobalMemory.h"

#include <cstddef>
#include <cstdint>

namespace z3d::render {

// Owns a locked block of width * height pixels of three floats, all 0, until the host takes it. Empty when
// the byte count does not fit 32 bits or memory is short.
class ProjectionImage {
public:
    ProjectionImage(std::int32_t width, std::int32_t height) {
        if (width < 1 || height < 1) return;
        // Sizes go up to 2^31, so that a product of three factors could pass 2^64.
        const std::uint64_t pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
        if (pixels > UINT32_MAX / kPixelBytes) return;
        block_ = platform::BlockAllocate(static_cast<std::uint32_t>(pixels * kPixelBytes));
        if (block_ != nullptr) pixels_ = static_cast<float*>(platform::BlockLock(block_));
    }
    ~ProjectionImage() {
        if (pixels_ != nullptr) platform::BlockUnlock(block_);
        platform::BlockFree(block_);
    }
    ProjectionImage(const ProjectionImage&) = delete;
    ProjectionImage& operator=(const ProjectionImage&) = delete;

    explicit operator bool() const { return pixels_ != nullptr; }
    float* Pixels() const { return pixels_; }

    // The host becomes the owner of the block, which stays locked.
    float* Release() {
        float* pixels = pixels_;
        pixels_ = nullptr;
        block_ = nullptr;
        return pixels;
    }

private:
    static constexpr std::uint64_t kPixelBytes = 3 * sizeof(float);

    platform::BlockHandle block_ = nullptr;
    float* pixels_ = nullptr;
};

} // namespace z3d::render
