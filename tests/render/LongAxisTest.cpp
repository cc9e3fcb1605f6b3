// Axes of thousands of voxels: positions are sums of thousands of rounded steps and drift from where they would be
// exactly, indexes pass 15 bits, and a slice or a row is far larger than a stretch.
#include "render/KernelDifferential.h"

#include <memory>

namespace {

using namespace z3d;
using namespace z3d::test;

class LongAxes : public KernelDifferential {
protected:
    // Dim noise with a few bright voxels, `sides` being those of the long axis and of the next two.
    static reference::Volume LongVolume(int axis, const std::array<int, 3>& sides, int brightVoxels,
                                        RandomSource& random) {
        std::array<int, 3> size = {};
        for (std::size_t index = 0; index < 3; ++index)
            size[(static_cast<std::size_t>(axis) + index) % 3] = sides[index];
        reference::Volume volume = EmptyVolume(Size(size[0], size[1], size[2]));
        for (std::uint8_t& byte : volume.voxels) {
            if (random.Chance(40)) byte = static_cast<std::uint8_t>(random.Between(1, 9));
        }
        for (int voxel = 0; voxel < brightVoxels; ++voxel) {
            SetVoxel(volume, random.Below(size[0]), random.Below(size[1]), random.Below(size[2]),
                     {random.Between(10, 255), random.Between(0, 255), random.Between(0, 255)});
        }
        return volume;
    }

    static Rotation Tilted(const DoubleMatrix& view, int axis, double degrees) {
        return Rounded(Product(AboutAxis(axis, SmallAngle(degrees)), view));
    }

    // Volumes of more voxels on an axis than crop bounds can name.
    static const ComparedVolume& HugeVolume(int axis) {
        return Kept(axis, [axis] {
            RandomSource random(static_cast<std::uint32_t>(axis));
            return LongVolume(axis, {40000, 2, 3}, 3000, random);
        });
    }
    // One slice of 17 million voxels, noise in the far corner and nothing else.
    static const ComparedVolume& WideVolume() {
        return Kept(3, [] {
            RandomSource random(5);
            reference::Volume wide = EmptyVolume(Size(4100, 4110, 1));
            for (int y = 4070; y < 4110; ++y) {
                for (int x = 4060; x < 4100; ++x)
                    SetVoxel(wide, x, y, 0, {random.Below(256), random.Below(256), random.Below(256)});
            }
            return wide;
        });
    }
    static void TearDownTestSuite() { ForgetVolumes(); }

    // A small tilt whose size is spread over its magnitudes.
    static double RandomTilt(RandomSource& random, double largest) {
        double degrees = largest * random.Within(0.1, 1.0);
        for (int tenths = random.Below(5); tenths > 0; --tenths)
            degrees *= 0.1;
        return random.Chance(2) ? degrees : -degrees;
    }

    static void ExpectAlikeAlong(int axis, const std::array<int, 3>& sides, std::uint32_t seed) {
        RandomSource random(seed);
        const ComparedVolume compared(LongVolume(axis, sides, 30, random));
        for (int index = 0; index < 24; ++index) {
            const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
            const double degrees = RandomTilt(random, index % 4 == 0 ? 20.0 : 0.3);
            const Rotation view = Tilted(along, random.Below(3), degrees);
            const bool isNarrow = random.Chance(3);
            ASSERT_TRUE(compared.IsRenderedAlike(isNarrow ? ViewOf(compared.Plain(), view, 9.5f, 200.0f)
                                                          : ViewOf(compared.Plain(), view)))
                << "axis " << axis << ", view " << index;
        }
    }

private:
    // Made once for all kernels of a format: blocks of memory for tens of thousands of slices take longer than many
    // projections.
    template <class Make>
    static const ComparedVolume& Kept(int index, Make make) {
        auto& volume = volumes_[static_cast<std::size_t>(index)];
        if (volume && volume->Plain().bytesPerVoxel != BytesPerVoxel()) ForgetVolumes();
        if (!volume) volume = std::make_unique<const ComparedVolume>(make());
        return *volume;
    }
    static void ForgetVolumes() {
        for (auto& volume : volumes_)
            volume.reset();
    }

    static inline std::array<std::unique_ptr<const ComparedVolume>, 4> volumes_;
};

TEST_P(LongAxes, RaysAlongMoreThanAThousandVoxels) {
    for (int axis = 0; axis < 3; ++axis) {
        ASSERT_NO_FATAL_FAILURE(ExpectAlikeAlong(axis, {1500, 3, 3}, 1));
        ASSERT_NO_FATAL_FAILURE(ExpectAlikeAlong(axis, {2100, 5, 4}, 2));
    }
}

// The long axis lies across the view, so that positions start far from 0 and move slowly or not at all.
TEST_P(LongAxes, RaysAcrossMoreThanAThousandVoxels) {
    RandomSource random(3);
    for (int axis = 0; axis < 3; ++axis) {
        const ComparedVolume compared(LongVolume(axis, {1500, 3, 3}, 200, random));
        for (int index = 0; index < 10; ++index) {
            const DoubleMatrix across = LookingAlong((axis + 1 + index % 2) % 3, random.Chance(2));
            const Rotation view = Tilted(across, random.Below(3), RandomTilt(random, 1.0));
            ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), view)))
                << "axis " << axis << ", view " << index;
        }
    }
}

// Turned about two axes, so that no line of pixels shares a path. Rays have more stretches than are put into an order
// together.
TEST_P(LongAxes, RaysThroughHundredsOfVoxels) {
    RandomSource random(6);
    for (int axis = 0; axis < 3; ++axis) {
        const ComparedVolume compared(LongVolume(axis, {700, 12, 11}, 400, random));
        for (const double degrees : {0.3, -0.2}) {
            const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
            const DoubleMatrix turned = Product(AboutAxis(0, SmallAngle(0.4)), along);
            ASSERT_TRUE(compared.IsRenderedAlike(ViewOf(compared.Plain(), Tilted(turned, 1, degrees))))
                << "axis " << axis << ", " << degrees << " degrees";
        }
    }
}

// Crop bounds are 16-bit and signed: no crop reaches the last voxels, apart from the sample past its end.
TEST_P(LongAxes, OfMoreVoxelsThanCropBoundsCanName) {
    RandomSource random(4);
    for (int axis = 0; axis < 3; ++axis) {
        const ComparedVolume& compared = HugeVolume(axis);
        const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
        const DoubleMatrix across = LookingAlong((axis + 1) % 3, random.Chance(2));
        for (const Rotation& view :
             {Rounded(along), Tilted(along, random.Below(2), RandomTilt(random, 0.01)), Rounded(across)}) {
            reference::Request request = ViewOf(compared.Plain(), view);
            for (int any = 0; any < 3; ++any)
                CropAxis(request, any, -32768, 32767);
            ASSERT_TRUE(compared.IsRenderedAlike(request)) << "axis " << axis;
            for (int any = 0; any < 3; ++any)
                CropAxis(request, any, any == axis ? 32700 : 1, 32767);
            ASSERT_TRUE(compared.IsRenderedAlike(request)) << "axis " << axis;
        }
    }
}

// Fifteen steps are a whole number of voxels but for a millionth; their sum, rounded at each step to 1/512 of a voxel,
// is more than that: a stretch reaches a voxel farther than its exact length says. A host's matrix may have such a
// step, whose rays are cut only where crop faces lie within its shorter depth.
TEST_P(LongAxes, StepsWhoseRoundedSumReachesOneVoxelFarther) {
    RandomSource random(5);
    for (int axis = 0; axis < 3; ++axis) {
        const ComparedVolume& compared = HugeVolume(axis);
        for (int index = 0; index < 6; ++index) {
            const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
            Rotation view = Rounded(Product(AboutAxis(2, Quarters(1)), along));
            const float step = (index == 0 ? 14.0f : 12.0f) / 15.0f * 0.999999f;
            for (std::size_t element = 6; element < 9; ++element)
                view[element] *= step;
            reference::Request request = ViewOf(compared.Plain(), view, 9.5f, 766.0f);
            CropAxis(request, axis, random.Between(15000, 16000), 32600);
            ASSERT_TRUE(compared.IsRenderedAlike(request)) << "axis " << axis << ", view " << index;
        }
    }
}

// Indexes within a slice pass 2^24, beyond which single precision does not have every whole number. Rays run along
// a row of the far corner.
TEST_P(LongAxes, SlicesOfMoreVoxelsThanFloatsCount) {
    const ComparedVolume& compared = WideVolume();
    for (const double degrees : {0.0, 0.01}) {
        reference::Request request = ViewOf(compared.Plain(), Tilted(LookingAlong(0, true), 2, degrees));
        request.x0 = 4070;
        request.y0 = 4080;
        ASSERT_TRUE(compared.IsRenderedAlike(request)) << degrees << " degrees";
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, LongAxes, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
