#include "render/RenderExamples.h"

#include <bit>
#include <iomanip>
#include <sstream>
#include <string>
#include <utility>

namespace z3d::test {

namespace {

std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

std::string WithBits(float value) {
    std::ostringstream text;
    text << std::setprecision(9) << value << " (0x" << std::hex << Bits(value) << ")";
    return text.str();
}

} // namespace

reference::Volume GreyVolume(int width, int height, int depth, std::initializer_list<int> voxels) {
    reference::Volume volume = EmptyVolume({width, height, depth});
    std::size_t byte = 0;
    for (const int voxel : voxels) {
        volume.voxels.at(byte) = static_cast<std::uint8_t>(voxel);
        ++byte;
    }
    return volume;
}

reference::Volume GreySlices(int side, std::initializer_list<int> values) {
    reference::Volume volume = EmptyVolume({side, side, static_cast<int>(values.size())});
    int z = 0;
    for (const int value : values) {
        for (int y = 0; y < side; ++y) {
            for (int x = 0; x < side; ++x) {
                VoxelByte(volume, x, y, z) = static_cast<std::uint8_t>(value);
            }
        }
        ++z;
    }
    return volume;
}

reference::Volume ColourSlices(int side, std::initializer_list<std::array<int, 3>> colours) {
    reference::Volume volume = EmptyVolume({side, side, static_cast<int>(colours.size()), 3});
    std::size_t byte = 0;
    for (const std::array<int, 3>& colour : colours) {
        for (int voxel = 0; voxel < side * side; ++voxel) {
            for (const int channel : colour) {
                volume.voxels[byte] = static_cast<std::uint8_t>(channel);
                ++byte;
            }
        }
    }
    return volume;
}

reference::Volume GreyColumn(std::initializer_list<int> voxels) { return GreySlices(1, voxels); }

reference::Volume ColourColumn(std::initializer_list<std::array<int, 3>> voxels) {
    return ColourSlices(1, voxels);
}

reference::Request WithWindow(reference::Request request, float low, float high) {
    request.low = low;
    request.high = high;
    return request;
}

reference::Request WithExtra(reference::Request request, float extra) {
    request.extraBits = Bits(extra);
    return request;
}

reference::Request WithCropX(reference::Request request, int first, int last) {
    CropAxis(request, 0, first, last);
    return request;
}

reference::Request WithCropZ(reference::Request request, int first, int last) {
    CropAxis(request, 2, first, last);
    return request;
}

::testing::AssertionResult HasPixels(const reference::Projection& projection, std::vector<float> expected) {
    if (!projection.rendered) return ::testing::AssertionFailure() << "not rendered";
    if (projection.pixels.size() != expected.size()) {
        return ::testing::AssertionFailure()
               << projection.pixels.size() << " floats instead of " << expected.size();
    }
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const float actual = projection.pixels[i];
        if (Bits(actual) == Bits(expected[i])) continue;
        return ::testing::AssertionFailure() << "pixel " << i / 3 << ", float " << i % 3 << ": "
                                             << WithBits(actual) << " instead of " << WithBits(expected[i]);
    }
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult HasGreyPixels(const reference::Projection& projection,
                                         const std::vector<float>& expected) {
    std::vector<float> tripled;
    for (const float value : expected) {
        tripled.insert(tripled.end(), 3, value);
    }
    return HasPixels(projection, std::move(tripled));
}

} // namespace z3d::test
