#include "support/RgbImage.h"

#include <bit>

namespace z3d::test {
namespace {

std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

} // namespace

compose::RgbImageRequest Request(const char* red, const char* green, const char* blue, std::int16_t width,
                                 std::int16_t height, std::int16_t depth) {
    compose::RgbImageRequest request = {};
    request.redFile = red;
    request.greenFile = green;
    request.blueFile = blue;
    request.width = width;
    request.height = height;
    request.depth = depth;
    request.is8bit = true;
    request.maxDiagonal = INT16_MAX;
    return request;
}

ImageResult GetImage(compose::RgbImageRequest request, const frame::Host& host) {
    ImageResult result;
    request.outMax = &result.outMax;
    request.outMin = &result.outMin;
    request.rangeMaxOut = &result.rangeMax;
    request.rangeMinOut = &result.rangeMin;
    result.volume.reset(compose::GetRGBImage(request, host));
    return result;
}

ImageResult GetImage(const compose::RgbImageRequest& request) {
    RecordingHost host;
    return GetImage(request, host.Get());
}

void ExpectDisplay(const ImageResult& result, float max, float min) {
    EXPECT_EQ(Bits(result.outMax), Bits(max)) << result.outMax;
    EXPECT_EQ(Bits(result.outMin), Bits(min)) << result.outMin;
}

void ExpectRange(const ImageResult& result, float max, float min) {
    EXPECT_EQ(Bits(result.rangeMax), Bits(max)) << result.rangeMax;
    EXPECT_EQ(Bits(result.rangeMin), Bits(min)) << result.rangeMin;
}

} // namespace z3d::test
