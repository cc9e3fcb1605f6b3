// The two records as hosts in any language read them: raw bytes at fixed offsets.
#include "exports/ExportedVolume.h"
#include "exports/Library.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

using namespace z3d::test;

// In a process of 32 bits, and of 64.
constexpr std::size_t InBytes(std::size_t of32, std::size_t of64) { return sizeof(void*) == 4 ? of32 : of64; }

constexpr std::size_t kPointer = InBytes(4, 8);

static_assert(sizeof(Image2D) == InBytes(16, 24));
static_assert(offsetof(Image2D, mem) == 0 && sizeof(Image2D::mem) == kPointer);
static_assert(offsetof(Image2D, rows) == InBytes(4, 8) && sizeof(Image2D::rows) == kPointer);
static_assert(offsetof(Image2D, width) == InBytes(8, 16) && sizeof(Image2D::width) == 2);
static_assert(offsetof(Image2D, height) == InBytes(10, 18) && sizeof(Image2D::height) == 2);
static_assert(offsetof(Image2D, bytesPerPixel) == InBytes(12, 20) && sizeof(Image2D::bytesPerPixel) == 4);

static_assert(sizeof(Volume3D) == InBytes(16, 24));
static_assert(offsetof(Volume3D, slices) == 0 && sizeof(Volume3D::slices) == kPointer);
static_assert(offsetof(Volume3D, sliceRows) == InBytes(4, 8) && sizeof(Volume3D::sliceRows) == kPointer);
static_assert(offsetof(Volume3D, width) == InBytes(8, 16) && sizeof(Volume3D::width) == 2);
static_assert(offsetof(Volume3D, height) == InBytes(10, 18) && sizeof(Volume3D::height) == 2);
static_assert(offsetof(Volume3D, depth) == InBytes(12, 20) && sizeof(Volume3D::depth) == 2);

static_assert(sizeof(AxisOrder) == 6);

template <class Value>
Value At(const void* record, std::size_t offset) {
    Value value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof value);
    return value;
}

TEST(RecordLayout, OfAnImage) {
    Image2D* image = TheLibrary().GlobalAlloc2D(0x1234, 2, 3);

    EXPECT_EQ(At<void*>(image, InBytes(4, 8)), nullptr);
    EXPECT_EQ(At<std::uint16_t>(image, InBytes(8, 16)), 0x1234);
    EXPECT_EQ(At<std::uint16_t>(image, InBytes(10, 18)), 2);
    EXPECT_EQ(At<std::uint32_t>(image, InBytes(12, 20)), 3u);

    TheLibrary().GlobalFree2D(image);
}

TEST(RecordLayout, OfALockedImage) {
    Image2D* image = TheLibrary().GlobalAlloc2D(5, 2, 1);
    unsigned char** rows = TheLibrary().GlobalLock2D(image);

    EXPECT_EQ(At<void*>(image, InBytes(4, 8)), static_cast<void*>(rows));
    EXPECT_EQ(At<void*>(image, 0), HandleOf(At<void*>(rows, 0)));
    EXPECT_TRUE(IsBlockOf(At<void*>(rows, 0), 5 * 2));
    EXPECT_EQ(At<std::uintptr_t>(rows, kPointer), At<std::uintptr_t>(rows, 0) + 5);

    TheLibrary().GlobalFree2D(image);
}

TEST(RecordLayout, OfAVolume) {
    const ExportedVolume volume(7, 6, 0x102, 1);

    EXPECT_EQ(At<void*>(volume.Get(), InBytes(4, 8)), nullptr);
    EXPECT_EQ(At<std::uint16_t>(volume.Get(), InBytes(8, 16)), 7);
    EXPECT_EQ(At<std::uint16_t>(volume.Get(), InBytes(10, 18)), 6);
    EXPECT_EQ(At<std::uint16_t>(volume.Get(), InBytes(12, 20)), 0x102);
    const void* lastSlice = At<void*>(At<void*>(volume.Get(), 0), 0x101 * kPointer);
    EXPECT_EQ(At<std::uint16_t>(lastSlice, InBytes(8, 16)), 7);
    EXPECT_EQ(At<std::uint16_t>(lastSlice, InBytes(10, 18)), 6);
}

// Base plus bytes, as a host without our header computes it.
TEST(RecordLayout, VoxelOfALockedVolume) {
    const ExportedVolume volume(7, 6, 3, 3);
    TheLibrary().GlobalLock3D(volume.Get());

    void* slices = At<void*>(volume.Get(), InBytes(4, 8));
    void* rows = At<void*>(slices, 2 * kPointer);
    void* row = At<void*>(rows, 5 * kPointer);
    EXPECT_EQ(static_cast<unsigned char*>(row) + 4 * 3, &volume->sliceRows[2][5][12]);
    EXPECT_EQ(At<std::uintptr_t>(rows, 5 * kPointer) - At<std::uintptr_t>(rows, 0), 5u * 7 * 3);
}

} // namespace
