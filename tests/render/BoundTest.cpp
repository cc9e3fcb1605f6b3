// A bound of the table that rays skip by is never below what its stretch holds, whatever the volume, the view and the
// place: directly, sample by sample, not by way of pictures.
#include "render/StretchProbe.h"
#include "support/HostVolume.h"
#include "support/InstructionSets.h"
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::test;
using render::kRays;
using render::kSamples;
using render::Measure;

// 0 for a voxel outside the window, else one more than its measure, as far as a byte goes.
int CodeOf(const std::uint8_t* voxel, const render::TableSubject& subject) {
    const int value = subject.isColour ? voxel[0] + voxel[1] + voxel[2] : voxel[0];
    if (value < subject.accepted.first || value > subject.accepted.last) return 0;
    if (subject.measure == Measure::Presence) return 1;
    const auto [smallest, largest] = std::minmax_element(voxel, voxel + (subject.isColour ? 3 : 1));
    const int measure = subject.measure == Measure::Largeness ? *largest : 255 - *smallest;
    return std::min(measure + 1, 255);
}

// A table over a random volume, for a random view.
class Scene {
public:
    Scene(RandomSource& random, int bytesPerVoxel)
        : plain_(RandomVolume(random, RandomSize(random, 40, bytesPerVoxel))),
          host_(plain_),
          rotation_(RandomRotation(random, static_cast<RotationKind>(random.Below(kRotationKinds)))),
          box_(RandomBox(random)),
          view_(host_.Get(), rotation_.data(), box_, 0),
          subject_(RandomSubject(random, bytesPerVoxel)) {
        const std::size_t sliceBytes = plain_.voxels.size() / static_cast<std::size_t>(plain_.depth);
        for (std::size_t z = 0; z < static_cast<std::size_t>(plain_.depth); ++z)
            slices_.push_back(plain_.voxels.data() + z * sliceBytes);
    }

    render::Projection Projection() const {
        return {view_,
                {slices_.data(), plain_.width, plain_.height, plain_.depth, IsGathering()},
                {},
                nullptr,
                render::SkipPolicy::Always};
    }
    const render::TableSubject& Subject() const { return subject_; }

    // In the crop box, every second one beside a border between blocks.
    float RandomStart(RandomSource& random, int axis) const {
        const double low = Low(axis);
        const double any = random.Within(low, High(axis) + 1e-9);
        if (random.Chance(2)) return static_cast<float>(std::min(any, High(axis)));
        const double border =
            std::floor(any / render::kBlockSide) * render::kBlockSide - 0.49 + random.Within(-0.001, 0.001);
        return static_cast<float>(std::clamp(border, low, High(axis)));
    }
    bool IsInside(float position, int axis) const { return position >= Low(axis) && position <= High(axis); }
    float Step(int axis) const {
        const float step = view_.Inverse(axis, 2);
        return subject_.backToFront ? -step : step;
    }
    int CodeAt(const render::Indexes& indexes, int sample, int ray) const {
        const std::size_t bytes = subject_.isColour ? 3 : 1;
        return CodeOf(slices_[indexes.z[sample][ray]] + indexes.plane[sample][ray] * bytes, subject_);
    }

private:
    double Low(int axis) const { return static_cast<double>(view_.CropLow(axis)) + view_.volumeCentre[axis]; }
    double High(int axis) const {
        return static_cast<double>(view_.CropHigh(axis)) + view_.volumeCentre[axis];
    }

    render::CropBox RandomBox(RandomSource& random) const {
        const CropKind kind = random.Chance(2) ? CropKind::Full : CropKind::Inside;
        const Crop crop = RandomCrop(random, kind, plain_);
        return {crop.x0 - 1, crop.x1 - 1, crop.y0 - 1, crop.y1 - 1, crop.z0 - 1, crop.z1 - 1};
    }
    static render::TableSubject RandomSubject(RandomSource& random, int bytesPerVoxel) {
        const bool isColour = bytesPerVoxel == 3;
        const int largest = isColour ? render::kLargestSum : render::kLargestGrey;
        const int first = random.Chance(3) ? 0 : random.Between(0, largest);
        const int last = random.Chance(3) ? largest : random.Between(first, largest);
        constexpr Measure kMeasures[] = {Measure::Presence, Measure::Largeness, Measure::Smallness};
        return {isColour, {first, last}, kMeasures[random.Below(3)], random.Chance(2), random.Below(2)};
    }

    reference::Volume plain_;
    HostVolume host_;
    Rotation rotation_;
    render::CropBox box_;
    render::ProjectionRenderer view_;
    render::TableSubject subject_;
    std::vector<const std::uint8_t*> slices_;
};

class Bounds : public OnInstructionSet {
protected:
    // Sixteen stretches; how many of them the table knows something of.
    static int ExpectNoBoundBelow(const Scene& scene, const render::BoundTable& table, RandomSource& random) {
        render::Positions positions;
        for (int axis = 0; axis < 3; ++axis) {
            for (float& position : positions.axis[axis])
                position = scene.RandomStart(random, axis);
        }
        std::uint8_t bounds[kRays];
        render::Indexes indexes;
        ProbeOf(GetParam()).lookUp(scene.Projection(), table, positions, bounds);
        ProbeOf(GetParam())
            .takeStretch(scene.Projection(), scene.Subject().backToFront, scene.Subject().margin, positions,
                         indexes);
        for (int ray = 0; ray < kRays; ++ray) {
            float at[3] = {positions.axis[0][ray], positions.axis[1][ray], positions.axis[2][ray]};
            for (int sample = 0; sample < kSamples; ++sample) {
                // Rays end at the crop box, and nothing beyond it is bounded.
                if (!scene.IsInside(at[0], 0) || !scene.IsInside(at[1], 1) || !scene.IsInside(at[2], 2))
                    break;
                EXPECT_GE(int{bounds[ray]}, scene.CodeAt(indexes, sample, ray))
                    << "sample " << sample << " from " << positions.axis[0][ray] << ", "
                    << positions.axis[1][ray] << ", " << positions.axis[2][ray];
                for (int axis = 0; axis < 3; ++axis)
                    at[axis] += scene.Step(axis);
            }
        }
        return static_cast<int>(
            std::count_if(bounds, bounds + kRays, [](auto bound) { return bound < 255; }));
    }
};

TEST_P(Bounds, AreNeverBelowWhatTheirStretchHolds) {
    int known = 0;
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(::testing::Message() << "seed " << seed);
        RandomSource random(seed);
        const Scene scene(random, seed % 2 == 0 ? 1 : 3);
        const render::Projection projection = scene.Projection();
        if (!projection.view.HasValidSize()) continue;
        render::BoundTable table(projection, scene.Subject());
        if (!table.IsPossible()) continue;
        ASSERT_TRUE(table.Make());
        for (int packet = 0; packet < 60; ++packet)
            known += ExpectNoBoundBelow(scene, table, random);
        if (HasFailure()) return;
    }
    EXPECT_GT(known, 50'000) << "of 288000 stretches at most";
}

INSTANTIATE_TEST_SUITE_P(AllInstructionSets, Bounds, ::testing::ValuesIn(render::kInstructionSets),
                         [](const auto& set) { return NameOf(set.param); });

} // namespace
