// Calls on different objects at the same time.
#include "exports/ExportedVolume.h"
#include "exports/Library.h"
#include "support/RenderModes.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

using namespace z3d::test;

constexpr int kThreads = 4;
constexpr int kRounds = 50;

// Every mode of a volume of its own, one after the other, with the DLL's choice of kernels.
std::vector<unsigned char> RenderEverything() {
    std::vector<unsigned char> bytes;
    for (const unsigned int bytesPerVoxel : {1u, 3u}) {
        const ExportedVolume volume(13, 11, 9, bytesPerVoxel);
        for (const RenderMode mode : kRenderModes) {
            unsigned short size[2] = {};
            float* pixels = TheLibrary().GetRotProjection(volume.Get(), kOblique, mode, 1, 13, 1, 11, 1, 9,
                                                          500, 20, 0.5f, &size[0], &size[1], 0);
            if (pixels == nullptr) continue;
            const auto* first = reinterpret_cast<const unsigned char*>(pixels);
            bytes.insert(bytes.end(), first, first + ProjectionBytes(size[0], size[1]));
            ReleaseProjection(pixels);
        }
    }
    return bytes;
}

TEST(Threads, RenderTheirOwnVolumesToTheSameBytes) {
    const std::vector<unsigned char> expected = RenderEverything();
    ASSERT_FALSE(expected.empty());
    int equalRounds[kThreads] = {};
    std::vector<std::thread> threads;

    for (int& equal : equalRounds) {
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round)
                equal += RenderEverything() == expected;
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    for (const int equal : equalRounds)
        EXPECT_EQ(equal, kRounds);
}

} // namespace
