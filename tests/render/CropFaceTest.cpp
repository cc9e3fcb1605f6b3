// Crop boxes whose faces lie exactly where rays run, and boxes without thickness.
#include "render/KernelDifferential.h"

#include "reference/ReferenceFrame.h"

namespace {

using namespace z3d;
using namespace z3d::test;

class CropFaces : public KernelDifferential {
protected:
    struct Interval {
        int first;
        int last;
    };

    static reference::Request Cropped(reference::Request request, const std::array<Interval, 3>& box) {
        for (int axis = 0; axis < 3; ++axis) {
            const Interval& interval = box[static_cast<std::size_t>(axis)];
            CropAxis(request, axis, interval.first, interval.last);
        }
        return request;
    }

    static Interval RandomInterval(RandomSource& random, int side) {
        const int first = random.Between(1, side);
        return {first, random.Between(first, side)};
    }

    static std::vector<Rotation> Views() {
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
};

// Rays of views along the axes run through voxel centres where the volume and the image are both of odd or both
// of even size: where crop faces lie.
TEST_P(CropFaces, OnTheRays) {
    RandomSource random(1);
    for (const VolumeSize& size : {Size(12, 10, 11), Size(17, 5, 8)}) {
        const ComparedVolume compared(NoiseVolume(size, 1));
        for (const Rotation& view : Views()) {
            for (int index = 0; index < 3; ++index) {
                const std::array<Interval, 3> box = {RandomInterval(random, size.width),
                                                     RandomInterval(random, size.height),
                                                     RandomInterval(random, size.depth)};
                ASSERT_TRUE(compared.IsRenderedAlike(Cropped(ViewOf(compared.Plain(), view), box)));
            }
        }
    }
}

// An interval of one voxel is widened by half a voxel to either side: its faces lie between voxels.
TEST_P(CropFaces, BetweenTheRays) {
    RandomSource random(2);
    const ComparedVolume compared(NoiseVolume(Size(13, 12, 9), 2));
    for (const Rotation& view : Views()) {
        std::array<Interval, 3> box = {Interval{1, 13}, Interval{1, 12}, Interval{1, 9}};
        Interval& thin = box[static_cast<std::size_t>(random.Below(3))];
        thin.last = thin.first = random.Between(1, 9);
        ASSERT_TRUE(compared.IsRenderedAlike(Cropped(ViewOf(compared.Plain(), view), box)));
    }
}

// On an axis of one voxel both faces coincide.
TEST_P(CropFaces, WithoutAThickness) {
    RandomSource random(3);
    for (int flatAxes = 1; flatAxes < 8; ++flatAxes) {
        const VolumeSize size =
            Size((flatAxes & 1) != 0 ? 1 : 18, (flatAxes & 2) != 0 ? 1 : 9, (flatAxes & 4) != 0 ? 1 : 17);
        const ComparedVolume compared(NoiseVolume(size, 3));
        const auto frame = reference::BuildFrame(compared.Plain(), ViewOf(compared.Plain(), kIdentity));
        ASSERT_EQ(frame->cropLow[0] == frame->cropHigh[0], size.width == 1);
        for (const Rotation& view : Views()) {
            const reference::Request request = ViewOf(compared.Plain(), view);
            ASSERT_TRUE(compared.IsRenderedAlike(request));
            const std::array<Interval, 3> box = {RandomInterval(random, size.width),
                                                 RandomInterval(random, size.height),
                                                 RandomInterval(random, size.depth)};
            ASSERT_TRUE(compared.IsRenderedAlike(Cropped(request, box)));
        }
    }
}

// Intervals beyond the volume are moved to its border, where half a voxel and more of them is left.
TEST_P(CropFaces, BesideTheVolume) {
    const ComparedVolume compared(NoiseVolume(Size(8, 7, 9), 4));
    const std::array<Interval, 5> outside = {Interval{0, 0}, Interval{10, 10}, Interval{-3, 0},
                                             Interval{12, 9}, Interval{-40, -30}};
    for (const Rotation& view : Views()) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            for (const Interval& interval : outside) {
                std::array<Interval, 3> box = {Interval{1, 8}, Interval{1, 7}, Interval{1, 9}};
                box[axis] = interval;
                ASSERT_TRUE(compared.IsRenderedAlike(Cropped(ViewOf(compared.Plain(), view), box)));
            }
        }
    }
}

// Steps of half a voxel shorten the ray: its ends, one step beyond the depth of the view, are then at -2.5 and 2.5,
// where the faces of 7 to 12 out of 18 voxels lie. An end on a face counts as a crossing.
TEST_P(CropFaces, AtTheEndsOfTheRays) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        std::array<int, 3> sides = {5, 6, 5};
        sides[axis] = 18;
        const ComparedVolume compared(NoiseVolume(Size(sides[0], sides[1], sides[2]), 5));
        for (const bool isBackwards : {false, true}) {
            Rotation view = Rounded(LookingAlong(static_cast<int>(axis), isBackwards));
            view[6 + axis] *= 0.5f;
            for (const Interval& interval :
                 {Interval{7, 12}, Interval{7, 13}, Interval{6, 12}, Interval{7, 11}, Interval{8, 12}}) {
                std::array<Interval, 3> box = {Interval{1, 5}, Interval{1, 6}, Interval{1, 5}};
                box[axis] = interval;
                const reference::Request request = Cropped(ViewOf(compared.Plain(), view), box);
                ASSERT_TRUE(compared.IsRenderedAlike(request));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllKernels, CropFaces, ::testing::ValuesIn(AllKernels()),
                         ::testing::PrintToStringParamName());

} // namespace
