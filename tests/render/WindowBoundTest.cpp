// Voxels that equal a bound of the window or the largest value so far. Bounds of stretches hold one more than a
// value, and 255 stands for both 254 and 255: there and at both ends of the range a comparison is easily one off.
#include "render/KernelDifferential.h"

#include <algorithm>

namespace {

using namespace z3d;
using namespace z3d::test;

class WindowBounds : public KernelDifferential {
protected:
    // Cells of one value each, from a list, so that whole stretches are flat and plateaus meet.
    static reference::Volume Plateaus(const VolumeSize& size, int cell, const std::vector<int>& values,
                                      RandomSource& random) {
        reference::Volume volume = EmptyVolume(size);
        for (int z = 0; z < size.depth; z += cell) {
            for (int y = 0; y < size.height; y += cell) {
                for (int x = 0; x < size.width; x += cell)
                    FillCell(volume, x, y, z, cell, RandomColour(random, values));
            }
        }
        return volume;
    }

    static Rotation RandomView(RandomSource& random) {
        return RandomRotation(random, static_cast<RotationKind>(random.Below(kRotationKinds - 1)));
    }

    static void ExpectAlike(const ComparedVolume& compared, RandomSource& random,
                            const std::vector<Window>& windows) {
        for (const Window& window : windows) {
            ASSERT_TRUE(compared.IsRenderedAlike(
                ViewOf(compared.Plain(), RandomView(random), window.low, window.high)));
        }
    }

    // For colour: the same about the sum of three channels of about that value.
    static Window About(int low, int high, float wider) {
        const auto scale = static_cast<float>(BytesPerVoxel());
        return {static_cast<float>(high) * scale + wider, static_cast<float>(low) * scale - wider};
    }

private:
    static Colour RandomColour(RandomSource& random, const std::vector<int>& values) {
        const auto any = [&] {
            return values[static_cast<std::size_t>(random.Below(static_cast<int>(values.size())))];
        };
        const int grey = any();
        // Half of the colours are grey, so that their sums meet the bounds too.
        return random.Chance(2) ? Colour{grey, grey, grey} : Colour{grey, any(), any()};
    }

    static void FillCell(reference::Volume& volume, int x0, int y0, int z0, int cell, const Colour& colour) {
        for (int z = z0; z < std::min(z0 + cell, volume.depth); ++z) {
            for (int y = y0; y < std::min(y0 + cell, volume.height); ++y) {
                for (int x = x0; x < std::min(x0 + cell, volume.width); ++x)
                    SetVoxel(volume, x, y, z, colour);
            }
        }
    }
};

constexpr int kVolumes = 8;

TEST_P(WindowBounds, ValuesAtBothBoundsAndBesideThem) {
    RandomSource random(1);
    for (int index = 0; index < kVolumes; ++index) {
        const int low = random.Between(2, 120);
        const int high = random.Between(low, 253);
        const std::vector<int> values = {low - 1, low, low + 1, high - 1, high, high + 1};
        const ComparedVolume compared(Plateaus(Size(19, 18, 37), 1 + index % 5, values, random));
        ASSERT_NO_FATAL_FAILURE(
            ExpectAlike(compared, random,
                        {About(low, high, 0), About(low, high, 0.5f), About(low, high, -0.5f),
                         About(low, low, 0), About(high, high, 0), About(high, high, 1)}))
            << "volume " << index;
    }
}

TEST_P(WindowBounds, TheLargestAndTheSmallestValues) {
    RandomSource random(2);
    const std::vector<Window> windows = {
        About(0, 255, 0),   About(0, 255, 1), About(254, 255, 0), About(254, 254, 0), About(255, 255, 0),
        About(253, 254, 0), About(0, 0, 0),   About(0, 1, 0),     About(1, 1, 0),     About(1, 254, 0)};
    for (int index = 0; index < kVolumes; ++index) {
        const bool isBright = index % 2 == 0;
        const std::vector<int> values =
            isBright ? std::vector<int>{252, 253, 254, 255} : std::vector<int>{0, 1, 2, 3};
        const ComparedVolume compared(Plateaus(Size(17, 36, 18), 1 + index / 2 * 3, values, random));
        ASSERT_NO_FATAL_FAILURE(ExpectAlike(compared, random, windows)) << "volume " << index;
    }
}

// A ground of 254 whose code is that of the few voxels of 255, and the same upside down for the minimum.
TEST_P(WindowBounds, FewVoxelsWhoseCodeIsThatOfTheGround) {
    RandomSource random(3);
    for (int index = 0; index < kVolumes; ++index) {
        const bool isBright = index % 2 == 0;
        reference::Volume volume = ConstantVolume(Size(33, 17, 34), isBright ? 254 : 1);
        const int extreme = isBright ? 255 : 0;
        for (int voxel = 0; voxel < 4; ++voxel) {
            SetVoxel(volume, random.Below(33), random.Below(17), random.Below(34),
                     {extreme, isBright ? 254 : 1, extreme});
        }
        const ComparedVolume compared(std::move(volume));
        ASSERT_NO_FATAL_FAILURE(
            ExpectAlike(compared, random, {About(0, 255, 0), About(0, 255, 1), About(1, 254, 0)}))
            << "volume " << index;
    }
}

// Every stretch promises exactly what the ray has.
TEST_P(WindowBounds, OnePlateau) {
    RandomSource random(4);
    for (const int value : {0, 1, 127, 128, 253, 254, 255}) {
        const ComparedVolume compared(ConstantVolume(Size(35, 16, 18), static_cast<std::uint8_t>(value)));
        ASSERT_NO_FATAL_FAILURE(
            ExpectAlike(compared, random, {About(0, 255, 1), About(value, value, 0), About(value, value, 1)}))
            << "value " << value;
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, WindowBounds, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
