// Volumes and images whose sizes are those at which something ends.
#include "render/ViewTable.h"

#include <algorithm>
#include <bit>

namespace z3d::test {
namespace {

// Sides of 8, 16, 32 and 64 voxels, one less and one more: where a last block, stretch or vector is just full.

void SeeRandomly(Visit& visit, const VolumeSize& size, RandomSource& random, int requests) {
    visit.Show(RandomVolume(random, size));
    for (int index = 0; index < requests; ++index) {
        reference::Request request = RandomRequest(random, visit.Volume(), visit.Kernel().mode);
        request.extraBits = std::bit_cast<std::uint32_t>(visit.Kernel().extra);
        visit.See(request);
    }
}

constexpr std::array<int, 12> kSides = {7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65};

void BorderSizesOnOneAxis(Visit& visit) {
    RandomSource random(1);
    for (const int side : kSides) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            std::array<int, 3> sides = {random.Between(1, 6), random.Between(1, 6), random.Between(1, 6)};
            sides[axis] = side;
            SeeRandomly(visit, visit.Size(sides[0], sides[1], sides[2]), random, 8);
        }
    }
}

void BorderSizesOnAllAxes(Visit& visit) {
    RandomSource random(2);
    const auto side = [&](int last) { return kSides[static_cast<std::size_t>(random.Below(last))]; };
    for (int index = 0; index < 30; ++index) {
        const VolumeSize size = visit.Size(side(9), side(9), side(9));
        SeeRandomly(visit, size, random, 4);
    }
}

// Images narrower or lower than the 4 x 4 rays of a packet, and rows of voxels shorter than the 16 that are
// reduced together.

// `along` on each axis in turn, seen along it from both ends.
void SeeAlong(Visit& visit, int across, int down, int along, std::uint32_t seed) {
    const std::array<VolumeSize, 3> sizes = {visit.Size(along, across, down), visit.Size(across, along, down),
                                             visit.Size(across, down, along)};
    for (int axis = 0; axis < 3; ++axis) {
        RandomSource random(seed);
        visit.Show(RandomVolume(random, sizes[static_cast<std::size_t>(axis)]));
        for (const bool isBackwards : {false, true}) {
            const Rotation view = Rounded(LookingAlong(axis, isBackwards));
            visit.See(visit.View(view));
        }
    }
}

void SmallOutputsOfOneToFivePixelsASide(Visit& visit) {
    std::uint32_t seed = 0;
    for (int across = 1; across <= 5; ++across) {
        for (int down = 1; down <= 5; ++down) {
            for (const int along : {1, 2, 16, 33}) {
                ++seed;
                SeeAlong(visit, across, down, along, seed);
            }
        }
    }
}

// Turned a little, so that packets rather than rows are walked, and the outermost rays miss.
void SmallOutputsOfOneToSixPixelsASideTilted(Visit& visit) {
    RandomSource random(1);
    for (int index = 0; index < 120; ++index) {
        const VolumeSize size = visit.Size(random.Between(1, 5), random.Between(1, 5), random.Between(1, 34));
        visit.Show(RandomVolume(random, size));
        const DoubleMatrix tilt = AboutAxis(random.Below(3), SmallAngle(random.Within(-4.0, 4.0)));
        const DoubleMatrix turned = Product(AboutAxis(2, Quarters(random.Below(4))), tilt);
        visit.See(visit.View(Rounded(turned)));
    }
}

// Turned about x alone, columns of pixels are columns of voxels.
void SmallOutputsRowsShorterThanAPacketOrALittleLonger(Visit& visit) {
    RandomSource random(2);
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 18, 31, 32, 33}) {
        visit.Show(RandomVolume(random, visit.Size(width, random.Between(1, 9), random.Between(1, 18))));
        for (const double degrees : {0.0, 0.5, -20.0, 90.0}) {
            const Angle angle = degrees == 90.0 ? Quarters(1) : SmallAngle(degrees);
            reference::Request request = visit.View(Rounded(AboutAxis(0, angle)));
            visit.See(request);
            const int first = random.Between(1, width);
            CropAxis(request, 0, first, random.Between(first, width));
            visit.See(request);
        }
    }
}

} // namespace

std::vector<Topic> SizeTopics() {
    return {{"BorderSizesOnOneAxis", BorderSizesOnOneAxis},
            {"BorderSizesOnAllAxes", BorderSizesOnAllAxes},
            {"SmallOutputsOfOneToFivePixelsASide", SmallOutputsOfOneToFivePixelsASide},
            {"SmallOutputsOfOneToSixPixelsASideTilted", SmallOutputsOfOneToSixPixelsASideTilted},
            {"SmallOutputsRowsShorterThanAPacketOrALittleLonger",
             SmallOutputsRowsShorterThanAPacketOrALittleLonger}};
}

} // namespace z3d::test
