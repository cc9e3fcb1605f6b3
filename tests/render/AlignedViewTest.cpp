// Views in which a volume axis lies along a picture axis: turntables, and every combination of right angles. Cosines of
// 90 degrees are not quite 0, in double precision and much less so in single precision.
#include "render/KernelDifferential.h"

#include "frame/Image2D.h"
#include "support/ProductRenderer.h"
#include "support/Refusals.h"
#include "support/SameBits.h"

#include <algorithm>

namespace {

using namespace z3d;
using namespace z3d::test;

class AlignedViews : public KernelDifferential {
protected:
    // Quarter turns as hosts compute them: with exact zeros, in double precision, and in single precision.
    static constexpr std::array<double, 3> kCosinesOf90 = {0, 6.123233995736766e-17, -4.371138828673793e-8};

    static Angle HostQuarters(int turns, double cosineOf90) {
        const Angle exact = Quarters(turns);
        const double small = cosineOf90 * ((turns & 3) == 3 ? 3 : (turns & 3));
        return {exact.cosine == 0 ? small : exact.cosine, exact.sine == 0 ? small : exact.sine};
    }

    // An angle about one axis and quarter turns about the two others, in either order.
    static Rotation Turntable(int axis, const Angle& angle, int quarters, double cosineOf90,
                              bool isFirstInnermost) {
        std::array<DoubleMatrix, 3> turns;
        for (int other = 0; other < 3; ++other) {
            const Angle quarter = HostQuarters(other < 2 ? quarters : quarters / 4, cosineOf90);
            turns[static_cast<std::size_t>(other)] = AboutAxis(other, other == axis ? angle : quarter);
        }
        if (isFirstInnermost) std::swap(turns[0], turns[2]);
        return Rounded(Product(Product(turns[0], turns[1]), turns[2]));
    }

    // Crops whose faces lie in the middle of the volume are the hardest: rays there lie on a face, almost.
    static void CropSomehow(reference::Request& request, const reference::Volume& volume,
                            RandomSource& random) {
        if (random.Chance(2)) return;
        CropTo(request, RandomCrop(random, static_cast<CropKind>(random.Below(kCropKinds)), volume));
        if (random.Chance(3)) request.x0 = static_cast<std::int16_t>((volume.width + 1) / 2);
        if (random.Chance(3)) request.y1 = static_cast<std::int16_t>((volume.height + 1) / 2);
        if (random.Chance(3)) request.z0 = static_cast<std::int16_t>((volume.depth + 1) / 2);
    }

    static void Compare(const ComparedVolume& compared, const Rotation& rotation, RandomSource& random) {
        const int largest = BytesPerVoxel() == 3 ? 765 : 255;
        reference::Request request = ViewOf(compared.Plain(), rotation);
        CropSomehow(request, compared.Plain(), random);
        if (random.Chance(3)) request.low = static_cast<float>(random.Below(largest));
        ASSERT_TRUE(compared.IsRenderedAlike(request));
    }
};

TEST_P(AlignedViews, AtEveryCombinationOfRightAngles) {
    RandomSource random(1);
    for (const double cosine : kCosinesOf90) {
        for (int turns = 0; turns < 64; ++turns) {
            SCOPED_TRACE(::testing::Message() << "cosine " << cosine << ", turns " << turns);
            const ComparedVolume compared(RandomVolume(random, RandomSize(random, 19, BytesPerVoxel())));
            const DoubleMatrix rotation = Product(Product(AboutAxis(0, HostQuarters(turns, cosine)),
                                                          AboutAxis(1, HostQuarters(turns / 4, cosine))),
                                                  AboutAxis(2, HostQuarters(turns / 16, cosine)));
            ASSERT_NO_FATAL_FAILURE(Compare(compared, Rounded(rotation), random));
        }
    }
}

TEST_P(AlignedViews, OfTurntablesAtWholeDegrees) {
    RandomSource random(2);
    for (int degrees = -180; degrees < 180; degrees += 3) {
        SCOPED_TRACE(::testing::Message() << degrees << " degrees");
        const ComparedVolume compared(RandomVolume(random, RandomSize(random, 24, BytesPerVoxel())));
        const Angle angle = FromHalfTangent(degrees / 180.0);
        const double cosine = kCosinesOf90[static_cast<std::size_t>(random.Below(3))];
        const Rotation rotation =
            Turntable(random.Below(3), angle, random.Below(16), cosine, random.Chance(2));
        ASSERT_NO_FATAL_FAILURE(Compare(compared, rotation, random));
    }
}

// Slabs of 32 voxels and groups of 16, and what is left over behind them; short rows; single slices.
TEST_P(AlignedViews, OfEverySizeUpTo70) {
    RandomSource random(3);
    for (int size = 1; size <= 70; ++size) {
        SCOPED_TRACE(::testing::Message() << "size " << size);
        VolumeSize sides = RandomSize(random, 12, BytesPerVoxel());
        int* const chosen[] = {&sides.width, &sides.height, &sides.depth};
        *chosen[random.Below(3)] = size;
        const ComparedVolume compared(RandomVolume(random, sides));
        for (int axis = 0; axis < 3; ++axis) {
            const double cosine = kCosinesOf90[static_cast<std::size_t>(random.Below(3))];
            const Rotation rotation = Turntable(axis, FromHalfTangent(random.Unit() * 2 - 1),
                                                random.Below(16), cosine, random.Chance(2));
            ASSERT_NO_FATAL_FAILURE(Compare(compared, rotation, random));
        }
    }
}

// Where the scratch memory of lines cannot be had, rendering is slower and the same.
TEST_P(AlignedViews, WhereMemoryIsShort) {
    RandomSource random(4);
    const reference::Volume volume = RandomVolume(random, Size(9, 21, 18));
    const HostVolume host(volume);
    for (int axis = 0; axis < 3; ++axis) {
        const reference::Request request =
            ViewOf(volume, Turntable(axis, FromHalfTangent(0.3), 5, kCosinesOf90[1], true));
        const reference::Projection expected = reference::Render(volume, request);
        int rendered = 0;
        ForEveryRefusal([&](bool) {
            const reference::Projection projection = RenderProduct(host.Get(), request);
            // The slice whose lock was refused keeps its unfilled row table until it is unlocked.
            for (std::size_t z = 0; z < 18; ++z)
                frame::GlobalUnlock2D(host->slices[z]);
            if (!projection.rendered) return;
            ++rendered;
            EXPECT_TRUE(SameBits(expected, projection));
        });
        // By lines, and once more without each of their allocations.
        const bool hasLines = request.mode <= RenderModeSum || request.mode == RenderModeBlend;
        EXPECT_GE(rendered, hasLines ? 3 : 1);
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, AlignedViews, ::testing::ValuesIn(AllKernels()),
                         [](const auto& kernel) { return std::string(kernel.param.name); });

} // namespace
