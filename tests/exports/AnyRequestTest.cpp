// Render calls as a whole, with numbers from everywhere: matrices over the whole range of exponents, finite or not,
// crop boxes, windows and extras of any bits, thin volumes. Each call has a budget of time, and where the plain form
// can follow, its bits.
#include "exports/Picture.h"
#include "reference/ReferenceFrame.h"
#include "reference/ReferenceRenderer.h"
#include "support/ProceduralVolumes.h"
#include "support/RandomRequests.h"
#include "support/RenderModes.h"
#include "support/SameBits.h"
#include "support/Watchdog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>

namespace {

using namespace z3d;
using namespace z3d::test;

float AnyFloat(RandomSource& random) { return std::bit_cast<float>(random.Bits()); }

// Any sign and mantissa, with an exponent in the range.
float FloatOfExponent(RandomSource& random, int least, int largest) {
    return static_cast<float>(std::ldexp(random.Chance(2) ? -1 - random.Unit() : 1 + random.Unit(),
                                         random.Between(least, largest)));
}

// What a host passes that forgets to convert its doubles.
Rotation DoublesAsFloats(RandomSource& random) {
    const Rotation rotation = RandomRotation(random, RotationKind::Uniform);
    double doubles[9];
    std::copy(rotation.begin(), rotation.end(), doubles);
    Rotation seen;
    std::memcpy(seen.data(), doubles, sizeof seen);
    return seen;
}

Rotation ScaledRows(RandomSource& random, int least, int largest) {
    Rotation rotation = RandomRotation(random, RotationKind::Uniform);
    for (std::size_t row = 0; row < 3; ++row) {
        const float factor = FloatOfExponent(random, least, largest);
        for (std::size_t column = 0; column < 3; ++column)
            rotation[3 * row + column] *= factor;
    }
    return rotation;
}

// Viewing directions about as long as the longest one that is rendered.
Rotation LongView(RandomSource& random) {
    Rotation rotation = RandomRotation(random, RotationKind::Uniform);
    const auto length =
        static_cast<float>(random.Chance(2) ? 1024 + random.Within(-1e-3, 1e-3) : random.Within(500, 2000));
    for (std::size_t element = 6; element < 9; ++element)
        rotation[element] *= length;
    return rotation;
}

Rotation AnyMatrix(RandomSource& random) {
    Rotation rotation = RandomRotation(random, static_cast<RotationKind>(random.Below(kRotationKinds)));
    switch (random.Below(8)) {
    case 0:
        for (float& element : rotation)
            element = AnyFloat(random);
        return rotation;
    case 1:
        for (float& element : rotation)
            element = FloatOfExponent(random, -149, 127);
        return rotation;
    case 2:
        for (float& element : rotation)
            element = random.Chance(2) ? 0 : FloatOfExponent(random, -30, 12);
        return rotation;
    case 3:
        rotation[static_cast<std::size_t>(random.Below(9))] = AnyFloat(random);
        return rotation;
    case 4:
        return DoublesAsFloats(random);
    case 5:
        return ScaledRows(random, -12, 9);
    case 6:
        return LongView(random);
    default:
        return rotation;
    }
}

reference::Request AnyRequest(RandomSource& random, const reference::Volume& volume) {
    reference::Request request = RandomRequest(random, volume, random.Between(0, 6));
    request.rotation = AnyMatrix(random);
    if (random.Chance(4)) {
        const auto any = [&] { return static_cast<std::int16_t>(random.Bits()); };
        CropTo(request, {any(), any(), any(), any(), any(), any()});
    }
    if (random.Chance(8)) request.high = AnyFloat(random);
    if (random.Chance(8)) request.low = AnyFloat(random);
    if (random.Chance(4)) request.extraBits = random.Bits();
    return request;
}

View ViewOf(const reference::Request& request, std::size_t wrappedBytes = 0) {
    return {request.mode,
            request.rotation,
            {request.x0, request.x1, request.y0, request.y1, request.z0, request.z1},
            request.high,
            request.low,
            std::bit_cast<float>(request.extraBits),
            wrappedBytes};
}

// A volume of the DLL with the plain one's bytes.
class CopiedVolume {
public:
    explicit CopiedVolume(const reference::Volume& plain)
        : volume_(static_cast<unsigned>(plain.width), static_cast<unsigned>(plain.height),
                  static_cast<unsigned>(plain.depth), static_cast<unsigned>(plain.bytesPerVoxel)) {
        std::size_t next = 0;
        Fill(volume_.Get(), [&](int, int, int, int) { return plain.voxels[next++]; });
    }
    Volume3D* Get() const { return volume_.Get(); }

private:
    ExportedVolume volume_;
};

// What a request asks for: nothing when the plain form renders nothing.
struct Work {
    double pixels = 0;
    double samples = 0;
    std::size_t wrappedBytes = 0; // of a picture whose size does not fit 16 bits
};

Work WorkOf(const reference::Volume& volume, const reference::Request& request) {
    const auto frame = reference::BuildFrame(volume, request);
    if (!frame) return {};
    const double pixels = static_cast<double>(frame->outputSize[0]) * frame->outputSize[1];
    const bool isWrapped = pixels < 1e9 && (frame->outputSize[0] > 0xFFFF || frame->outputSize[1] > 0xFFFF);
    return {pixels, pixels * (frame->outputSize[2] + 1.0),
            isWrapped ? static_cast<std::size_t>(pixels) * 3 * sizeof(float) : 0};
}

// Ten seconds for a machine that is busy with other things, and a hundred times what a sample takes.
std::chrono::duration<double> BudgetFor(const Work& work) {
    return std::chrono::duration<double>(10 + 1e-7 * work.samples);
}

reference::Projection InPlainForm(Picture picture, int depth) {
    return {picture.width, picture.height, depth, picture.isRendered, std::move(picture.floats)};
}

class AnyRequests : public ::testing::TestWithParam<int> {};

TEST_P(AnyRequests, AreRefusedOrRenderedAsThePlainFormDoesAndInTime) {
    RandomSource random(static_cast<std::uint32_t>(GetParam()));
    for (int index = 0; index < 150; ++index) {
        const VolumeSize size = RandomSize(random, 9, random.Chance(2) ? 1 : 3);
        const reference::Volume volume = RandomVolume(random, size);
        const reference::Request request = AnyRequest(random, volume);
        const Work work = WorkOf(volume, request);
        if (work.pixels > 4e6 || work.samples > 1e8) continue; // they are refused, or a matter of memory
        const std::string description =
            std::to_string(index) + ": " + Describe(request) + "\n" + Describe(volume);
        Picture picture;
        {
            const Watchdog watchdog(BudgetFor(work), description);
            picture = TakePicture(CopiedVolume(volume).Get(), ViewOf(request, work.wrappedBytes));
        }
        if (work.samples > 3e5) continue; // too many for the plain form
        reference::Projection expected = reference::Render(volume, request);
        expected.width &= 0xFFFF;
        expected.height &= 0xFFFF;
        ASSERT_TRUE(SameBits(expected, InPlainForm(picture, expected.depth))) << description;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, AnyRequests, ::testing::Range(1, 11));

// Sizes far beyond memory, too: a size query never fails to end.
TEST(AnyRequests, SizeQueriesEnd) {
    RandomSource random(71);
    for (int index = 0; index < 600; ++index) {
        const reference::Volume volume = EmptyVolume(RandomSize(random, 9, 1));
        reference::Request request = AnyRequest(random, volume);
        request.mode = kUnknownModes[0]; // sizes alone
        const Watchdog watchdog(std::chrono::seconds(10), Describe(request));
        const Picture picture = TakePicture(CopiedVolume(volume).Get(), ViewOf(request));

        const auto frame = reference::BuildFrame(volume, request);
        EXPECT_EQ(picture.width, frame ? frame->outputSize[0] & 0xFFFF : 0) << Describe(request);
        EXPECT_EQ(picture.height, frame ? frame->outputSize[1] & 0xFFFF : 0) << Describe(request);
    }
}

// The most samples per voxel that are accepted, seen through every kernel.
TEST(AnyRequests, TheLongestViewingDirectionEndsInTime) {
    for (const int bytesPerVoxel : {1, 3}) {
        const reference::Volume volume = ConstantVolume({24, 24, 24, bytesPerVoxel}, 100);
        for (const RenderMode mode : kRenderModes) {
            reference::Request request = PlainRequest(volume, mode, {1, 0, 0, 0, 1, 0, 0, 0, 1024});
            request.extraBits = std::bit_cast<std::uint32_t>(0.5f);
            const Watchdog watchdog(BudgetFor(WorkOf(volume, request)), Describe(request));
            EXPECT_TRUE(TakePicture(CopiedVolume(volume).Get(), ViewOf(request)).isRendered);
        }
    }
}

} // namespace
