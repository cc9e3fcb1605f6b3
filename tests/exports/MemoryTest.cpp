// A host that works all day: nothing that a call took is kept.
#include "exports/ExportedVolume.h"
#include "exports/HeapUse.h"
#include "exports/Library.h"
#include "support/RenderModes.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <cstddef>
#include <cstring>

namespace {

using namespace z3d::test;

constexpr int kManyRounds = 100000;
// One of them is unknown.
constexpr int kModeCount = kRenderModeCount + 1;

// Of every ten volumes one is left locked, one is rendered in colour, one is refused by the renderer.
void OneRound(int round) {
    const unsigned int bytesPerVoxel = round % 10 == 1 ? 3 : 1;
    Volume3D* volume = TheLibrary().GlobalAlloc3D(4, 3, 2, bytesPerVoxel);
    TheLibrary().GlobalLock3D(volume)[1][2][3] = 9;
    if (round % 10 != 0) TheLibrary().GlobalUnlock3D(volume);

    unsigned short size[2];
    const short mode = static_cast<short>(round % kModeCount);
    float* pixels = TheLibrary().GetRotProjection(volume, round % 10 == 2 ? nullptr : kNotTurned, mode, 1, 4,
                                                  1, 3, 1, 2, 255, 0, 0.5f, &size[0], &size[1], 0);
    if (pixels != nullptr) ReleaseProjection(pixels);
    if (round % 10 == 0) TheLibrary().GlobalLock3D(volume);
    TheLibrary().GlobalFree3D(volume);
}

TEST(Memory, StaysTheSameOver100000Rounds) {
    for (int round = 0; round < 1000; ++round)
        OneRound(round);
    const HeapUse heapsBefore = MeasureHeaps();
    const std::size_t bytesBefore = MeasurePrivateBytes();

    for (int round = 0; round < kManyRounds; ++round)
        OneRound(round);

    const std::size_t bytesAfter = MeasurePrivateBytes();
    const HeapUse heapsAfter = MeasureHeaps();
    EXPECT_EQ(heapsAfter, heapsBefore);
    EXPECT_LT(bytesAfter, bytesBefore + 256 * 1024) << "private bytes before: " << bytesBefore;
    RecordProperty("PrivateBytesGrowth", static_cast<int>(bytesAfter) - static_cast<int>(bytesBefore));
}

TEST(Memory, IsMeasuredToTheCommittedByte) {
    constexpr std::size_t kBytes = 1024 * 1024;
    const std::size_t before = MeasurePrivateBytes();
    void* pages = VirtualAlloc(nullptr, kBytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    std::memset(pages, 1, kBytes);

    EXPECT_GE(MeasurePrivateBytes(), before + kBytes);

    VirtualFree(pages, 0, MEM_RELEASE);
}

// The measure sees a single leaked block.
TEST(Memory, IsMeasuredToTheBlock) {
    const HeapUse before = MeasureHeaps();
    Image2D* image = TheLibrary().GlobalAlloc2D(100, 10, 1);
    const HeapUse during = MeasureHeaps();
    TheLibrary().GlobalFree2D(image);

    EXPECT_GE(during.blocks, before.blocks + 2) << "the handle and the pixels";
    EXPECT_GE(during.bytes, before.bytes + 1016);
    EXPECT_EQ(MeasureHeaps().blocks, before.blocks);
}

} // namespace
