// Matrices that are not quite rotations, or not at all: hosts accumulate roundings, mirror and zoom.
#include "render/KernelDifferential.h"

#include <cmath>

namespace {

using namespace z3d;
using namespace z3d::test;

class UnevenMatrices : public KernelDifferential {
protected:
    static Rotation RandomView(RandomSource& random) {
        static constexpr std::array<RotationKind, 5> kKinds = {
            RotationKind::Identity, RotationKind::ExactQuarterTurn, RotationKind::OneAxis,
            RotationKind::TinyAngle, RotationKind::Uniform};
        return RandomRotation(random, kKinds[static_cast<std::size_t>(random.Below(5))]);
    }

    static void ExpectAlike(const ComparedVolume& compared, const Rotation& rotation, RandomSource& random) {
        reference::Request request = ViewOf(compared.Plain(), rotation);
        ASSERT_TRUE(compared.IsRenderedAlike(request));
        const Crop crop = RandomCrop(random, CropKind::Inside, compared.Plain());
        CropAxis(request, 0, crop.x0, crop.x1);
        CropAxis(request, 1, crop.y0, crop.y1);
        ASSERT_TRUE(compared.IsRenderedAlike(request));
    }
};

TEST_P(UnevenMatrices, OffByAMillionthToAHundredth) {
    RandomSource random(1);
    const ComparedVolume compared(RandomVolume(random, Size(19, 17, 16)));
    for (const double error : {1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2}) {
        for (int index = 0; index < 8; ++index) {
            Rotation rotation = RandomView(random);
            for (float& element : rotation) {
                if (random.Chance(2)) continue;
                // Relative, so that exact zeros stay; or absolute.
                const double scale = random.Chance(2) ? element : 1.0;
                element = static_cast<float>(element + scale * random.Within(-error, error));
            }
            ASSERT_NO_FATAL_FAILURE(ExpectAlike(compared, rotation, random)) << "error " << error;
        }
    }
}

TEST_P(UnevenMatrices, Mirrored) {
    RandomSource random(2);
    const ComparedVolume compared(RandomVolume(random, Size(17, 18, 15)));
    for (int index = 0; index < 35; ++index) {
        Rotation rotation = RandomView(random);
        const int rows = random.Between(1, 7);
        for (std::size_t element = 0; element < 9; ++element) {
            if ((rows >> (element / 3) & 1) != 0) rotation[element] = -rotation[element];
        }
        ASSERT_NO_FATAL_FAILURE(ExpectAlike(compared, rotation, random)) << "index " << index;
    }
}

// 1.03125 is the longest step for which stretches are bounded.
TEST_P(UnevenMatrices, Zoomed) {
    RandomSource random(3);
    const ComparedVolume compared(RandomVolume(random, Size(18, 16, 17)));
    for (const float zoom : {0.01f, 0.5f, 0.96875f, 1.03125f, 1.0312501f, 1.5f, 2.0f}) {
        for (int index = 0; index < 5; ++index) {
            Rotation rotation = RandomView(random);
            const std::size_t row = static_cast<std::size_t>(random.Below(4));
            for (std::size_t element = 0; element < 9; ++element) {
                // One row, or all of them.
                if (row == 3 || element / 3 == row) rotation[element] *= zoom;
            }
            ASSERT_NO_FATAL_FAILURE(ExpectAlike(compared, rotation, random)) << "zoom " << zoom;
        }
    }
}

// Columns of pixels stay columns of voxels, whatever happens to y and z.
TEST_P(UnevenMatrices, ShearedAcrossX) {
    RandomSource random(4);
    for (int index = 0; index < 25; ++index) {
        const ComparedVolume compared(RandomVolume(random, Size(random.Between(1, 20), 9, 12)));
        Rotation rotation = kIdentity;
        for (const std::size_t element : {std::size_t{4}, std::size_t{5}, std::size_t{7}, std::size_t{8}})
            rotation[element] = static_cast<float>(random.Within(-1.3, 1.3));
        ASSERT_NO_FATAL_FAILURE(ExpectAlike(compared, rotation, random)) << "index " << index;
    }
}

// Matrices that just count as rotations, over so many voxels that depths are off by several of them: rays leave the
// crop box, and meet its faces beyond the ends where faces are looked for.
TEST_P(UnevenMatrices, OffByAThousandthOverThousandsOfVoxels) {
    const ComparedVolume flat(NoiseVolume(Size(16000, 2, 50), 5));
    const ComparedVolume tilted(NoiseVolume(Size(3600, 3, 30), 6));
    for (const float error : {0.99e-3f, -0.99e-3f}) {
        reference::Request request = ViewOf(flat.Plain(), {1, 0, 0, 0, 1, 0, error, 0, 1});
        CropAxis(request, 2, 24, 27);
        ASSERT_TRUE(flat.IsRenderedAlike(request));

        Rotation rotation = Rounded(AboutAxis(1, FromHalfTangent(0.15)));
        for (std::size_t element = 0; element < 3; ++element)
            rotation[element] += error * rotation[6 + element];
        request = ViewOf(tilted.Plain(), rotation);
        CropAxis(request, 1, 2, 2); // so that no ray runs along a face
        ASSERT_TRUE(tilted.IsRenderedAlike(request));
    }
}

// A ray of so many samples that a sum of bytes passes 2^24, where single precision loses whole numbers: by a row
// that makes them 200 voxels apart, most of them beyond the border.
TEST_P(UnevenMatrices, SumsBeyondTheWholeNumbersOfAFloat) {
    reference::Volume volume = ConstantVolume(Size(2, 1, 420), 255);
    SetVoxel(volume, 0, 0, 419, {253, 252, 251});
    const ComparedVolume compared(std::move(volume));
    Rotation rotation = kIdentity;
    rotation[8] = 200.0f;
    ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), rotation)));
    rotation[0] = rotation[4] = -1.0f;
    ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), rotation)));
}

INSTANTIATE_TEST_SUITE_P(AllKernels, UnevenMatrices, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
