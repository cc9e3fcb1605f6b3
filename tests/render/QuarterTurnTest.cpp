// Turning the view by quarters, or mirroring it, shows the volume with its axes exchanged: exactly, in every
// mode, because all coordinates are then whole or half numbers.
#include "render/RenderExamples.h"
#include "support/RenderModes.h"

#include <algorithm>

namespace {

using namespace z3d;
using namespace z3d::test;

// View axis r is volume axis axes[r], backwards where mirrored[r].
struct Turn {
    std::array<int, 3> axes;
    std::array<bool, 3> mirrored;
};

std::vector<Turn> AllTurns() {
    std::vector<Turn> turns;
    std::array<int, 3> axes = {0, 1, 2};
    do {
        for (int signs = 0; signs < 8; ++signs) {
            turns.push_back({axes, {(signs & 1) != 0, (signs & 2) != 0, (signs & 4) != 0}});
        }
    } while (std::next_permutation(axes.begin(), axes.end()));
    return turns;
}

Rotation RotationOf(const Turn& turn) {
    Rotation rotation = {};
    for (std::size_t row = 0; row < 3; ++row) {
        rotation[3 * row + static_cast<std::size_t>(turn.axes[row])] = turn.mirrored[row] ? -1.0f : 1.0f;
    }
    return rotation;
}

// The volume as it lies in view axes.
reference::Volume Turned(reference::Volume& volume, const Turn& turn) {
    const std::array<int, 3> sides = {volume.width, volume.height, volume.depth};
    const auto sideOf = [&](std::size_t row) { return sides[static_cast<std::size_t>(turn.axes[row])]; };
    reference::Volume turned = EmptyVolume({sideOf(0), sideOf(1), sideOf(2), volume.bytesPerVoxel});
    for (int z = 0; z < turned.depth; ++z) {
        for (int y = 0; y < turned.height; ++y) {
            for (int x = 0; x < turned.width; ++x) {
                const std::array<int, 3> view = {x, y, z};
                std::array<int, 3> voxel = {};
                for (std::size_t row = 0; row < 3; ++row) {
                    voxel[static_cast<std::size_t>(turn.axes[row])] =
                        turn.mirrored[row] ? sideOf(row) - 1 - view[row] : view[row];
                }
                for (int channel = 0; channel < volume.bytesPerVoxel; ++channel) {
                    VoxelByte(turned, x, y, z, channel) =
                        VoxelByte(volume, voxel[0], voxel[1], voxel[2], channel);
                }
            }
        }
    }
    return turned;
}

void ExpectEqualViews(reference::Projection (*render)(const reference::Volume&, const reference::Request&),
                      int bytesPerVoxel) {
    reference::Volume volume = NoiseVolume({5, 4, 6, bytesPerVoxel}, 7);
    for (const Turn& turn : AllTurns()) {
        const reference::Volume turned = Turned(volume, turn);
        for (const RenderMode mode : kRenderModes) {
            for (const float extra : {0.0f, 0.5f}) {
                const reference::Request request =
                    WithExtra(WithWindow(PlainRequest(volume, mode, RotationOf(turn)), 60, 500), extra);
                const reference::Request straight =
                    WithExtra(WithWindow(PlainRequest(turned, mode), 60, 500), extra);
                const reference::Projection expected = render(turned, straight);

                ASSERT_FALSE(expected.pixels.empty());
                ASSERT_TRUE(HasPixels(render(volume, request), expected.pixels)) << Describe(request);
            }
        }
    }
}

TEST_P(RenderExamples, QuarterTurnsShowTheVolumeWithItsAxesExchangedInGrey) {
    ExpectEqualViews(GetParam().render, 1);
}

TEST_P(RenderExamples, QuarterTurnsShowTheVolumeWithItsAxesExchangedInColour) {
    ExpectEqualViews(GetParam().render, 3);
}

} // namespace
