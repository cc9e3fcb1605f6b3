// Views along the axes, and beside them.
#include "render/ViewTable.h"

#include "support/LongTests.h"

#include <algorithm>

namespace z3d::test {
namespace {

// Views in which a volume axis lies along a picture axis: turntables, and every combination of right angles. Cosines of
// 90 degrees are not quite 0, in double precision and much less so in single precision.

// Crops whose faces lie in the middle of the volume are the hardest: rays there lie on a face, almost.
void CropSomehow(reference::Request& request, const reference::Volume& volume, RandomSource& random) {
    if (random.Chance(2)) return;
    CropTo(request, RandomCrop(random, static_cast<CropKind>(random.Below(kCropKinds)), volume));
    if (random.Chance(3)) request.x0 = static_cast<std::int16_t>((volume.width + 1) / 2);
    if (random.Chance(3)) request.y1 = static_cast<std::int16_t>((volume.height + 1) / 2);
    if (random.Chance(3)) request.z0 = static_cast<std::int16_t>((volume.depth + 1) / 2);
}

void SeeSomehow(Visit& visit, const Rotation& rotation, RandomSource& random) {
    const int largest = visit.BytesPerVoxel() == 3 ? 765 : 255;
    reference::Request request = visit.View(rotation);
    CropSomehow(request, visit.Volume(), random);
    if (random.Chance(3)) request.low = static_cast<float>(random.Below(largest));
    visit.See(request);
}

void AlignedViewsAtEveryCombinationOfRightAngles(Visit& visit) {
    RandomSource random(1);
    for (const double cosine : kCosinesOf90) {
        for (int turns = 0; turns < 64; ++turns) {
            visit.Show(RandomVolume(random, RandomSize(random, 19, visit.BytesPerVoxel())));
            const DoubleMatrix rotation = Product(Product(AboutAxis(0, HostQuarters(turns, cosine)),
                                                          AboutAxis(1, HostQuarters(turns / 4, cosine))),
                                                  AboutAxis(2, HostQuarters(turns / 16, cosine)));
            SeeSomehow(visit, Rounded(rotation), random);
        }
    }
}

void AlignedViewsOfTurntablesAtWholeDegrees(Visit& visit) {
    RandomSource random(2);
    for (int degrees = -180; degrees < 180; degrees += 3) {
        visit.Show(RandomVolume(random, RandomSize(random, 24, visit.BytesPerVoxel())));
        const Angle angle = FromHalfTangent(degrees / 180.0);
        const double cosine = kCosinesOf90[static_cast<std::size_t>(random.Below(3))];
        const Rotation rotation =
            Turntable(random.Below(3), angle, random.Below(16), cosine, random.Chance(2));
        SeeSomehow(visit, rotation, random);
    }
}

// The axis of the volume along x (row 0) or y of the picture, without any rounding, either way round; turned about it by
// any angle, with steps of this length.
Rotation AxisAlong(std::size_t row, std::size_t axis, double length, RandomSource& random) {
    const Angle angle = FromHalfTangent(random.Within(-1, 1));
    Rotation rotation = {};
    rotation[3 * row + axis] = random.Chance(2) ? 1.0f : -1.0f;
    rotation[3 * (1 - row) + (axis + 1) % 3] = static_cast<float>(angle.cosine);
    rotation[3 * (1 - row) + (axis + 2) % 3] = static_cast<float>(angle.sine);
    rotation[6 + (axis + 1) % 3] = static_cast<float>(-length * angle.sine);
    rotation[6 + (axis + 2) % 3] = static_cast<float>(length * angle.cosine);
    return rotation;
}

// A picture axis lies along a volume axis without any rounding, but the step of a ray has a little of that axis, too. A
// host's matrix with short steps ends rays before they meet a face; on a face that a line ends on, they still cross it.
void AlignedViewsWhoseStepsAloneStrayFromTheirLines(Visit& visit) {
    RandomSource random(7);
    visit.Show(RandomVolume(random, visit.Size(13, 12, 14)));
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (std::size_t row = 0; row < 2; ++row) {
            for (const float step : {1e-12f, -4.4e-8f, 1e-6f, -1e-5f, 2e-5f}) {
                const double length = random.Chance(3) ? 1 : random.Within(0.4, 0.8);
                Rotation rotation = AxisAlong(row, axis, length, random);
                rotation[6 + axis] = step;
                visit.See(visit.View(rotation));
                SeeSomehow(visit, rotation, random);
            }
        }
    }
}

// Slabs of 32 voxels and groups of 16, and what is left over behind them; short rows; single slices.
void AlignedViewsOfEverySizeUpTo70(Visit& visit) {
    RandomSource random(3);
    for (int size = 1; size <= 70; ++size) {
        VolumeSize sides = RandomSize(random, 12, visit.BytesPerVoxel());
        int* const chosen[] = {&sides.width, &sides.height, &sides.depth};
        *chosen[random.Below(3)] = size;
        visit.Show(RandomVolume(random, sides));
        for (int axis = 0; axis < 3; ++axis) {
            const double cosine = kCosinesOf90[static_cast<std::size_t>(random.Below(3))];
            const Rotation rotation = Turntable(axis, FromHalfTangent(random.Unit() * 2 - 1),
                                                random.Below(16), cosine, random.Chance(2));
            SeeSomehow(visit, rotation, random);
        }
    }
}

// Lines are reduced in blocks of 128 to 512 voxels. The long axis lies along either picture axis, either way round.
void AlignedViewsOfLinesOfSeveralBlocks(Visit& visit) {
    RandomSource random(6);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const int length : {129, 257, 300, 449, 513, 600}) {
            VolumeSize sides = RandomSize(random, 9, visit.BytesPerVoxel());
            int* const chosen[] = {&sides.width, &sides.height, &sides.depth};
            *chosen[axis] = length;
            visit.Show(NoiseVolume(sides, static_cast<std::uint32_t>(length)));
            for (std::size_t row = 0; row < 2; ++row) {
                const Rotation rotation = AxisAlong(row, axis, 1, random);
                visit.See(visit.View(rotation));
                SeeSomehow(visit, rotation, random);
            }
        }
    }
}

// Rays along and across an axis of more voxels than sums gather in 16 bits.
void AlignedViewsThroughDeepVolumes(Visit& visit) {
    for (int axis = 0; axis < 3; ++axis) {
        VolumeSize sides = visit.Size(5, 4, 3);
        int* const chosen[] = {&sides.width, &sides.height, &sides.depth};
        *chosen[axis] = 600;
        visit.Show(NoiseVolume(sides, static_cast<std::uint32_t>(axis)));
        for (int turns = 0; turns < 16; ++turns) {
            const double cosine = kCosinesOf90[static_cast<std::size_t>(turns % 3)];
            const DoubleMatrix rotation = Product(AboutAxis(0, HostQuarters(turns, cosine)),
                                                  AboutAxis(1, HostQuarters(turns / 4, cosine)));
            visit.See(visit.View(Rounded(rotation)));
        }
    }
}

// The same at random, and a hundred thousand of them for each kernel where tests are long.
void AlignedViewsOfRandomVolumesAtRandom(Visit& visit) {
    const std::uint32_t seed = SeedOr(5);
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    RandomSource random(seed);
    const int volumes = AreTestsLong() ? 20000 : 8;
    for (int index = 0; index < volumes; ++index) {
        const int longest = random.Chance(8) ? 70 : 20;
        visit.Show(RandomVolume(random, RandomSize(random, longest, visit.BytesPerVoxel())));
        for (int view = 0; view < 5; ++view) {
            const Angle angle =
                random.Chance(3) ? HostQuarters(random.Below(4), 0) : FromHalfTangent(random.Unit() * 2 - 1);
            const double cosine = kCosinesOf90[static_cast<std::size_t>(random.Below(3))];
            const Rotation rotation =
                Turntable(random.Below(3), angle, random.Below(16), cosine, random.Chance(2));
            SeeSomehow(visit, rotation, random);
        }
    }
}

// Views beside the axis-aligned ones: rays that are just parallel to faces or just not, hits that lie on a face or
// one rounding off it, and rotations with exact zeros, of both signs.

constexpr std::array<double, 8> kTilts = {1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 0.1, 1.0};

// Views along each axis from both sides, and those turned about the ray by quarters.
std::vector<DoubleMatrix> AlignedViews() {
    std::vector<DoubleMatrix> views;
    for (int axis = 0; axis < 3; ++axis) {
        for (int side = 0; side < 2; ++side)
            views.push_back(Product(AboutAxis(2, Quarters(axis + side)), LookingAlong(axis, side == 1)));
    }
    return views;
}

// The whole volume, or a crop that begins and ends on voxels, as those of hosts do.
reference::Request RandomlyCropped(const Visit& visit, const Rotation& rotation, RandomSource& random) {
    reference::Request request = visit.View(rotation);
    if (random.Chance(2)) return request;
    const Crop crop =
        RandomCrop(random, random.Chance(3) ? CropKind::OneVoxel : CropKind::Inside, visit.Volume());
    CropTo(request, crop);
    return request;
}

void NearAxisViewsTiltedByAMillionthOfADegreeAndMore(Visit& visit) {
    RandomSource random(1);
    visit.Show(NoiseVolume(visit.Size(13, 10, 12), 1));
    for (const DoubleMatrix& aligned : AlignedViews()) {
        for (const double degrees : kTilts) {
            for (int axis = 0; axis < 3; ++axis) {
                const DoubleMatrix tilt = AboutAxis(axis, SmallAngle(random.Chance(2) ? degrees : -degrees));
                visit.See(RandomlyCropped(visit, Rounded(Product(tilt, aligned)), random));
            }
        }
    }
}

void NearAxisViewsTiltedAboutTwoAxes(Visit& visit) {
    RandomSource random(2);
    visit.Show(NoiseVolume(visit.Size(9, 16, 11), 2));
    const auto angle = [&] {
        const double degrees = kTilts[static_cast<std::size_t>(random.Below(8))];
        return SmallAngle(random.Chance(2) ? degrees : -degrees);
    };
    for (const DoubleMatrix& aligned : AlignedViews()) {
        for (int index = 0; index < 8; ++index) {
            const int axis = random.Below(3);
            const DoubleMatrix tilt = Product(AboutAxis(axis, angle()), AboutAxis((axis + 1) % 3, angle()));
            visit.See(RandomlyCropped(visit, Rounded(Product(tilt, aligned)), random));
        }
    }
}

// Rays count as parallel to a face when they move less than 0.00001 along its axis, over twice the half depth and
// two voxels.
void NearAxisViewsJustParallelAndJustNot(Visit& visit) {
    visit.Show(NoiseVolume(visit.Size(11, 8, 10), 3));
    for (const DoubleMatrix& aligned : AlignedViews()) {
        const auto depth = [&](std::size_t axis) {
            const std::array<double, 3> extents = {10, 7, 9};
            return (aligned[6 + axis] < 0 ? -1 : 1) * aligned[6 + axis] * extents[axis];
        };
        const double across = 0.00001 / (depth(0) + depth(1) + depth(2) + 2);
        for (const double share : {0.9, 0.9999999, 1.0, 1.0000001, 1.1}) {
            for (int axis = 0; axis < 2; ++axis) {
                const DoubleMatrix tilt = AboutAxis(axis, FromHalfTangent(across * share / 2));
                visit.See(visit.View(Rounded(Product(tilt, aligned))));
            }
        }
    }
}

// Ties between voxels, and hits exactly on edges.
void NearAxisViewsExactEighthsAndThirds(Visit& visit) {
    RandomSource random(4);
    visit.Show(NoiseVolume(visit.Size(14, 14, 13), 4));
    constexpr double kRoot = 0.7071067811865476;
    const std::array<Angle, 4> angles = {Angle{kRoot, kRoot}, Angle{-kRoot, kRoot}, Angle{0.6, 0.8},
                                         Angle{0.5, 0.8660254037844386}};
    for (const Angle& angle : angles) {
        for (int axis = 0; axis < 3; ++axis) {
            for (int second = 0; second < 3; ++second) {
                const DoubleMatrix turned = Product(AboutAxis(second, Quarters(1)), AboutAxis(axis, angle));
                visit.See(RandomlyCropped(visit, Rounded(turned), random));
            }
        }
    }
}

// A zero with a sign takes the same ways as one without.
void NearAxisViewsZerosOfBothSigns(Visit& visit) {
    RandomSource random(5);
    visit.Show(NoiseVolume(visit.Size(18, 9, 10), 5));
    for (int index = 0; index < 40; ++index) {
        Rotation rotation =
            RandomRotation(random, index % 2 == 0 ? RotationKind::ExactQuarterTurn : RotationKind::OneAxis);
        if (index % 5 == 0) rotation = Rounded(AboutAxis(0, SmallAngle(random.Within(-30.0, 30.0))));
        for (float& element : rotation) {
            if (element == 0) element = random.Chance(2) ? 0.0f : -0.0f;
        }
        visit.See(RandomlyCropped(visit, rotation, random));
    }
}

} // namespace

std::vector<Topic> AlignedTopics() {
    return {
        {"AlignedViewsAtEveryCombinationOfRightAngles", AlignedViewsAtEveryCombinationOfRightAngles},
        {"AlignedViewsOfTurntablesAtWholeDegrees", AlignedViewsOfTurntablesAtWholeDegrees},
        {"AlignedViewsWhoseStepsAloneStrayFromTheirLines", AlignedViewsWhoseStepsAloneStrayFromTheirLines},
        {"AlignedViewsOfEverySizeUpTo70", AlignedViewsOfEverySizeUpTo70},
        {"AlignedViewsOfLinesOfSeveralBlocks", AlignedViewsOfLinesOfSeveralBlocks},
        {"AlignedViewsThroughDeepVolumes", AlignedViewsThroughDeepVolumes},
        {"AlignedViewsOfRandomVolumesAtRandom", AlignedViewsOfRandomVolumesAtRandom},
        {"NearAxisViewsTiltedByAMillionthOfADegreeAndMore", NearAxisViewsTiltedByAMillionthOfADegreeAndMore},
        {"NearAxisViewsTiltedAboutTwoAxes", NearAxisViewsTiltedAboutTwoAxes},
        {"NearAxisViewsJustParallelAndJustNot", NearAxisViewsJustParallelAndJustNot},
        {"NearAxisViewsExactEighthsAndThirds", NearAxisViewsExactEighthsAndThirds},
        {"NearAxisViewsZerosOfBothSigns", NearAxisViewsZerosOfBothSigns}};
}

} // namespace z3d::test
