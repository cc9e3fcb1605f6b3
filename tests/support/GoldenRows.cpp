#include "support/GoldenRows.h"

#include "support/Digest.h"

#include <bit>

namespace z3d::test {

std::span<const GoldenRow> AllRows() {
    using enum VolumeKind;
    static constexpr GoldenRow kRows[] = {
#include "render/GoldenRows.inc"
    };
    return kRows;
}

reference::Volume VolumeOf(const GoldenRow& row) {
    switch (row.kind) {
    case VolumeKind::Noise:
        return NoiseVolume(row.size, row.detail);
    case VolumeKind::Sparse:
        return SparseVolume(row.size, row.detail);
    case VolumeKind::Blob:
        return BlobVolume(row.size, row.detail);
    case VolumeKind::Ramp:
        return RampVolume(row.size, static_cast<int>(row.detail));
    case VolumeKind::Step:
        return StepVolume(row.size, static_cast<std::uint8_t>(row.detail >> 8),
                          static_cast<std::uint8_t>(row.detail));
    case VolumeKind::Checkerboard:
        return CheckerboardVolume(row.size, static_cast<int>(row.detail));
    }
    return {};
}

reference::Request RequestOf(const GoldenRow& row) {
    return {std::bit_cast<std::array<float, 9>>(row.rotation),
            row.mode,
            row.crop.x0,
            row.crop.x1,
            row.crop.y0,
            row.crop.y1,
            row.crop.z0,
            row.crop.z1,
            std::bit_cast<float>(row.high),
            std::bit_cast<float>(row.low),
            row.extra};
}

std::uint64_t DigestOf(const reference::Projection& projection) {
    Digest digest;
    for (const float value : projection.pixels) {
        digest.Add(value);
    }
    return digest.Value();
}

} // namespace z3d::test
