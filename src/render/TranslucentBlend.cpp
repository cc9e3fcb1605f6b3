// Mode 4, translucent blend: every voxel in the window covers what lies behind it, the more the brighter it is
// and the less the larger the transparency t.
//
// Departures from the frame:
// - rays run back to front, so the sample nearest the viewer is blended last
// - t = 1 is taken as 0.95: samples never lose all their weight
// - the window skips what lies outside it, so a bound that is not a number skips nothing
// - the first voxel that counts turns the initial value into 0
#include "render/Modes.h"
#include "render/RayFrame.h"

#include <bit>

namespace z3d::render {
namespace {

constexpr float kOverLargestByte = 0.003921569f; // 1 / 255
constexpr float kOverLargestSum = 0.0013071896f; // 1 / 765

struct BlendRule : FrameDefaults {
    static constexpr bool kBackToFront = true;
    float low;
    float high;
    double opacity;

    explicit BlendRule(const RenderArguments& arguments)
        : low(arguments.low),
          high(arguments.high),
          opacity(1 - static_cast<double>(arguments.extra == 1 ? 0.95f : arguments.extra)) {}

    bool Skips(std::int32_t value) const {
        return static_cast<float>(value) < low || static_cast<float>(value) > high;
    }
    static bool IsUntouched(float value) {
        return std::bit_cast<std::uint32_t>(value) == std::bit_cast<std::uint32_t>(kInitial);
    }
    static void Cover(float& behind, double weight, std::uint8_t value) {
        behind = static_cast<float>((1 - weight) * behind + weight * value);
    }
};

struct BlendGrey : BlendRule {
    using Voxel = Grey;
    using BlendRule::BlendRule;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        const std::int32_t value = Grey::Value(at.bytes);
        if (Skips(value)) return true;
        if (IsUntouched(pixel[0])) pixel[0] = 0;
        // The weight is kept in single precision; colour does not round it.
        const auto weight = static_cast<float>(value * static_cast<double>(kOverLargestByte) * opacity);
        Cover(pixel[0], weight, at.bytes[0]);
        return true;
    }
    void Finish(float* pixel, const State&) const { pixel[1] = pixel[2] = pixel[0]; }
};

struct BlendRgb : BlendRule {
    using Voxel = Rgb;
    using BlendRule::BlendRule;

    bool Sample(const SampledVoxel& at, float* pixel, State&) const {
        const std::int32_t sum = Rgb::Value(at.bytes);
        if (Skips(sum)) return true;
        if (IsUntouched(pixel[0])) std::fill_n(pixel, 3, 0.0f);
        const double weight = sum * static_cast<double>(kOverLargestSum) * opacity;
        for (int c = 0; c < 3; ++c)
            Cover(pixel[c], weight, at.bytes[c]);
        return true;
    }
    void Finish(float*, const State&) const {}
};

} // namespace

float* TranslucentBlendGrey(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, BlendGrey(arguments));
}

float* TranslucentBlendRgb(const ProjectionRenderer& renderer, const RenderArguments& arguments) {
    return RenderWithRule(renderer, BlendRgb(arguments));
}

} // namespace z3d::render
