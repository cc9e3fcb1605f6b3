// Voxels that a bound, or a ray that is passed over, could lose.
#include "render/ViewTable.h"

#include "reference/ReferenceSample.h"

#include <algorithm>

namespace z3d::test {
namespace {

// One voxel that differs from all others, on the borders and corners of blocks, stretches and packets: a bound
// that is one block off, or a ray that is skipped wrongly, loses it.

struct Scene {
    Colour ground;
    Colour voxel;
};

// Indexes beside the borders of blocks of 2, packets of 4 and stretches of 16, and at both ends.
int BorderIndex(RandomSource& random, int side) {
    const int border = 1 << random.Between(1, 5);
    const int multiple = random.Between(0, side / border) * border + random.Between(-1, 1);
    return random.Chance(3) ? random.Below(2) * (side - 1) : std::clamp(multiple, 0, side - 1);
}

// Rays along the axis, exactly or nearly, or any view at all.
Rotation RandomViewAlong(RandomSource& random, int axis) {
    const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
    if (random.Chance(3)) return Rounded(along);
    if (random.Chance(3)) return RandomRotation(random, RotationKind::Uniform);
    const double degrees = random.Within(-12.0, 12.0);
    return Rounded(Product(AboutAxis(random.Below(3), SmallAngle(degrees)), along));
}

void SeeVoxels(Visit& visit, const VolumeSize& size, int axis, const Scene& scene, int voxels,
               std::uint32_t seed) {
    RandomSource random(seed);
    for (int index = 0; index < voxels; ++index) {
        reference::Volume volume = EmptyVolume(size);
        Fill(volume, scene.ground);
        SetVoxel(volume, BorderIndex(random, size.width), BorderIndex(random, size.height),
                 BorderIndex(random, size.depth), scene.voxel);
        visit.Show(std::move(volume));
        const Rotation view = RandomViewAlong(random, axis);
        visit.See(visit.View(view));
        // The window accepts nothing else.
        const auto value = static_cast<float>(ValueOf(scene.voxel, visit.BytesPerVoxel()));
        visit.See(visit.View(view, value - 0.5f, value + 0.5f));
    }
}

constexpr int kVoxelsPerAxis = 80;

void SingleVoxelsBrightOnDark(Visit& visit) {
    const Scene scene = {{0, 0, 0}, {200, 90, 130}};
    SeeVoxels(visit, visit.Size(70, 7, 6), 0, scene, kVoxelsPerAxis, 1);
    SeeVoxels(visit, visit.Size(6, 69, 7), 1, scene, kVoxelsPerAxis, 2);
    SeeVoxels(visit, visit.Size(7, 6, 68), 2, scene, kVoxelsPerAxis, 3);
}

void SingleVoxelsDarkOnBright(Visit& visit) {
    const Scene scene = {{180, 170, 190}, {20, 60, 10}};
    SeeVoxels(visit, visit.Size(67, 5, 6), 0, scene, kVoxelsPerAxis, 4);
    SeeVoxels(visit, visit.Size(5, 66, 7), 1, scene, kVoxelsPerAxis, 5);
    SeeVoxels(visit, visit.Size(6, 5, 65), 2, scene, kVoxelsPerAxis, 6);
}

// One step beside the ground: the smallest difference that a bound has to keep.
void SingleVoxelsOneStepAboveAndBelowTheGround(Visit& visit) {
    const Scene above = {{100, 100, 100}, {101, 100, 100}};
    const Scene below = {{100, 100, 100}, {99, 100, 100}};
    SeeVoxels(visit, visit.Size(35, 6, 7), 0, above, kVoxelsPerAxis, 7);
    SeeVoxels(visit, visit.Size(7, 6, 34), 2, below, kVoxelsPerAxis, 8);
}

// Many packets and stretches in every direction.
void SingleVoxelsInCubes(Visit& visit) {
    SeeVoxels(visit, visit.Size(34, 33, 35), 1, {{0, 0, 0}, {255, 254, 3}}, 8, 9);
    SeeVoxels(visit, visit.Size(33, 34, 32), 0, {{255, 250, 255}, {0, 1, 2}}, 8, 10);
}

// Rays whose voxels are the last sample of one stretch and the first of a later one, with nothing between: what is
// passed over in between has to count as empty.

// Two rays that are alike but for z; the view leans from y towards x. In two slices shades are 1.
reference::Request LeaningView(const Visit& visit, const reference::Volume& volume, double halfTangent,
                               int firstRow) {
    const Rotation turned = Rounded(AboutAxis(0, FromHalfTangent(halfTangent)));
    reference::Request request =
        ViewOf(visit.Kernel(), volume, {0, 0, 1, 0, 0, 0, turned[7], turned[8], 0}, 0, 766);
    request.y0 = static_cast<std::int16_t>(firstRow);
    return request;
}

// A bound leaves both voxels out where the first lies a block behind on one axis, and the second a block ahead on the
// other.
void PassedStretchesBetweenTwoVoxelsOfARay(Visit& visit) {
    const reference::Volume empty = EmptyVolume(visit.Size(50, 70, 2));
    for (int angle = 150; angle <= 400; angle += 3) {
        for (int first = 1; first <= 9; ++first) {
            const reference::Request request = LeaningView(visit, empty, -angle / 1000.0, first);
            const auto frame = reference::BuildFrame(empty, request);
            const auto ray = reference::TraceRay(*frame, 1, 0);
            ASSERT_TRUE(ray && ray->lastDepth - ray->firstDepth >= 32);

            reference::Volume volume = empty;
            reference::Point position = reference::PositionAt(*frame, *ray, ray->firstDepth);
            for (int sample = 0; sample <= 32; ++sample) {
                const reference::Voxel voxel = reference::NearestVoxel(*frame, position);
                for (int z = 0; z < 2 && (sample == 15 || sample == 32); ++z)
                    SetVoxel(volume, voxel.x, voxel.y, z, {200, 100, 50});
                reference::StepForward(*frame, position);
            }
            visit.Show(std::move(volume));
            visit.See(request);
        }
    }
}

// Voxels that equal a bound of the window or the largest value so far. Bounds of stretches hold one more than a
// value, and 255 stands for both 254 and 255: there and at both ends of the range a comparison is easily one off.

Colour RandomColour(RandomSource& random, const std::vector<int>& values) {
    const auto any = [&] {
        return values[static_cast<std::size_t>(random.Below(static_cast<int>(values.size())))];
    };
    const int grey = any();
    // Half of the colours are grey, so that their sums meet the bounds too.
    return random.Chance(2) ? Colour{grey, grey, grey} : Colour{grey, any(), any()};
}

void FillCell(reference::Volume& volume, int x0, int y0, int z0, int cell, const Colour& colour) {
    for (int z = z0; z < std::min(z0 + cell, volume.depth); ++z) {
        for (int y = y0; y < std::min(y0 + cell, volume.height); ++y) {
            for (int x = x0; x < std::min(x0 + cell, volume.width); ++x)
                SetVoxel(volume, x, y, z, colour);
        }
    }
}

// Cells of one value each, from a list, so that whole stretches are flat and plateaus meet.
reference::Volume Plateaus(const VolumeSize& size, int cell, const std::vector<int>& values,
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

Rotation RandomViewAlong(RandomSource& random) {
    return RandomRotation(random, static_cast<RotationKind>(random.Below(kRotationKinds - 1)));
}

void SeeThrough(Visit& visit, RandomSource& random, const std::vector<Window>& windows) {
    for (const Window& window : windows) {
        visit.See(visit.View(RandomViewAlong(random), window.low, window.high));
    }
}

// For colour: the same about the sum of three channels of about that value.
Window About(const Visit& visit, int low, int high, float wider) {
    const auto scale = static_cast<float>(visit.BytesPerVoxel());
    return {static_cast<float>(high) * scale + wider, static_cast<float>(low) * scale - wider};
}

constexpr int kVolumes = 8;

void WindowBoundsValuesAtBothBoundsAndBesideThem(Visit& visit) {
    RandomSource random(1);
    for (int index = 0; index < kVolumes; ++index) {
        const int low = random.Between(2, 120);
        const int high = random.Between(low, 253);
        const std::vector<int> values = {low - 1, low, low + 1, high - 1, high, high + 1};
        visit.Show(Plateaus(visit.Size(19, 18, 37), 1 + index % 5, values, random));
        SeeThrough(visit, random,
                   {About(visit, low, high, 0), About(visit, low, high, 0.5f), About(visit, low, high, -0.5f),
                    About(visit, low, low, 0), About(visit, high, high, 0), About(visit, high, high, 1)});
    }
}

void WindowBoundsTheLargestAndTheSmallestValues(Visit& visit) {
    RandomSource random(2);
    const std::vector<Window> windows = {About(visit, 0, 255, 0),   About(visit, 0, 255, 1),
                                         About(visit, 254, 255, 0), About(visit, 254, 254, 0),
                                         About(visit, 255, 255, 0), About(visit, 253, 254, 0),
                                         About(visit, 0, 0, 0),     About(visit, 0, 1, 0),
                                         About(visit, 1, 1, 0),     About(visit, 1, 254, 0)};
    for (int index = 0; index < kVolumes; ++index) {
        const bool isBright = index % 2 == 0;
        const std::vector<int> values =
            isBright ? std::vector<int>{252, 253, 254, 255} : std::vector<int>{0, 1, 2, 3};
        visit.Show(Plateaus(visit.Size(17, 36, 18), 1 + index / 2 * 3, values, random));
        SeeThrough(visit, random, windows);
    }
}

// A ground of 254 whose code is that of the few voxels of 255, and the same upside down for the minimum.
void WindowBoundsFewVoxelsWhoseCodeIsThatOfTheGround(Visit& visit) {
    RandomSource random(3);
    for (int index = 0; index < kVolumes; ++index) {
        const bool isBright = index % 2 == 0;
        reference::Volume volume = ConstantVolume(visit.Size(33, 17, 34), isBright ? 254 : 1);
        const int extreme = isBright ? 255 : 0;
        for (int voxel = 0; voxel < 4; ++voxel) {
            SetVoxel(volume, random.Below(33), random.Below(17), random.Below(34),
                     {extreme, isBright ? 254 : 1, extreme});
        }
        visit.Show(std::move(volume));
        SeeThrough(visit, random,
                   {About(visit, 0, 255, 0), About(visit, 0, 255, 1), About(visit, 1, 254, 0)});
    }
}

// Every stretch promises exactly what the ray has.
void WindowBoundsOnePlateau(Visit& visit) {
    RandomSource random(4);
    for (const int value : {0, 1, 127, 128, 253, 254, 255}) {
        visit.Show(ConstantVolume(visit.Size(35, 16, 18), static_cast<std::uint8_t>(value)));
        SeeThrough(visit, random,
                   {About(visit, 0, 255, 1), About(visit, value, value, 0), About(visit, value, value, 1)});
    }
}

} // namespace

std::vector<Topic> VoxelTopics() {
    return {
        {"SingleVoxelsBrightOnDark", SingleVoxelsBrightOnDark},
        {"SingleVoxelsDarkOnBright", SingleVoxelsDarkOnBright},
        {"SingleVoxelsOneStepAboveAndBelowTheGround", SingleVoxelsOneStepAboveAndBelowTheGround},
        {"SingleVoxelsInCubes", SingleVoxelsInCubes},
        {"PassedStretchesBetweenTwoVoxelsOfARay", PassedStretchesBetweenTwoVoxelsOfARay, IsLayers},
        {"WindowBoundsValuesAtBothBoundsAndBesideThem", WindowBoundsValuesAtBothBoundsAndBesideThem},
        {"WindowBoundsTheLargestAndTheSmallestValues", WindowBoundsTheLargestAndTheSmallestValues},
        {"WindowBoundsFewVoxelsWhoseCodeIsThatOfTheGround", WindowBoundsFewVoxelsWhoseCodeIsThatOfTheGround},
        {"WindowBoundsOnePlateau", WindowBoundsOnePlateau}};
}

} // namespace z3d::test
