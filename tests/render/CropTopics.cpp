// Crop boxes, and what they leave of rays.
#include "render/ViewTable.h"

#include "reference/ReferenceFrame.h"
#include "reference/ReferenceRay.h"

namespace z3d::test {
namespace {

// Crop boxes whose faces lie exactly where rays run, and boxes without thickness.

struct Interval {
    int first;
    int last;
};

reference::Request Cropped(reference::Request request, const std::array<Interval, 3>& box) {
    for (int axis = 0; axis < 3; ++axis) {
        const Interval& interval = box[static_cast<std::size_t>(axis)];
        CropAxis(request, axis, interval.first, interval.last);
    }
    return request;
}

Interval RandomInterval(RandomSource& random, int side) {
    const int first = random.Between(1, side);
    return {first, random.Between(first, side)};
}

std::vector<Rotation> QuartersAndEighths() {
    constexpr Angle kEighth = {0.7071067811865476, 0.7071067811865476};
    std::vector<Rotation> views;
    for (int axis = 0; axis < 3; ++axis) {
        for (int turns = 0; turns < 4; ++turns) {
            views.push_back(Rounded(AboutAxis(axis, Quarters(turns))));
            views.push_back(Rounded(Product(AboutAxis(axis, kEighth), AboutAxis(1, Quarters(turns)))));
        }
    }
    return views;
}

// Rays of views along the axes run through voxel centres where the volume and the image are both of odd or both
// of even size: where crop faces lie.
void CropFacesOnTheRays(Visit& visit) {
    RandomSource random(1);
    for (const VolumeSize& size : {visit.Size(12, 10, 11), visit.Size(17, 5, 8)}) {
        visit.Show(NoiseVolume(size, 1));
        for (const Rotation& view : QuartersAndEighths()) {
            for (int index = 0; index < 3; ++index) {
                const std::array<Interval, 3> box = {RandomInterval(random, size.width),
                                                     RandomInterval(random, size.height),
                                                     RandomInterval(random, size.depth)};
                visit.See(Cropped(visit.View(view), box));
            }
        }
    }
}

// An interval of one voxel is widened by half a voxel to either side: its faces lie between voxels.
void CropFacesBetweenTheRays(Visit& visit) {
    RandomSource random(2);
    visit.Show(NoiseVolume(visit.Size(13, 12, 9), 2));
    for (const Rotation& view : QuartersAndEighths()) {
        std::array<Interval, 3> box = {Interval{1, 13}, Interval{1, 12}, Interval{1, 9}};
        Interval& thin = box[static_cast<std::size_t>(random.Below(3))];
        thin.last = thin.first = random.Between(1, 9);
        visit.See(Cropped(visit.View(view), box));
    }
}

// On an axis of one voxel both faces coincide.
void CropFacesWithoutAThickness(Visit& visit) {
    RandomSource random(3);
    for (int flatAxes = 1; flatAxes < 8; ++flatAxes) {
        const VolumeSize size = visit.Size((flatAxes & 1) != 0 ? 1 : 18, (flatAxes & 2) != 0 ? 1 : 9,
                                           (flatAxes & 4) != 0 ? 1 : 17);
        visit.Show(NoiseVolume(size, 3));
        const auto frame = reference::BuildFrame(visit.Volume(), visit.View(kIdentity));
        ASSERT_EQ(frame->cropLow[0] == frame->cropHigh[0], size.width == 1);
        for (const Rotation& view : QuartersAndEighths()) {
            const reference::Request request = visit.View(view);
            visit.See(request);
            const std::array<Interval, 3> box = {RandomInterval(random, size.width),
                                                 RandomInterval(random, size.height),
                                                 RandomInterval(random, size.depth)};
            visit.See(Cropped(request, box));
        }
    }
}

// Intervals beyond the volume are moved to its border, where half a voxel and more of them is left.
void CropFacesBesideTheVolume(Visit& visit) {
    visit.Show(NoiseVolume(visit.Size(8, 7, 9), 4));
    const std::array<Interval, 5> outside = {Interval{0, 0}, Interval{10, 10}, Interval{-3, 0},
                                             Interval{12, 9}, Interval{-40, -30}};
    for (const Rotation& view : QuartersAndEighths()) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (const Interval& interval : outside) {
                std::array<Interval, 3> box = {Interval{1, 8}, Interval{1, 7}, Interval{1, 9}};
                box[axis] = interval;
                visit.See(Cropped(visit.View(view), box));
            }
        }
    }
}

// Steps of half a voxel shorten the ray: its ends, one step beyond the depth of the view, are then at -2.5 and 2.5,
// where the faces of 7 to 12 out of 18 voxels lie. An end on a face counts as a crossing.
void CropFacesAtTheEndsOfTheRays(Visit& visit) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        std::array<int, 3> sides = {5, 6, 5};
        sides[axis] = 18;
        visit.Show(NoiseVolume(visit.Size(sides[0], sides[1], sides[2]), 5));
        for (const bool isBackwards : {false, true}) {
            Rotation view = Rounded(LookingAlong(static_cast<int>(axis), isBackwards));
            view[6 + axis] *= 0.5f;
            for (const Interval& interval :
                 {Interval{7, 12}, Interval{7, 13}, Interval{6, 12}, Interval{7, 11}, Interval{8, 12}}) {
                std::array<Interval, 3> box = {Interval{1, 5}, Interval{1, 6}, Interval{1, 5}};
                box[axis] = interval;
                const reference::Request request = Cropped(visit.View(view), box);
                visit.See(request);
            }
        }
    }
}

// Rays of exactly one sample: where a first sample is also the last one, and where the grey maximum's extra sample
// makes two of it.

// How many rays have exactly one sample: the tests make sure with it that their views are what they are meant to be.
int CountSingles(const reference::Volume& volume, const reference::Request& request) {
    int singles = 0;
    const auto frame = reference::BuildFrame(volume, request);
    for (int j = 0; j < frame->outputSize[1]; ++j) {
        for (int i = 0; i < frame->outputSize[0]; ++i) {
            const auto ray = reference::TraceRay(*frame, i, j);
            singles += ray && ray->lastDepth == ray->firstDepth;
        }
    }
    return singles;
}

Rotation EighthTurn(int axis, int second) {
    constexpr Angle kEighth = {0.7071067811865476, 0.7071067811865476};
    const DoubleMatrix turned = AboutAxis(axis, kEighth);
    return Rounded(second < 0 ? turned : Product(AboutAxis(second, kEighth), turned));
}

void OneSampleRaysOneVoxelOfTheCrop(Visit& visit) {
    RandomSource random(1);
    visit.Show(NoiseVolume(visit.Size(18, 17, 19), 1));
    int singles = 0;
    for (int index = 0; index < 60; ++index) {
        reference::Request request =
            visit.View(RandomRotation(random, static_cast<RotationKind>(index % kRotationKinds)));
        const std::array<int, 3> sides = {18, 17, 19};
        for (int axis = 0; axis < 3; ++axis) {
            const int voxel = random.Between(1, sides[static_cast<std::size_t>(axis)]);
            CropAxis(request, axis, voxel, voxel);
        }
        visit.See(request);
        singles += CountSingles(visit.Volume(), request);
    }
    EXPECT_GT(singles, 10);
}

void OneSampleRaysOneSliceOfTheCropOnEachAxis(Visit& visit) {
    RandomSource random(2);
    visit.Show(NoiseVolume(visit.Size(17, 18, 19), 2));
    int singles = 0;
    for (int index = 0; index < 90; ++index) {
        const int axis = index % 3;
        const DoubleMatrix along = LookingAlong(axis, random.Chance(2));
        const DoubleMatrix tilt = AboutAxis(random.Below(3), SmallAngle(random.Within(-3.0, 3.0)));
        reference::Request request = visit.View(Rounded(random.Chance(3) ? along : Product(tilt, along)));
        const int slice = random.Between(1, 17);
        CropAxis(request, axis, slice, slice);
        visit.See(request);
        singles += CountSingles(visit.Volume(), request);
    }
    EXPECT_GT(singles, 1000);
}

void OneSampleRaysVolumesOfOneSlice(Visit& visit) {
    RandomSource random(3);
    const std::array<VolumeSize, 6> sizes = {visit.Size(1, 21, 18), visit.Size(19, 1, 20),
                                             visit.Size(21, 18, 1), visit.Size(1, 1, 23),
                                             visit.Size(22, 1, 1),  visit.Size(1, 1, 1)};
    int singles = 0;
    for (std::size_t index = 0; index < 60; ++index) {
        visit.Show(NoiseVolume(sizes[index % sizes.size()], 3));
        const auto kind = static_cast<RotationKind>(random.Below(kRotationKinds));
        const reference::Request request = visit.View(RandomRotation(random, kind));
        visit.See(request);
        singles += CountSingles(visit.Volume(), request);
    }
    EXPECT_GT(singles, 1000);
}

// Turned by 45 degrees, the outermost rays touch edges and corners of the crop box.
void OneSampleRaysGrazedEdgesAndCorners(Visit& visit) {
    int singles = 0;
    for (const int side : {2, 3, 5, 16, 17}) {
        visit.Show(NoiseVolume(visit.Size(side, side, side), 4));
        for (int axis = 0; axis < 3; ++axis) {
            for (int second = -1; second < 3; ++second) {
                reference::Request request = visit.View(EighthTurn(axis, second));
                visit.See(request);
                singles += CountSingles(visit.Volume(), request);
                CropAxis(request, 1, 2, side - 1);
                visit.See(request);
            }
        }
    }
    EXPECT_GT(singles, 40);
}

} // namespace

std::vector<Topic> CropTopics() {
    return {{"CropFacesOnTheRays", CropFacesOnTheRays},
            {"CropFacesBetweenTheRays", CropFacesBetweenTheRays},
            {"CropFacesWithoutAThickness", CropFacesWithoutAThickness},
            {"CropFacesBesideTheVolume", CropFacesBesideTheVolume},
            {"CropFacesAtTheEndsOfTheRays", CropFacesAtTheEndsOfTheRays},
            {"OneSampleRaysOneVoxelOfTheCrop", OneSampleRaysOneVoxelOfTheCrop},
            {"OneSampleRaysOneSliceOfTheCropOnEachAxis", OneSampleRaysOneSliceOfTheCropOnEachAxis},
            {"OneSampleRaysVolumesOfOneSlice", OneSampleRaysVolumesOfOneSlice},
            {"OneSampleRaysGrazedEdgesAndCorners", OneSampleRaysGrazedEdgesAndCorners}};
}

} // namespace z3d::test
