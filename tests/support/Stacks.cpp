#include "support/Stacks.h"

#include "frame/LockedImage.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace z3d::test {
namespace {

std::size_t SliceBytes(const reference::Volume& stack) {
    return static_cast<std::size_t>(stack.width) * static_cast<std::size_t>(stack.height)
           * static_cast<std::size_t>(stack.bytesPerVoxel);
}

reference::Volume StackOf(int width, int height, int depth, int bytesPerVoxel,
                          std::vector<std::uint8_t> samples) {
    reference::Volume stack = {width, height, depth, bytesPerVoxel, std::move(samples)};
    EXPECT_EQ(stack.voxels.size(), SliceBytes(stack) * static_cast<std::size_t>(depth));
    return stack;
}

bool AreBothNaN(const std::uint8_t* a, const std::uint8_t* b) {
    float floatA;
    float floatB;
    std::memcpy(&floatA, a, sizeof floatA);
    std::memcpy(&floatB, b, sizeof floatB);
    return std::isnan(floatA) && std::isnan(floatB);
}

::testing::AssertionResult SameSample(const std::uint8_t* actual, const std::uint8_t* expected,
                                      std::size_t bytes) {
    if (std::memcmp(actual, expected, bytes) == 0) return ::testing::AssertionSuccess();
    if (bytes == 4 && AreBothNaN(actual, expected)) return ::testing::AssertionSuccess();
    ::testing::AssertionResult failure = ::testing::AssertionFailure();
    failure << std::hex << "got bytes";
    for (std::size_t i = 0; i < bytes; ++i)
        failure << ' ' << int{actual[i]};
    failure << ", expected";
    for (std::size_t i = 0; i < bytes; ++i)
        failure << ' ' << int{expected[i]};
    return failure << std::dec;
}

::testing::AssertionResult HasSlice(Image2D* slice, const reference::Volume& stack, std::size_t z) {
    if (slice == nullptr) return ::testing::AssertionFailure() << "there is no slice " << z;
    if (slice->rows != nullptr) return ::testing::AssertionFailure() << "slice " << z << " is locked";
    if (slice->width != stack.width || slice->height != stack.height
        || slice->bytesPerPixel != static_cast<std::uint32_t>(stack.bytesPerVoxel)) {
        return ::testing::AssertionFailure() << "slice " << z << " is " << slice->width << " x "
                                             << slice->height << " x " << slice->bytesPerPixel << " bytes";
    }
    const frame::LockedImage locked(slice);
    const std::uint8_t* expected = stack.voxels.data() + z * SliceBytes(stack);
    for (std::size_t i = 0; i < locked.PixelCount(); ++i) {
        const std::size_t at = i * slice->bytesPerPixel;
        auto same = SameSample(locked.Bytes() + at, expected + at, slice->bytesPerPixel);
        if (!same) {
            return same << " at column " << i % slice->width << ", row " << i / slice->width << ", slice "
                        << z;
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace

reference::Volume ByteStack(int width, int height, int depth, std::vector<std::uint8_t> samples) {
    return StackOf(width, height, depth, 1, std::move(samples));
}

reference::Volume RgbStack(int width, int height, int depth, std::vector<std::uint8_t> samples) {
    return StackOf(width, height, depth, 3, std::move(samples));
}

reference::Volume FloatStack(int width, int height, int depth, const std::vector<float>& samples) {
    reference::Volume stack = {width, height, depth, 4, FileBytesOf(samples)};
    EXPECT_EQ(stack.voxels.size(), SliceBytes(stack) * static_cast<std::size_t>(depth));
    return stack;
}

frame::OwnedVolume ToVolume(const reference::Volume& stack) {
    frame::OwnedVolume volume(frame::GlobalAlloc3D(
        static_cast<std::uint32_t>(stack.width), static_cast<std::uint32_t>(stack.height),
        static_cast<std::uint32_t>(stack.depth), static_cast<std::uint32_t>(stack.bytesPerVoxel)));
    EXPECT_TRUE(volume);
    for (std::size_t z = 0; volume && z < volume->depth; ++z) {
        const frame::LockedImage locked(volume->slices[z]);
        std::memcpy(locked.Bytes(), stack.voxels.data() + z * SliceBytes(stack), SliceBytes(stack));
    }
    return volume;
}

std::vector<std::uint8_t> FileBytesOf(const std::vector<float>& samples) {
    std::vector<std::uint8_t> bytes(samples.size() * sizeof(float));
    if (!bytes.empty()) std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

::testing::AssertionResult HasSamples(Volume3D* actual, const reference::Volume& expected) {
    if (actual == nullptr) return ::testing::AssertionFailure() << "there is no volume";
    if (actual->sliceRows != nullptr) return ::testing::AssertionFailure() << "the volume is locked";
    if (actual->width != expected.width || actual->height != expected.height
        || actual->depth != expected.depth) {
        return ::testing::AssertionFailure()
               << "the volume is " << actual->width << " x " << actual->height << " x " << actual->depth;
    }
    for (std::size_t z = 0; z < actual->depth; ++z) {
        auto slice = HasSlice(actual->slices[z], expected, z);
        if (!slice) return slice;
    }
    return ::testing::AssertionSuccess();
}

} // namespace z3d::test
