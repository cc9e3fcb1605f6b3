// GetRotProjection on tiny volumes with every argument, instruction set and table of bounds, also with slices of
// another format, and with a random request of the platform refused.
//
// The result has to be the plain form's, bit for bit, or null where the plain form renders nothing or something was
// refused; the volume is left unlocked, and nothing is left over.
#include "Fuzzing.h"

#include "frame/Image2D.h"
#include "frame/LockedImage.h"
#include "frame/Volume3D.h"
#include "reference/ReferenceFrame.h"
#include "reference/ReferenceRenderer.h"
#include "render/InstructionSet.h"
#include "render/SkipPolicy.h"
#include "support/HostVolume.h"
#include "support/ProductRenderer.h"
#include "support/RenderModes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <vector>

namespace {

using namespace z3d;
using namespace z3d::fuzz;

constexpr int kLongestSide = 20;
// What the plain form renders in some hundredths of a second.
constexpr double kMostPixels = 5000;
constexpr double kMostSamples = 1e6;

// Bytes that the input does not give follow from the ones before.
reference::Volume AnyVolume(FuzzedDataProvider& input) {
    static constexpr int kBytesPerVoxel[] = {1, 3, 1, 3, 2, 4};
    const auto side = [&] {
        return input.ConsumeBool() ? input.ConsumeIntegralInRange(1, 3)
                                   : input.ConsumeIntegralInRange(1, kLongestSide);
    };
    const int width = side();
    const int height = side();
    const int depth = side();
    const int bytesPerVoxel = input.PickValueInArray(kBytesPerVoxel);
    std::uint32_t pattern = input.ConsumeIntegral<std::uint32_t>();
    const bool isFlat = input.ConsumeBool();
    reference::Volume volume = {width, height, depth, bytesPerVoxel, {}};
    volume.voxels.resize(static_cast<std::size_t>(width * height * depth * bytesPerVoxel));
    for (std::uint8_t& byte : volume.voxels) {
        if (!isFlat) pattern = pattern * 1664525u + 1013904223u;
        byte = static_cast<std::uint8_t>(pattern >> 24);
    }
    return volume;
}

std::array<float, 9> AnyMatrix(FuzzedDataProvider& input) {
    std::array<float, 9> matrix = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    if (input.ConsumeBool()) {
        for (float& element : matrix)
            element = AnyFloat(input);
        return matrix;
    }
    // A turn about one axis after another, from quaternions of small whole numbers.
    const auto part = [&] { return static_cast<float>(input.ConsumeIntegral<std::int8_t>()); };
    const float a = part() + 0.5f;
    const float b = part();
    const float c = part();
    const float d = part();
    const float scale = (input.ConsumeBool() ? 1.0f : AnyFloat(input)) / (a * a + b * b + c * c + d * d);
    matrix = {a * a + b * b - c * c - d * d, 2 * (b * c - a * d),           2 * (b * d + a * c),
              2 * (b * c + a * d),           a * a - b * b + c * c - d * d, 2 * (c * d - a * b),
              2 * (b * d - a * c),           2 * (c * d + a * b),           a * a - b * b - c * c + d * d};
    for (float& element : matrix)
        element *= scale;
    return matrix;
}

reference::Request AnyRequest(FuzzedDataProvider& input) {
    reference::Request request = {};
    request.mode =
        input.ConsumeIntegralInRange<std::int16_t>(-1, static_cast<std::int16_t>(test::kRenderModeCount));
    request.rotation = AnyMatrix(input);
    request.high = 765;
    request.extraBits = std::bit_cast<std::uint32_t>(AnyFloat(input));
    if (input.ConsumeBool()) {
        request.high = AnyFloat(input);
        request.low = AnyFloat(input);
    }
    std::int16_t* const bounds[] = {&request.x0, &request.x1, &request.y0,
                                    &request.y1, &request.z0, &request.z1};
    const bool isCropped = input.ConsumeBool();
    for (std::size_t bound = 0; bound < 6; ++bound) {
        *bounds[bound] = bound % 2 == 0 ? 1 : kLongestSide;
        if (!isCropped) continue;
        *bounds[bound] = input.ConsumeBool()
                             ? input.ConsumeIntegralInRange<std::int16_t>(-2, kLongestSide + 2)
                             : input.ConsumeIntegral<std::int16_t>();
    }
    return request;
}

bool IsSmallEnough(const reference::Volume& volume, const reference::Request& request) {
    const auto frame = reference::BuildFrame(volume, request);
    if (!frame) return true;
    const double pixels = static_cast<double>(frame->outputSize[0]) * frame->outputSize[1];
    // What the plain form does not render either is refused at once, or needs memory alone.
    return pixels <= kMostPixels && pixels * (frame->outputSize[2] + 1.0) <= kMostSamples;
}

// Gives slice z another format, with the same bytes as far as there are some. False when it is then too small.
bool Reformat(test::HostVolume& host, const reference::Volume& plain, int z, std::uint32_t bytesPerVoxel) {
    const std::size_t bytes = plain.voxels.size() / static_cast<std::size_t>(plain.depth);
    ::Image2D*& slice = host->slices[z];
    frame::GlobalFree2D(slice);
    slice = frame::GlobalAlloc2D(host->width, host->height, bytesPerVoxel);
    Require(slice != nullptr);
    const bool isReadable = bytesPerVoxel >= (plain.bytesPerVoxel == 3 ? 3u : 1u);
    if (!isReadable) return false;
    const frame::LockedImage locked(slice);
    std::memcpy(locked.Bytes(), plain.voxels.data() + static_cast<std::size_t>(z) * bytes,
                std::min(bytes, locked.ByteCount()));
    return true;
}

bool SameBits(const reference::Projection& expected, const reference::Projection& got) {
    const auto bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    return (expected.width & 0xFFFF) == got.width && (expected.height & 0xFFFF) == got.height
           && expected.rendered == got.rendered
           && std::ranges::equal(expected.pixels, got.pixels, {}, bits, bits);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const reference::Volume volume = AnyVolume(input);
    const reference::Request request = AnyRequest(input);
    const auto best = static_cast<int>(render::BestInstructionSet());
    const auto set = static_cast<render::InstructionSet>(input.ConsumeIntegralInRange(0, best));
    const bool alwaysSkips = input.ConsumeBool();
    const bool isReformatted = input.ConsumeBool();
    const bool isLocked = input.ConsumeBool();
    const int refused = input.ConsumeBool() ? input.ConsumeIntegralInRange(0, 12) : kNever;
    if (!IsSmallEnough(volume, request)) return 0;

    {
        test::HostVolume host(volume);
        bool isReadable = true;
        if (isReformatted && volume.depth > 1) {
            const int z = input.ConsumeIntegralInRange(1, volume.depth - 1);
            isReadable = Reformat(host, volume, z, input.ConsumeIntegralInRange<std::uint32_t>(1, 5));
        }
        if (isLocked) frame::GlobalLock3D(host.Get());
        render::ForceInstructionSet(set);
        render::ForceSkipPolicy(alwaysSkips ? render::SkipPolicy::Always : render::SkipPolicy::WhereItPays);
        const int before = Outstanding();
        RefuseRequest(refused);
        const reference::Projection got = test::RenderProduct(host.Get(), request);
        RefuseRequest(kNever);

        reference::Projection expected = reference::Render(volume, request);
        if (!isReadable) expected = {expected.width, expected.height, 0, false, {}};
        const bool isMode =
            std::ranges::find(test::kRenderModes, request.mode) != std::end(test::kRenderModes);
        if (got.rendered || refused == kNever) Require(SameBits(expected, got));
        if (isMode) Require(host->sliceRows == nullptr);
        // A slice whose lock was refused keeps the table of rows that it has got until it is freed.
        if (isMode && !isLocked && refused == kNever) Require(Outstanding() == before);
    }
    Require(Outstanding() == 0);
    return 0;
}
