// Matrices that are no rotations, and what they do to rays.
#include "render/ViewTable.h"

#include "reference/ReferenceRay.h"

#include <bit>
#include <cmath>

namespace z3d::test {
namespace {

// Matrices that are not quite rotations, or not at all: hosts accumulate roundings, mirror and zoom.

Rotation RandomView(RandomSource& random) {
    static constexpr std::array<RotationKind, 5> kKinds = {
        RotationKind::Identity, RotationKind::ExactQuarterTurn, RotationKind::OneAxis,
        RotationKind::TinyAngle, RotationKind::Uniform};
    return RandomRotation(random, kKinds[static_cast<std::size_t>(random.Below(5))]);
}

void SeeWholeAndCropped(Visit& visit, const Rotation& rotation, RandomSource& random) {
    reference::Request request = visit.View(rotation);
    visit.See(request);
    const Crop crop = RandomCrop(random, CropKind::Inside, visit.Volume());
    CropAxis(request, 0, crop.x0, crop.x1);
    CropAxis(request, 1, crop.y0, crop.y1);
    visit.See(request);
}

void UnevenMatricesOffByAMillionthToAHundredth(Visit& visit) {
    RandomSource random(1);
    visit.Show(RandomVolume(random, visit.Size(19, 17, 16)));
    for (const double error : {1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2}) {
        for (int index = 0; index < 8; ++index) {
            Rotation rotation = RandomView(random);
            for (float& element : rotation) {
                if (random.Chance(2)) continue;
                // Relative, so that exact zeros stay; or absolute.
                const double scale = random.Chance(2) ? element : 1.0;
                element = static_cast<float>(element + scale * random.Within(-error, error));
            }
            SeeWholeAndCropped(visit, rotation, random);
        }
    }
}

void UnevenMatricesMirrored(Visit& visit) {
    RandomSource random(2);
    visit.Show(RandomVolume(random, visit.Size(17, 18, 15)));
    for (int index = 0; index < 35; ++index) {
        Rotation rotation = RandomView(random);
        const int rows = random.Between(1, 7);
        for (std::size_t element = 0; element < 9; ++element) {
            if ((rows >> (element / 3) & 1) != 0) rotation[element] = -rotation[element];
        }
        SeeWholeAndCropped(visit, rotation, random);
    }
}

// 1.03125 is the longest step for which stretches are bounded.
void UnevenMatricesZoomed(Visit& visit) {
    RandomSource random(3);
    visit.Show(RandomVolume(random, visit.Size(18, 16, 17)));
    for (const float zoom : {0.01f, 0.5f, 0.96875f, 1.03125f, 1.0312501f, 1.5f, 2.0f}) {
        for (int index = 0; index < 5; ++index) {
            Rotation rotation = RandomView(random);
            const std::size_t row = static_cast<std::size_t>(random.Below(4));
            for (std::size_t element = 0; element < 9; ++element) {
                // One row, or all of them.
                if (row == 3 || element / 3 == row) rotation[element] *= zoom;
            }
            SeeWholeAndCropped(visit, rotation, random);
        }
    }
}

// Columns of pixels stay columns of voxels, whatever happens to y and z.
void UnevenMatricesShearedAcrossX(Visit& visit) {
    RandomSource random(4);
    for (int index = 0; index < 25; ++index) {
        visit.Show(RandomVolume(random, visit.Size(random.Between(1, 20), 9, 12)));
        Rotation rotation = kIdentity;
        for (const std::size_t element : {std::size_t{4}, std::size_t{5}, std::size_t{7}, std::size_t{8}})
            rotation[element] = static_cast<float>(random.Within(-1.3, 1.3));
        SeeWholeAndCropped(visit, rotation, random);
    }
}

// Matrices that just count as rotations, over so many voxels that depths are off by several of them: rays leave the
// crop box, and meet its faces beyond the ends where faces are looked for.
void UnevenMatricesOffByAThousandthOverThousandsOfVoxels(Visit& visit) {
    constexpr std::array<float, 2> kErrors = {0.99e-3f, -0.99e-3f};
    visit.Show(NoiseVolume(visit.Size(16000, 2, 50), 5));
    for (const float error : kErrors) {
        reference::Request request = visit.View({1, 0, 0, 0, 1, 0, error, 0, 1});
        CropAxis(request, 2, 24, 27);
        visit.See(request);
    }

    visit.Show(NoiseVolume(visit.Size(3600, 3, 30), 6));
    for (const float error : kErrors) {
        Rotation rotation = Rounded(AboutAxis(1, FromHalfTangent(0.15)));
        for (std::size_t element = 0; element < 3; ++element)
            rotation[element] += error * rotation[6 + element];
        reference::Request request = visit.View(rotation);
        CropAxis(request, 1, 2, 2); // so that no ray runs along a face
        visit.See(request);
    }
}

// A ray of so many samples that a sum of bytes passes 2^24, where single precision loses whole numbers: by a row
// that makes them 200 voxels apart, most of them beyond the border.
void UnevenMatricesSumsBeyondTheWholeNumbersOfAFloat(Visit& visit) {
    reference::Volume volume = ConstantVolume(visit.Size(2, 1, 420), 255);
    SetVoxel(volume, 0, 0, 419, {253, 252, 251});
    visit.Show(std::move(volume));
    Rotation rotation = kIdentity;
    rotation[8] = 200.0f;
    visit.See(visit.View(rotation));
    rotation[0] = rotation[4] = -1.0f;
    visit.See(visit.View(rotation));
}

// The same where x lies along the picture and the pixels of one line look up voxels of two rows: from y = 2.50985 to
// 2.51015. A sum of 101377 samples of 255 is 25886716 when they are added one by one, and 25851136 in sixteens.
void UnevenMatricesSumsOfPixelsThatShareNoLine(Visit& visit) {
    visit.Show(ConstantVolume(visit.Size(4, 5, 100), 255));
    const Rotation rotation = {1, 1e-4f, 0, 0, 0.51f, 0, 0, 0, 1024};
    const reference::Request request = visit.View(rotation);
    EXPECT_EQ(reference::Render(visit.Volume(), request).pixels.at(0), 25886716.0f);
    visit.See(request);
}

// Viewing directions of up to 1024 samples per voxel, the longest that are rendered; and depths of output beyond the
// whole numbers that floats can tell apart.

void LongViewsOfAboutAThousandSamplesPerVoxel(Visit& visit) {
    RandomSource random(1);
    for (int index = 0; index < 60; ++index) {
        visit.Show(RandomVolume(random, RandomSize(random, 5, visit.BytesPerVoxel())));
        reference::Request request = RandomRequest(random, visit.Volume(), visit.Kernel().mode);
        request.extraBits = std::bit_cast<std::uint32_t>(visit.Kernel().extra);
        request.rotation = RandomRotation(random, RotationKind::Uniform);
        for (std::size_t element = 6; element < 9; ++element)
            request.rotation[element] *= index < 30 ? 1000.0f : 1024.0f;
        visit.See(request);
    }
}

// 16399 * 1023.9375 is 16791551 and a fraction: an odd number above 2^24, which no float is.
void LongViewsWhoseDepthNoFloatIs(Visit& visit) {
    RandomSource random(2);
    visit.Show(RandomVolume(random, visit.Size(3, 3, 16400)));
    reference::Request request = visit.View({1, 0, 0, 0, 1, 0, 0, 0, 1023.9375f});
    for (const bool nearEnd : {false, true}) {
        const int slice = nearEnd ? 1 : 16400;
        CropAxis(request, 2, slice, slice);
        visit.See(request);
    }
}

// The last of 16777220 depths is 16777219, which is kept as 16777220: there, and at no other depth, one of the two rays
// meets the volume, which is a single column.
void LongViewsThatMeetTheVolumeAtALastDepthThatWasRoundedUp(Visit& visit) {
    visit.Show(NoiseVolume(visit.Size(1, 1, 16500), 3));
    const Rotation stretching = {1, 0, 0x1.310f0cp-14f, 0, 1, 0, -0x1.f8e338p-5f, 0, 0x1.fc6e7p+9f};
    const reference::Request request = visit.View(stretching);
    const auto frame = reference::BuildFrame(visit.Volume(), request);
    ASSERT_EQ(frame->outputSize, (std::array{2, 1, 16777220}));
    const auto ray = reference::TraceRay(*frame, 1, 0);
    ASSERT_TRUE(ray && ray->firstDepth == 16777220 && ray->lastDepth == 16777220);

    visit.See(request);
}

// Local contrast where a neighbour lies a rounding away from the border between two voxels: one output column is as
// long as from a voxel to just before, or behind, that border.

// In the middle column of the output, coordinates along the axis are whole numbers.
void SeeTies(Visit& visit, std::size_t axis, int side) {
    VolumeSize size = visit.Size(3, 3, 3);
    int* const sides[] = {&size.width, &size.height, &size.depth};
    *sides[axis] = side;
    visit.Show(NoiseVolume(size, static_cast<std::uint32_t>(side)));
    for (const float border : {0.51f, -0.49f}) {
        for (const float toward : {border, 0.0f, border * 2}) {
            Rotation rotation = kIdentity;
            rotation[axis] = std::nextafter(border, toward);
            visit.See(visit.View(rotation));
        }
    }
}

void NeighbourTiesAlongX(Visit& visit) {
    for (const int side : {21, 201, 401, 1001, 2001, 4001, 16001})
        SeeTies(visit, 0, side);
}

void NeighbourTiesAlongY(Visit& visit) {
    for (const int side : {21, 201, 401})
        SeeTies(visit, 1, side);
}

void NeighbourTiesAlongZ(Visit& visit) {
    for (const int side : {21, 201, 401})
        SeeTies(visit, 2, side);
}

} // namespace

std::vector<Topic> MatrixTopics() {
    return {
        {"UnevenMatricesOffByAMillionthToAHundredth", UnevenMatricesOffByAMillionthToAHundredth},
        {"UnevenMatricesMirrored", UnevenMatricesMirrored},
        {"UnevenMatricesZoomed", UnevenMatricesZoomed},
        {"UnevenMatricesShearedAcrossX", UnevenMatricesShearedAcrossX},
        {"UnevenMatricesOffByAThousandthOverThousandsOfVoxels",
         UnevenMatricesOffByAThousandthOverThousandsOfVoxels},
        {"UnevenMatricesSumsBeyondTheWholeNumbersOfAFloat", UnevenMatricesSumsBeyondTheWholeNumbersOfAFloat},
        {"UnevenMatricesSumsOfPixelsThatShareNoLine", UnevenMatricesSumsOfPixelsThatShareNoLine, IsSum},
        {"LongViewsOfAboutAThousandSamplesPerVoxel", LongViewsOfAboutAThousandSamplesPerVoxel},
        {"LongViewsWhoseDepthNoFloatIs", LongViewsWhoseDepthNoFloatIs},
        {"LongViewsThatMeetTheVolumeAtALastDepthThatWasRoundedUp",
         LongViewsThatMeetTheVolumeAtALastDepthThatWasRoundedUp},
        {"NeighbourTiesAlongX", NeighbourTiesAlongX, IsContrast},
        {"NeighbourTiesAlongY", NeighbourTiesAlongY, IsContrast},
        {"NeighbourTiesAlongZ", NeighbourTiesAlongZ, IsContrast}};
}

} // namespace z3d::test
